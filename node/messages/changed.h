#pragma once
// What is new in messages that tell a whole state, beside those that told the one before.

#include <vector>

#include "layout.h"

namespace messages {

// A message of a state, as it goes out.
struct StateMessage {
  Road road = Road::gpon;
  u16 slot = 0;
  u16 id = 0;
  std::vector<u8> bytes;
};

// Those of `now` that `before` has not told, to each receiver in their order; of a list, the items alone that are new
// or other than they were.
std::vector<StateMessage> changedMessages(const std::vector<StateMessage>& before,
                                          const std::vector<StateMessage>& now);

// Receivers, by slot and message, that `before` told of more items than `now` does: nothing in a state says that
// something has gone.
struct Forgotten {
  u16 slot = 0;
  u16 id = 0;
};
std::vector<Forgotten> forgottenBy(const std::vector<StateMessage>& before, const std::vector<StateMessage>& now);

}  // namespace messages
