#pragma once
// What names this agent to managers of version 3, and how often it has started under that name: both last, so that a
// manager keeps the keys that it made for the name, and an old message is not taken for a new one.

#include <array>
#include <string>

#include "platform/types.h"

namespace msand {

struct Engine {
  std::array<u8, 13> id{};
  u32 boots = 1;
};

// Counts a start in the file, which is made with a new name if it is not there. The folder is made, too. A name whose
// starts can't be counted is not used again: then there is a new one for this time, and the log says why.
Engine startEngine(const std::string& file);

}  // namespace msand
