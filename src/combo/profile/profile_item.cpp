#include "combo/profile/profile_item.h"

#include <algorithm>
#include <cstring>

#include "common/msan_init.h"
#include "platform/command_line.h"
#include "platform/log.h"

u32 fieldOf(const ProfileField& field, const void* item) {
  const u8* at = static_cast<const u8*>(item) + field.at;
  if (field.width == 1) return *at;
  if (field.width == 4) {
    u32 value;
    std::memcpy(&value, at, sizeof value);
    return value;
  }
  u16 value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

void setField(const ProfileField& field, void* item, u32 value) {
  u8* at = static_cast<u8*>(item) + field.at;
  if (field.width == 1) {
    *at = static_cast<u8>(value);
  } else if (field.width == 4) {
    std::memcpy(at, &value, sizeof value);
  } else {
    const u16 narrow = static_cast<u16>(value);
    std::memcpy(at, &narrow, sizeof narrow);
  }
}

static const u8* entryOf(const ProfileTable& table, const void* item, u32 i) {
  return static_cast<const u8*>(item) + table.at + i * table.entry;
}

static u32 entriesOf(const ProfileField& field, const void* item) {
  return std::min<u32>(fieldOf(field, item), field.table->most);
}

bool replacePart(ItemPart part, void* item, const void* values) {
  u8* to = static_cast<u8*>(item) + part.at;
  const u8* from = static_cast<const u8*>(values) + part.at;
  if (std::memcmp(to, from, part.size) == 0) return false;
  std::memcpy(to, from, part.size);
  return true;
}

void resetItem(const ProfileShape& shape, void* item) {
  std::memset(item, 0, shape.itemSize);
  for (const ProfileField& field : shape.fields) setField(field, item, field.initial);
}

static int fail(SnmpErrInfo* err, u16 code, const char* logged) {
  if (logged != nullptr) ulogPrintf(gModuleId_Msan, 10, "%s\r\n", logged);
  err->errCode = code;
  return -1;
}

static int checkField(const ProfileField& field, u32 value, SnmpErrInfo* err) {
  if (field.code == 0) return 0;
  const auto inRange = [value](const Range& range) { return range.holds(value); };
  const auto isWord = [value](const Word& word) { return word.value == value; };
  if (std::ranges::any_of(field.allowed, inRange) || std::ranges::any_of(field.words, isWord)) return 0;
  return fail(err, field.code, field.error);
}

static int checkEntries(const ProfileTable& table, u32 count, const void* item, SnmpErrInfo* err) {
  for (u32 i = 0; i < std::max<u32>(count, table.atLeast); ++i) {
    const u8* entry = entryOf(table, item, i);
    if (checkFields(table.fields, entry, err) != 0) return -1;
    if (table.orderCode != 0 && fieldOf(table.fields[0], entry) > fieldOf(table.fields[1], entry)) {
      return fail(err, table.orderCode, table.orderError);
    }
  }
  return 0;
}

int checkFields(ProfileFields fields, const void* item, SnmpErrInfo* err) {
  for (const ProfileField& field : fields) {
    if (checkField(field, fieldOf(field, item), err) != 0) return -1;
    if (field.table != nullptr && checkEntries(*field.table, entriesOf(field, item), item, err) != 0) return -1;
  }
  return 0;
}

static void encodeEntry(const ProfileTable& table, const u8* entry, Writer& to) {
  u32 used = 0;
  for (const ProfileField& field : table.fields) {
    to.number(field.width, fieldOf(field, entry));
    used += field.width;
  }
  to.zeros(table.entry - used);
}

void encodeBody(const ProfileShape& shape, const void* item, Writer& to) {
  for (const ProfileField& field : shape.fields) {
    to.zeros(field.gap);
    to.number(field.width, fieldOf(field, item));
    if (field.table == nullptr) continue;
    for (u32 i = 0; i < entriesOf(field, item); ++i) encodeEntry(*field.table, entryOf(*field.table, item, i), to);
  }
  to.zeros(shape.tail);
}

static void decodeEntry(const ProfileTable& table, Reader& from, u8* entry) {
  u32 used = 0;
  for (const ProfileField& field : table.fields) {
    setField(field, entry, from.number(field.width));
    used += field.width;
  }
  from.skip(table.entry - used);
}

int decodeBody(const ProfileShape& shape, Reader& from, void* item, SnmpErrInfo* err) {
  std::memset(item, 0, shape.itemSize);
  for (const ProfileField& field : shape.fields) {
    from.skip(field.gap);
    const u32 value = from.number(field.width);
    if (from.failed()) return 0;
    if (field.early && checkField(field, value, err) != 0) return -1;
    setField(field, item, value);
    if (field.table == nullptr) continue;
    for (u32 i = 0; i < entriesOf(field, item); ++i)
      decodeEntry(*field.table, from, static_cast<u8*>(item) + field.table->at + i * field.table->entry);
  }
  from.skip(shape.tail);
  return 0;
}

void showNumber(Vty* vty, const char* label, int value) { vty_out(vty, "%-25s%-23d%s", label, value, "\r\n"); }
void showText(Vty* vty, const char* label, const char* text) { vty_out(vty, "%-25s%-23s%s", label, text, "\r\n"); }

static double tenths(u32 value) { return static_cast<i32>(value) / 10.0; }

static void showField(Vty* vty, const ProfileField& field, u32 value) {
  switch (field.shown) {
    case Shown::number:
      return showNumber(vty, field.label, static_cast<int>(value));
    case Shown::word:
      return showText(vty, field.label, textOf(field.words, value, ""));
    case Shown::timesTen:
      return showNumber(vty, field.label, static_cast<int>(value * 10));
    case Shown::tenths:
      return vty_out(vty, "%-25s%-23.1f%s", field.label, tenths(value), "\r\n");
  }
}

void showFields(Vty* vty, ProfileFields fields, const void* item) {
  for (const ProfileField& field : fields) {
    if (field.label != nullptr) showField(vty, field, fieldOf(field, item));
    if (field.table == nullptr) continue;
    for (u32 i = 0; i < entriesOf(field, item); ++i) {
      if (field.table->title != nullptr) showNumber(vty, field.table->title, static_cast<int>(i) + 1);
      showFields(vty, field.table->fields, entryOf(*field.table, item, i));
    }
  }
}

void printFields(Vty* vty, ProfileFields fields, const void* item) {
  for (const ProfileField& field : fields) {
    const u32 value = fieldOf(field, item);
    if (field.line == nullptr || value == field.initial) continue;
    if (!field.words.empty()) {
      vty_out(vty, "%s %s%s", field.line, textOf(field.words, value, ""), "\r\n");
    } else if (field.shown == Shown::timesTen || field.shown == Shown::tenths) {
      vty_out(vty, "%s %.1f%s", field.line, tenths(value), "\r\n");
    } else {
      vty_out(vty, "%s %d%s", field.line, static_cast<int>(value), "\r\n");
    }
  }
}
