#include "recorded_frames.h"

#include <fmt/format.h>

#include "host/hex.h"
#include "session_record.h"

namespace msand {

static std::string directiveOf(std::string_view verb, u16 id, const std::vector<u8>& frame) {
  return fmt::format("snmp {} {} {}", verb, id, frame.empty() ? "-" : host::hexText(frame));
}

host::Answer recordedSet(u16 id, bool last, std::vector<u8>& frame) {
  Doing doing([&] { return directiveOf(last ? "set" : "set-more", id, frame); });
  host::Answer answer = host::agentSet(id, last, &frame);
  doing.outcome([&](scenario::Outcome& outcome) { outcome.setAnswered(answer); });
  return answer;
}

host::Answer recordedGet(u16 id, std::vector<u8>& frame) {
  Doing doing([&] { return directiveOf("get", id, frame); });
  host::Answer answer = host::agentGet(id, &frame);
  doing.outcome([&](scenario::Outcome& outcome) { outcome.getAnswered(answer); });
  return answer;
}

}  // namespace msand
