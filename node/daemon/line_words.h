#pragma once
// The words about the lines behind the simulated DSL cards.

#include <span>
#include <string_view>

#include "platform/command_line.h"

namespace msand {

std::span<const CommandElement> lineWords();

// True for words behind "chassis" that tell of a line.
bool tellOfLine(std::string_view words);

}  // namespace msand
