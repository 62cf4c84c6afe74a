#pragma once
// The node that a fuzz target feeds.

#include "messages/decode.h"
#include "node.h"

namespace fuzz {

struct Card {
  u16 slot;
  const char* type;
};
inline constexpr Card kCards[] = {{1, "adsl64"}, {2, "vdsl32-pots"}, {3, "pots32"}, {11, "eth8"}, {18, "adsl16"}};

// It is started ahead of the first input, with a card of every family up; what it prints, logs and sends goes nowhere.
node::Node& theNode();

// Aborts, with what differs, if a message is not as it is described.
void holdMessage(messages::Road road, u16 id, messages::Bytes bytes, messages::Fault worst);

// Ends an input: whatever it was, no transaction, connection or pool block may be left. Aborts with what there is.
void checkAtRest();

}  // namespace fuzz
