#pragma once
// The items of DSL profiles. What is known of a field is declared once, as a row, and defaults, check, decode, encode,
// show and the running configuration walk the rows.
//
// An item is a packed record in host order, which is how the profile store keeps it. On the wire it is a body: the
// fields in the order of the rows, big-endian, of a table only the entries in use.

#include <cstddef>

#include "common/msan_snmp.h"
#include "common/record.h"
#include "common/wire.h"
#include "common/words.h"
#include "platform/types.h"

struct Vty;
struct ProfileTable;

#pragma pack(push, 1)
// A number with decimals: 0, how many, the number. The two bytes ahead are kept as a manager sends them.
struct ScaledValue {
  u8 zero;
  u8 decimals;
  i32 value;
};
#pragma pack(pop)

// Both ends included.
struct ValueRange {
  i32 low = 1, high = 0;  // holds nothing until filled
  constexpr bool holds(i32 value) const { return low <= value && value <= high; }
};

// Two numbers of an item, the first of which is not above the second.
struct FieldOrder {
  u16 low, high;  // where they stand
  u8 width;
  u16 code = 0;  // of a failed check, and what is logged of it
  const char* error = nullptr;
};
#define ITEM_ORDER(Item, a, b) .low = offsetof(Item, a), .high = offsetof(Item, b), .width = sizeof(Item::a)

// The value of another field on which one depends. Without a field it always holds.
struct FieldIs {
  u16 at = 0;
  u8 width = 0;
  ValueRange values = {};
};
#define ITEM_IS(Item, member, ...)                                \
  {                                                               \
    offsetof(Item, member), sizeof(Item::member), { __VA_ARGS__ } \
  }

// Who looks at the condition of a field. Lines of several fields (ProfileLine) always do.
enum FieldUse : u8 {
  kWhenChecked = 1,
  kWhenShown = 2,
  kWhenDecoded = 4,  // otherwise it is at its default, whatever was sent
};

// How show prints a field.
enum class Shown : u8 { number, word, timesTen };

struct ProfileField {
  u16 at = 0;  // in the item, or in an entry of a table
  u8 width = 0;
  u8 decimals = 0;  // of a ScaledValue; 0: a number as it is
  bool isSigned = false;
  u8 gap = 0;  // zero bytes ahead of it on the wire
  i32 initial = 0;
  ValueRange allowed[3] = {};               // numbers of 4 bytes count as signed ones
  std::span<const Word> words = {};         // instead of ranges: its values, for commands as well
  u16 code = 0;                             // of a failed check; 0 takes any value
  const char* error = nullptr;              // what is logged of one, if anything
  bool early = false;                       // checked while it is decoded
  bool late = true;                         // checked with the whole item
  FieldIs when = {};                        // for the uses that are named
  u8 uses = 0;                              // FieldUse
  std::span<const FieldOrder> orders = {};  // checked behind it
  const ProfileTable* table = nullptr;      // whose entries it counts; they follow on the wire
  const char* label = nullptr;              // null: not shown
  Shown shown = Shown::number;
  const char* unit = "";       // behind a number that is shown
  const char* line = nullptr;  // in the running configuration ahead of a value that is not the default
};

// A counted table. An entry has as many bytes in the item as on the wire; what no field covers is zero.
struct ProfileTable {
  u16 at;  // in the item
  u16 most;
  u16 entry;  // bytes
  std::span<const ProfileField> fields;
  u16 atLeast = 0;              // entries that are checked whatever the count
  u16 valid = 0;                // where an entry of the item has a 1 once it was written; 0: nowhere
  const char* title = nullptr;  // shown with the number of the entry, from 1
};

// Where a member stands, for a row.
#define ITEM_FIELD(Item, member) .at = offsetof(Item, member), .width = sizeof(Item::member)
#define SCALED_FIELD(Item, member, digits) ITEM_FIELD(Item, member), .decimals = (digits)

// Bytes of an item that an edit replaces.
struct ItemPart {
  u16 at = 0;
  u16 size = 0;  // 0: none
};
#define ITEM_PART(Item, member) \
  { offsetof(Item, member), sizeof(Item::member) }

using ProfileFields = std::span<const ProfileField>;

struct ProfileShape {
  u16 itemSize;
  u16 headGap;  // zero bytes between the name and the body of a wire item
  u16 tail;     // zero bytes behind the last field
  ProfileFields fields;

  constexpr u32 mostBody() const {
    u32 length = tail;
    for (const ProfileField& f : fields) {
      length += u32{f.gap} + f.width;
      if (f.table != nullptr) length += u32{f.table->most} * f.table->entry;
    }
    return length;
  }
};

i32 fieldOf(const ProfileField& field, const void* item);
void setField(const ProfileField& field, void* item, i32 value);
bool holds(const FieldIs& condition, const void* item);
bool inOrder(const FieldOrder& order, const void* item);
bool allows(const ProfileField& field, i32 value);
double unscaled(const ProfileField& field, i32 value);

// Takes a part over from `values`; true if that made a difference.
bool replacePart(ItemPart part, void* item, const void* values);

void resetItem(const ProfileShape& shape, void* item);
// The first field outside what it may hold sets the code. 0 or -1.
int checkFields(ProfileFields fields, const void* item, SnmpErrInfo* err);
void encodeBody(const ProfileShape& shape, const void* item, Writer& to);
// -1 with a code when a field that is checked early fails. What is cut shows in the reader.
int decodeBody(const ProfileShape& shape, Reader& from, void* item, SnmpErrInfo* err);

// Lines of two columns for all fields that have a label.
void showNumber(Vty* vty, const char* label, int value);
void showText(Vty* vty, const char* label, const char* text);
void showFields(Vty* vty, ProfileFields fields, const void* item);
// The lines of the fields that differ from their defaults.
void printFields(Vty* vty, ProfileFields fields, const void* item);
