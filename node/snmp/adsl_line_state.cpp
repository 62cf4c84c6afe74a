#include "adsl_line_state.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "adsl_tables.h"
#include "host/chassis.h"
#include "line_facts.h"
#include "module_frames.h"
#include "profile_kinds.h"

namespace msand {

enum class Form : u8 { number, scaled, vendor, firmware, delay };

struct LineColumn {
  oid column = 0;
  Form form = Form::number;
  u16 at = 0;  // in the card's block
  u8 width = 0;
  i32 least = 0, most = 0;  // for managers; 0: whatever the card tells
  u8 type = ASN_GAUGE;
  u32 unit = 1;  // of managers, in one of the card
};

namespace {

// What an end receives is the margin and the attenuation of the other direction than what it sends. Margins, power and
// attenuation in tenths of a dB; rates in bit/s, of a card's kbit/s.
// clang-format off
constexpr LineColumn kAtucPhysical[] = {
    {4, Form::scaled, 30, 6, -640, 640, ASN_INTEGER},  // margin, upstream
    {5, Form::number, 96, 2, 0, 630},                  // attenuation, upstream
    {7, Form::scaled, 48, 6, -310, 310, ASN_INTEGER},  // power, downstream
    {8, Form::number, 66, 4, 0, 0, ASN_GAUGE, 1000},   // attainable rate, downstream
};
constexpr LineColumn kAturPhysical[] = {
    {2, Form::vendor},
    {3, Form::firmware},
    {4, Form::scaled, 36, 6, -640, 640, ASN_INTEGER},
    {5, Form::number, 94, 2, 0, 630},
    {7, Form::scaled, 42, 6, -310, 310, ASN_INTEGER},
    {8, Form::number, 62, 4, 0, 0, ASN_GAUGE, 1000},
};
constexpr LineColumn kAtucChannel[] = {{1, Form::delay, 72, 2}, {2, Form::number, 58, 4, 0, 0, ASN_GAUGE, 1000}};
constexpr LineColumn kAturChannel[] = {{1, Form::delay, 70, 2}, {2, Form::number, 54, 4, 0, 0, ASN_GAUGE, 1000}};
// clang-format on

Oid columnsOf(std::span<const LineColumn> columns) {
  Oid all;
  for (const LineColumn& one : columns) all.push_back(one.column);
  return all;
}

constexpr u8 kMostDecimals = 5;

// Tenths, of a number with decimals: a byte, the count of decimals, a signed number.
std::optional<i64> tenthsOf(const u8* scaled) {
  if (scaled[1] > kMostDecimals) return std::nullopt;
  const auto value = static_cast<i32>(getNumber(scaled + 2, 4));
  return std::llround(value * 10.0 / std::pow(10.0, scaled[1]));
}

// Readable characters, 16 at most; what has others ahead of its end is told by its bytes.
std::string readable(std::span<const u8> field) {
  constexpr std::size_t kMost = 16;
  const std::string text(field.begin(), std::find(field.begin(), field.end(), u8{0}));
  const bool isText = std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
  const bool isNothing = std::ranges::all_of(field, [](u8 byte) { return byte == 0; });
  if (isNothing || (isText && !text.empty())) return text.substr(0, kMost);
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string digits;
  for (const u8 byte : field.first(std::min(field.size(), kMost / 2))) {
    digits += kDigits[byte >> 4];
    digits += kDigits[byte & 0xF];
  }
  return digits;
}

}  // namespace

AdslStateTable::AdslStateTable(const char* name, oid table, std::span<const LineColumn> columns, Facts& facts,
                               const StandardFunctions& functions)
    : StandardTable(name, adslEntry(table), columnsOf(columns)), told_(columns), facts_(facts), functions_(functions) {}

bool AdslStateTable::isFast(const Port& port) const {
  const int id = functions_.attachedLineProfile(port.slot, port.port);
  ProfileView view;
  return id >= 0 && kLineProfiles.read(functions_, static_cast<u16>(id), view) == 0 &&
         !hasChannel(view.line.lineType, Channel::interleaved);
}

bool AdslStateTable::give(oid column, const Oid& index, netsnmp_variable_list& to) {
  const auto port = portOf(index, isAdslLine);
  if (!port || host::cardState(port->slot) != host::CardState::up) return false;
  const LineColumn& one = *std::ranges::find(told_, column, &LineColumn::column);
  const bool ofModem = one.form == Form::vendor || one.form == Form::firmware;
  // Interleaving is no matter of a fast channel.
  if (one.form == Form::delay && isFast(*port)) return false;
  const auto told = facts_.told({ofModem ? Fact::modem : Fact::lineStatus, port->slot, port->port});
  if (told == nullptr) return false;
  const std::span<const u8> bytes(*told);
  if (one.form == Form::vendor) return giveText(to, readable(bytes.first(kVendorBytes)));
  if (one.form == Form::firmware) return giveText(to, readable(bytes.subspan(kVendorBytes)));
  const auto number = one.form == Form::scaled ? tenthsOf(&bytes[one.at]) : getNumber(&bytes[one.at], one.width);
  if (!number) return false;
  const i64 most = one.most != 0 ? one.most : i64{std::numeric_limits<u32>::max()};
  return giveNumber(to, static_cast<u32>(std::clamp<i64>(*number * one.unit, one.least, most)), one.type);
}

AdslStateTables::AdslStateTables(Facts& facts, const StandardFunctions& functions)
    : atucPhysical("adslAtucPhysTable", 2, kAtucPhysical, facts, functions),
      aturPhysical("adslAturPhysTable", 3, kAturPhysical, facts, functions),
      atucChannel("adslAtucChanTable", 4, kAtucChannel, facts, functions),
      aturChannel("adslAturChanTable", 5, kAturChannel, facts, functions) {}

}  // namespace msand
