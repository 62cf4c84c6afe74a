#pragma once
// Records of configuration: what is known of a field is declared once, as a row, and parse, encode, defaults, range
// check, store and load walk the rows.

#include <span>
#include <type_traits>

#include "common/trace.h"
#include "common/wire.h"
#include "platform/types.h"

struct Range {
  u32 low = 1, high = 0;  // holds nothing until filled
  u32 step = 1;
  constexpr bool holds(u32 value) const { return low <= value && value <= high && (value - low) % step == 0; }
};

// The value of another field on which one depends; without a field it always holds.
struct Condition {
  void* (*in)(void* record) = nullptr;
  u32 width = 0;
  Range values = {};
};

// What an item says of one field.
struct FieldRow {
  u32 offset;                    // in the unit on the wire
  u32 initial = 0;               // default
  const char* initialText = "";  // of a text
  Range allowed[2] = {};         // the second one where there is a gap
  u16 code = 0;                  // of a failed check; 0 takes any value
  const char* complaint = "";
  bool cutAtEnd = false;  // a text: what stands behind its end on the wire is not taken
  Condition when = {};    // otherwise it is not checked, and stored as zero
};

inline constexpr u32 kLargestField = 2048;  // bytes

// A field: its row, its width, and how record and table row hold it.
struct Field : FieldRow {
  u32 width;
  bool text;  // bytes, padded with zeros; without a terminator when full
  void* (*in)(void* record);
  int (*get)(void* row, void* value);
  int (*put)(void* row, const void* value);

  void* at(void* record) const { return in(record); }
  const void* at(const void* record) const { return in(const_cast<void*>(record)); }
};

template <auto Member>
struct MemberOf;
template <class R, class T, T R::*Member>
struct MemberOf<Member> {
  using Value = T;
  static void* in(void* record) { return &(static_cast<R*>(record)->*Member); }
};

template <auto Member>
constexpr Condition when(Range values) {
  return {MemberOf<Member>::in, sizeof(typename MemberOf<Member>::Value), values};
}

// The functions of a table behind one signature; none for a pair that differs from the member in type.
template <class Value, auto Get, auto Put>
struct Column;
template <class T, class H, int (*Get)(H*, T*), int (*Put)(H*, T)>
struct Column<T, Get, Put> {
  static int get(void* row, void* value) { return Get(static_cast<H*>(row), static_cast<T*>(value)); }
  static int put(void* row, const void* v) { return Put(static_cast<H*>(row), *static_cast<const T*>(v)); }
};
template <std::size_t N, class H, class B, int (*Get)(H*, B*, u32), int (*Put)(H*, const B*, u32)>
struct Column<char[N], Get, Put> {
  static int get(void* row, void* value) { return Get(static_cast<H*>(row), static_cast<B*>(value), N); }
  static int put(void* row, const void* v) { return Put(static_cast<H*>(row), static_cast<const B*>(v), N); }
};

// Declares a field by its member and the functions of the table that holds it.
template <auto Member, auto Get, auto Put>
constexpr Field field(FieldRow row) {
  using Value = typename MemberOf<Member>::Value;
  static_assert(sizeof(Value) <= kLargestField);
  using C = Column<Value, Get, Put>;
  return {row, sizeof(Value), std::is_array_v<Value>, MemberOf<Member>::in, C::get, C::put};
}

// A field of a record that is not stored.
template <auto Member>
constexpr Field field(FieldRow row) {
  using Value = typename MemberOf<Member>::Value;
  return {row, sizeof(Value), std::is_array_v<Value>, MemberOf<Member>::in, nullptr, nullptr};
}

using Fields = std::span<const Field>;

// The fields of a unit on the wire. Rows that overlap, leave the unit, share a code or print wrongly do not compile.
struct Record {
  u32 unit;  // bytes on the wire; what no field covers is reserved
  Fields fields;
  consteval Record(u32 length, Fields list) : unit(length), fields(list) {
    u32 end = 0;
    for (const Field& f : list) {
      if (f.offset < end || f.offset + f.width > length) throw "a field overlaps or leaves the unit";
      if (f.code != 0 && !conversionsFit<u32>(f.complaint)) throw "a complaint prints the value";
      for (const Field& other : list)
        if (&other != &f && f.code != 0 && other.code == f.code) throw "two fields share a code";
      end = f.offset + f.width;
    }
  }
};

// Wire to record. The wire holds a whole unit.
void parseRecord(Fields fields, const u8* wire, void* record);
// Record to wire; reserved bytes are left as they are.
void encodeRecord(Fields fields, const void* record, u8* wire);
// The defaults of all fields.
void resetRecord(Fields fields, void* record);
// The field counts: what it depends on has the value for it.
bool applies(const Field& field, const void* record);
// What is stored of a field: its value, or zeros while it does not count.
const void* storedValue(const Field& field, const void* record);
// The first field outside its ranges, null if there is none; `value` gets what it holds.
const Field* firstBadField(Fields fields, const void* record, u32& value);
