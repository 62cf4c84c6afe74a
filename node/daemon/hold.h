#pragma once
// For the tests of the programs: with MSAND_HOLD_MESSAGES in its environment a node holds all that the module lets out
// against the descriptions, and ends where something differs.

#include "messages/layout.h"

namespace msand {

bool holdsMessages();

// Does nothing unless messages are held.
void holdMessage(messages::Road road, u16 id, messages::Bytes bytes);

}  // namespace msand
