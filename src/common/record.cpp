#include "common/record.h"

#include <algorithm>
#include <cstring>

// A number field as the member holds it. Signed members keep their bits.
static u32 load(const Field& field, const void* record) {
  const void* at = field.at(record);
  switch (field.width) {
    case 1:
      return *static_cast<const u8*>(at);
    case 2:
      return *static_cast<const u16*>(at);
    default:
      return *static_cast<const u32*>(at);
  }
}

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
      std::memcpy(field.at(record), wire + field.offset, field.width);
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
    } else {
      store(field, record, field.initial);
    }
  }
}

const Field* firstBadField(Fields fields, const void* record, u32& value) {
  for (const Field& field : fields) {
    if (field.code == 0) continue;
    value = load(field, record);
    const auto holds = [value](Range range) { return range.low <= value && value <= range.high; };
    if (!std::ranges::any_of(field.allowed, holds)) return &field;
  }
  return nullptr;
}
