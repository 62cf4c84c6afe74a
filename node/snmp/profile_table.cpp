#include "profile_table.h"

#include <algorithm>
#include <cstring>

#include "adsl_tables.h"
#include "line_facts.h"

namespace msand {

static constexpr std::chrono::seconds kNamesGood{1};

static Oid columnsOf(const ProfileKind& kind) {
  Oid columns;
  for (const ProfileColumn& column : kind.columns) columns.push_back(column.column);
  columns.push_back(kind.statusColumn);
  return columns;
}

ProfileTable::ProfileTable(const ProfileKind& kind, const StandardFunctions& functions, Facts& facts)
    : StandardTable(kind.table, adslEntry(kind.number), columnsOf(kind), Access::write),
      kind_(kind),
      functions_(functions),
      facts_(facts) {}

void ProfileTable::refresh() {
  const auto now = std::chrono::steady_clock::now();
  if (now < until_) return;
  until_ = now + kNamesGood;
  ids_.clear();
  ids_.emplace(Oid(kDefaultProfile.begin(), kDefaultProfile.end()), u16{0});
  ProfileView view;
  for (u16 id = 0; kind_.next(functions_, id, view) == 0;) {
    std::memcpy(&id, view.bytes, sizeof id);
    Oid name;
    for (const char letter : nameOf(view)) name.push_back(static_cast<u8>(letter));
    if (!name.empty()) ids_.emplace(std::move(name), id);
  }
}

std::optional<Oid> ProfileTable::behind(const Oid& index) {
  refresh();
  const auto row = ids_.upper_bound(index);
  return row != ids_.end() ? std::optional(row->first) : std::nullopt;
}

void ProfileTable::changed() {
  until_ = {};
  facts_.forget(Fact::rateModes);
}

bool ProfileTable::isLearned(oid column) const {
  const ProfileColumn* const told = kind_.find(column);
  return told != nullptr && told->viewWidth == 0;
}

bool ProfileTable::giveRateMode(u16 id, bool down, netsnmp_variable_list& to) {
  const auto modes = facts_.told(rateModesKey());
  if (modes == nullptr) return false;
  const u8 mode = (*modes)[rateModeAt(id, down)];
  return mode != 0 && giveNumber(to, mode);
}

// A minimum rate is given for the channels that the line type has; the module keeps one for both.
bool ProfileTable::give(oid column, const Oid& index, netsnmp_variable_list& to) {
  constexpr u32 kActive = 1;  // RowStatus
  refresh();
  const auto row = ids_.find(index);
  ProfileView view;
  if (row == ids_.end() || kind_.read(functions_, row->second, view) != 0) return false;
  const ProfileColumn* const told = kind_.find(column);
  if (told == nullptr) return giveNumber(to, kActive);
  if (told->viewWidth == 0) return giveRateMode(row->second, column == kDownRateMode, to);
  if (told->channel != Channel::any && !hasChannel(view.line.lineType, told->channel)) return false;
  u32 number = 0;
  std::memcpy(&number, &view.bytes[told->view], told->viewWidth);
  return giveNumber(to, number * told->unit, told->type);
}

}  // namespace msand
