#pragma once
// The running configuration, as a startup configuration.

#include <string>

namespace fuzz {

// Restarts the node with its running configuration. What fails of it, or differs behind it, and is not told of in
// replay.cpp; empty: nothing.
std::string replay();

}  // namespace fuzz
