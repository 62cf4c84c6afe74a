#pragma once
// The word that draws a line's curves.

#include <span>

#include "platform/command_line.h"

namespace msand {

std::span<const CommandElement> plotWords();

}  // namespace msand
