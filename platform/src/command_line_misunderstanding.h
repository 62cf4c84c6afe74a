#pragma once
// Where a line is not understood, and what could stand there.

#include <string_view>

#include "command_line_table.h"
#include "host/terminal.h"

namespace command_line {

// See host::misunderstanding.
host::Misunderstanding explain(const Node& node, Reading& reading, std::string_view line);

}  // namespace command_line
