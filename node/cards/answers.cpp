#include "answers.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace cards {

using line::Plan;
using messages::Value;

namespace {

// Values that ITU-T G.997.1 gives to a group of tones that was not measured.
constexpr double kNoHlog = -96.3, kNoNoise = -150.5, kNoSnr = 95.5;
constexpr double kLeastHlog = -96.2;
constexpr i64 kNoHlin = -32768;
constexpr u32 kGroups = 512;  // at most

bool hasCurves(u16 id) { return (id >= 2826 && id <= 2827) || (id >= 2831 && id <= 2835); }

Value whole(i64 number) { return {number, 0, {}}; }
// To a tenth.
Value tenths(double number) { return {std::llround(number * 10), 1, {}}; }
Value bytes(std::string text) { return {0, 0, std::move(text)}; }

// Tones share a group where there are too many.
u32 groupSize(const Plan& plan) {
  u32 size = 1;
  while (plan.tones > size * kGroups) size *= 2;
  return size;
}
u32 groups(const Plan& plan) { return (plan.tones + groupSize(plan) - 1) / groupSize(plan); }

const Plan& planOf(const LineState& line) { return line::planOf(line.summary->mode); }

// The mean over the tones of a group that are of a direction; none if there are none.
template <class Get>
std::optional<double> mean(const LineState& line, i64 group, bool up, Get get) {
  const Plan& plan = planOf(line);
  const u32 size = groupSize(plan), first = static_cast<u32>(group) * size;
  double sum = 0;
  u32 count = 0;
  for (u32 tone = first; tone < std::min<u32>(first + size, plan.tones); ++tone) {
    const auto band = line::bandOf(plan, tone);
    if (!band || band->up != up) continue;
    sum += get(tone);
    ++count;
  }
  return count == 0 ? std::nullopt : std::optional(sum / count);
}

Value hlogValue(const LineState& line, i64 group, bool up) {
  const auto loss = mean(line, group, up, [&](u32 tone) { return line::decibels(line.line->transfer[tone]); });
  return tenths(loss ? std::max(*loss, kLeastHlog) : kNoHlog);
}
Value noiseValue(const LineState& line, i64 group, bool up) {
  const auto noise = mean(line, group, up, [&](u32 tone) { return static_cast<double>(line.line->tones[tone].noise); });
  return tenths(noise.value_or(kNoNoise));
}
Value snrValue(const LineState& line, i64 group, bool up) {
  const auto snr = mean(line, group, up, [&](u32 tone) { return static_cast<double>(line.line->tones[tone].snr); });
  return tenths(snr.value_or(kNoSnr));
}

// The share of the voltage that comes through, its real or imaginary part as parts of 32767.
Value hlinValue(const LineState& line, i64 group, bool up, bool real) {
  const auto part = mean(line, group, up, [&](u32 tone) {
    const line::Complex transfer = line.line->transfer[tone];
    return real ? transfer.real() : transfer.imag();
  });
  return whole(part ? std::llround(32767 * *part) : kNoHlin);
}

const line::BandState& band(const LineState& line, i64 index) {
  return line.summary->bands[static_cast<std::size_t>(index)];
}

// A time of the clock that only counts, by the clock on the wall: year, month, day, hour, minute, second in 7 bytes,
// UTC.
Value wallTime(Time time, Time now) {
  using std::chrono::system_clock;
  const auto ago = std::chrono::duration_cast<std::chrono::seconds>(now - time);
  const std::time_t wall = system_clock::to_time_t(system_clock::now() - ago);
  std::tm parts{};
  gmtime_r(&wall, &parts);
  const int year = parts.tm_year + 1900;
  std::string text;
  for (const int byte :
       {year >> 8, year & 255, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec})
    text += static_cast<char>(byte);
  return bytes(text);
}

i64 secondsSince(Time time, Time now) { return std::chrono::duration_cast<std::chrono::seconds>(now - time).count(); }

bool wasTested(const LineState& line) { return line.up() || line.state == State::deltDone; }

}  // namespace

bool isAboutLines(u16 id) { return (id >= 2825 && id <= 2836 && id != 2829) || id == 2853 || id == 2854; }

LineState look(u16 slot, u16 number, Port& port, Time now, Trainer& trainer, u16 id) {
  LineState state{slot, number, &port, port.state(now, trainer), port.profile().order(), nullptr, nullptr, {}, now};
  const bool selt = id == 2836 && state.state == State::seltDone;
  if (!wasTested(state) && !selt) return state;
  state.summary = &port.summary(trainer);
  if (hasCurves(id)) state.line = port.line(trainer);
  if (id != 2853) return state;
  const bool vdsl = state.order.mode >= line::Mode::p8a;
  for (u8 i = 0; i < line::kModes; ++i) {
    line::Order order = state.order;
    order.mode = static_cast<line::Mode>(i);
    const bool mayBe = (order.mode >= line::Mode::p8a) == vdsl;
    const auto trained = mayBe ? trainer.train(port.site().plant, order) : nullptr;
    state.rates.push_back(mayBe ? trained->up.attainable : 0);
    state.rates.push_back(mayBe ? trained->down.attainable : 0);
  }
  return state;
}

// How a field gets its value: of a line in any state, of one that is up, or of one with results. `index`: of the tone,
// group, band or drop.
struct Answers::Row {
  std::string_view name;
  enum class When : u8 { always, up, results } when;
  Value (*get)(const LineState& line, i64 index);
};

// clang-format off
std::span<const Answers::Row> Answers::rowsOf(u16 id) {
  using L = const LineState&;
  using enum Row::When;
  static constexpr Row status[] = {
      {"PortMode", always, [](L l, i64) { return whole(l.order.mode >= line::Mode::p8a ? 2 : 1); }},
      {"State", always, [](L l, i64) { return whole(static_cast<i64>(l.state)); }},
      {"Standard", results, [](L l, i64) { return whole(adslNumber(l.summary->mode)); }},
      {"StandardProfile", results, [](L l, i64) { return whole(vdslNumber(l.summary->mode)); }},
      {"loopbackResultMode", always, [](L l, i64) { return whole(l.port->loopback()); }},
      {"snrMarginUs", up, [](L l, i64) { return tenths(l.summary->up.margin); }},
      {"snrMarginDs", up, [](L l, i64) { return tenths(l.summary->down.margin); }},
      {"outputPowerUs", up, [](L l, i64) { return tenths(l.summary->up.power); }},
      {"outputPowerDs", up, [](L l, i64) { return tenths(l.summary->down.power); }},
      {"LineBitRateUs", up, [](L l, i64) { return whole(l.summary->up.lineRate); }},
      {"LineBitRateDs", up, [](L l, i64) { return whole(l.summary->down.lineRate); }},
      {"attainableBitRateUs", up, [](L l, i64) { return whole(l.summary->up.attainable); }},
      {"attainableBitRateDs", up, [](L l, i64) { return whole(l.summary->down.attainable); }},
      {"delayUs", up, [](L l, i64) { return whole(l.order.up.delay); }},
      {"delayDs", up, [](L l, i64) { return whole(l.order.down.delay); }},
      {"INPUs", up, [](L l, i64) { return tenths(l.order.up.delay == 0 ? 0 : l.order.up.impulse); }},
      {"INPDs", up, [](L l, i64) { return tenths(l.order.down.delay == 0 ? 0 : l.order.down.impulse); }},
      {"netDataRateUs", up, [](L l, i64) { return whole(l.summary->up.netRate); }},
      {"netDataRateDs", up, [](L l, i64) { return whole(l.summary->down.netRate); }},
      {"aggLnAttenDs", up, [](L l, i64) { return whole(tenths(l.summary->down.lineAttenuation).number); }},
      {"aggLnAttenUs", up, [](L l, i64) { return whole(tenths(l.summary->up.lineAttenuation).number); }},
  };
  static constexpr Row bits[] = {
      {"bits", up, [](L l, i64 tone) { return whole(l.line->tones[static_cast<std::size_t>(tone)].bits); }},
      {"Servicenum", up, [](L l, i64) { return whole(planOf(l).tones); }},
  };
  static constexpr Row gains[] = {
      {"gain", up, [](L l, i64 tone) { return tenths(static_cast<double>(l.line->tones[static_cast<std::size_t>(tone)].gain)); }},
      {"Servicenum", up, [](L l, i64) { return whole(planOf(l).tones); }},
  };
  static constexpr Row drops[] = {
      {"dropNum", always, [](L l, i64) { return whole(static_cast<i64>(l.port->drops().size())); }},
      {"ago", always, [](L l, i64 i) { return whole(secondsSince(l.port->drops()[static_cast<std::size_t>(i)].at, l.now)); }},
      {"reason", always, [](L l, i64 i) { return whole(static_cast<i64>(l.port->drops()[static_cast<std::size_t>(i)].reason)); }},
  };
  static constexpr Row delt[] = {
      {"aggLnAttenUs", results, [](L l, i64) { return tenths(l.summary->up.lineAttenuation); }},
      {"aggLnAttenDs", results, [](L l, i64) { return tenths(l.summary->down.lineAttenuation); }},
      {"actAtpDs", results, [](L l, i64) { return tenths(l.summary->down.power); }},
      {"actAtpUs", results, [](L l, i64) { return tenths(l.summary->up.power); }},
      {"attainableRateDs", results, [](L l, i64) { return whole(i64{l.summary->down.attainable} * 1000); }},
      {"attainableRateUs", results, [](L l, i64) { return whole(i64{l.summary->up.attainable} * 1000); }},
      {"aggSigAttenDs", results, [](L l, i64) { return tenths(l.summary->down.signalAttenuation); }},
      {"aggSigAttenUs", results, [](L l, i64) { return tenths(l.summary->up.signalAttenuation); }},
      {"SNRMDn", results, [](L l, i64) { return tenths(l.summary->down.margin); }},
      {"SNRMUp", results, [](L l, i64) { return tenths(l.summary->up.margin); }},
      {"curState", always, [](L l, i64) { return whole(static_cast<i64>(l.state)); }},
      {"bandNum", results, [](L l, i64) { return whole(static_cast<i64>(l.summary->bands.size())); }},
      {"LATN", results, [](L l, i64 i) { return tenths(band(l, i).lineAttenuation); }},
      {"SATN", results, [](L l, i64 i) { return tenths(band(l, i).signalAttenuation); }},
      {"SNRM", results, [](L l, i64 i) { return tenths(band(l, i).margin); }},
  };
  static constexpr Row hlogs[] = {
      {"up", results, [](L l, i64 i) { return hlogValue(l, i, true); }},
      {"down", results, [](L l, i64 i) { return hlogValue(l, i, false); }},
      {"Num", results, [](L l, i64) { return whole(groups(planOf(l))); }},
  };
  static constexpr Row noises[] = {
      {"up", results, [](L l, i64 i) { return noiseValue(l, i, true); }},
      {"down", results, [](L l, i64 i) { return noiseValue(l, i, false); }},
      {"Num", results, [](L l, i64) { return whole(groups(planOf(l))); }},
  };
  static constexpr Row hlins[] = {
      {"HlinRealUs", results, [](L l, i64 i) { return hlinValue(l, i, true, true); }},
      {"HlinImagUs", results, [](L l, i64 i) { return hlinValue(l, i, true, false); }},
      {"HlinRealDs", results, [](L l, i64 i) { return hlinValue(l, i, false, true); }},
      {"HlinImagDs", results, [](L l, i64 i) { return hlinValue(l, i, false, false); }},
      {"Num", results, [](L l, i64) { return whole(groups(planOf(l))); }},
  };
  static constexpr Row snrsUp[] = {
      {"SNR", results, [](L l, i64 i) { return snrValue(l, i, true); }},
      {"Num", results, [](L l, i64) { return whole(groups(planOf(l))); }},
  };
  static constexpr Row snrsDown[] = {
      {"SNR", results, [](L l, i64 i) { return snrValue(l, i, false); }},
      {"Num", results, [](L l, i64) { return whole(groups(planOf(l))); }},
  };
  static constexpr Row selt[] = {
      {"state", always, [](L l, i64) { return whole(static_cast<i64>(l.state)); }},
      {"loopLength", results, [](L l, i64) { return whole(l.port->site().plant.loop.metres); }},
      {"atn180kHz", results, [](L l, i64) { return tenths(-line::decibels(line::transfer(l.port->site().plant.loop, 180e3))); }},
      {"atn300kHz", results, [](L l, i64) { return tenths(-line::decibels(line::transfer(l.port->site().plant.loop, 300e3))); }},
      {"loopType", results, [](L l, i64) { return whole(static_cast<i64>(l.port->site().plant.loop.gauge)); }},
      {"termination", results, [](L l, i64) { return whole(static_cast<i64>(l.port->site().far)); }},
      {"capacityDs", results, [](L l, i64) { return whole(l.summary->down.attainable); }},
      {"capacityUs", results, [](L l, i64) { return whole(l.summary->up.attainable); }},
      {"noise", results, [](L l, i64) { return tenths(l.port->site().plant.noise); }},
  };
  static constexpr Row modem[] = {
      {"vendor", up, [](L, i64) { return bytes("SIML"); }},
      {"firmware", up, [](L, i64) { return bytes("simulated modem 1"); }},
      {"status", always, [](L l, i64) { return whole(l.up() ? 1 : 0); }},
      {"onlineTime", up, [](L l, i64) { return wallTime(l.port->up(), l.now); }},
      {"offlineTime", always, [](L l, i64) { return l.port->drops().empty() ? bytes("") : wallTime(l.port->drops().front().at, l.now); }},
  };
  // Up and down of each mode in turn, in the order of the modes, as the processor keeps numbers.
  static constexpr Row rates[] = {
      {"rates", up, [](L l, i64) { return bytes({reinterpret_cast<const char*>(l.rates.data()), l.rates.size() * 4}); }},
  };
  switch (id) {
    case 2825: return status;
    case 2826: return bits;
    case 2827: return gains;
    case 2828: return drops;
    case 2830: return delt;
    case 2831: return hlogs;
    case 2832: return hlins;
    case 2833: return noises;
    case 2834: return snrsUp;
    case 2835: return snrsDown;
    case 2836: return selt;
    case 2853: return rates;
    case 2854: return modem;
    default: return {};
  }
}
// clang-format on

Answers::Answers(u16 id, std::vector<LineState> lines) : lines_(std::move(lines)), rows_(rowsOf(id)) {}

std::optional<Value> Answers::find(const messages::Field& field, std::span<const i64> place) const {
  if (place.empty() && field.name == "ports") return whole(static_cast<i64>(lines_.size()));
  const auto number = place.empty() ? std::size_t{0} : static_cast<std::size_t>(place[0]);
  if (number >= lines_.size()) return {};
  const LineState& line = lines_[number];
  if (field.name == "slot") return whole(line.slot);
  if (field.name == "port") return whole(line.number);
  const auto row = std::ranges::find(rows_, std::string_view(field.name), &Row::name);
  if (row == rows_.end()) return {};
  if (row->when == Row::When::up && !line.up()) return {};
  if (row->when == Row::When::results && line.summary == nullptr) return {};
  return row->get(line, place.size() > 1 ? place[1] : 0);
}

}  // namespace cards
