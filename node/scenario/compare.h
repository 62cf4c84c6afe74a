#pragma once
// Expectations against a record.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reader.h"

namespace scenario {

// True if the record line is what is expected: the same text, with hex strings compared as bytes, where ".." stands for
// any one byte and "..*N" for N of them.
bool matchesLine(std::string_view expected, std::string_view line);

// A line as what stands ahead of its hex string and the bytes of that; 256 is any byte. Nothing if the line has none.
struct HexLine {
  std::string_view head;
  std::vector<u16> bytes;
};
std::optional<HexLine> readHexLine(std::string_view line);

// How expectations and record lie side by side, in order.
enum class Side {
  both,     // the expectation met the line
  covered,  // a line that the `...` of the expectation stands for
  missing,  // an expectation without its line
  surplus,  // a line that nothing expects
};
struct Pair {
  Side side = Side::both;
  std::size_t expectation = 0;  // of both, covered, missing
  std::size_t line = 0;         // of both, covered, surplus
};

// The alignment with the fewest missing and surplus lines.
std::vector<Pair> align(const std::vector<Expectation>& expectations, const std::vector<std::string>& record);

bool matches(const std::vector<Pair>& pairs);

// The alignment as text: "-" a missing, "+" a surplus line, " " a line in common, of which only those near are shown.
std::vector<std::string> diff(const std::vector<Pair>& pairs, const std::vector<Expectation>& expectations,
                              const std::vector<std::string>& record);

// The difference of two texts, line by line, in the same form; empty if there is none.
std::vector<std::string> diffLines(const std::vector<std::string>& before, const std::vector<std::string>& after);

}  // namespace scenario
