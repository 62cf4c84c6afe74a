#pragma once
// A telephone pair as a two-port.
//
// The primary parameters of the cables are those of the parametric models of ITU-T G.996.1 and G.993.1; lengths are cut
// into uniform sections whose ABCD matrices are multiplied.

#include <compare>
#include <complex>
#include <vector>

#include "platform/types.h"

namespace line {

enum class Gauge : u8 { mm04, mm05 };

struct Loop {
  Gauge gauge = Gauge::mm04;
  u32 metres = 0;
  u32 tapMetres = 0;  // an open bridged tap of the same cable in the middle of the loop; 0: none
  auto operator<=>(const Loop&) const = default;
};

using Complex = std::complex<double>;

// The voltage at the far end over the one that there would be without the loop, between 100 ohm. The frequency is not
// 0.
Complex transfer(const Loop& loop, double hertz);

// Of the tones from 1 on, at multiples of the spacing; the first entry, of no tone, is 0.
std::vector<Complex> transfers(const Loop& loop, double spacing, u32 tones);

// 20 log |H|
double decibels(Complex transfer);

}  // namespace line
