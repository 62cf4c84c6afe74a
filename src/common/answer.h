#pragma once
// What a card or the voice side answers: where a field stands in it, and how a command shows it.
//
// A command that shows an answer is a table of its fields. The answer lies in a zeroed buffer, so a field that a short
// answer does not hold shows as zero or as an empty text.

#include <span>

#include "common/trace.h"
#include "common/wire.h"
#include "common/words.h"
#include "platform/command_line.h"

// The order of an answer's numbers: as on every wire, or as the processor keeps them.
enum class ByteOrder : u8 { big, host };

// A number of `width` bytes, 1 to 8.
u64 numberIn(WireIn answer, u32 offset, u32 width, ByteOrder order);

// The text of a scaled number, with two decimals: 6.5 of 00 01 00000041. Other than 0 to 5 decimals give 0.00. 0, or
// -24 for null. The text takes up to kScaledText bytes.
inline constexpr u32 kScaledText = 16;
int get_value_float_to_int(const u8* value, char* text);
// The same as a value to print, of what may be cut: then it is 0.00.
struct ScaledText {
  ScaledText(WireIn answer, u32 offset);
  char text[kScaledText];
};

enum class AnswerForm : u8 {
  number,
  scaled,   // 6 bytes: any, the decimals, an i32
  word,     // the text of a number
  text,     // up to `width` bytes; a full one has no end
  place,    // u16 slot, u16 port
  date,     // u16 year; a byte each of month, day, hour, minute, second
  mac,      // 6 bytes
  address,  // u32 type, 16 bytes, u32 mask
};

// A label and its value, in the columns of a printf format; values of one line follow each other.
struct ShownField {
  const char* format;
  const char* label;
  AnswerForm form;
  u16 offset;
  u8 width = 0;
  std::span<const Word> words = {};
  const char* otherwise = nullptr;  // for a number that has no word
};

template <class... Values>
consteval ShownField shownField(ShownField field) {
  if (!conversionsFit<const char*, Values...>(field.format)) throw "the conversions do not fit the field";
  return field;
}
consteval ShownField shownNumber(const char* format, const char* label, u16 offset, u8 width = 4) {
  return shownField<u32>({format, label, AnswerForm::number, offset, width});
}
consteval ShownField shownScaled(const char* format, const char* label, u16 offset) {
  return shownField<const char*>({format, label, AnswerForm::scaled, offset});
}
consteval ShownField shownWord(const char* format, const char* label, u16 offset, u8 width, std::span<const Word> words,
                               const char* otherwise = "N/A") {
  return shownField<const char*>({format, label, AnswerForm::word, offset, width, words, otherwise});
}
consteval ShownField shownText(const char* format, const char* label, u16 offset, u8 width) {
  return shownField<const char*>({format, label, AnswerForm::text, offset, width});
}
consteval ShownField shownPlace(const char* format, const char* label, u16 offset = 0) {
  return shownField<u32, u32>({format, label, AnswerForm::place, offset});
}
consteval ShownField shownDate(const char* format, const char* label, u16 offset) {
  return shownField<u32, u32, u32, u32, u32, u32>({format, label, AnswerForm::date, offset});
}
consteval ShownField shownMac(const char* format, const char* label, u16 offset) {
  return shownField<u32, u32, u32, u32, u32, u32>({format, label, AnswerForm::mac, offset});
}
// Label, type, "): ", address, and the mask if `masked`.
consteval ShownField shownAddress(const char* format, const char* label, u16 offset, bool masked) {
  const ShownField field{format, label, AnswerForm::address, offset};
  return masked ? shownField<const char*, const char*, const char*, u32>(field)
                : shownField<const char*, const char*, const char*>(field);
}

void showFields(Vty* vty, std::span<const ShownField> fields, WireIn answer, ByteOrder order);
