#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "arguments.h"
#include "text.h"

namespace scenario {

namespace {

constexpr std::size_t kMostBytes = 64u << 20;

[[noreturn]] void refuse(std::string_view word, std::string_view why) {
  throw BadLine(fmt::format("\"{}\" {}", word, why));
}

int digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool isHex(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return digit(c) >= 0; });
}

u8 byteAt(std::string_view digits, std::size_t at) {
  return static_cast<u8>(digit(digits[at]) << 4 | digit(digits[at + 1]));
}

void append(std::vector<u8>& bytes, std::size_t count, u8 byte) {
  if (count > kMostBytes - bytes.size()) throw BadLine(fmt::format("more than {} bytes", kMostBytes));
  bytes.insert(bytes.end(), count, byte);
}

void appendHex(std::vector<u8>& bytes, std::string_view word) {
  if (!isHex(word)) {
    constexpr std::string_view kForms[] = {"u8:", "u16:", "u32:", "i32:", "le16:", "le32:", "mac:", "ip:", "-"};
    const auto colon = word.find(':');
    throw unknownWord("kind of bytes", colon == word.npos ? word : word.substr(0, colon + 1), kForms);
  }
  if (word.size() % 2 != 0) refuse(word, "has an odd number of hex digits");
  for (std::size_t i = 0; i < word.size(); i += 2) append(bytes, 1, byteAt(word, i));
}

void appendRun(std::vector<u8>& bytes, std::string_view word, std::size_t star) {
  if (star != 2 || !isHex(word.substr(0, 2))) refuse(word, "is no run: two hex digits, *, a number");
  const i64 count = parseNumber("run", word.substr(star + 1), 0, kMostBytes);
  append(bytes, static_cast<std::size_t>(count), byteAt(word, 0));
}

// An integer of the scenario's kinds.
struct IntegerKind {
  std::string_view prefix;
  u32 bytes;
  bool little;
  i64 low, high;
};
constexpr IntegerKind kIntegers[] = {
    {"u8:", 1, false, 0, 0xff},    {"u16:", 2, false, 0, 0xffff},     {"u32:", 4, false, 0, 0xffffffff},
    {"le16:", 2, true, 0, 0xffff}, {"le32:", 4, true, 0, 0xffffffff}, {"i32:", 4, false, -0x80000000ll, 0xffffffff},
};

bool appendInteger(std::vector<u8>& bytes, std::string_view word) {
  for (const IntegerKind& kind : kIntegers) {
    if (!word.starts_with(kind.prefix)) continue;
    const std::string_view text = word.substr(kind.prefix.size());
    const auto value = static_cast<u64>(parseNumber(word, text, kind.low, kind.high));
    for (u32 i = 0; i < kind.bytes; ++i) {
      const u32 place = kind.little ? i : kind.bytes - 1 - i;
      append(bytes, 1, static_cast<u8>(value >> (8 * place)));
    }
    return true;
  }
  return false;
}

// Parts `text` at `separator`; false unless it has `count` parts.
template <std::size_t count>
bool split(std::string_view text, char separator, std::array<std::string_view, count>& parts) {
  for (std::size_t i = 0; i < count; ++i) {
    const auto end = text.find(separator);
    if ((end == text.npos) != (i + 1 == count)) return false;
    parts[i] = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
  }
  return true;
}

void appendMac(std::vector<u8>& bytes, std::string_view word) {
  std::array<std::string_view, 6> parts;
  bool good = split(word.substr(4), '-', parts);
  for (const std::string_view part : parts) good = good && part.size() == 2 && isHex(part);
  if (!good) refuse(word, "is no mac:aa-bb-cc-dd-ee-ff");
  for (const std::string_view part : parts) append(bytes, 1, byteAt(part, 0));
}

void appendIp(std::vector<u8>& bytes, std::string_view word) {
  std::array<std::string_view, 4> parts;
  if (!split(word.substr(3), '.', parts)) refuse(word, "is no ip:10.0.0.1");
  for (const std::string_view part : parts) append(bytes, 1, static_cast<u8>(parseNumber(word, part, 0, 255)));
}

// Takes "text" or "text":N off the front of `left`.
void appendText(std::vector<u8>& bytes, std::string_view& left) {
  const auto end = left.find('"', 1);
  if (end == left.npos) refuse(left, "has no closing quote");
  const std::string_view text = left.substr(1, end - 1);
  left.remove_prefix(end + 1);
  const std::string_view tail = firstWord(left);
  left.remove_prefix(tail.size());
  std::size_t width = text.size();
  if (tail.starts_with(':'))
    width = static_cast<std::size_t>(parseNumber("width of a text", tail.substr(1), 0, kMostBytes));
  else if (!tail.empty())
    refuse(tail, "stands behind a text");
  if (text.size() > width) throw BadLine(fmt::format("\"{}\" is longer than {} bytes", text, width));
  for (const char c : text) append(bytes, 1, static_cast<u8>(c));
  append(bytes, width - text.size(), 0);
}

void appendWord(std::vector<u8>& bytes, std::string_view word) {
  if (const auto star = word.find('*'); star != word.npos)
    appendRun(bytes, word, star);
  else if (word.starts_with("mac:"))
    appendMac(bytes, word);
  else if (word.starts_with("ip:"))
    appendIp(bytes, word);
  else if (!appendInteger(bytes, word))
    appendHex(bytes, word);
}

}  // namespace

std::vector<u8> parseBytes(std::string_view text) {
  std::vector<u8> bytes;
  std::string_view left = text;
  bool any = false;
  bool dash = false;
  for (auto first = left.find_first_not_of(' '); first != left.npos; first = left.find_first_not_of(' ')) {
    left.remove_prefix(first);
    if (dash) refuse(text, "has bytes beside -");
    const std::string_view word = firstWord(left);
    if (word == "-" && !any) {
      dash = true;
      left.remove_prefix(1);
    } else if (left.starts_with('"')) {
      appendText(bytes, left);
    } else {
      appendWord(bytes, word);
      left.remove_prefix(word.size());
    }
    any = true;
  }
  if (!any) throw BadLine("bytes are missing; no bytes are written -");
  return bytes;
}

}  // namespace scenario
