#include "common/record.h"

#include <algorithm>
#include <cstring>

// A number as a member holds it. Signed members keep their bits.
static u32 load(const void* at, u32 width) {
  switch (width) {
    case 1:
      return *static_cast<const u8*>(at);
    case 2:
      return *static_cast<const u16*>(at);
    default:
      return *static_cast<const u32*>(at);
  }
}

static u32 load(const Field& field, const void* record) { return load(field.at(record), field.width); }

static void store(const Field& field, void* record, u32 value) {
  void* at = field.at(record);
  switch (field.width) {
    case 1:
      *static_cast<u8*>(at) = static_cast<u8>(value);
      break;
    case 2:
      *static_cast<u16*>(at) = static_cast<u16>(value);
      break;
    default:
      *static_cast<u32*>(at) = value;
  }
}

void parseRecord(Fields fields, const u8* wire, void* record) {
  for (const Field& field : fields) {
    if (field.text) {
      char* text = static_cast<char*>(field.at(record));
      std::memcpy(text, wire + field.offset, field.width);
      const u32 length = field.cutAtEnd ? static_cast<u32>(strnlen(text, field.width)) : field.width;
      std::memset(text + length, 0, field.width - length);
    } else {
      store(field, record, getNumber(wire + field.offset, field.width));
    }
  }
}

void encodeRecord(Fields fields, const void* record, u8* wire) {
  for (const Field& field : fields) {
    if (field.text) {
      std::memcpy(wire + field.offset, field.at(record), field.width);
    } else {
      putNumber(wire + field.offset, field.width, load(field, record));
    }
  }
}

void resetRecord(Fields fields, void* record) {
  for (const Field& field : fields) {
    if (field.text) {
      std::memset(field.at(record), 0, field.width);
      std::memcpy(field.at(record), field.initialText,
                  std::min<std::size_t>(std::strlen(field.initialText), field.width));
    } else {
      store(field, record, field.initial);
    }
  }
}

bool applies(const Field& field, const void* record) {
  const Condition& when = field.when;
  return when.in == nullptr || when.values.holds(load(when.in(const_cast<void*>(record)), when.width));
}

const void* storedValue(const Field& field, const void* record) {
  alignas(u32) static constexpr u8 kZeros[kLargestField] = {};
  return applies(field, record) ? field.at(record) : kZeros;
}

const Field* firstBadField(Fields fields, const void* record, u32& value) {
  for (const Field& field : fields) {
    if (field.code == 0 || !applies(field, record)) continue;
    value = load(field, record);
    const auto holds = [value](Range range) { return range.holds(value); };
    if (!std::ranges::any_of(field.allowed, holds)) return &field;
  }
  return nullptr;
}
