#include "hold.h"

#include <fmt/format.h>

#include <cstdlib>

#include "messages/decode.h"
#include "note.h"

namespace msand {

bool holdsMessages() {
  static const bool holds = std::getenv("MSAND_HOLD_MESSAGES") != nullptr;
  return holds;
}

void holdMessage(messages::Road road, u16 id, messages::Bytes bytes) {
  if (!holdsMessages()) return;
  const auto wrong = messages::check(messages::book(), road, id, bytes, messages::Fault::word);
  for (const std::string& why : wrong) note(fmt::format("{} {} is not as described: {}", roadName(road), id, why));
  if (!wrong.empty()) std::abort();
}

}  // namespace msand
