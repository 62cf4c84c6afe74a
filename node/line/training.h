#pragma once
// What two modems make of a pair: bits and gains of each tone, rates, margins, attenuations.
//
// A tone carries log2(1 + SNR / gap) bits, 15 at most; the gap is Shannon's 9.8 dB for an error rate of 1e-7 with the
// target margin on top.

#include <compare>
#include <limits>
#include <vector>

#include "cable.h"
#include "plan.h"

namespace line {

// What there is in the ground.
struct Plant {
  Loop loop;
  double noise = -140;     // dBm/Hz over all tones, at both ends
  u32 disturbedTone = 0;   // a carrier there, 0: none,
  double disturbance = 0;  // of so many dBm/Hz
  auto operator<=>(const Plant&) const = default;
};

struct ToneRange {
  u32 first = 0, last = 0;
  auto operator<=>(const ToneRange&) const = default;
};

// What a profile asks for in one direction.
struct Limits {
  static constexpr u32 kNoRate = std::numeric_limits<u32>::max();
  double targetMargin = 6;  // dB
  double mostMargin = 31;
  double mostPower = 100;  // dBm, where it is less than the standard's
  u32 leastRate = 0;       // kbit/s
  u32 mostRate = kNoRate;
  u32 delay = 0;       // ms of interleaving, 0: none
  double impulse = 0;  // symbols that may be lost to an impulse; counts with a delay
  auto operator<=>(const Limits&) const = default;
};

struct Order {
  Mode mode = Mode::adsl2plus;
  Limits up, down;
  std::vector<ToneRange> black;    // nothing is sent on these
  std::vector<ToneRange> lowered;  // -80 dBm/Hz at most, for radio amateurs
  auto operator<=>(const Order&) const = default;
};

struct Tone {
  u8 bits = 0;
  float gain = 0;   // dB, of a tone with bits
  float snr = 0;    // dB
  float noise = 0;  // dBm/Hz
};

struct Direction {
  u32 lineRate = 0, netRate = 0;  // kbit/s
  u32 attainable = 0;             // net, without the limits of rates
  double margin = 0;              // dB; the least of all tones
  double power = 0;               // dBm
  double lineAttenuation = 0;     // dB, mean power over the tones of the bands
  double signalAttenuation = 0;   // dB, sent over received power
};

struct BandState {
  double lineAttenuation = 0, signalAttenuation = 0, margin = 0;
};

struct Summary {
  Mode mode = Mode::adsl2plus;
  bool feasible = false;  // both directions reach their least rates
  Direction up, down;
  std::vector<BandState> bands;  // in the order of the plan
};

struct Trained : Summary {
  std::vector<Tone> tones;
  std::vector<Complex> transfer;
};

Trained train(const Plant& plant, const Order& order);

}  // namespace line
