#pragma once
// Frames handed to the module in a turn, and told to the record of the session.

#include <vector>

#include "host/agent.h"

namespace msand {

// As host::agentSet and agentGet.
host::Answer recordedSet(u16 id, bool last, std::vector<u8>& frame);
host::Answer recordedGet(u16 id, std::vector<u8>& frame);

}  // namespace msand
