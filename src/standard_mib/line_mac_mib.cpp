// The addresses that lines have learned, as the standard MIB agent asks for them.

#include <algorithm>
#include <span>

#include "common/card_exchange.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "common/wire.h"
#include "data/mac/line_mac_table.h"
#include "platform/cards.h"
#include "platform/objects.h"
#include "standard_mib/ports.h"

enum MibError : int { kEnd = -2, kNoSuchPort = -3, kNullValue = -24, kNoMemory = -22, kNoDataCard = -102 };

static constexpr u32 kAddress = 8;  // bytes of an address that are passed on, of 16
static constexpr u32 kMostPvcs = 8;
static constexpr u32 kMostOfPvc = 32767;

// The card that is there, if it is a data card, and its ports; 0 otherwise.
static u16 portsOf(u16 slot) {
  const auto card = static_cast<u16>(get_exist_card_type(slot));
  u16 ports = 0;
  if (caCheckCardTypeIsMsanDataCard(card) == 0) ddGetBoardServePortAmountByType(card, &ports);
  return ports;
}

// Port 1 of the first such slot behind `slot`.
static int firstBehind(u16 slot, u16* nextSlot, u16* nextPort) {
  const ServiceSlots slots;
  for (const u32 next : slots.list()) {
    if (next <= slot || portsOf(static_cast<u16>(next)) == 0) continue;
    *nextSlot = static_cast<u16>(next);
    *nextPort = 1;
    return 0;
  }
  return kEnd;
}

int stdmib_get_first_obj(u16* slot, u16* port) {
  return slot != nullptr && port != nullptr ? firstBehind(0, slot, port) : int{kNullValue};
}

int stdmib_get_next_obj(u16 slot, u16 port, u16* nextSlot, u16* nextPort) {
  if (nextSlot == nullptr || nextPort == nullptr) return kNullValue;
  const u16 ports = portsOf(slot);
  if (ports == 0) return kNoDataCard;
  if (port > ports) return kNoSuchPort;
  if (port == ports) return firstBehind(slot, nextSlot, nextPort);
  *nextSlot = slot;
  *nextPort = static_cast<u16>(port + 1);
  return 0;
}

// The addresses of a PVC, as far as there is room; those that are not passed on are stepped over.
static void copyPvc(Reader& in, Writer& out) {
  in.skip(4);
  const u32 told = in.number(2);
  for (u32 i = 0; i < told && !in.failed(); ++i) {
    u8 address[kAddress] = {};
    in.bytes(address, kAddress);
    in.skip(kLearnedAddress - kAddress);
    if (i < kMostOfPvc && !in.failed()) out.bytes(address);
  }
}

int stdmib_get_port_fdb(u16 slot, u16 port, u8* addresses, u32* length) {
  if (addresses == nullptr || length == nullptr) return kNullValue;
  if (const int code = gpon_slot_online_port_common_examine(gModuleId_Msan, slot, port, 0); code < 0) return code;
  PoolBytes answer(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, kMostLearned, __FILE__, __LINE__)));
  if (answer == nullptr) return kNoMemory;
  const OnePortRequest request(slot, port);
  u32 answered = kMostLearned;
  const int result = gpon_send_and_wait_for_response_copy(slot, kLineMacMessage, 0, request.bytes, sizeof request.bytes,
                                                          answer.get(), &answered, 0);
  if (result < 0) return result;
  Reader in(WireIn(answer.get(), std::min(answered, kMostLearned)));
  Writer out(WireOut(addresses, *length));
  in.skip(kOnePort);
  const u32 pvcs = std::min(in.number(2), kMostPvcs);
  for (u32 i = 0; i < pvcs && !in.failed(); ++i) copyPvc(in, out);
  *length = out.length();
  return 0;
}
