#include "profile.h"

#include <algorithm>
#include <array>
#include <utility>

namespace cards {

using line::Limits, line::Mode;
using messages::View;

namespace {

enum : u16 { kAdsl = 2837, kRetransmission = 2859, kVdslLine = 2862, kVdslService = 2863 };
constexpr i64 kFixed = 1;           // of a rate mode
constexpr i64 kFastOnly = 2;        // of the line type: no interleaving
constexpr i64 kUnlimited = 1;       // of the largest margin's mode
constexpr double kNoMargin = 1000;  // dB

// From 1.
constexpr std::array kAdslModes = {Mode::gdmt, Mode::adsl2, Mode::adsl2plus, Mode::t1413};
// Bits of a set, the ones that modems take first ahead.
constexpr std::pair<u16, Mode> kVdslModes[] = {{64, Mode::p17a}, {128, Mode::p30a}, {16, Mode::p12a}, {32, Mode::p12b},
                                               {2, Mode::p8b},   {1, Mode::p8a},    {8, Mode::p8d},   {4, Mode::p8c}};

u32 rate(const View& body, std::string_view name) { return static_cast<u32>(body.numberOr(name, 0)); }

std::vector<line::ToneRange> ranges(const View& body, std::string_view list) {
  std::vector<line::ToneRange> all;
  for (const View& one : body.items(list)) all.push_back({rate(one, "start"), rate(one, "end")});
  return all;
}

u32 fixedRate(const View& body, std::string_view mode, u32 least) {
  return body.numberOr(mode, 0) == kFixed && least != 0 ? least : Limits::kNoRate;
}

}  // namespace

u16 adslNumber(Mode mode) {
  const auto found = std::ranges::find(kAdslModes, mode);
  return found == kAdslModes.end() ? u16{5} : static_cast<u16>(found - kAdslModes.begin() + 1);
}

u16 vdslNumber(Mode mode) {
  const auto* const found = std::ranges::find(kVdslModes, mode, &std::pair<u16, Mode>::second);
  return found == std::end(kVdslModes) ? u16{0} : found->first;
}

std::optional<Mode> vdslMode(i64 number) {
  const auto* const found = std::ranges::find(kVdslModes, number, &std::pair<u16, Mode>::first);
  return found == std::end(kVdslModes) ? std::nullopt : std::optional(found->second);
}

Profile::Profile(bool vdsl) {
  order_.mode = vdsl ? Mode::p17a : Mode::adsl2plus;
  for (Limits* limits : {&order_.up, &order_.down}) limits->delay = 16, limits->impulse = 1;
}

bool Profile::hears(u16 id) { return id == kAdsl || id == kVdslLine || id == kVdslService || id == kRetransmission; }

void Profile::hear(u16 id, const View& body) {
  if (id == kAdsl) hearAdsl(body);
  if (id == kVdslLine) hearVdslLine(body);
  if (id == kVdslService) hearVdslService(body);
  if (id == kRetransmission) hearRetransmission(body);
}

void Profile::hearAdsl(const View& body) {
  const i64 mode = body.numberOr("transmode", 0);  // 0: the two ends take the best
  const bool known = mode >= 1 && mode <= static_cast<i64>(kAdslModes.size());
  order_.mode = known ? kAdslModes[static_cast<std::size_t>(mode - 1)] : Mode::adsl2plus;
  const bool fast = body.numberOr("AdslLineType", 0) == kFastOnly;
  const auto read = [&](Limits& limits, Rates& rates, const std::string& way, std::string_view rateMode) {
    limits.targetMargin = body.scaled("Snrm" + way).value_or(6);
    limits.mostMargin = static_cast<double>(body.numberOr("MaxSnrm" + way, 31));
    limits.delay = fast ? 0 : rate(body, "MaxInterLeaveDelay" + way);
    limits.impulse = static_cast<double>(body.numberOr("MinInp" + way, 0));
    limits.leastRate = rate(body, "MinRate" + way);
    rates.fixed = fixedRate(body, rateMode, limits.leastRate);
  };
  read(order_.up, up_, "Up", "UpRateMode");
  read(order_.down, down_, "Dn", "DownRateMode");
  order_.black = ranges(body, "tone");
}

void Profile::hearVdslLine(const View& body) {
  const i64 allowed = body.numberOr("stPrf", 255);
  for (const auto& [bit, mode] : kVdslModes)
    if ((allowed & bit) != 0) {
      order_.mode = mode;
      break;
    }
  order_.down.mostPower = body.scaled("maxTxPwrDn").value_or(100);
  order_.up.mostPower = body.scaled("maxTxPwrUp").value_or(100);
  order_.lowered = ranges(body, "rfi");
  order_.black = ranges(body, "tb");
}

void Profile::hearVdslService(const View& body) {
  const auto read = [&](Limits& limits, Rates& rates, const std::string& way) {
    limits.targetMargin = body.scaled(way + "TSNRM").value_or(6);
    const bool unlimited = body.numberOr(way + "MaxSNRMMODE", 0) == kUnlimited;
    limits.mostMargin = unlimited ? kNoMargin : body.scaled(way + "MaxSNRM").value_or(31);
    limits.delay = rate(body, way + "MaxDelay");
    limits.impulse = static_cast<double>(body.numberOr(way + "MinINP", 0));
    limits.leastRate = rate(body, way + "MinRate");
    rates.fixed = fixedRate(body, way + "RateMode", limits.leastRate);
  };
  read(order_.up, up_, "up");
  read(order_.down, down_, "dn");
}

void Profile::hearRetransmission(const View& body) {
  const auto read = [&](Rates& rates, const std::string& way) {
    const bool used = body.numberOr(way + "ReMode", 0) != 0;
    rates.net = used ? rate(body, way + "NDRmax") : Limits::kNoRate;
  };
  read(up_, "up");
  read(down_, "dn");
}

line::Order Profile::order() const {
  line::Order order = order_;
  order.up.mostRate = std::min(up_.fixed, up_.net);
  order.down.mostRate = std::min(down_.fixed, down_.net);
  return order;
}

}  // namespace cards
