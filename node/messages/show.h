#pragma once
// Messages as people read them.

#include <string>
#include <vector>

#include "decode.h"

namespace messages {

// A value with its word or unit: "dtmf", "6.0 dB", "\"gold\"", "0x8100".
std::string valueText(const Decoded& decoded, const Node& node);

// Every field with its offset, one a line, what belongs to another further to the right; without gaps that are zero.
// Problems follow.
std::vector<std::string> fieldLines(const Decoded& decoded);

// The same without offsets, and without what follows from the rest: constants, counts, slot and port of an item that
// begins with them.
std::vector<std::string> valueLines(const Decoded& decoded);

// What tells most on few lines: the fields of the message, then a line for each item of its list. Equal items share a
// line, long lists are cut.
std::vector<std::string> briefLines(const Decoded& decoded);

// How one of two messages of a layout differs from another: "FIELD: VALUE, not WANTED", in the order of the wanted one.
std::vector<std::string> differences(const Decoded& wanted, const Decoded& given);

// A message with a head: its name and length; of a brief one what fits on the same line. What is not described is shown
// in hex.
std::vector<std::string> describe(const Book& book, Road road, u16 id, Bytes bytes, bool full);

}  // namespace messages
