#pragma once
// The layout of tables, as the generated sources give it.

#include <span>

#include "platform/database.h"

enum class DbKind : u8 { number, signedNumber, text, bytes };

// A field of a row, or a number inside one. Numbers are in host order.
struct DbField {
  const char* name;
  u32 offset;
  u32 width;
  DbKind kind;
};

struct DbIndex {
  const char* name;
  bool unique;
  std::span<const DbField> key;
};

struct DbTable {
  const char* name;
  u32 tag;   // begins all its keys in the store
  u32 size;  // of a row
  std::span<const DbField> fields;
  std::span<const DbIndex> indexes;
  std::span<const u32> watched;  // the fields of its events, by offset
};

namespace host {

// Makes tables known by name. They stay known for the life of the process. Throws std::logic_error when a name or tag
// is taken.
void addTables(std::span<const DbTable* const> tables);

}  // namespace host
