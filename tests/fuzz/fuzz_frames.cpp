// Frames of the network manager. An input is a list of steps:
//   kind:1    0 SET, 1 SET with more to come, 2 GET; the rest of larger values counts
//   id:2      the message, or, if there is none of this id, one out of all
//   length:2  of the frame, at most what is left of the input
//   frame
// Numbers are big-endian.

#include <algorithm>
#include <span>

#include "fuzz_node.h"
#include "host/agent.h"

namespace {

using Input = std::span<const u8>;

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

// Whatever pieces of requests or replies a message still holds are asked for, so that nothing of it has to be left.
void finish(u16 id) {
  std::vector<u8> empty;
  host::agentSet(id, true, &empty);
  for (int piece = 0; piece < 32; ++piece) {
    empty.clear();
    const host::Answer answer = host::agentGet(id, &empty);
    if (!answer.reply || answer.last == 1) return;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  std::vector<u16> used;
  for (Input input(data, size); !input.empty();) {
    const u8 kind = take(input, 1).front() % 3;
    const u16 id = announcedId(takeNumber(input));
    const std::size_t length = takeNumber(input);
    const Input bytes = take(input, length);
    std::vector<u8> frame(bytes.begin(), bytes.end());
    if (kind == 2)
      host::agentGet(id, &frame);
    else
      host::agentSet(id, kind == 0, &frame);
    if (std::ranges::find(used, id) == used.end()) used.push_back(id);
  }
  std::ranges::for_each(used, finish);
  fuzz::checkAtRest();
  return 0;
}
