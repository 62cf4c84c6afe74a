// Frames of the network manager. An input is a list of steps:
//   kind:1    0 SET, 1 SET with more to come, 2 GET; the rest of larger values counts
//   id:2      the message, or, if there is none of this id, one out of all
//   length:2  of the frame, at most what is left of the input
//   frame
// Numbers are big-endian.

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <span>
#include <vector>

#include "fuzz_node.h"
#include "host/agent.h"
#include "stores.h"

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

enum Kind { SET, SET_MORE, GET };

// What the module answers, and what it took from a manager, is as it is described. Pieces are left out: none of them is
// whole.
void holdAnswer(Kind kind, u16 id, Input frame, Input reply) {
  static std::set<u16> inPieces;
  if (kind == SET_MORE) inPieces.insert(id);
  if (kind == SET_MORE || reply.empty()) return;
  fuzz::holdMessage(kind == GET ? messages::Road::getReply : messages::Road::setReply, id, reply,
                    messages::Fault::word);
  const bool whole = kind == GET || inPieces.erase(id) == 0;
  constexpr u8 kDone[] = {0, 0, 0, 1};
  if (whole && reply.size() >= 4 && std::ranges::equal(reply.first<4>(), kDone))
    fuzz::holdMessage(kind == GET ? messages::Road::get : messages::Road::set, id, frame, messages::Fault::range);
}

// Many lists are stored record by record, and end at one that is refused: those ahead of it stay. So a request is held
// that has one record, as its count says, and came in one piece. An alarm profile's id stays at its port though there
// is no such profile. With FUZZ_HOLD_STORES in the environment alone: there may be more that is told so.
bool isSingle(Kind kind, u16 id, Input frame) {
  static const bool holds = std::getenv("FUZZ_HOLD_STORES") != nullptr;
  static std::set<u16> inPieces;
  constexpr std::size_t kCount = 32;
  constexpr u16 kAlarmAttachment = 2824;
  if (!holds || id == kAlarmAttachment) return false;
  if (kind == SET_MORE) inPieces.insert(id);
  if (kind != SET || inPieces.erase(id) != 0) return false;
  return frame.size() < kCount + 4 || (std::ranges::count(frame.subspan(kCount, 3), 0) == 3 && frame[kCount + 3] <= 1);
}

// A request that is refused has changed nothing that is stored.
void holdStores(u16 id, Input reply, u64 before) {
  constexpr u8 kRefused[] = {0, 0, 0, 0x41};
  if (reply.size() < 4 || !std::ranges::equal(reply.first<4>(), kRefused) || fuzz::storesDigest() == before) return;
  dprintf(STDERR_FILENO, "message %u was refused, and what is stored has changed\n", id);
  std::abort();
}

// Calls the hook with a frame that ends where its memory ends; true when the message has told all it has to tell.
bool request(Kind kind, u16 id, Input bytes) {
  static const host::Hooks hooks = host::agentHooks();
  static const std::unique_ptr<u8[]> reply(new u8[host::kReplyCapacity]);
  const std::unique_ptr<u8[]> frame(new u8[bytes.size()]);
  std::ranges::copy(bytes, frame.get());
  const i32 length = static_cast<i32>(bytes.size());
  const bool held = isSingle(kind, id, bytes);
  const u64 before = held ? fuzz::storesDigest() : 0;
  std::memset(reply.get(), 0, host::kReplyCapacity);
  u32 replyLength = 0;
  u8 last = 0;
  if (kind == GET)
    hooks.read(id, &last, frame.get(), length, reply.get(), &replyLength, nullptr, nullptr);
  else
    hooks.write(id, kind == SET ? 1 : 0, frame.get(), length, reply.get(), &replyLength, nullptr, nullptr);
  if (replyLength > host::kReplyCapacity) std::abort();
  if (held) holdStores(id, {reply.get(), replyLength}, before);
  if (kind != GET || last == 1) holdAnswer(kind, id, bytes, {reply.get(), replyLength});
  return last == 1 || replyLength == 0;
}

// Whatever pieces of requests or replies a message still holds are asked for, so that nothing of it has to be left.
void finish(u16 id) {
  request(SET, id, {});
  for (int piece = 0; piece < 32; ++piece)
    if (request(GET, id, {})) return;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  std::vector<u16> used;
  for (Input input(data, size); !input.empty();) {
    const Kind kind = static_cast<Kind>(take(input, 1).front() % 3);
    const u16 id = announcedId(takeNumber(input));
    const std::size_t length = takeNumber(input);
    request(kind, id, take(input, length));
    if (std::ranges::find(used, id) == used.end()) used.push_back(id);
  }
  std::ranges::for_each(used, finish);
  fuzz::checkAtRest();
  return 0;
}
