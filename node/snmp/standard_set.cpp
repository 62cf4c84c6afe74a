#include "standard_set.h"

#include <algorithm>

#include "adsl_tables.h"
#include "module_frames.h"

namespace msand {

namespace {

enum RowStatus : u32 { kActive = 1, kNotInService, kNotReady, kCreateAndGo, kCreateAndWait, kDestroy };

constexpr std::size_t kMostIndexName = 32;  // letters of a name, in the MIB
constexpr std::size_t kMostName = 20;       // and in the node

bool isBelow(const Oid& entry, const oid* name, std::size_t length) {
  return length >= entry.size() && std::equal(entry.begin(), entry.end(), name);
}

// The tables that can be written.
const std::vector<Oid>& entries() {
  static const std::vector<Oid> all = {interfaceEntry(), adslEntry(kLineTable), adslEntry(kLineProfiles.number),
                                       adslEntry(kAlarmProfiles.number)};
  return all;
}

const Oid* entryAbove(const oid* name, std::size_t length) {
  const auto entry = std::ranges::find_if(entries(), [&](const Oid& one) { return isBelow(one, name, length); });
  return entry != entries().end() ? &*entry : nullptr;
}

// Names of new profiles: what the running configuration can tell again.
bool isNodeName(std::string_view name) {
  return name.size() <= kMostName && std::ranges::all_of(name, [](char c) { return c > ' ' && c <= '~' && c != '"'; });
}

}  // namespace

bool StandardSet::concerns(const netsnmp_pdu& pdu) {
  if (pdu.command != SNMP_MSG_SET) return false;
  for (const auto* variable = pdu.variables; variable != nullptr; variable = variable->next_variable)
    if (entryAbove(variable->name, variable->name_length) != nullptr) return true;
  return false;
}

StandardSet::StandardSet(const StandardFunctions& functions, const netsnmp_pdu& pdu) : functions_(functions) {
  lines_.kind = &kLineProfiles;
  alarms_.kind = &kAlarmProfiles;
  u32 number = 0;
  for (const auto* from = pdu.variables; from != nullptr; from = from->next_variable) {
    ++number;
    if (entryAbove(from->name, from->name_length) == nullptr) {
      mixed_ = true;
      continue;
    }
    Variable& to = variables_.emplace_back();
    to.number = number;
    to.name.assign(from->name, from->name + from->name_length);
    to.type = from->type;
    if (from->type == ASN_INTEGER) to.value = *from->val.integer;
    if (from->type == ASN_UNSIGNED) to.value = *from->val.integer & 0xFFFFFFFF;
    if (from->type == ASN_OCTET_STR && from->val_len != 0)
      to.text.assign(reinterpret_cast<const char*>(from->val.string), from->val_len);
  }
}

bool StandardSet::fail(u32 variable, int error) {
  failed_ = variable;
  error_ = error;
  return false;
}

void StandardSet::perform() {
  if (mixed_) return refuse();
  for (const Variable& variable : variables_)
    if (!read(variable)) return;
  if (!check()) return;
  const bool done = perform(lines_) && perform(alarms_) &&
                    std::ranges::all_of(attachments_, [&](const Attachment& one) { return perform(one); }) &&
                    performEnables() && destroy(lines_) && destroy(alarms_);
  if (!done) takeBack();
}

// --- what the manager wants

bool StandardSet::read(const Variable& variable) {
  const Oid& entry = *entryAbove(variable.name.data(), variable.name.size());
  if (variable.name.size() < entry.size() + 2) return fail(variable.number, SNMP_ERR_NOCREATION);
  const oid column = variable.name[entry.size()];
  const Oid index(variable.name.begin() + static_cast<i64>(entry.size()) + 1, variable.name.end());
  if (&entry == &entries()[0]) return readEnable(variable, column, index);
  if (&entry == &entries()[1]) return readAttachment(variable, column, index);
  return readCell(variable, &entry == &entries()[2] ? lines_ : alarms_, column, index);
}

bool StandardSet::readEnable(const Variable& variable, oid column, const Oid& index) {
  const auto port = portOf(index, isInterface);
  if (!port) return fail(variable.number, SNMP_ERR_NOCREATION);
  if (column != kAdministration || port->type == kPotsPort) return fail(variable.number, SNMP_ERR_NOTWRITABLE);
  if (variable.type != ASN_INTEGER) return fail(variable.number, SNMP_ERR_WRONGTYPE);
  if (variable.value != kUp && variable.value != kDown) return fail(variable.number, SNMP_ERR_WRONGVALUE);
  enables_.push_back({variable.number, *port, static_cast<u8>(variable.value == kUp ? 1 : 0)});
  return true;
}

bool StandardSet::readAttachment(const Variable& variable, oid column, const Oid& index) {
  const auto port = portOf(index, isAdslLine);
  if (!port) return fail(variable.number, SNMP_ERR_NOCREATION);
  if (column != kLineProfile && column != kLineAlarmProfile) return fail(variable.number, SNMP_ERR_NOTWRITABLE);
  if (variable.type != ASN_OCTET_STR) return fail(variable.number, SNMP_ERR_WRONGTYPE);
  if (variable.text.empty() || variable.text.size() > kMostIndexName)
    return fail(variable.number, SNMP_ERR_WRONGLENGTH);
  Rows& rows = column == kLineProfile ? lines_ : alarms_;
  rows.used = true;
  attachments_.push_back({variable.number, &rows, *port, variable.text});
  return true;
}

bool StandardSet::readCell(const Variable& variable, Rows& rows, oid column, const Oid& index) {
  const ProfileColumn* const cell = rows.kind->find(column);
  if (cell == nullptr && column != rows.kind->statusColumn) return fail(variable.number, SNMP_ERR_NOTWRITABLE);
  std::string name;
  for (const oid letter : index) name += static_cast<char>(letter);
  if (name.size() > kMostIndexName || std::ranges::any_of(index, [](oid letter) { return letter > 0xFF; }))
    return fail(variable.number, SNMP_ERR_NOCREATION);
  if (name == kDefaultProfile) return fail(variable.number, SNMP_ERR_NOTWRITABLE);
  rows.used = true;
  Row& row = rows.rows[name];
  if (row.variable == 0) row.variable = variable.number;
  if (cell != nullptr) {
    u32 number = 0;
    if (!readNumber(variable, *cell, number)) return false;
    row.cells.push_back({variable.number, cell, number});
    return true;
  }
  if (variable.type != ASN_INTEGER) return fail(variable.number, SNMP_ERR_WRONGTYPE);
  if (variable.value < kActive || variable.value > kDestroy || variable.value == kNotReady)
    return fail(variable.number, SNMP_ERR_WRONGVALUE);
  row.status = static_cast<u32>(variable.value);
  row.statusVariable = variable.number;
  return true;
}

bool StandardSet::readNumber(const Variable& variable, const ProfileColumn& column, u32& number) {
  if (variable.type != column.type) return fail(variable.number, SNMP_ERR_WRONGTYPE);
  if (variable.value < column.least || variable.value > column.most || variable.value % column.unit != 0)
    return fail(variable.number, SNMP_ERR_WRONGVALUE);
  number = static_cast<u32>(variable.value) / column.unit;
  return true;
}

// --- whether it can be done

bool StandardSet::check() {
  for (Rows* rows : {&lines_, &alarms_}) {
    if (!rows->used) continue;
    auto stored = readProfiles(*rows->kind);
    if (!stored) return fail(variables_.front().number, SNMP_ERR_RESOURCEUNAVAILABLE);
    rows->stored = std::move(*stored);
    for (auto& [name, row] : rows->rows)
      if (!checkRow(*rows, name, row)) return false;
  }
  for (Attachment& one : attachments_)
    if (!checkAttachment(one)) return false;
  for (Enable& one : enables_) {
    u8 before = 0;
    if (functions_.dataPortEnable(one.port.slot, one.port.port, &before) != 0)
      return fail(one.variable, SNMP_ERR_RESOURCEUNAVAILABLE);
    one.before = before == 1 ? 1 : 0;
  }
  for (const Rows* rows : {&lines_, &alarms_})
    for (const auto& [name, row] : rows->rows)
      if (row.status == kDestroy && row.before != nullptr && !checkUnused(*rows, row)) return false;
  return true;
}

bool StandardSet::checkRow(Rows& rows, const std::string& name, Row& row) {
  if (const auto found = rows.stored.find(name); found != rows.stored.end()) row.before = &found->second;
  return checkStatus(rows, name, row) && (row.status == kDestroy || fillItem(rows, name, row));
}

// The node has no profiles that are not in service.
bool StandardSet::checkStatus(const Rows& rows, const std::string& name, Row& row) {
  const bool exists = row.before != nullptr;
  switch (row.status) {
    case 0:
      return exists || fail(row.variable, SNMP_ERR_INCONSISTENTNAME);
    case kActive:
      return exists || fail(row.statusVariable, SNMP_ERR_INCONSISTENTVALUE);
    case kNotInService:
      return fail(row.statusVariable, exists ? SNMP_ERR_WRONGVALUE : SNMP_ERR_INCONSISTENTVALUE);
    case kCreateAndWait:
      return fail(row.statusVariable, exists ? SNMP_ERR_INCONSISTENTVALUE : SNMP_ERR_WRONGVALUE);
    case kDestroy:
      return true;
    default:
      break;
  }
  if (exists) return fail(row.statusVariable, SNMP_ERR_INCONSISTENTVALUE);
  if (!isNodeName(name)) return fail(row.statusVariable, SNMP_ERR_NOCREATION);
  // The node's own name of the default profile is taken, too.
  const StoredProfile& initial = rows.stored.find(kDefaultProfile)->second;
  const std::vector<u8> mine = newItem(initial, name);
  if (std::equal(mine.begin() + 2, mine.begin() + 2 + kMostName, initial.item.begin() + 2))
    return fail(row.statusVariable, SNMP_ERR_INCONSISTENTNAME);
  return rows.stored.size() <= rows.kind->mostId || fail(row.statusVariable, SNMP_ERR_RESOURCEUNAVAILABLE);
}

bool StandardSet::fillItem(const Rows& rows, const std::string& name, Row& row) {
  const ProfileKind& kind = *rows.kind;
  row.item = row.before != nullptr ? row.before->item : newItem(rows.stored.find(kDefaultProfile)->second, name);
  for (const Cell& cell : row.cells) {
    // Where the line type lacks the channel there is no such object.
    if (cell.column->channel != Channel::any &&
        !hasChannel(numberIn(kind, row.item, kind.lineType, 2), cell.column->channel))
      return fail(cell.variable, SNMP_ERR_INCONSISTENTNAME);
    // Two columns of one number.
    for (const Cell& other : row.cells)
      if (other.column->item == cell.column->item && other.number != cell.number)
        return fail(cell.variable, SNMP_ERR_INCONSISTENTVALUE);
    putIn(kind, row.item, *cell.column, cell.number);
  }
  return checkBounds(kind, row);
}

bool StandardSet::checkBounds(const ProfileKind& kind, const Row& row) {
  for (const ProfileBound& bound : kind.bounds) {
    if (numberIn(kind, row.item, bound.least, 2) <= numberIn(kind, row.item, bound.most, 2)) continue;
    const auto cell = std::ranges::find_if(
        row.cells, [&](const Cell& one) { return one.column->item == bound.least || one.column->item == bound.most; });
    return fail(cell != row.cells.end() ? cell->variable : row.variable, SNMP_ERR_INCONSISTENTVALUE);
  }
  return true;
}

// The profile is there, or this request makes it, and it does not destroy it.
bool StandardSet::checkAttachment(Attachment& one) {
  const Rows& rows = *one.rows;
  const auto row = rows.rows.find(one.name);
  const bool touched = row != rows.rows.end();
  if (touched ? row->second.status == kDestroy : !rows.stored.contains(one.name))
    return fail(one.variable, SNMP_ERR_INCONSISTENTVALUE);
  const int before = rows.kind->attached(functions_, one.port.slot, one.port.port);
  if (before < 0) return fail(one.variable, SNMP_ERR_RESOURCEUNAVAILABLE);
  one.before = static_cast<u16>(before);
  return true;
}

// No port has it, or is left with it.
bool StandardSet::checkUnused(const Rows& rows, const Row& row) {
  const auto isLine = [](u16 type) { return type != kPotsPort && isInterface(type); };
  for (auto index = portBehind({}, isLine); index; index = portBehind(*index, isLine)) {
    const auto port = portOf(*index, isLine);
    const bool moves = std::ranges::any_of(attachments_, [&](const Attachment& one) {
      return one.rows == &rows && one.port.slot == port->slot && one.port.port == port->port;
    });
    if (!moves && rows.kind->attached(functions_, port->slot, port->port) == row.before->id)
      return fail(row.statusVariable, SNMP_ERR_INCONSISTENTVALUE);
  }
  return true;
}

// --- doing it, and taking it back

static bool deleteNamed(const ProfileKind& kind, std::string_view name) {
  const auto stored = readProfiles(kind);
  if (!stored) return false;
  const auto found = stored->find(name);
  return found == stored->end() || deleteProfile(kind, found->second.id);
}

bool StandardSet::perform(Rows& rows) {
  const ProfileKind& kind = *rows.kind;
  for (const auto& [name, row] : rows.rows) {
    if (row.item.empty() || (row.before != nullptr && row.item == row.before->item)) continue;
    if (!writeProfile(kind, row.item)) return fail(row.variable, SNMP_ERR_COMMITFAILED);
    if (row.before != nullptr)
      undo_.emplace_back([&kind, &row] { return writeProfile(kind, row.before->item); });
    else
      undo_.emplace_back([&kind, &name] { return deleteNamed(kind, name); });
  }
  return true;
}

bool StandardSet::perform(const Attachment& one) {
  const ProfileKind& kind = *one.rows->kind;
  u16 id = 0;
  if (one.name != kDefaultProfile) {
    // A new one has got its number now.
    const bool isNew = !one.rows->stored.contains(one.name);
    const auto again = isNew ? readProfiles(kind) : std::nullopt;
    const StoredProfiles& all = again ? *again : one.rows->stored;
    const auto found = all.find(one.name);
    if (found == all.end()) return fail(one.variable, SNMP_ERR_COMMITFAILED);
    id = found->second.id;
  }
  if (kind.attach(functions_, one.port.slot, one.port.port, id) != 0) return fail(one.variable, SNMP_ERR_COMMITFAILED);
  undo_.emplace_back(
      [this, &kind, &one] { return kind.attach(functions_, one.port.slot, one.port.port, one.before) == 0; });
  return true;
}

bool StandardSet::performEnables() {
  constexpr u16 kEnable = 2840;
  if (enables_.empty()) return true;
  const auto tell = [this](u8 Enable::*value) {
    std::vector<u8> area;
    addNumber(area, 4, static_cast<u32>(enables_.size()));
    for (const Enable& one : enables_) {
      addNumber(area, 2, one.port.slot);
      addNumber(area, 2, one.port.port);
      area.resize(area.size() + 16);
      area.push_back(one.*value);
      area.resize(area.size() + 16);
    }
    return tellModule(kEnable, area);
  };
  // What a failure has stored for some of them goes, too.
  undo_.emplace_back([tell] { return tell(&Enable::before); });
  return tell(&Enable::after) || fail(enables_.front().variable, SNMP_ERR_COMMITFAILED);
}

bool StandardSet::destroy(const Rows& rows) {
  const ProfileKind& kind = *rows.kind;
  for (const auto& [name, row] : rows.rows) {
    if (row.status != kDestroy || row.before == nullptr) continue;
    if (!deleteProfile(kind, row.before->id)) return fail(row.statusVariable, SNMP_ERR_COMMITFAILED);
    undo_.emplace_back([&kind, &row] { return writeProfile(kind, row.before->item); });
  }
  return true;
}

void StandardSet::takeBack() {
  for (; !undo_.empty(); undo_.pop_back())
    if (!undo_.back()()) error_ = SNMP_ERR_UNDOFAILED;
}

}  // namespace msand
