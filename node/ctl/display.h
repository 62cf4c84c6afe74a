#pragma once
// Text for people: what the node sends, and the lines it is sent.

#include <string>
#include <string_view>
#include <vector>

#include "protocol.h"

namespace ctl {

// The node's text for standard output: line ends as LF alone. `terminal`: other control characters are shown as \xNN,
// so that nothing in it can work on the reader's terminal.
std::string forDisplay(std::string_view text, bool terminal);

// Why a line failed, in a few words.
std::string reasonOf(wire::Result result);

// A row of the node's suggestions.
struct Suggestion {
  std::string_view word;  // "<...>": a parameter, or the end of the line
  std::string_view help;
  bool isKeyword() const { return !word.empty() && word.front() != '<'; }
};
std::vector<Suggestion> readSuggestions(std::string_view rows);

// What Tab adds behind the cursor: what the keywords that begin with the word being typed have in common, and a blank
// if there is one only. Empty: nothing to add.
std::string completion(std::string_view lineToCursor, const std::vector<Suggestion>& suggestions);

// True if the cursor behind this line stands in a text in quotes.
bool insideQuotes(std::string_view lineToCursor);

// The suggestions below each other with their help, lines end in CR LF.
std::string helpTable(const std::vector<Suggestion>& suggestions);

}  // namespace ctl
