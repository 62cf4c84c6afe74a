#pragma once
// The other ends of the messages.

#include "cards/dsl_cards.h"

namespace msand {

// As long as it lives, DSL cards hear what they are sent and tell of the lines behind their ports; all others answer
// plainly. There is one at a time.
struct Answering {
  explicit Answering(cards::DslCards& dsl);
  ~Answering();
  Answering(const Answering&) = delete;
  Answering& operator=(const Answering&) = delete;
};

}  // namespace msand
