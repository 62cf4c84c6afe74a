#include "requests.h"

#include <fmt/format.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <span>

#include "fuzz_node.h"
#include "host/agent.h"
#include "host/chassis.h"
#include "read_back.h"
#include "stores.h"

namespace fuzz {

u64 unseenRefusals = 0;

namespace {

using messages::Bytes, messages::Road;

// Messages of which a request, or a reply, is under way in pieces.
std::set<u16>& collected() {
  static std::set<u16> all;
  return all;
}
std::set<u16>& told() {
  static std::set<u16> all;
  return all;
}

bool begins(Bytes reply, u8 with) {
  const u8 head[] = {0, 0, 0, with};
  return reply.size() >= 4 && std::ranges::equal(reply.first<4>(), head);
}
bool isDone(Bytes reply) { return begins(reply, 1); }
bool isRefused(Bytes reply) { return begins(reply, 0x41); }

// Many lists are stored record by record, and end at one that is refused: those ahead of it stay. So a request is held
// that has one record, as its count says. An alarm profile's id stays at its port though there is no such profile.
bool isSingle(u16 id, Bytes frame) {
  constexpr std::size_t kCount = 32;
  constexpr u16 kAlarmAttachment = 2824;
  if (id == kAlarmAttachment) return false;
  return frame.size() < kCount + 4 || (std::ranges::count(frame.subspan(kCount, 3), 0) == 3 && frame[kCount + 3] <= 1);
}

struct Reply {
  Bytes bytes;
  bool last = false;
};

// The reply is good until the next call. The module is given zeros, which cost less from the system than to be written.
Reply call(Verb verb, u16 id, Bytes bytes) {
  static u8* const reply =
      static_cast<u8*>(mmap(nullptr, host::kReplyCapacity, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  const host::Hooks hooks = host::agentHooks();
  const std::unique_ptr<u8[]> frame(new u8[bytes.size()]);
  std::ranges::copy(bytes, frame.get());
  const i32 length = static_cast<i32>(bytes.size());
  madvise(reply, host::kReplyCapacity, MADV_DONTNEED);
  u32 used = 0;
  u8 last = 0;
  if (verb == Verb::get)
    hooks.read(id, &last, frame.get(), length, reply, &used, nullptr, nullptr);
  else
    hooks.write(id, verb == Verb::set ? 1 : 0, frame.get(), length, reply, &used, nullptr, nullptr);
  if (used > host::kReplyCapacity) fail(fmt::format("message {}: {} bytes are replied", id, used));
  return {{reply, used}, verb != Verb::get || last == 1 || used == 0};
}

// A reply in one piece, of a message that holds none.
std::vector<u8> ask(u16 id, Bytes question) {
  const Reply reply = call(Verb::get, id, question);
  if (reply.last) return {reply.bytes.begin(), reply.bytes.end()};
  while (!call(Verb::get, id, {}).last) continue;
  return {};
}

// True: this is a whole frame.
bool notePieces(Verb verb, u16 id, bool last) {
  auto& open = verb == Verb::get ? told() : collected();
  const bool more = verb == Verb::get ? !last : verb == Verb::setMore;
  const bool whole = !more && !open.contains(id);
  more ? void(open.insert(id)) : void(open.erase(id));
  return whole;
}

// A list of ports in service that begins with one of such a card is accepted unread.
bool isUnread(u16 id, Bytes frame) {
  constexpr std::size_t kSlot = 36;
  constexpr u16 kDataPortEnable = 2840;
  if (id != kDataPortEnable || frame.size() < kSlot + 2) return false;
  const host::CardType* const card = host::authorisedType(static_cast<u16>(frame[kSlot] << 8 | frame[kSlot + 1]));
  return card != nullptr && card->name == "pots32-data";
}

// A card's answer is passed on as it came: it can be anything.
bool tellsOfCard(u16 id) {
  const messages::Message* const message = messages::book().find(id);
  return message != nullptr && std::ranges::any_of(std::array{Road::gponAsk, Road::geponAsk, Road::ngnAsk},
                                                   [&](Road road) { return message->find(road) != nullptr; });
}

void holdRefusal(u16 id, const StoreChanges& changes, u64 before, bool looked) {
  if (changes == storeChanges()) return;
  if (!looked)
    ++unseenRefusals;
  else if (storesDigest() != before)
    fail(fmt::format("message {} was refused, and what is stored has changed", id));
}

}  // namespace

bool request(Verb verb, u16 id, Bytes frame, Looks looks) {
  const bool isSet = verb != Verb::get;
  const bool single = verb == Verb::set && !collected().contains(id) && isSingle(id, frame);
  const StoreChanges changes = storeChanges();
  const bool looked = looks.stores && single;
  const u64 before = looked ? storesDigest() : 0;
  const Reply reply = call(verb, id, frame);
  const bool whole = notePieces(verb, id, reply.last);
  if (single && isRefused(reply.bytes)) holdRefusal(id, changes, before, looked);
  if (verb == Verb::setMore || !reply.last || reply.bytes.empty()) return reply.last;
  if (isSet || !tellsOfCard(id))
    holdMessage(isSet ? Road::setReply : Road::getReply, id, reply.bytes, messages::Fault::word);
  if (!whole || !isDone(reply.bytes)) return reply.last;
  if (!isUnread(id, frame)) holdMessage(isSet ? Road::set : Road::get, id, frame, messages::Fault::range);
  if (isSet && looks.readBack && !told().contains(id))
    if (const std::string why = readBack(id, frame, ask); !why.empty()) fail(why);
  return reply.last;
}

void finish(u16 id) {
  request(Verb::set, id, {});
  for (int piece = 0; piece < 32; ++piece)
    if (request(Verb::get, id, {})) return;
}

void forgetPieces() {
  collected().clear();
  told().clear();
}

bool holdsPieces() { return !collected().empty() || !told().empty(); }

}  // namespace fuzz
