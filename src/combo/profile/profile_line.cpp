#include "combo/profile/profile_line.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

#include "combo/profile/profile_kind.h"
#include "platform/command_line.h"

// --- Numbers ---

double typedNumber(const char* text) {
  // In memory it is rounded to a double, also where registers hold more.
  const volatile double number = std::atof(text);
  return number;
}

i32 scaled(double number, u8 decimals) {
  double scale = 1;
  for (u8 i = 0; i < decimals; ++i) scale *= 10;
  const volatile double product = number * scale;
  const double value = product;
  constexpr i32 least = std::numeric_limits<i32>::min(), most = std::numeric_limits<i32>::max();
  return std::isnan(value) ? least : static_cast<i32>(std::clamp<double>(value, least, most));
}

bool within(const ProfileField& field, const ValueRange& range, double number) {
  return number >= unscaled(field, range.low) && number <= unscaled(field, range.high);
}

// A number that the field's bytes do not hold becomes their largest, which no check takes, so that it is not cut to
// one that would pass.
static i32 held(const ProfileField& field, i32 number) {
  if (field.width != 2) return number;
  return number >= 0 && number <= 0xFFFF ? number : 0xFFFF;
}

// --- Read ---

static std::optional<u32> valueOfAnyCase(std::span<const Word> words, std::string_view text) {
  const auto same = [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
  };
  for (const Word& word : words) {
    if (std::ranges::equal(std::string_view(word.text), text, same)) return word.value;
  }
  return std::nullopt;
}

// The number that stands for what was typed; nothing for what is refused.
static std::optional<i32> valueOf(const LineValue& value, const char* text) {
  const ProfileField& field = *value.field;
  if (!value.words.empty()) {
    const auto word = valueOfAnyCase(value.words, text);
    return word ? std::optional(static_cast<i32>(*word)) : std::nullopt;
  }
  if (field.decimals != 0) {
    const double number = typedNumber(text);
    if (value.refusal != nullptr && !within(field, field.allowed[0], number)) return std::nullopt;
    return scaled(number, field.decimals);
  }
  const i32 number = bep_atoiEx(text);
  if (value.refusal != nullptr && !allows(field, number)) return std::nullopt;
  return held(field, number);
}

int readLine(const ProfileLine& line, Vty* vty, int argc, char** argv, void* values) {
  int taken = 0;
  for (const LineValue& value : line.values) {
    const bool typed = taken < argc;
    if (!holds(value.field->when, values)) {
      if (typed) return complain(vty, value.surplus);
      if (value.otherwise == Otherwise::initial) setField(*value.field, values, value.field->initial);
      continue;
    }
    if (!typed) return complain(vty, value.missing);
    const auto number = valueOf(value, argv[taken++]);
    if (!number) return complain(vty, value.refusal != nullptr ? value.refusal : "unknown command");
    setField(*value.field, values, *number);
  }
  const auto good = [values](const FieldOrder& order) { return inOrder(order, values); };
  return std::ranges::all_of(line.orders, good) ? 0 : complain(vty, line.orderRefusal);
}

// --- Edit ---

bool applyLine(const ProfileLine& line, void* item, const void* values, bool force) {
  const auto taken = [values](const LineValue& value) {
    return value.otherwise != Otherwise::kept || holds(value.field->when, values);
  };
  const auto differs = [&](const LineValue& value) {
    return taken(value) && fieldOf(*value.field, item) != fieldOf(*value.field, values);
  };
  const bool changed = std::ranges::any_of(line.values, differs);
  if (!changed && !force) return false;
  for (const LineValue& value : line.values) {
    if (taken(value)) replacePart({value.field->at, value.field->width}, item, values);
  }
  return true;
}

// --- Print ---

void printLine(const ProfileLine& line, Vty* vty, const void* item) {
  const auto counts = [item](const LineValue& value) { return holds(value.field->when, item); };
  const auto differs = [&](const LineValue& value) {
    return counts(value) && fieldOf(*value.field, item) != value.field->initial;
  };
  if (!line.always && std::ranges::none_of(line.values, differs)) return;
  vty_out(vty, "%s", line.head);
  for (const LineValue& value : line.values) {
    if (!counts(value)) continue;
    const i32 number = fieldOf(*value.field, item);
    if (!value.words.empty()) {
      vty_out(vty, " %s %s", value.word, textOf(value.words, static_cast<u32>(number), ""));
    } else if (value.field->decimals != 0) {
      vty_out(vty, " %s %.*f", value.word, value.field->decimals, unscaled(*value.field, number));
    } else {
      vty_out(vty, " %s %d", value.word, number);
    }
  }
  vty_out(vty, "%s%s", line.end, "\r\n");
}
