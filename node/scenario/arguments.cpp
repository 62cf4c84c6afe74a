#include "arguments.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "host/chassis.h"
#include "text.h"

namespace scenario {

namespace {

template <class Integer>
bool parseDigits(std::string_view text, Integer& value, int base) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, base);
  return error == std::errc() && stop == end;
}

}  // namespace

BadLine unknownWord(std::string_view what, std::string_view word, std::span<const std::string_view> known) {
  return BadLine(fmt::format("no {} \"{}\"; the nearest word is \"{}\"", what, word, nearest(word, known)));
}

i64 parseNumber(std::string_view what, std::string_view text, i64 low, i64 high) {
  i64 value = 0;
  const bool hexadecimal = text.starts_with("0x");
  const std::string_view digits = hexadecimal ? text.substr(2) : text;
  const bool read = parseDigits(digits, value, hexadecimal ? 16 : 10) && !(hexadecimal && digits.starts_with('-'));
  if (!read) throw BadLine(fmt::format("\"{}\" is no number ({})", text, what));
  if (value < low || value > high) throw BadLine(fmt::format("{} {} is not within {} to {}", what, text, low, high));
  return value;
}

std::string_view Arguments::word(std::string_view what) {
  const auto first = left_.find_first_not_of(' ');
  if (first == left_.npos) throw BadLine(fmt::format("{} is missing", what));
  left_.remove_prefix(first);
  const std::string_view word = firstWord(left_);
  left_.remove_prefix(word.size());
  return word;
}

std::size_t Arguments::choice(std::initializer_list<std::string_view> words) {
  const std::string_view taken = word(fmt::format("one of {}", fmt::join(words, ", ")));
  const auto* const found = std::find(words.begin(), words.end(), taken);
  if (found == words.end()) throw unknownWord("word", taken, {words.begin(), words.size()});
  return static_cast<std::size_t>(found - words.begin());
}

i64 Arguments::number(std::string_view what, i64 low, i64 high) { return parseNumber(what, word(what), low, high); }

u16 Arguments::slot() {
  const auto slot = static_cast<u16>(number("slot", 1, 65535));
  if (slot > host::kSlots && slot != host::kControlUnit) throw BadLine(fmt::format("slot {} is not there", slot));
  return slot;
}

std::string_view Arguments::rest() {
  if (left_.starts_with(' ')) left_.remove_prefix(1);
  return std::exchange(left_, {});
}

std::vector<u8> Arguments::bytes() { return parseBytes(rest()); }

void Arguments::end() const {
  if (!empty()) throw BadLine(fmt::format("\"{}\" is too much", left_.substr(left_.find_first_not_of(' '))));
}

}  // namespace scenario
