#pragma once
// Text for people: what the node sends, and the lines it is sent.

#include <string>
#include <string_view>
#include <vector>

#include "protocol.h"

namespace ctl {

// The node's text for standard output: line ends as LF alone. `terminal`: other control characters are shown as \xNN,
// so that nothing in it but a colour can work on the reader's terminal.
std::string forDisplay(std::string_view text, bool terminal);

// What a descriptor shows: a terminal's width; of another file as many columns as COLUMNS says, or 80, and no colours.
wire::Screen screenOf(int descriptor);

// Why a line failed, in a few words.
std::string reasonOf(const wire::Result& result);
// True if it failed because it was not understood; then the result has the place.
bool notUnderstood(const wire::Result& result);

// A line that points at a byte of the line ahead of it, which stands behind a prompt in a terminal of this width, and
// says what was expected there.
std::string pointer(std::string_view prompt, std::string_view line, const wire::Result& result, std::size_t width);

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
