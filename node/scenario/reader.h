#pragma once
// A scenario file: directives, each with what is expected of it.

#include <string>
#include <string_view>
#include <vector>

#include "player.h"

namespace scenario {

struct Expectation {
  u32 line = 0;
  std::string text;
};

struct Directive {
  u32 line = 0;  // where it begins
  u32 end = 0;   // its last line: a directive may be written over several
  std::string text;
  Action action;
  std::vector<Expectation> expectations;
};

struct Scenario {
  std::string name;                // of the file
  std::vector<std::string> lines;  // as they stand in it
  std::vector<Directive> directives;
};

struct Problem {
  u32 line = 0;
  std::string why;
};

// Reads a file's text. It is bad if problems are found: lines that are no comment, directive or expectation.
Scenario readScenario(std::string name, std::string_view text, std::vector<Problem>& problems);

// Expectations that are no record lines.
inline constexpr std::string_view kNothing = "(nothing)";
inline constexpr std::string_view kAnyLines = "...";
inline constexpr std::string_view kAnyLinesBut = "... no ";  // followed by marks

}  // namespace scenario
