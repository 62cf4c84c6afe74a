#pragma once
// The startup configuration: the running configuration in a file, as commands.

#include <string>

#include "node.h"

namespace msand {

// Replaces the file by what the node's module prints. Throws std::runtime_error; then the old file is as it was.
void writeStartup(node::Node& node, const std::string& path);

// Executes the file. A node without one starts empty, one whose file can't be read, too; both are told in the log, as
// is each line that fails.
void executeStartup(node::Node& node, const std::string& path);

}  // namespace msand
