// Tables by name, and their rows as text.

#include <fmt/format.h>

#include <cstring>
#include <stdexcept>
#include <string_view>

#include "database_store.h"
#include "host/database.h"
#include "host/hex.h"

namespace host {

namespace {

std::vector<const DbTable*>& knownTables() {
  static std::vector<const DbTable*>& forTheProcess = *new std::vector<const DbTable*>;
  return forTheProcess;
}

const DbTable* findTable(std::string_view name) {
  for (const DbTable* table : knownTables())
    if (name == table->name) return table;
  return nullptr;
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text.substr(0, text.find('\0'))) {
    const auto byte = static_cast<u8>(c);
    if (c == '"' || c == '\\' || byte < ' ' || byte > '~')
      result += fmt::format("\\x{:02x}", byte);
    else
      result += c;
  }
  return result + '"';
}

std::string numberText(const DbField& field, const u8* value) {
  u32 number = 0;
  if (field.width == 1) {
    number = *value;
  } else if (field.width == 2) {
    u16 half = 0;
    std::memcpy(&half, value, sizeof half);
    number = half;
  } else {
    std::memcpy(&number, value, sizeof number);
  }
  if (field.kind == DbKind::number) return std::to_string(number);
  const u32 unused = 32 - 8 * field.width;
  return std::to_string(static_cast<i32>(number << unused) >> unused);
}

std::string valueText(const DbField& field, const u8* value) {
  switch (field.kind) {
    case DbKind::text:
      return quoted({reinterpret_cast<const char*>(value), field.width});
    case DbKind::bytes:
      return hexText({value, field.width});
    default:
      return numberText(field, value);
  }
}

std::string rowText(const DbTable& table, const u8* row) {
  std::string text;
  for (const DbField& field : table.fields) {
    if (!text.empty()) text += ' ';
    text += field.name;
    text += '=';
    text += valueText(field, row + field.offset);
  }
  return text;
}

// A transaction that only reads. It counts as no operation of the module, so no fault that waits falls on it.
struct Reading {
  mco_trans_h transaction = nullptr;
  int code = store::begin(false, &transaction, __FILE__, __LINE__, "listRows");
  ~Reading() {
    if (code == DB_OK) mco_trans_rollback(transaction);
  }
};

}  // namespace

void addTables(std::span<const DbTable* const> tables) {
  for (const DbTable* table : tables) {
    for (const DbTable* known : knownTables())
      if (std::string_view(known->name) == table->name || known->tag == table->tag)
        throw std::logic_error(fmt::format("tables {} and {} can't both be", known->name, table->name));
    knownTables().push_back(table);
  }
}

std::vector<std::string> tableNames() {
  std::vector<std::string> names;
  for (const DbTable* table : knownTables()) names.emplace_back(table->name);
  return names;
}

bool listRows(const std::string& name, std::vector<std::string>& rows) {
  const DbTable* table = findTable(name);
  rows.clear();
  if (table == nullptr) return false;
  const Reading reading;
  mco_cursor_t cursor;
  int code = reading.code;
  if (code == DB_OK) {
    code = table->indexes.empty() ? dbListCursor(reading.transaction, table, &cursor)
                                  : dbIndexCursor(reading.transaction, table, 0, &cursor);
  }
  while (code == DB_OK) {
    DbRow row;
    code = dbFromCursor(reading.transaction, table, &cursor, &row);
    if (code != DB_OK) break;
    rows.push_back(rowText(*table, store::heldRow(&row)->data));
    code = mco_cursor_next(reading.transaction, &cursor);
  }
  if (code != DB_END) throw std::runtime_error(fmt::format("rows of {}: {}", name, mco_ret_string(code, 0)));
  return true;
}

}  // namespace host
