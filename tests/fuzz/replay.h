#pragma once
// The running configuration, as a startup configuration.

#include <string>

#include "platform/types.h"

namespace fuzz {

// Restarts the node with its running configuration. What fails of it, or differs behind it, and is not told of in
// replay.cpp; empty: nothing.
std::string replay();

// Those of which all lines could be compared: none of them spoils what stands behind it.
extern u64 comparedReplays;

}  // namespace fuzz
