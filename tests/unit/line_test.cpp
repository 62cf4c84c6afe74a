// The physics of a line, against published figures.

#include <gtest/gtest.h>

#include "line/training.h"

using namespace line;

// The loss of a kilometre far from the ends, where their impedances do not count.
static double perKilometre(Gauge gauge, double hertz) {
  return decibels(transfer({gauge, 3000, 0}, hertz)) - decibels(transfer({gauge, 4000, 0}, hertz));
}

TEST(Line, LosesWhatItsCableIsKnownToLose) {
  // From the table of R and L of 0.4 mm cable at these frequencies, 50 nF: 290.433 ohm and 577.878 uH, 349.167 and
  // 551.714, 566.521 and 490.494; 8.686 Re sqrt((R + jwL) jwC).
  EXPECT_NEAR(perKilometre(Gauge::mm04, 100e3), 10.99, 0.05);
  EXPECT_NEAR(perKilometre(Gauge::mm04, 300e3), 14.24, 0.05);
  EXPECT_NEAR(perKilometre(Gauge::mm04, 1000e3), 24.74, 0.05);
  // 0.5 mm: 274.83 ohm and 571.60 uH.
  EXPECT_NEAR(perKilometre(Gauge::mm05, 300e3), 11.07, 0.05);
  EXPECT_NEAR(decibels(transfer({}, 1e6)), 0, 1e-9) << "none loses nothing";
}

TEST(Line, TapTakesOutItsQuarterWave) {
  // 202,000 km/s: 30 m are a quarter of a wave at 1.68 MHz.
  double deepest = 0, at = 0;
  for (double hertz = 1.0e6; hertz < 3.0e6; hertz += 1e4) {
    const double taken =
        decibels(transfer({Gauge::mm04, 500, 0}, hertz)) - decibels(transfer({Gauge::mm04, 500, 30}, hertz));
    if (taken > deepest) deepest = taken, at = hertz;
  }
  EXPECT_NEAR(at, 1.68e6, 0.05e6);
  EXPECT_GT(deepest, 12);
}

TEST(Line, BandsFollowEachOtherToTheLastTone) {
  for (u8 i = 0; i < kModes; ++i) {
    const Plan& plan = planOf(static_cast<Mode>(i));
    u32 behind = 1;
    for (const Band& band : plan.bands) {
      EXPECT_GE(band.first, behind) << int{i};
      behind = band.last + 1u;
    }
    EXPECT_EQ(behind, plan.tones) << int{i};
    EXPECT_LT(nominalLevel(static_cast<Mode>(i), false, 3e6), i < 4 ? -39 : -53) << int{i};
  }
  EXPECT_FALSE(bandOf(planOf(Mode::p12b), 31)) << "no lowest band";
  EXPECT_TRUE(bandOf(planOf(Mode::p12a), 31)->up);
}

TEST(Line, RateFallsWithLength) {
  for (const Mode mode : {Mode::gdmt, Mode::adsl2plus, Mode::p17a, Mode::p30a}) {
    Order order;
    order.mode = mode;
    Trained last = train({{Gauge::mm04, 100, 0}}, order);
    for (const u32 metres : {500u, 1000u, 2000u, 4000u}) {
      Trained now = train({{Gauge::mm04, metres, 0}}, order);
      EXPECT_LE(now.down.netRate, last.down.netRate) << metres;
      EXPECT_GT(now.down.lineAttenuation, last.down.lineAttenuation) << metres;
      last = std::move(now);
    }
  }
  // A short line carries 15 bits on each of 479 tones, 4000 times a second.
  Order order;
  const Plant near{{Gauge::mm05, 10, 0}};
  EXPECT_EQ(train(near, order).down.lineRate, 479u * 15 * 4);
  EXPECT_EQ(train(near, order).down.netRate, 28740u - 32) << "without the overhead channel";
  order.down.delay = 16;
  order.down.impulse = 1;
  EXPECT_EQ(train(near, order).down.netRate, 27855u - 32) << "2 of 65 symbols correct one that is lost";
}

TEST(Line, ProfileLimitsRateMarginAndPower) {
  const Plant plant{{Gauge::mm04, 1500, 0}, -120};
  Order order;
  const Trained free = train(plant, order);
  EXPECT_NEAR(free.down.margin, 6, 0.5) << "the rate is what the target margin leaves";
  EXPECT_LE(free.down.power, 20.41);

  order.down.targetMargin = 12;
  EXPECT_LT(train(plant, order).down.netRate, free.down.netRate - 3000) << "6 dB are 2 bits of each tone, at 4 kbit/s";
  order.down.targetMargin = 6;
  order.down.mostRate = 5000;
  const Trained slow = train(plant, order);
  EXPECT_EQ(slow.down.netRate, 5000u);
  EXPECT_GT(slow.down.margin, 20);
  EXPECT_EQ(slow.down.attainable, free.down.attainable);
  order.down.mostMargin = 10;
  const Trained quiet = train(plant, order);
  EXPECT_NEAR(quiet.down.margin, 10, 0.01);
  EXPECT_LT(quiet.down.power, slow.down.power - 5) << "who needs less sends less";
  EXPECT_TRUE(quiet.feasible);
  order.down.leastRate = 6000;
  EXPECT_FALSE(train(plant, order).feasible);
}

TEST(Line, CarriesNothingWhereItMayNot) {
  Order order;
  order.black = {{100, 110}};
  order.lowered = {{200, 200}};
  const Trained trained = train({{Gauge::mm04, 1000, 0}, -140, 300, -80}, order);
  EXPECT_EQ(trained.tones[110].bits, 0);
  EXPECT_GT(trained.tones[111].bits, 8);
  EXPECT_LT(trained.tones[200].bits, trained.tones[201].bits - 8) << "40 dB less";
  EXPECT_EQ(trained.tones[300].bits, 0) << "a carrier stands there";
  EXPECT_NEAR(trained.tones[310].noise, -109.9, 0.1) << "ten tones away it is 20 log 10 pi lower";
  EXPECT_EQ(trained.tones[32].bits, 0) << "between the bands";
}
