#include "combo/profile/profile_item.h"

#include <algorithm>
#include <cstring>

#include "common/msan_init.h"
#include "platform/command_line.h"
#include "platform/log.h"

static i32 numberAt(const void* item, u32 at, u8 width, bool isSigned = false) {
  const u8* from = static_cast<const u8*>(item) + at;
  if (width == 1) return *from;
  if (width == 4) {
    i32 value;
    std::memcpy(&value, from, sizeof value);
    return value;
  }
  u16 value;
  std::memcpy(&value, from, sizeof value);
  return isSigned ? static_cast<i16>(value) : i32{value};
}

static constexpr u32 kScaledHead = offsetof(ScaledValue, value);

// The number of a field, without the head of one with decimals.
static u32 placeOf(const ProfileField& field) { return field.decimals == 0 ? field.at : field.at + kScaledHead; }
static u8 widthOf(const ProfileField& field) {
  return field.decimals == 0 ? field.width : static_cast<u8>(sizeof ScaledValue::value);
}

i32 fieldOf(const ProfileField& field, const void* item) {
  return numberAt(item, placeOf(field), widthOf(field), field.isSigned);
}

static void setNumber(const ProfileField& field, void* item, i32 value) {
  u8* at = static_cast<u8*>(item) + placeOf(field);
  const u16 narrow = static_cast<u16>(value);
  switch (widthOf(field)) {
    case 1:
      *at = static_cast<u8>(value);
      break;
    case 4:
      std::memcpy(at, &value, sizeof value);
      break;
    default:
      std::memcpy(at, &narrow, sizeof narrow);
  }
}

void setField(const ProfileField& field, void* item, i32 value) {
  u8* at = static_cast<u8*>(item) + field.at;
  if (field.decimals != 0) {
    at[0] = 0;
    at[1] = field.decimals;
  }
  setNumber(field, item, value);
}

bool holds(const FieldIs& condition, const void* item) {
  return condition.width == 0 || condition.values.holds(numberAt(item, condition.at, condition.width));
}

bool inOrder(const FieldOrder& order, const void* item) {
  return numberAt(item, order.low, order.width) <= numberAt(item, order.high, order.width);
}

static bool counts(const ProfileField& field, const void* item, FieldUse use) {
  return (field.uses & use) == 0 || holds(field.when, item);
}

static const u8* entryOf(const ProfileTable& table, const void* item, u32 i) {
  return static_cast<const u8*>(item) + table.at + i * table.entry;
}

static u32 entriesOf(const ProfileField& field, const void* item) {
  return std::min(static_cast<u32>(fieldOf(field, item)), u32{field.table->most});
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
  if (logged != nullptr) ulogPrintf(gModuleId_Msan, kLogDebug, "%s\r\n", logged);
  err->errCode = code;
  return -1;
}

bool allows(const ProfileField& field, i32 value) {
  const auto inRange = [value](const ValueRange& range) { return range.holds(value); };
  const auto isWord = [value](const Word& word) { return static_cast<i32>(word.value) == value; };
  return std::ranges::any_of(field.allowed, inRange) || std::ranges::any_of(field.words, isWord);
}

static int checkField(const ProfileField& field, i32 value, SnmpErrInfo* err) {
  return field.code == 0 || allows(field, value) ? 0 : fail(err, field.code, field.error);
}

static int checkOrders(std::span<const FieldOrder> orders, const void* item, SnmpErrInfo* err) {
  for (const FieldOrder& order : orders) {
    if (!inOrder(order, item)) return fail(err, order.code, order.error);
  }
  return 0;
}

int checkFields(ProfileFields fields, const void* item, SnmpErrInfo* err) {
  for (const ProfileField& field : fields) {
    if (!counts(field, item, kWhenChecked)) continue;
    if (field.late && checkField(field, fieldOf(field, item), err) != 0) return -1;
    if (checkOrders(field.orders, item, err) != 0) return -1;
    if (field.table == nullptr) continue;
    const u32 entries = std::max<u32>(entriesOf(field, item), field.table->atLeast);
    for (u32 i = 0; i < entries; ++i) {
      if (checkFields(field.table->fields, entryOf(*field.table, item, i), err) != 0) return -1;
    }
  }
  return 0;
}

static void encodeField(const ProfileField& field, const void* item, Writer& to) {
  if (field.decimals != 0) to.bytes({static_cast<const u8*>(item) + field.at, kScaledHead});
  to.number(widthOf(field), static_cast<u32>(fieldOf(field, item)));
}

static void encodeEntry(const ProfileTable& table, const u8* entry, Writer& to) {
  u32 used = 0;
  for (const ProfileField& field : table.fields) {
    encodeField(field, entry, to);
    used += field.width;
  }
  to.zeros(table.entry - used);
}

void encodeBody(const ProfileShape& shape, const void* item, Writer& to) {
  for (const ProfileField& field : shape.fields) {
    to.zeros(field.gap);
    encodeField(field, item, to);
    if (field.table == nullptr) continue;
    for (u32 i = 0; i < entriesOf(field, item); ++i) encodeEntry(*field.table, entryOf(*field.table, item, i), to);
  }
  to.zeros(shape.tail);
}

static void decodeField(const ProfileField& field, Reader& from, void* item) {
  if (field.decimals != 0) from.bytes(static_cast<u8*>(item) + field.at, kScaledHead);
  setNumber(field, item, static_cast<i32>(from.number(widthOf(field))));
}

static void decodeEntry(const ProfileTable& table, Reader& from, u8* entry) {
  u32 used = 0;
  for (const ProfileField& field : table.fields) {
    decodeField(field, from, entry);
    used += field.width;
  }
  from.skip(table.entry - used);
  if (table.valid != 0) entry[table.valid] = 1;
}

int decodeBody(const ProfileShape& shape, Reader& from, void* item, SnmpErrInfo* err) {
  std::memset(item, 0, shape.itemSize);
  for (const ProfileField& field : shape.fields) {
    from.skip(field.gap);
    decodeField(field, from, item);
    if (from.failed()) return 0;
    if (field.early && checkField(field, fieldOf(field, item), err) != 0) return -1;
    if (field.table == nullptr) continue;
    for (u32 i = 0; i < entriesOf(field, item); ++i)
      decodeEntry(*field.table, from, static_cast<u8*>(item) + field.table->at + i * field.table->entry);
  }
  from.skip(shape.tail);
  for (const ProfileField& field : shape.fields) {
    if (!counts(field, item, kWhenDecoded)) setField(field, item, field.initial);
  }
  return 0;
}

void showNumber(Vty* vty, const char* label, int value) { vty_out(vty, "%-25s%-23d%s", label, value, "\r\n"); }
void showText(Vty* vty, const char* label, const char* text) { vty_out(vty, "%-25s%-23s%s", label, text, "\r\n"); }

double unscaled(const ProfileField& field, i32 value) {
  double scale = 1;
  for (u8 i = 0; i < field.decimals; ++i) scale *= 10;
  // In memory it is rounded to a double, also where registers hold more: it equals the number that is typed for it.
  const volatile double number = value / scale;
  return number;
}

static void showField(Vty* vty, const ProfileField& field, i32 value) {
  if (field.decimals != 0) {
    return vty_out(vty, "%-25s%-23.*f%s%s", field.label, field.decimals, unscaled(field, value), field.unit, "\r\n");
  }
  switch (field.shown) {
    case Shown::number:
      return vty_out(vty, "%-25s%-23d%s%s", field.label, value, field.unit, "\r\n");
    case Shown::word:
      return showText(vty, field.label, textOf(field.words, static_cast<u32>(value), ""));
    case Shown::timesTen:
      return showNumber(vty, field.label, static_cast<int>(static_cast<u32>(value) * 10));
  }
}

void showFields(Vty* vty, ProfileFields fields, const void* item) {
  for (const ProfileField& field : fields) {
    if (field.label != nullptr && counts(field, item, kWhenShown)) showField(vty, field, fieldOf(field, item));
    if (field.table == nullptr) continue;
    for (u32 i = 0; i < entriesOf(field, item); ++i) {
      if (field.table->title != nullptr) showNumber(vty, field.table->title, static_cast<int>(i) + 1);
      showFields(vty, field.table->fields, entryOf(*field.table, item, i));
    }
  }
}

void printFields(Vty* vty, ProfileFields fields, const void* item) {
  for (const ProfileField& field : fields) {
    const i32 value = fieldOf(field, item);
    if (field.line == nullptr || value == field.initial) continue;
    if (!field.words.empty()) {
      vty_out(vty, "%s %s%s", field.line, textOf(field.words, static_cast<u32>(value), ""), "\r\n");
    } else if (field.decimals != 0) {
      vty_out(vty, "%s %.*f%s", field.line, field.decimals, unscaled(field, value), "\r\n");
    } else if (field.shown == Shown::timesTen) {
      vty_out(vty, "%s %.1f%s", field.line, value / 10.0, "\r\n");
    } else {
      vty_out(vty, "%s %d%s", field.line, value, "\r\n");
    }
  }
}
