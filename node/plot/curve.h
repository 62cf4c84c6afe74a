#pragma once
// A curve over the tones of a line.

#include <optional>
#include <string>
#include <vector>

#include "platform/types.h"

namespace plot {

struct Point {
  std::optional<double> up, down;  // none: nothing was measured
};

struct Curve {
  std::string title;     // "SNR of 1/5, profile 3 gold, 2026-11-26 02:40:11"
  std::string quantity;  // "SNR"
  std::string unit;      // "dB"
  double kilohertz = 0;  // from tone to tone
  u32 tones = 1;         // that a point stands for
  std::vector<Point> points;
};

// Where it is shown.
struct Style {
  std::size_t columns = 80;
  std::size_t rows = 16;  // of the curve alone, a multiple of 4
  bool utf8 = true;       // else ASCII
  bool colour = false;
};

// Lines that end in CR LF and are not longer than the columns: the downstream as bars, the upstream as dots.
std::string draw(const Curve& curve, const Style& style);

// A line for each point: tone, MHz, up, down, parted by tabs, "-" for nothing; the title and the axes' names stand
// ahead of it behind "#".
std::string table(const Curve& curve);

}  // namespace plot
