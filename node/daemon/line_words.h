#pragma once
// The words about the lines behind the simulated DSL cards.

#include <span>
#include <string>
#include <string_view>

#include "cards/port.h"
#include "platform/command_line.h"

namespace msand {

std::span<const CommandElement> lineWords();

// The words that tell all of a line.
std::string wordsOf(const cards::Site& site);

// True for words behind "chassis" that tell of a line.
bool tellOfLine(std::string_view words);

}  // namespace msand
