// The simulated DSL cards, by the bytes that reach them and that they answer.

#include <gtest/gtest.h>

#include <cmath>

#include "cards/dsl_cards.h"
#include "host/chassis.h"

namespace {

using host::Link;
using std::chrono::seconds;

using Bytes = std::vector<u8>;

Bytes number(u32 value, int width) {
  Bytes bytes;
  while (width-- > 0) bytes.push_back(static_cast<u8>(value >> 8 * width));
  return bytes;
}
u32 numberAt(const Bytes& bytes, std::size_t at, std::size_t width) {
  u32 value = 0;
  for (std::size_t i = at; i < at + width; ++i) value = value << 8 | bytes.at(i);
  return value;
}
Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}
Bytes port(u32 slot, u32 number_) { return number(1, 4) + number(slot, 2) + number(number_, 2) + Bytes(16); }

// An ADSL profile of a port: its target margin down, in tenths, and the lowest rate down; 1: the rate is fixed; the
// standard, 0 for the best; the line type, 2 without interleaving.
Bytes adslBody(u32 margin, u32 rate, u32 mode, u32 standard = 0, u32 type = 3) {
  return number(standard, 2) + number(2, 2) + number(mode, 2) + number(type, 2) + Bytes(8) + number(1, 2) +
         number(margin, 4) + number(1, 2) + number(60, 4) + number(16, 2) + number(16, 2) + number(1, 2) +
         number(1, 2) + Bytes(2) + Bytes(12) + number(31, 2) + number(31, 2) + Bytes(4) + number(0, 2) +
         number(rate, 4) + number(0, 4) + Bytes(64);
}

class Cards : public testing::Test {
 protected:
  Cards() {
    host::authorise(1, *host::findCardType("adsl32"));
    host::authorise(2, *host::findCardType("vdsl64"));
    host::authorise(3, *host::findCardType("eth8"));
    for (const u16 slot : {u16{1}, u16{2}, u16{3}}) host::setCardState(slot, host::CardState::up);
  }
  ~Cards() override { host::clearChassis(); }

  void enable(u16 slot, u32 number_, u8 on) {
    cards.hear(Link::gpon, slot, 2840, port(slot, number_) + Bytes{on} + Bytes(16));
  }
  void attach(const Bytes& body) { cards.hear(Link::gpon, 1, 2837, port(1, 5) + body); }
  Bytes ask(u16 slot, u32 number_, u16 id) {
    const auto answer = cards.answer(Link::gpon, slot, id, port(slot, number_));
    return answer ? *answer : Bytes();
  }
  u32 state() { return numberAt(ask(1, 5, 2825), 26, 2); }
  u32 netRate() { return numberAt(ask(1, 5, 2825), 94, 4); }
  void wait(int time) { now += seconds(time); }
  void bringUp() {
    enable(1, 5, 1);
    wait(5);
  }

  cards::Time now{};
  cards::DslCards cards{[this] { return now; }};
};

TEST_F(Cards, LineComesUpInSomeSeconds) {
  EXPECT_EQ(ask(1, 5, 2825).size(), 106u);
  EXPECT_EQ(state(), 1u) << "out of service";
  enable(1, 5, 1);
  EXPECT_EQ(state(), 2u);
  wait(2);
  EXPECT_EQ(state(), 3u);
  EXPECT_EQ(netRate(), 0u);
  wait(3);
  EXPECT_EQ(state(), 4u);
  EXPECT_GT(netRate(), 20000u) << "kbit/s over a kilometre";
  EXPECT_EQ(numberAt(ask(1, 6, 2825), 26, 2), 1u) << "another port";
  wait(100);
  enable(1, 5, 0);
  wait(7);
  EXPECT_EQ(state(), 1u);
  const Bytes drops = ask(1, 5, 2828);
  ASSERT_EQ(drops.size(), 4u + 20 + 2 + 8);
  EXPECT_EQ(numberAt(drops, 24, 2), 1u);
  EXPECT_EQ(numberAt(drops, 26, 4), 7u) << "seconds ago";
  EXPECT_EQ(numberAt(drops, 30, 2), 47u) << "it was stopped";
}

TEST_F(Cards, ProfileCountsAtTheNextTraining) {
  bringUp();
  attach(adslBody(60, 0, 2));  // as a line is trained without one
  EXPECT_EQ(state(), 4u) << "nothing new, no training";
  const u32 rate = netRate();
  attach(adslBody(200, 0, 2));
  EXPECT_EQ(state(), 2u);
  wait(5);
  EXPECT_LT(netRate(), rate - 1000);
  EXPECT_NEAR(numberAt(ask(1, 5, 2825), 42, 4), 200, 2) << "tenths of a dB, the value behind 0 and 1";
  EXPECT_EQ(numberAt(ask(1, 5, 2825), 40, 2), 1u);
  attach(adslBody(60, 4096, 1));
  wait(5);
  EXPECT_EQ(netRate(), 4096u);
  attach(adslBody(60, 0, 2, 1, 2));
  wait(5);
  EXPECT_EQ(numberAt(ask(1, 5, 2825), 28, 2), 1u) << "the first ADSL";
  EXPECT_EQ(numberAt(ask(1, 5, 2826), 24, 2), 256u);
  EXPECT_EQ(numberAt(ask(1, 5, 2825), 76, 2), 0u) << "no delay";
  attach(adslBody(60, 90000, 2));
  wait(5);
  EXPECT_EQ(state(), 2u) << "a rate that can't be reached: it tries again";
  host::setCardState(1, host::CardState::absent);
  EXPECT_TRUE(ask(1, 5, 2825).empty());
  host::setCardState(1, host::CardState::up);
  EXPECT_EQ(state(), 1u) << "a card that starts knows nothing";
}

TEST_F(Cards, CurvesHaveATonePerEntryOrGroupsOfThem) {
  EXPECT_EQ(numberAt(ask(1, 5, 2826), 24, 2), 0u) << "none of a line that is down";
  bringUp();
  const Bytes bits = ask(1, 5, 2826);
  ASSERT_EQ(bits.size(), 26u + 512 * 4);
  EXPECT_EQ(numberAt(bits, 26 + 32 * 4, 2), 0u) << "between the bands";
  EXPECT_EQ(numberAt(bits, 26 + 40 * 4, 2), 15u);
  EXPECT_EQ(ask(1, 5, 2827).size(), 26u + 512 * 22);
  const Bytes hlog = ask(1, 5, 2831);
  ASSERT_EQ(hlog.size(), 26u + 512 * 14);
  EXPECT_EQ(numberAt(hlog, 26 + 100 * 14 + 2, 4), static_cast<u32>(-963)) << "up was not measured there";
  EXPECT_NEAR(static_cast<i32>(numberAt(hlog, 26 + 100 * 14 + 8, 4)), -158, 10) << "431 kHz";
  const Bytes hlin = ask(1, 5, 2832);
  const auto part = [&](std::size_t at) { return static_cast<i16>(numberAt(hlin, 26 + 100 * 10 + at, 2)) / 32767.0; };
  EXPECT_NEAR(20 * std::log10(std::hypot(part(4), part(6))),
              static_cast<i32>(numberAt(hlog, 26 + 100 * 14 + 8, 4)) / 10.0, 0.1);
  EXPECT_EQ(numberAt(hlin, 26 + 100 * 10, 2), 0x8000u);
  EXPECT_EQ(ask(1, 5, 2834).size(), 26u + 512 * 8);
  EXPECT_EQ(numberAt(ask(1, 5, 2834), 28 + 100 * 8, 4), 955u);
  enable(2, 64, 1);
  wait(5);
  EXPECT_EQ(ask(2, 64, 2826).size(), 26u + 4096 * 4);
  EXPECT_EQ(ask(2, 64, 2833).size(), 26u + 512 * 14) << "eight tones share a group";
  EXPECT_NE(numberAt(ask(2, 64, 2834), 28 + 1 * 8, 4), 955u) << "up on tones 8 to 15";
  EXPECT_EQ(numberAt(ask(2, 64, 2835), 28 + 1 * 8, 4), 955u);
  EXPECT_EQ(ask(2, 65535, 2825).size(), 4u + 64 * 102) << "all ports";
  EXPECT_TRUE(ask(3, 1, 2825).empty()) << "no DSL card";
}

TEST_F(Cards, VdslProfilesCount) {
  // 30a alone, 10 dBm down, no radio bands, nothing on tones 100 to 110; a target margin of 20 dB down, no least rates.
  cards.hear(Link::gpon, 2, 2862,
             port(2, 7) + number(2, 2) + number(128, 2) + number(21, 2) + number(1, 2) + number(100, 4) + number(1, 2) +
                 number(145, 4) + Bytes(4) + number(0, 2) + Bytes(4) + number(1, 2) + number(100, 2) + number(110, 2) +
                 Bytes(4) + Bytes(8));
  cards.hear(Link::gpon, 2, 2863,
             port(2, 7) + number(2, 2) + number(2, 2) + number(1, 2) + number(200, 4) + Bytes{1} + Bytes(12) +
                 number(1, 2) + number(60, 4) + Bytes{1} + Bytes(12) + Bytes(16) + number(8, 2) + number(4, 2) +
                 number(2, 2) + number(1, 2) + Bytes(8));
  cards.setSite(2, 7, {{{line::Gauge::mm05, 300, 0}}});
  enable(2, 7, 1);
  wait(5);
  const Bytes status = ask(2, 7, 2825);
  EXPECT_EQ(numberAt(status, 26, 2), 4u);
  EXPECT_EQ(numberAt(status, 30, 2), 128u);
  EXPECT_NEAR(numberAt(status, 42, 4), 200, 2);
  EXPECT_LE(numberAt(status, 54, 4), 100u) << "tenths of dBm down";
  EXPECT_EQ(numberAt(status, 76, 2), 8u) << "ms down";
  EXPECT_EQ(numberAt(status, 86, 4), 20u) << "tenths of symbols down";
  const Bytes bits = ask(2, 7, 2826);
  ASSERT_EQ(bits.size(), 26u + 3479 * 4);
  EXPECT_EQ(numberAt(bits, 26 + 110 * 4, 2), 0u);
  EXPECT_GT(numberAt(bits, 26 + 111 * 4, 2), 8u);
  // Retransmission that is allowed down, 5000 kbit/s at most.
  cards.hear(Link::gpon, 2, 2859,
             port(2, 7) + number(1, 2) + Bytes(36) + number(64, 4) + number(5000, 4) + number(5000, 4) + Bytes(100));
  wait(5);
  EXPECT_EQ(numberAt(ask(2, 7, 2825), 94, 4), 5000u);
}

TEST_F(Cards, TestsRunOnALineOutOfService) {
  const auto test = [&](u8 delt, u8 start) {
    cards.hear(Link::gepon, 1, 2829, port(1, 5) + Bytes{delt, start} + Bytes(32));
  };
  cards.setSite(1, 5, {{{line::Gauge::mm05, 2000, 0}, -130}, cards::FarEnd::open});
  test(0, 1);
  EXPECT_EQ(numberAt(ask(1, 5, 2836), 40, 2), 10u) << "runs";
  EXPECT_EQ(numberAt(ask(1, 5, 2836), 24, 2), 0u);
  wait(3);
  const Bytes selt = ask(1, 5, 2836);
  ASSERT_EQ(selt.size(), 4u + 178);
  EXPECT_EQ(numberAt(selt, 24, 2), 2000u);
  EXPECT_EQ(numberAt(selt, 38, 2), 1u) << "0.5 mm";
  EXPECT_EQ(numberAt(selt, 40, 2), 11u);
  EXPECT_EQ(numberAt(selt, 44, 2), 0u) << "open";
  EXPECT_NEAR(numberAt(selt, 34, 4), 222, 15) << "dB at 300 kHz, in tenths";
  EXPECT_EQ(static_cast<i32>(numberAt(selt, 56, 4)), -1300);
  test(1, 1);
  wait(3);
  EXPECT_EQ(numberAt(ask(1, 5, 2830), 80, 2), 9u) << "nobody answers at the far end";
  cards.setSite(1, 5, {{{line::Gauge::mm05, 2000, 0}, -130}, cards::FarEnd::present});
  const Bytes delt = ask(1, 5, 2830);
  ASSERT_EQ(delt.size(), 4u + 82 + 2 * 20) << "two bands";
  EXPECT_EQ(numberAt(delt, 80, 2), 8u);
  EXPECT_EQ(numberAt(delt, 48, 4) % 1000, 0u);
  test(1, 0);
  EXPECT_EQ(numberAt(ask(1, 5, 2830), 80, 2), 1u);
}

TEST_F(Cards, LinesAreThePortsOwnOrTheCards) {
  bringUp();
  const u32 rate = netRate();
  cards.setSite(1, 5, {{{line::Gauge::mm04, 3000, 0}}});
  EXPECT_EQ(state(), 2u);
  wait(5);
  EXPECT_LT(netRate(), rate / 2);
  cards.setSite(1, 0, {{{line::Gauge::mm04, 100, 0}}});
  EXPECT_EQ(cards.site(1, 5).plant.loop.metres, 3000u);
  EXPECT_EQ(cards.site(1, 6).plant.loop.metres, 100u);
  cards.setSite(1, 5, {{{line::Gauge::mm04, 3000, 0}}, cards::FarEnd::shorted});
  wait(100);
  EXPECT_EQ(state(), 2u) << "no modem";
  // As the processor keeps numbers: the modem, whose line is down.
  const Bytes question{1, 0, 0, 0, 1, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  Bytes modem = cards.answer(Link::gepon, 1, 2854, question).value();
  EXPECT_EQ(modem.size(), 76u);
  EXPECT_EQ(modem[60], 0);
  EXPECT_EQ(modem[24], 0);
  cards.setSite(1, 5, {});
  wait(5);
  modem = cards.answer(Link::gepon, 1, 2854, question).value();
  EXPECT_EQ(modem[60], 1);
  EXPECT_EQ(modem[24], 'S');
  EXPECT_EQ(modem[62], 2026 >> 8);
  const Bytes rates = cards.answer(Link::gepon, 1, 2853, question).value();
  ASSERT_EQ(rates.size(), 24u + 104);
  EXPECT_EQ(rates[44] + 256 * rates[45], static_cast<int>(numberAt(ask(1, 5, 2825), 70, 4)))
      << "down by the third mode";
  EXPECT_EQ(rates[56], 0) << "no VDSL";
}

}  // namespace
