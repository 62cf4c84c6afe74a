#pragma once
// The platform's words for flow rules and policies.

#include <span>

#include "platform/command_line.h"

namespace msand {

std::span<const CommandElement> flowWords();

}  // namespace msand
