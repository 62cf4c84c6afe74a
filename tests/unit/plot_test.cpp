// Drawings of curves, to the character.

#include <gtest/gtest.h>

#include "plot/curve.h"

namespace {

using plot::Curve, plot::draw;

std::string times(std::size_t count, std::string_view glyph) {
  std::string text;
  while (count-- > 0) text += glyph;
  return text;
}

// 512 tones of ADSL2+: 10 on the upstream's, 8 on the downstream's, and 2 on 16 of these.
Curve curve(bool notched) {
  Curve curve{"Bits of 1/5", "Bits", "bits", 4.3125, 1, std::vector<plot::Point>(512)};
  for (std::size_t tone = 6; tone <= 31; ++tone) curve.points[tone].up = 10;
  for (std::size_t tone = 33; tone <= 511; ++tone) curve.points[tone].down = 8;
  for (std::size_t tone = 256; notched && tone <= 271; ++tone) curve.points[tone].down = 2;
  return curve;
}

// What stands below a drawing of 80 columns.
std::string below(const std::string& foot, const std::string& legend) {
  return "       " + foot +
         "\r\n   tone 0        64       128      192      256      320      384      448\r\n"
         "    MHz 0.00     0.28     0.55     0.83     1.10     1.38     1.66     1.93\r\n        Bits, bits    " +
         legend + "\r\n";
}
const std::string kBelow = below("└" + times(8, "┬────────"), "⣿ upstream  █ downstream");

// A row is 2.5 bits: 10 fill four, 8 three and a quarter, 2 six eighths of one. A column of 80 stands for seven tones.
TEST(Plot, DrawsANotch) {
  const auto row = [](std::string_view glyph, const std::string& notch) {
    return times(5, "⣿") + times(31, glyph) + notch + times(33, glyph) + "\r\n";
  };
  EXPECT_EQ(draw(curve(true), {80, 4}), "Bits of 1/5\r\n    7.5┤" + row("▂", "   ") + "      5┤" + row("█", "   ") +
                                            "    2.5┤" + row("█", "   ") + "      0┤" + row("█", "▆▆▆") + kBelow);
}

TEST(Plot, DrawsAFlatCurveInAsciiAndInColours) {
  const std::string row = ":::::" + times(67, "#") + "\r\n";
  EXPECT_EQ(draw(curve(false), {80, 4, false}), "Bits of 1/5\r\n    7.5+:::::\r\n      5+" + row + "    2.5+" + row +
                                                    "      0+" + row +
                                                    below("+" + times(8, "+--------"), ": upstream  # downstream"));
  EXPECT_NE(draw(curve(false), {80, 4, false, true}).find("5+\033[33m:::::\033[36m" + times(67, "#") + "\033[0m\r\n"),
            std::string::npos);
}

TEST(Plot, SaysThatNothingWasMeasured) {
  Curve empty = curve(false);
  empty.points.assign(512, {});
  const std::string rows = "       │\r\n       │  nothing was measured\r\n       │\r\n       │\r\n";
  EXPECT_EQ(draw(empty, {80, 4}), "Bits of 1/5\r\n" + rows + kBelow);
  empty.points.clear();
  EXPECT_EQ(draw(empty, {80, 4}).find("Bits of 1/5\r\n" + rows), 0u) << "no tones";
}

TEST(Plot, ListsPointsForPrograms) {
  Curve list{"SNR of 2/1", "SNR", "dB", 4.3125, 8, {{}, {-1.5, {}}, {{}, 40}}};
  EXPECT_EQ(plot::table(list),
            "# SNR of 2/1\r\n# tone\tMHz\tup, dB\tdown, dB\r\n0\t0.000000\t-\t-\r\n8\t0.034500\t-1.5\t-\r\n"
            "16\t0.069000\t-\t40\r\n");
  EXPECT_NE(draw(list, {80, 4}).find("    -15┤"), std::string::npos) << "negative values stand above the foot";
}

}  // namespace
