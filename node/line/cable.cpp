#include "cable.h"

#include <array>
#include <cmath>
#include <map>
#include <mutex>
#include <numbers>
#include <utility>

namespace line {

namespace {

constexpr double kImpedance = 100;  // ohm, at both ends

// Per kilometre:  R = (r0^4 + ac f^2)^(1/4),  L = (l0 + lInf x) / (1 + x) with x = (f / fm)^b,  C constant,
// G = g0 f^ge.
struct Primary {
  double r0, ac;    // ohm
  double l0, lInf;  // H
  double b, fm;     // fm in Hz
  double c;         // F
  double g0, ge;    // S
};

// 0.4 mm: polyethylene, of the test loops of G.996.1. 0.5 mm: TP2 of G.993.1.
constexpr std::array<Primary, 2> kCables = {{
    {280.0, 0.0969, 587.3e-6, 426.0e-6, 1.385, 745.9e3, 50e-9, 0, 0},
    {174.55888, 0.053073481, 617.29539e-6, 478.97099e-6, 1.1529766, 553.760e3, 50e-9, 234.87476e-15, 1.38},
}};

// What follows from the primary parameters at one frequency.
struct Secondary {
  Complex propagation;  // per metre
  Complex impedance;
};

Secondary secondary(Gauge gauge, double hertz) {
  const Primary& cable = kCables[static_cast<std::size_t>(gauge)];
  const double omega = 2 * std::numbers::pi * hertz;
  const double r0Squared = cable.r0 * cable.r0;
  const double resistance = std::sqrt(std::sqrt(r0Squared * r0Squared + cable.ac * hertz * hertz));
  const double x = std::pow(hertz / cable.fm, cable.b);
  const double inductance = (cable.l0 + cable.lInf * x) / (1 + x);
  const double conductance = cable.g0 == 0 ? 0 : cable.g0 * std::pow(hertz, cable.ge);
  const Complex series(resistance, omega * inductance);
  const Complex shunt(conductance, omega * cable.c);
  const Complex perKilometre = std::sqrt(series * shunt);
  return {perKilometre / 1000.0, series / perKilometre};
}

// Tables of these are what a loop's reckoning would take longest for. They are made once for each grid.
const std::vector<Secondary>& secondaries(Gauge gauge, double spacing, u32 tones) {
  static std::mutex mutex;
  static std::map<std::pair<Gauge, std::pair<double, u32>>, std::vector<Secondary>> tables;
  const std::lock_guard lock(mutex);
  std::vector<Secondary>& table = tables[{gauge, {spacing, tones}}];
  if (table.empty()) {
    table.resize(1);
    for (u32 tone = 1; tone < tones; ++tone) table.push_back(secondary(gauge, spacing * tone));
  }
  return table;
}

// The chain matrix of a piece of the loop.
struct TwoPort {
  Complex a{1}, b{0}, c{0}, d{1};
};

TwoPort operator*(const TwoPort& first, const TwoPort& second) {
  return {first.a * second.a + first.b * second.c, first.a * second.b + first.b * second.d,
          first.c * second.a + first.d * second.c, first.c * second.b + first.d * second.d};
}

struct Hyperbolic {
  Complex cosh, sinh;
};
Hyperbolic hyperbolic(const Secondary& cable, double metres) {
  const Complex up = std::exp(cable.propagation * metres);
  const Complex down = 1.0 / up;
  return {(up + down) / 2.0, (up - down) / 2.0};
}

TwoPort section(const Secondary& cable, double metres) {
  const auto [cosh, sinh] = hyperbolic(cable, metres);
  return {cosh, cable.impedance * sinh, sinh / cable.impedance, cosh};
}

// An open stub across the pair.
TwoPort stub(const Secondary& cable, double metres) {
  const auto [cosh, sinh] = hyperbolic(cable, metres);
  return {1, 0, sinh / (cosh * cable.impedance), 1};
}

Complex transfer(const Loop& loop, const Secondary& cable) {
  TwoPort all;
  if (loop.tapMetres == 0) {
    all = section(cable, loop.metres);
  } else {
    const TwoPort half = section(cable, loop.metres / 2.0);
    all = half * stub(cable, loop.tapMetres) * half;
  }
  return 2 * kImpedance / (all.a * kImpedance + all.b + kImpedance * (all.c * kImpedance + all.d));
}

}  // namespace

Complex transfer(const Loop& loop, double hertz) { return transfer(loop, secondary(loop.gauge, hertz)); }

std::vector<Complex> transfers(const Loop& loop, double spacing, u32 tones) {
  const std::vector<Secondary>& cable = secondaries(loop.gauge, spacing, tones);
  std::vector<Complex> all(tones);
  for (u32 tone = 1; tone < tones; ++tone) all[tone] = transfer(loop, cable[tone]);
  return all;
}

double decibels(Complex transfer) { return 10 * std::log10(std::norm(transfer)); }

}  // namespace line
