#include "plan.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace line {

namespace {

constexpr Band kAdsl[] = {{true, 6, 31}, {false, 33, 255}};
constexpr Band kAdsl2plus[] = {{true, 6, 31}, {false, 33, 511}};
// Up and down change at 0.138, 3.75, 5.2, 8.5 and 12 MHz, and with 30a at 21.45 and 24.89 MHz.
constexpr Band kPlan998[] = {{true, 6, 31},       {false, 33, 869},   {true, 870, 1205},
                             {false, 1206, 1971}, {true, 1972, 2782}, {false, 2783, 4095}};
constexpr Band kPlan30a[] = {{false, 17, 434},    {true, 435, 602},   {false, 603, 985},  {true, 986, 1391},
                             {false, 1392, 2487}, {true, 2488, 2885}, {false, 2886, 3478}};
constexpr std::span<const Band> kNarrow = kPlan998;

constexpr double kTone = 4312.5;

constexpr std::array<Plan, kModes> kPlans = {{
    {kTone, 4000, 256, 12.5, 20.4, kAdsl},                      // gdmt
    {kTone, 4000, 256, 12.5, 20.4, kAdsl},                      // adsl2
    {kTone, 4000, 512, 12.5, 20.4, kAdsl2plus},                 // adsl2plus
    {kTone, 4000, 256, 12.5, 20.4, kAdsl},                      // t1413
    {kTone, 4000, 1972, 14.5, 17.5, kNarrow.first(4)},          // 8a
    {kTone, 4000, 1972, 14.5, 20.5, kNarrow.first(4)},          // 8b
    {kTone, 4000, 1972, 14.5, 11.5, kNarrow.first(4)},          // 8c
    {kTone, 4000, 1972, 14.5, 14.5, kNarrow.first(4)},          // 8d
    {kTone, 4000, 2783, 14.5, 14.5, kNarrow.first(5)},          // 12a
    {kTone, 4000, 2783, 14.5, 14.5, kNarrow.first(5).last(4)},  // 12b: without the lowest band
    {kTone, 4000, 4096, 14.5, 14.5, kPlan998},                  // 17a
    {2 * kTone, 8000, 3479, 14.5, 14.5, kPlan30a},              // 30a
}};

struct Point {
  double kilohertz, level;
};

// Nominal levels: 3.5 dB below the limit masks, which are straight lines over the logarithm of the frequency. Those of
// G.992.3, G.992.5, and after those of G.993.2 annex B.
constexpr Point kAdslDown[] = {{138, -40}, {1104, -40}};
constexpr Point kAdslUp[] = {{25, -38}, {138, -38}};
constexpr Point kAdsl2plusDown[] = {{138, -40}, {1104, -40}, {1622, -50}, {2208, -51.3}};
constexpr Point kVdslDown[] = {{138, -40},  {1104, -40}, {1622, -50},  {2249, -53},
                               {3750, -55}, {8500, -58}, {12000, -60}, {30000, -60}};
constexpr Point kVdslUp[] = {{25, -38}, {138, -38}, {3750, -55}, {5200, -56}, {8500, -58}, {12000, -60}, {30000, -60}};

double levelOn(std::span<const Point> mask, double kilohertz) {
  if (kilohertz <= mask.front().kilohertz) return mask.front().level;
  if (kilohertz >= mask.back().kilohertz) return mask.back().level;
  const auto right = std::ranges::upper_bound(mask, kilohertz, {}, &Point::kilohertz);
  const Point &a = right[-1], &b = right[0];
  const double part = std::log(kilohertz / a.kilohertz) / std::log(b.kilohertz / a.kilohertz);
  return a.level + part * (b.level - a.level);
}

}  // namespace

const Plan& planOf(Mode mode) { return kPlans[static_cast<std::size_t>(mode)]; }

std::optional<Band> bandOf(const Plan& plan, u32 tone) {
  for (const Band& band : plan.bands)
    if (band.first <= tone && tone <= band.last) return band;
  return {};
}

double nominalLevel(Mode mode, bool up, double hertz) {
  const double kilohertz = hertz / 1000;
  if (mode >= Mode::p8a) return up ? levelOn(kVdslUp, kilohertz) : levelOn(kVdslDown, kilohertz);
  if (up) return levelOn(kAdslUp, kilohertz);
  return mode == Mode::adsl2plus ? levelOn(kAdsl2plusDown, kilohertz) : levelOn(kAdslDown, kilohertz);
}

}  // namespace line
