#pragma once
// The node that a fuzz target feeds.

#include "node.h"

namespace fuzz {

// It is started ahead of the first input, with a card of every family up; what it prints, logs and sends goes nowhere.
node::Node& theNode();

// Ends an input: whatever it was, no transaction, connection or pool block may be left. Aborts with what there is.
void checkAtRest();

}  // namespace fuzz
