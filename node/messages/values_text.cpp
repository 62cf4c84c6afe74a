#include "values_text.h"

#include <fmt/format.h>

namespace messages {

void addPart(std::string& text, const std::string& part) {
  if (!part.empty()) text += (text.empty() ? "" : ", ") + part;
}

static std::string rangeText(const Range& range) {
  const Range open;
  if (range.low == open.low) return fmt::format("up to {}", range.high);
  if (range.high == open.high) return fmt::format("from {}", range.low);
  return range.low == range.high ? fmt::format("{}", range.low) : fmt::format("{} to {}", range.low, range.high);
}

std::string valuesText(const Field& field) {
  std::string text;
  if (field.kind == Kind::text) addPart(text, "text");
  if (field.kind == Kind::scaled) addPart(text, "zero, decimals, value");
  if (field.kind == Kind::number && field.isSigned) addPart(text, "signed");
  if (field.order == Order::little) addPart(text, "little-endian");
  if (field.order == Order::host) addPart(text, "in the processor's order");
  if (field.fixed)
    addPart(text, field.amount.source == Amount::kRest ? "the bytes behind it" : "always " + field.amount.text);
  for (const Word& word : field.words) addPart(text, fmt::format("{} {}", word.value, word.text));
  if (field.open && !field.words.empty()) addPart(text, "or a number");
  for (const Range& range : field.ranges) addPart(text, rangeText(range));
  if (!field.unit.empty())
    addPart(text, field.divisor == 1 ? field.unit : fmt::format("in 1/{} {}", field.divisor, field.unit));
  addPart(text, field.note);
  return text;
}

}  // namespace messages
