#pragma once
// The word that asks the module as a manager does, by the names of messages and their fields.

#include <span>

#include "platform/command_line.h"

namespace msand {

std::span<const CommandElement> getWords();

// Messages are offered behind "get", and the help of a command that shows what a message's GET answers names it.
void offerMessages();

}  // namespace msand
