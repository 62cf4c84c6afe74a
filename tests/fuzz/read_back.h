#pragma once
// What a manager has set, asked for by a manager.

#include <functional>
#include <string>
#include <vector>

#include "messages/layout.h"

namespace fuzz {

using Ask = std::function<std::vector<u8>(u16 id, messages::Bytes question)>;

// What of the fields that both have is answered otherwise than the frame, which was accepted, has set it; empty:
// nothing, or it can't be asked for so. Merges that are as they should be are told in read_back.cpp.
std::string readBack(u16 id, messages::Bytes frame, const Ask& ask);

}  // namespace fuzz
