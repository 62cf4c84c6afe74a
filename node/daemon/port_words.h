#pragma once
// The word that shows a port at a glance.

#include <span>

#include "platform/command_line.h"

namespace msand {

std::span<const CommandElement> portWords();

}  // namespace msand
