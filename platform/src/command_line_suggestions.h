#pragma once
// Completion and help out of the syntaxes.

#include <string_view>
#include <vector>

#include "command_line_offers.h"
#include "command_line_table.h"
#include "host/terminal.h"

namespace command_line {

// See host::suggestions.
std::vector<host::Suggestion> suggest(const Node& node, Reading& reading, std::string_view line,
                                      const std::vector<OfferSource>& sources);

}  // namespace command_line
