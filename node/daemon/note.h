#pragma once
// msand's own lines in the node's log.

#include <string>
#include <string_view>

namespace msand {

void note(std::string_view text);      // progress
void warn(std::string_view text);      // something is not as it should be
void complain(std::string_view text);  // an error

// A text from outside, fit to be shown: control characters as \xNN, without the line ends around it.
std::string printable(std::string_view text);

}  // namespace msand
