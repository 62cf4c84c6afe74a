#pragma once
// A description file as a tree of lines: what is indented further belongs to the line above it. Behind a word that ends
// with
// ":" what belongs to a line may stand on it, parted by ";".

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/types.h"

namespace messages {

struct BadDescription : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Token {
  std::string text;
  bool quoted = false;

  bool is(std::string_view word) const { return !quoted && text == word; }
};

struct Line {
  std::string_view file;
  u32 number = 0;
  u32 indent = 0;
  std::vector<Token> tokens;  // at least one
  std::vector<Line> under;

  [[noreturn]] void bad(std::string_view why) const;  // throws BadDescription
};

// The lines that stand leftmost. Comments, from "#" to the end of the line, are left out.
std::vector<Line> readLines(std::string_view file, std::string_view text);

// Puts each word of `to` in the place of the word of `from` beside it, in a line and all that belongs to it.
void substitute(Line& line, const std::vector<std::string>& from, const std::vector<std::string>& to);

}  // namespace messages
