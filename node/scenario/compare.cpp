#include "compare.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <ranges>

#include "text.h"

namespace scenario {

namespace {

constexpr u16 kAnyByte = 256;
constexpr std::size_t kMostCells = 100'000'000;  // of an alignment, a byte each
constexpr std::size_t kContext = 3;

using Pattern = std::vector<u16>;  // bytes, or kAnyByte

std::optional<u16> readPair(std::string_view pair) {
  if (pair == "..") return kAnyByte;
  u16 byte = 0;
  const char* const end = pair.data() + pair.size();
  const auto [stop, error] = std::from_chars(pair.data(), end, byte, 16);
  return pair.size() == 2 && error == std::errc() && stop == end ? std::optional(byte) : std::nullopt;
}

// A word of pairs; "*N" behind the last one repeats it.
bool readHexWord(std::string_view word, Pattern& pattern) {
  while (!word.empty()) {
    const auto byte = readPair(word.substr(0, 2));
    if (!byte) return false;
    word.remove_prefix(2);
    std::size_t count = 1;
    if (word.starts_with('*')) {
      const char* const end = word.data() + word.size();
      const auto [stop, error] = std::from_chars(word.data() + 1, end, count);
      if (error != std::errc() || stop != end || count > 64u << 20) return false;
      word = {};
    }
    pattern.insert(pattern.end(), count, *byte);
  }
  return true;
}

std::optional<Pattern> readHex(std::string_view text) {
  Pattern pattern;
  if (text == "-") return pattern;
  if (text.empty()) return std::nullopt;
  for (const auto part : std::views::split(text, ' '))
    if (!readHexWord({part.begin(), part.end()}, pattern)) return std::nullopt;
  return pattern;
}

bool matchesHex(std::string_view expected, std::string_view actual) {
  if (expected == actual) return true;
  const auto wanted = readHex(expected);
  const auto given = wanted ? readHex(actual) : std::nullopt;
  return given && std::ranges::equal(*wanted, *given, [](u16 a, u16 b) { return a == kAnyByte || a == b; });
}

std::size_t behindWords(std::string_view line, std::size_t words) {
  std::size_t at = 0;
  for (; words > 0 && at < line.size(); --words) at = std::min(line.find(' ', at), line.size() - 1) + 1;
  return at;
}

// Where the hex string of a record line begins; none in lines that hold no hex, or hold it in fields.
std::optional<std::size_t> hexBegin(std::string_view line) {
  const std::string_view mark = firstWord(line);
  if (mark == "ngn" || mark == "ngn?") return behindWords(line, 2);
  if (mark == "reply" || mark == "attr") return behindWords(line, 1);
  if (mark == "profile") return std::min(line.rfind('"'), line.size() - 1) + 1;
  if (mark.find("pon") != mark.npos) return behindWords(line, 3);
  return std::nullopt;
}

bool isName(std::string_view text) {
  return !text.empty() &&
         std::ranges::all_of(text, [](char c) { return std::isalnum(static_cast<u8>(c)) || c == '_'; });
}

// Where the field behind the one at `at` begins: behind a blank, a name and "=".
std::size_t nextField(std::string_view line, std::size_t at) {
  for (auto blank = line.find(' ', at); blank != line.npos; blank = line.find(' ', blank + 1)) {
    const auto equals = line.find('=', blank);
    if (equals != line.npos && isName(line.substr(blank + 1, equals - blank - 1))) return blank + 1;
  }
  return line.size() + 1;
}

bool matchesField(std::string_view expected, std::string_view actual) {
  const auto value = expected.find('=') + 1;
  return expected.substr(0, value) == actual.substr(0, value) &&
         matchesHex(expected.substr(value), actual.substr(value));
}

bool matchesRow(std::string_view expected, std::string_view actual) {
  while (!expected.empty() && !actual.empty()) {
    const auto expectedEnd = nextField(expected, 0);
    const auto actualEnd = nextField(actual, 0);
    if (!matchesField(expected.substr(0, expectedEnd - 1), actual.substr(0, actualEnd - 1))) return false;
    expected.remove_prefix(std::min(expectedEnd, expected.size()));
    actual.remove_prefix(std::min(actualEnd, actual.size()));
  }
  return expected.empty() && actual.empty();
}

bool isGap(std::string_view expected) { return expected.starts_with(kAnyLines); }

// True if the `...` may stand for the line.
bool covers(std::string_view gap, std::string_view line) {
  if (!gap.starts_with(kAnyLinesBut)) return true;
  const std::string_view mark = line.starts_with('|') ? "|" : firstWord(line);
  for (const auto part : std::views::split(gap.substr(kAnyLinesBut.size()), ' '))
    if (mark == std::string_view(part.begin(), part.end())) return false;
  return true;
}

// The steps of an alignment.
enum Step : u8 { kMatch, kCover, kLeave, kMissing, kSurplus };  // kLeave: on from a gap

// The cheapest way through the table of expectations and lines, by dynamic programming: missing and surplus lines
// cost 1.
class Alignment {
 public:
  Alignment(std::span<const Expectation> expectations, std::span<const std::string> record)
      : expectations_(expectations), record_(record), steps_((expectations.size() + 1) * (record.size() + 1)) {
    std::vector<u32> below(record.size() + 1);
    std::vector<u32> row(record.size() + 1);
    for (std::size_t i = expectations.size() + 1; i-- > 0;) {
      for (std::size_t j = record.size() + 1; j-- > 0;) row[j] = choose(i, j, row, below);
      std::swap(row, below);
    }
  }

  std::vector<Pair> pairs(std::size_t offset) const {
    std::vector<Pair> found;
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < expectations_.size() || j < record_.size()) {
      const Step step = static_cast<Step>(steps_[i * (record_.size() + 1) + j]);
      if (step != kLeave) found.push_back({kSides[step], i + offset, j + offset});
      if (step == kMatch || step == kLeave || step == kMissing) ++i;
      if (step == kMatch || step == kCover || step == kSurplus) ++j;
    }
    return found;
  }

 private:
  static constexpr Side kSides[] = {Side::both, Side::covered, Side::both, Side::missing, Side::surplus};

  // The cost from expectation i and line j to the end; `below` holds the costs of i + 1, `row` those of i behind j.
  u32 choose(std::size_t i, std::size_t j, const std::vector<u32>& row, const std::vector<u32>& below) {
    u8& step = steps_[i * (record_.size() + 1) + j];
    const bool expectation = i < expectations_.size();
    const bool line = j < record_.size();
    u32 cost = ~u32{0};
    const auto offer = [&](Step one, u32 price) {
      if (price < cost) step = one, cost = price;
    };
    if (!expectation && !line) return 0;
    if (expectation && isGap(expectations_[i].text)) {
      if (line && covers(expectations_[i].text, record_[j])) offer(kCover, row[j + 1]);
      offer(kLeave, below[j]);
    } else if (expectation) {
      if (line && matchesLine(expectations_[i].text, record_[j])) offer(kMatch, below[j + 1]);
      offer(kMissing, below[j] + 1);
    }
    if (line) offer(kSurplus, row[j + 1] + 1);
    return cost;
  }

  std::span<const Expectation> expectations_;
  std::span<const std::string> record_;
  std::vector<u8> steps_;
};

std::string shown(const Pair& pair, const std::vector<Expectation>& expectations,
                  const std::vector<std::string>& record) {
  switch (pair.side) {
    case Side::missing:
      return "-" + expectations[pair.expectation].text;
    case Side::surplus:
      return "+" + record[pair.line];
    default:
      return " " + record[pair.line];
  }
}

bool differs(const Pair& pair) { return pair.side == Side::missing || pair.side == Side::surplus; }

}  // namespace

bool matchesLine(std::string_view expected, std::string_view line) {
  if (expected == line) return true;
  const std::string_view mark = firstWord(expected);
  if (mark != firstWord(line)) return false;
  if (mark == "row" || mark == "out") return matchesRow(expected, line);
  const auto expectedHex = hexBegin(expected);
  const auto lineHex = hexBegin(line);
  return expectedHex && lineHex && expected.substr(0, *expectedHex) == line.substr(0, *lineHex) &&
         matchesHex(expected.substr(*expectedHex), line.substr(*lineHex));
}

std::optional<HexLine> readHexLine(std::string_view line) {
  const auto begin = hexBegin(line);
  auto bytes = begin ? readHex(line.substr(*begin)) : std::nullopt;
  if (!bytes) return {};
  return HexLine{line.substr(0, *begin), std::move(*bytes)};
}

std::vector<Pair> align(const std::vector<Expectation>& expectations, const std::vector<std::string>& record) {
  std::span<const Expectation> wanted(expectations);
  std::span<const std::string> given(record);
  if (wanted.size() == 1 && wanted[0].text == kNothing && given.empty()) return {};
  std::vector<Pair> pairs;
  const auto alike = [](const Expectation& one, const std::string& line) {
    return !isGap(one.text) && matchesLine(one.text, line);
  };
  while (!wanted.empty() && !given.empty() && alike(wanted.front(), given.front())) {
    pairs.push_back({Side::both, pairs.size(), pairs.size()});
    wanted = wanted.subspan(1);
    given = given.subspan(1);
  }
  const std::size_t offset = pairs.size();
  if ((wanted.size() + 1) > kMostCells / (given.size() + 1)) {
    for (std::size_t i = 0; i < wanted.size(); ++i) pairs.push_back({Side::missing, i + offset, 0});
    for (std::size_t j = 0; j < given.size(); ++j) pairs.push_back({Side::surplus, 0, j + offset});
    return pairs;
  }
  const std::vector<Pair> rest = Alignment(wanted, given).pairs(offset);
  pairs.insert(pairs.end(), rest.begin(), rest.end());
  return pairs;
}

bool matches(const std::vector<Pair>& pairs) { return std::ranges::none_of(pairs, differs); }

std::vector<std::string> diff(const std::vector<Pair>& pairs, const std::vector<Expectation>& expectations,
                              const std::vector<std::string>& record) {
  std::vector<bool> near(pairs.size());
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    if (!differs(pairs[i])) continue;
    const std::size_t begin = i - std::min(i, kContext);
    const std::size_t end = std::min(i + kContext + 1, pairs.size());
    for (std::size_t shownAt = begin; shownAt < end; ++shownAt) near[shownAt] = true;
  }
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    if (near[i])
      lines.push_back(shown(pairs[i], expectations, record));
    else if (!lines.empty() && near[i - 1])
      lines.emplace_back("  ...");
  }
  if (!lines.empty() && !near.back()) lines.pop_back();
  return lines;
}

std::vector<std::string> diffLines(const std::vector<std::string>& before, const std::vector<std::string>& after) {
  std::vector<Expectation> expectations;
  for (const std::string& line : before) expectations.push_back({0, "| " + line});
  std::vector<std::string> record;
  for (const std::string& line : after) record.push_back("| " + line);
  const auto pairs = align(expectations, record);
  if (matches(pairs)) return {};
  std::vector<std::string> lines = diff(pairs, expectations, record);
  for (std::string& line : lines)
    if (!line.starts_with("  ...")) line.erase(1, 2);
  return lines;
}

}  // namespace scenario
