#include "adsl_tables.h"

#include <cstring>
#include <utility>

namespace msand {

namespace {

constexpr std::chrono::seconds kNamesGood{1};
constexpr u32 kActive = 1;  // RowStatus
constexpr std::string_view kDefault = "DEFVAL";

Oid entryOf(oid table) { return {1, 3, 6, 1, 2, 1, 10, 94, 1, 1, table, 1}; }

template <std::size_t N>
std::string nameOf(const char (&field)[N]) {
  return {field, strnlen(field, N)};
}

template <class View>
std::optional<std::pair<u16, std::string>> nextOf(int (*next)(u16 id, View* view), u16 id) {
  View view;
  if (next(id, &view) != 0) return std::nullopt;
  return std::pair<u16, std::string>(u16{view.id}, nameOf(view.name));
}

}  // namespace

// --- names

void ProfileNames::refresh() {
  const auto now = std::chrono::steady_clock::now();
  if (now < until_) return;
  until_ = now + kNamesGood;
  ids_.clear();
  ids_.emplace(Oid(kDefault.begin(), kDefault.end()), u16{0});
  for (auto profile = next_(functions_, 0); profile; profile = next_(functions_, profile->first)) {
    Oid name;
    for (const char letter : profile->second) name.push_back(static_cast<u8>(letter));
    if (!name.empty()) ids_.emplace(std::move(name), profile->first);
  }
}

std::optional<Oid> ProfileNames::behind(const Oid& index) {
  refresh();
  const auto row = ids_.upper_bound(index);
  return row != ids_.end() ? std::optional(row->first) : std::nullopt;
}

std::optional<u16> ProfileNames::idOf(const Oid& index) {
  refresh();
  const auto row = ids_.find(index);
  return row != ids_.end() ? std::optional(row->second) : std::nullopt;
}

// --- lines

AdslLineTable::AdslLineTable(const StandardFunctions& functions)
    : StandardTable("adslLineTable", entryOf(1), {2, 4, 5}), functions_(functions) {}

bool AdslLineTable::give(oid column, const Oid& index, netsnmp_variable_list& to) {
  constexpr oid kLineType = 2, kProfile = 4;
  const auto port = portOf(index, isAdslLine);
  if (!port) return false;
  if (column != kLineType && column != kProfile) {
    // A port that nobody attached has the default profile.
    const int id = functions_.attachedAlarmProfile(port->slot, port->port);
    StdAlarmPrf profile;
    if (id <= 0) return giveText(to, kDefault);
    return functions_.alarmProfile(static_cast<u16>(id), &profile) == 0 && giveText(to, nameOf(profile.name));
  }
  const int id = functions_.attachedLineProfile(port->slot, port->port);
  StdAdslLinePrf profile;
  if (id < 0 || functions_.lineProfile(static_cast<u16>(id), &profile) != 0) return false;
  if (column == kLineType) return giveNumber(to, profile.lineType);
  return giveText(to, id == 0 ? std::string(kDefault) : nameOf(profile.name));
}

// --- profiles

AdslProfileTable::AdslProfileTable(const StandardFunctions& functions)
    : StandardTable("adslLineConfProfileTable", entryOf(14), {4, 5, 6, 11, 12, 15, 18, 19, 20, 25, 26, 29, 30}),
      functions_(functions),
      names_(functions, [](const StandardFunctions& with, u16 id) { return nextOf(with.nextLineProfile, id); }) {}

// Rates in bit/s, of the channels that the line type has; the module keeps one for both. Margins in tenths of a dB.
bool AdslProfileTable::give(oid column, const Oid& index, netsnmp_variable_list& to) {
  constexpr u16 kFastOnly = 2, kInterleavedOnly = 3, kEither = 4, kBoth = 5;
  const auto id = names_.idOf(index);
  StdAdslLinePrf profile;
  if (!id || functions_.lineProfile(*id, &profile) != 0) return false;
  const bool either = profile.lineType == kEither || profile.lineType == kBoth;
  const bool fast = either || profile.lineType == kFastOnly;
  const bool interleaved = either || profile.lineType == kInterleavedOnly;
  switch (column) {
    case 4:
      return giveNumber(to, profile.targetMarginDown);
    case 5:
      return giveNumber(to, profile.maxMarginDown * 10u);
    case 6:
      return giveNumber(to, profile.minMarginDown * 10u);
    case 11:
      return fast && giveNumber(to, profile.minRateDown * 1000, ASN_UNSIGNED);
    case 12:
      return interleaved && giveNumber(to, profile.minRateDown * 1000, ASN_UNSIGNED);
    case 15:
      return giveNumber(to, profile.maxInterleaveDelayDn);
    case 18:
      return giveNumber(to, profile.targetMarginUp);
    case 19:
      return giveNumber(to, profile.maxMarginUp * 10u);
    case 20:
      return giveNumber(to, profile.minMarginUp * 10u);
    case 25:
      return fast && giveNumber(to, profile.minRateUp * 1000, ASN_UNSIGNED);
    case 26:
      return interleaved && giveNumber(to, profile.minRateUp * 1000, ASN_UNSIGNED);
    case 29:
      return giveNumber(to, profile.maxInterleaveDelayUp);
    default:
      return giveNumber(to, kActive);
  }
}

AdslAlarmProfileTable::AdslAlarmProfileTable(const StandardFunctions& functions)
    : StandardTable("adslLineAlarmConfProfileTable", entryOf(15), {2, 3, 4, 6, 12, 13, 14, 15, 20}),
      functions_(functions),
      names_(functions, [](const StandardFunctions& with, u16 id) { return nextOf(with.nextAlarmProfile, id); }) {}

bool AdslAlarmProfileTable::give(oid column, const Oid& index, netsnmp_variable_list& to) {
  const auto id = names_.idOf(index);
  StdAlarmPrf profile;
  if (!id || functions_.alarmProfile(*id, &profile) != 0) return false;
  switch (column) {
    case 2:
      return giveNumber(to, profile.neLofs);
    case 3:
      return giveNumber(to, profile.neLoss);
    case 4:
      return giveNumber(to, profile.neLols);
    case 6:
      return giveNumber(to, profile.neEs);
    case 12:
      return giveNumber(to, profile.feLofs);
    case 13:
      return giveNumber(to, profile.feLoss);
    case 14:
      return giveNumber(to, profile.feLprs);
    case 15:
      return giveNumber(to, profile.feEs);
    default:
      return giveNumber(to, kActive);
  }
}

}  // namespace msand
