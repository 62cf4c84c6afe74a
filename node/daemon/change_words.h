#pragma once
// The words about a change: what it would do, what it has changed, and back from it.

#include <span>
#include <string_view>

#include "history.h"
#include "platform/command_line.h"

namespace msand {

std::span<const CommandElement> changeWords();

// ? and Tab offer the numbers of a history behind rollback, from now until the module is unloaded.
void offerHistory(const History& history);

// The line of a terminal whose lines are tried in the dark that ends this.
bool leavesShadow(std::string_view line);

}  // namespace msand
