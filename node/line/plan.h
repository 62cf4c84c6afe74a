#pragma once
// How a transmission standard divides a pair: tones, bands, transmit levels.

#include <optional>
#include <span>

#include "platform/types.h"

namespace line {

// G.992.1, G.992.3, G.992.5 annex A, T1.413; and the profiles of G.993.2, plan 998 of its annex B.
enum class Mode : u8 { gdmt, adsl2, adsl2plus, t1413, p8a, p8b, p8c, p8d, p12a, p12b, p17a, p30a };
inline constexpr u8 kModes = 12;

struct Band {
  bool up = false;
  u16 first = 0, last = 0;  // tones
};

struct Plan {
  double spacing = 0;               // Hz
  double symbols = 0;               // per second that carry data
  u16 tones = 0;                    // the last one and 0 included
  double mostUp = 0, mostDown = 0;  // dBm over all bands
  std::span<const Band> bands;      // ascending
};

const Plan& planOf(Mode mode);

// The band that a tone is in.
std::optional<Band> bandOf(const Plan& plan, u32 tone);

// dBm/Hz that a modem sends at most at a frequency of its bands.
double nominalLevel(Mode mode, bool up, double hertz);

}  // namespace line
