// Frames of the network manager. An input is a list of steps:
//   kind:1    0 SET, 1 SET with more to come, 2 GET; the rest of larger values counts
//   id:2      the message, or, if there is none of this id, one out of all
//   length:2  of the frame, at most what is left of the input
//   frame
// Numbers are big-endian.

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "fuzz_node.h"
#include "host/agent.h"
#include "requests.h"

namespace {

using Input = messages::Bytes;

Input take(Input& input, std::size_t size) {
  const Input taken = input.first(std::min(size, input.size()));
  input = input.subspan(taken.size());
  return taken;
}

u16 takeNumber(Input& input) {
  unsigned number = 0;
  for (const u8 byte : take(input, 2)) number = number << 8 | byte;
  return static_cast<u16>(number);
}

u16 announcedId(u16 wanted) {
  static const std::vector<host::Announced> all = host::announcedMessages();
  const bool known = std::ranges::any_of(all, [=](const host::Announced& one) { return one.id == wanted; });
  return known ? wanted : all[wanted % all.size()].id;
}

}  // namespace

// What refusals leave is looked at with FUZZ_HOLD_STORES in the environment alone: it may be more that is told so.
extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  static const fuzz::Looks looks{.stores = std::getenv("FUZZ_HOLD_STORES") != nullptr, .readBack = true};
  std::vector<u16> used;
  for (Input input(data, size); !input.empty();) {
    const auto verb = static_cast<fuzz::Verb>(take(input, 1).front() % 3);
    const u16 id = announcedId(takeNumber(input));
    const std::size_t length = takeNumber(input);
    fuzz::request(verb, id, take(input, length), looks);
    if (std::ranges::find(used, id) == used.end()) used.push_back(id);
  }
  std::ranges::for_each(used, fuzz::finish);
  fuzz::checkAtRest();
  return 0;
}
