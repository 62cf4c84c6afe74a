#include "training.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace line {

namespace {

constexpr double kGap = 9.8;  // dB
constexpr u32 kMostBits = 15;
constexpr double kLeastGain = -2.5, kMostGain = 2.5;  // dB, of the fine gains
constexpr double kLowered = -80;                      // dBm/Hz
constexpr u32 kOverhead = 32;                         // kbit/s of the overhead channel

double milliwatts(double decibels) { return std::pow(10, decibels / 10); }
double decibelsOf(double ratio) { return ratio > 0 ? 10 * std::log10(ratio) : -200; }

bool isIn(const std::vector<ToneRange>& ranges, u32 tone) {
  return std::ranges::any_of(ranges, [tone](const ToneRange& one) { return one.first <= tone && tone <= one.last; });
}

// The noise on a tone: the floor, and what leaks from the carrier, which stands between two tones: of a rectangular
// window's spectrum the envelope 1 / (pi d).
double noiseOn(const Plant& plant, u32 tone) {
  if (plant.disturbedTone == 0) return plant.noise;
  const double distance = tone > plant.disturbedTone ? tone - plant.disturbedTone : plant.disturbedTone - tone;
  const double leaked = distance == 0 ? 0 : 20 * std::log10(std::numbers::pi * distance);
  return decibelsOf(milliwatts(plant.noise) + milliwatts(plant.disturbance - leaked));
}

// SNR in dB that so many bits need without any margin.
const std::array<double, kMostBits + 1>& needs() {
  static const std::array<double, kMostBits + 1> all = [] {
    std::array<double, kMostBits + 1> made{};
    for (u32 bits = 1; bits <= kMostBits; ++bits) made[bits] = kGap + decibelsOf(std::pow(2, bits) - 1);
    return made;
  }();
  return all;
}

// One direction of a line.
class Way {
 public:
  Way(const Plant& plant, const Order& order, bool up, Trained& into)
      : plan_(planOf(order.mode)), limits_(up ? order.up : order.down), up_(up), into_(into) {
    send(order, up ? plan_.mostUp : plan_.mostDown);
    receive(plant);
  }

  // False if the least rate is out of reach.
  bool run();

  BandState stateOf(const Band& band) const;

 private:
  struct Carrier {
    u32 tone = 0;
    double level = 0;  // dBm/Hz
    double snr = 0;    // dB
    double ratio = 0;  // the same as a ratio, over the gap
  };

  void send(const Order& order, double mostPower);
  void receive(const Plant& plant);
  u32 rateOf(u64 bits) const { return static_cast<u32>(static_cast<double>(bits) * plan_.symbols / 1000); }
  u32 netOf(u64 bits) const;
  u64 bitsAt(double margin) const;
  double marginWithinMostRate() const;
  void load(double margin);
  void trim();
  void setGains(double margin);
  void sum(Direction& to) const;

  const Plan& plan_;
  const Limits& limits_;
  const bool up_;
  Trained& into_;
  std::vector<Carrier> carriers_;
  u64 loaded_ = 0;  // bits of a symbol
};

// What goes out of the modem: the mask of the standard, lowered as a whole where its power would be too much.
void Way::send(const Order& order, double mostPower) {
  double power = 0;
  for (const Band& band : plan_.bands) {
    if (band.up != up_) continue;
    for (u32 tone = band.first; tone <= band.last; ++tone) {
      if (isIn(order.black, tone)) continue;
      double level = nominalLevel(order.mode, up_, tone * plan_.spacing);
      if (isIn(order.lowered, tone)) level = std::min(level, kLowered);
      carriers_.push_back({tone, level, 0, 0});
      power += milliwatts(level) * plan_.spacing;
    }
  }
  const double excess = decibelsOf(power) - std::min(mostPower, limits_.mostPower);
  if (excess <= 0) return;
  for (Carrier& carrier : carriers_) carrier.level -= excess;
}

void Way::receive(const Plant& plant) {
  for (const Band& band : plan_.bands)
    if (band.up == up_)
      for (u32 tone = band.first; tone <= band.last; ++tone)
        into_.tones[tone].noise = static_cast<float>(noiseOn(plant, tone));
  for (Carrier& carrier : carriers_) {
    Tone& tone = into_.tones[carrier.tone];
    carrier.snr = carrier.level + decibels(into_.transfer[carrier.tone]) - static_cast<double>(tone.noise);
    carrier.ratio = milliwatts(carrier.snr - kGap);
    tone.snr = static_cast<float>(carrier.snr);
  }
}

// What is left of the bits: a code word that corrects the impulse spends twice its share of the delay.
u32 Way::netOf(u64 bits) const {
  const double share = limits_.delay == 0 || limits_.impulse == 0
                           ? 0
                           : std::min(0.5, 2 * limits_.impulse / (limits_.delay * plan_.symbols / 1000 + 1));
  const auto rate = static_cast<u32>(rateOf(bits) * (1 - share));
  return rate > kOverhead ? rate - kOverhead : 0;
}

// The bits that a gain of 1.5 dB at most makes whole.
u32 bitsOf(double ratio) {
  static const double boost = milliwatts(1.5);
  return static_cast<u32>(std::min<double>(kMostBits, std::log2(1 + ratio * boost)));
}

u64 Way::bitsAt(double margin) const {
  const double factor = milliwatts(-margin);
  u64 bits = 0;
  for (const Carrier& carrier : carriers_) bits += bitsOf(carrier.ratio * factor);
  return bits;
}

// The largest margin that the most rate leaves, to a tenth of a dB; at least the target.
double Way::marginWithinMostRate() const {
  int low = 0, high = 1000;  // tenths of a dB above the target: `low` reaches the rate, `high` does not
  while (high - low > 1) {
    const int middle = (low + high) / 2;
    (netOf(bitsAt(limits_.targetMargin + middle / 10.0)) >= limits_.mostRate ? low : high) = middle;
  }
  return limits_.targetMargin + low / 10.0;
}

void Way::load(double margin) {
  const double factor = milliwatts(-margin);
  loaded_ = 0;
  for (const Carrier& carrier : carriers_) {
    Tone& tone = into_.tones[carrier.tone];
    tone.bits = static_cast<u8>(bitsOf(carrier.ratio * factor));
    loaded_ += tone.bits;
  }
}

// Takes bits off, from the highest tones down, that the largest rate does not need.
void Way::trim() {
  const auto isTooMuch = [this] { return loaded_ > 0 && netOf(loaded_ - 1) >= limits_.mostRate; };
  while (isTooMuch()) {
    const u64 before = loaded_;
    for (auto carrier = carriers_.rbegin(); carrier != carriers_.rend(); ++carrier) {
      Tone& tone = into_.tones[carrier->tone];
      if (tone.bits == 0) continue;
      --tone.bits;
      --loaded_;
      if (!isTooMuch()) return;
    }
    if (loaded_ == before) return;
  }
}

// Evens out what the whole bits leave, without more power than there was; then lowers all tones by what the margin is
// above the largest.
void Way::setGains(double margin) {
  double before = 0, after = 0, least = 1000;
  for (const Carrier& carrier : carriers_) {
    Tone& tone = into_.tones[carrier.tone];
    const double power = milliwatts(carrier.level);
    if (tone.bits == 0) continue;
    const double wanted = needs()[tone.bits] + margin - carrier.snr;
    const double gain =
        tone.bits == kMostBits ? std::clamp(wanted, 0.0, kMostGain) : std::clamp(wanted, kLeastGain, kMostGain);
    tone.gain = static_cast<float>(gain);
    before += power;
    after += power * milliwatts(gain);
    least = std::min(least, carrier.snr + gain - needs()[tone.bits]);
  }
  if (before == 0) return;
  double cut = std::max(0.0, decibelsOf(after / before));
  cut = std::max(cut, least - limits_.mostMargin);
  for (const Carrier& carrier : carriers_)
    if (Tone& tone = into_.tones[carrier.tone]; tone.bits != 0) tone.gain -= static_cast<float>(cut);
  (up_ ? into_.up : into_.down).margin = least - cut;
}

void Way::sum(Direction& to) const {
  double sent = 0, received = 0, transfer = 0;
  for (const Carrier& carrier : carriers_) {
    const double squared = std::norm(into_.transfer[carrier.tone]);
    transfer += squared;
    const Tone& tone = into_.tones[carrier.tone];
    if (tone.bits == 0) continue;
    const double power = milliwatts(carrier.level + static_cast<double>(tone.gain));
    sent += power;
    received += power * squared;
  }
  to.power = decibelsOf(sent * plan_.spacing);
  if (carriers_.empty()) return;
  to.lineAttenuation = -decibelsOf(transfer / static_cast<double>(carriers_.size()));
  to.signalAttenuation = sent == 0 ? to.lineAttenuation : decibelsOf(sent / received);
}

bool Way::run() {
  Direction& to = up_ ? into_.up : into_.down;
  load(limits_.targetMargin);
  to.attainable = netOf(loaded_);
  double margin = limits_.targetMargin;
  if (to.attainable > limits_.mostRate) {
    margin = marginWithinMostRate();
    load(margin);
    trim();
  }
  setGains(margin);
  to.lineRate = rateOf(loaded_);
  to.netRate = std::min(netOf(loaded_), limits_.mostRate);
  sum(to);
  return loaded_ != 0 && to.netRate >= limits_.leastRate;
}

BandState Way::stateOf(const Band& band) const {
  double transfer = 0, sent = 0, received = 0, margin = 1000;
  u32 count = 0;
  for (const Carrier& carrier : carriers_) {
    if (carrier.tone < band.first || carrier.tone > band.last) continue;
    const double squared = std::norm(into_.transfer[carrier.tone]);
    transfer += squared;
    ++count;
    const Tone& tone = into_.tones[carrier.tone];
    if (tone.bits == 0) continue;
    const double level = carrier.level + static_cast<double>(tone.gain);
    sent += milliwatts(level);
    received += milliwatts(level) * squared;
    margin = std::min(margin, carrier.snr + static_cast<double>(tone.gain) - needs()[tone.bits]);
  }
  const double attenuation = count == 0 ? 0 : -decibelsOf(transfer / count);
  return {attenuation, sent == 0 ? attenuation : decibelsOf(sent / received), sent == 0 ? 0 : margin};
}

}  // namespace

Trained train(const Plant& plant, const Order& order) {
  const Plan& plan = planOf(order.mode);
  Trained trained;
  trained.mode = order.mode;
  trained.tones.resize(plan.tones);
  trained.transfer = transfers(plant.loop, plan.spacing, plan.tones);
  Way up(plant, order, true, trained), down(plant, order, false, trained);
  const bool both[] = {up.run(), down.run()};
  trained.feasible = both[0] && both[1];
  for (const Band& band : plan.bands) trained.bands.push_back((band.up ? up : down).stateOf(band));
  return trained;
}

}  // namespace line
