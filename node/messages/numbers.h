#pragma once
// Numbers of a message, for those who read and write it.

#include <algorithm>
#include <bit>
#include <vector>

#include "layout.h"

namespace messages {

// The value in a scaled number, behind its two bytes.
inline const Field kScaledValue = [] {
  Field field;
  field.width = 4;
  field.isSigned = true;
  return field;
}();

inline bool isLittle(const Field& field) {
  return field.order == Order::little || (field.order == Order::host && std::endian::native == std::endian::little);
}

// As many bytes as the field has.
inline i64 readNumber(Bytes bytes, const Field& field) {
  u64 number = 0;
  if (isLittle(field))
    for (std::size_t i = bytes.size(); i-- > 0;) number = number << 8 | bytes[i];
  else
    for (const u8 byte : bytes) number = number << 8 | byte;
  const unsigned unused = 64 - 8 * static_cast<unsigned>(bytes.size());
  // The sign is drawn down by the shift of a signed number.
  return field.isSigned ? static_cast<i64>(number << unused) >> unused : static_cast<i64>(number);
}

inline void writeNumber(i64 number, const Field& field, std::vector<u8>& to) {
  for (unsigned i = 0; i < field.width; ++i) {
    const unsigned shift = 8 * (isLittle(field) ? i : field.width - 1u - i);
    to.push_back(static_cast<u8>(static_cast<u64>(number) >> shift));
  }
}

// Numbers that would not fit come out as the largest, so that no length follows from them.
inline i64 valueOf(const Amount& amount, const std::vector<i64>& registers, std::size_t left) {
  if (amount.source == Amount::kConstant) return amount.constant;
  const i64 base =
      amount.source == Amount::kRest ? static_cast<i64>(left) : registers[static_cast<std::size_t>(amount.source)];
  i64 value = 0;
  if (__builtin_mul_overflow(base, i64{amount.factor}, &value) ||
      __builtin_add_overflow(value, amount.constant, &value))
    return std::numeric_limits<i64>::max();
  return value;
}

inline bool holds(const Field& when, i64 value) {
  return std::ranges::any_of(when.values, [&](i64 other) {
    switch (when.compare) {
      case Compare::equal:
        return value == other;
      case Compare::less:
        return value < other;
      case Compare::atMost:
        return value <= other;
      case Compare::more:
        return value > other;
      case Compare::atLeast:
        return value >= other;
      case Compare::unequal:
        break;
    }
    return std::ranges::find(when.values, value) == when.values.end();
  });
}

}  // namespace messages
