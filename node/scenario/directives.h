#pragma once
// The directives: one table from their words to what they do.

#include <span>
#include <string_view>

#include "player.h"

namespace scenario {

// Reads a directive with its arguments. Throws BadLine.
Action readDirective(std::string_view line);

// The first words of all directives.
std::span<const std::string_view> directiveWords();

}  // namespace scenario
