#include "common/card_exchange.h"

#include <algorithm>

#include "common/memory.h"
#include "common/msan_init.h"
#include "platform/cards.h"
#include "platform/log.h"
#include "platform/objects.h"

static constexpr u16 kEveryPort = 65535;
static constexpr u32 kLargestAnswer = 98330;  // of a port: a count, and 4096 entries of 24 bytes behind its head

enum ExchangeError : int {
  kNullExchange = -1,
  kNotItsPort = -5,
  kNoMemoryForAnswer = -22,
  kNoCardRuns = -100,
  kNotOurCard = -102,
};

static bool isPort(u32 slot, u32 port, u16 ofSlot, u16 amount) {
  return slot == ofSlot && (port <= amount || port == kEveryPort);
}

// The count of a request, if it holds that many ports.
static bool readCount(Reader& in, u32* count) {
  *count = in.number(4);
  return !in.failed() && in.rest().size() / kAskedPort >= *count;
}

// True if all that is asked for are ports of the slot.
static bool asksForPorts(WireIn request, u16 slot, u16 amount) {
  Reader in(request);
  u32 count = 0;
  if (!readCount(in, &count)) return false;
  for (u32 i = 0; i < count; ++i) {
    const u32 itemSlot = in.number(2);
    if (!isPort(itemSlot, in.number(2), slot, amount)) return false;
    in.skip(kAskedPort - 4);
  }
  return true;
}

// A card of the module that runs: 0 with its ports.
static int findCard(u16 slot, u16* amount) {
  const u16 configured = static_cast<u16>(get_config_card_type(slot));
  if (caCheckCardTypeIsMsanCard(configured) != 0) return kNotOurCard;
  if (get_card_type(slot) < 1) return kNoCardRuns;
  return ddGetBoardServePortAmountByType(configured, amount) == 0 && *amount != 0 ? 0 : kNotOurCard;
}

static int nullExchange(const char* function, int line) {
  ulogPrintf(gModuleId_Msan, kLogDebug, "%s(%d):Pointer is NULL.\r\n", function, line);
  return kNullExchange;
}

int get_gepon_slot_msan_state_base(u8, u16 slot, u16 id, const u8* request, u32 requestLength, u8* answer,
                                   u32* answerLength) {
  if (request == nullptr || answer == nullptr || answerLength == nullptr) return nullExchange(__func__, __LINE__);
  const u32 room = *answerLength;
  u16 amount = 0;
  int result = findCard(slot, &amount);
  if (result == 0 && !asksForPorts(WireIn(request, requestLength), slot, amount)) result = kNotItsPort;
  if (result == 0)
    result = gpon_send_and_wait_for_response_copy(slot, id, 0, request, requestLength, answer, answerLength, 0);
  *answerLength = result < 0 ? 0 : std::min(*answerLength, room);
  return result;
}

namespace {

// Collects the answers of single ports.
struct PortByPort {
  u16 slot;
  u16 id;
  u8* work;  // kLargestAnswer bytes
  Writer to;
  u32 answered = 0;
  bool full = false;

  void ask(u16 port) {
    const OnePortRequest request(slot, port);
    std::memset(work, 0, kLargestAnswer);
    u32 length = kLargestAnswer;
    if (gpon_send_and_wait_for_response_copy(slot, id, 0, request.bytes, sizeof request.bytes, work, &length, 0) < 0)
      return;
    length = std::min(length, kLargestAnswer);
    if (length < 4) return;
    to.bytes(WireIn(work + 4, length - 4));
    full = to.failed();
    if (!full) ++answered;
  }
};

}  // namespace

int get_gepon_slot_msan_state_base_ex(u8, u16 slot, u16 id, const u8* request, u32 requestLength, u8* answer,
                                      u32* answerLength) {
  if (request == nullptr || answer == nullptr || answerLength == nullptr) return nullExchange(__func__, __LINE__);
  const WireOut room(answer, *answerLength);
  *answerLength = 0;
  u16 amount = 0;
  if (const int code = findCard(slot, &amount)) return code;
  const PoolBytes work(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, kLargestAnswer, __FILE__, __LINE__)));
  if (work == nullptr) return kNoMemoryForAnswer;
  PortByPort ports{slot, id, work.get(), Writer(room)};
  u8* answered = ports.to.skip(4);
  Reader in(WireIn(request, requestLength));
  u32 count = 0;
  if (answered == nullptr || !readCount(in, &count)) return kNotItsPort;
  for (u32 i = 0; i < count; ++i) {
    const u32 itemSlot = in.number(2);
    const u32 port = in.number(2);
    in.skip(kAskedPort - 4);
    if (!isPort(itemSlot, port, slot, amount)) return kNotItsPort;
    const u16 first = static_cast<u16>(port == kEveryPort ? 1 : port);
    const u16 last = static_cast<u16>(port == kEveryPort ? amount : port);
    for (u16 at = first; at <= last && !ports.full; ++at) ports.ask(at);
  }
  putNumber(answered, 4, ports.answered);
  *answerLength = ports.to.length();
  return 0;
}
