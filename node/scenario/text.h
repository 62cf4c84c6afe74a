#pragma once
// Texts as they stand in a record.

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace scenario {

// Cuts a printed text behind each line feed. A line that ends with CR LF comes without them; one that ends otherwise
// shows how: "\n" for a bare line feed, "\c" for none; a carriage return elsewhere is "\r".
std::vector<std::string> terminalLines(std::string_view text);

// A log text on one line: without the line ends at its beginning and its end, others as "\r" and "\n".
std::string logText(std::string_view text);

// "MARK TEXT", the mark alone for an empty text.
std::string marked(std::string_view mark, std::string_view text);

// The one of `words` with the fewest letters to change; empty without words.
std::string_view nearest(std::string_view word, std::span<const std::string_view> words);

// The first word of a line: what stands ahead of its first blank.
std::string_view firstWord(std::string_view line);

}  // namespace scenario
