#include "common/card_exchange.h"

#include "common/msan_init.h"
#include "platform/cards.h"
#include "platform/log.h"
#include "platform/objects.h"

static constexpr u16 kEveryPort = 65535;

// True if all that is asked for are ports of the slot.
static bool asksForPorts(WireIn request, u16 slot, u16 amount) {
  Reader in(request);
  const u32 count = in.number(4);
  if (in.failed() || in.rest().size() / kAskedPort < count) return false;
  for (u32 i = 0; i < count; ++i) {
    const u32 itemSlot = in.number(2);
    const u32 port = in.number(2);
    in.skip(kAskedPort - 4);
    if (itemSlot != slot || (port > amount && port != kEveryPort)) return false;
  }
  return true;
}

// A card of the module that runs: 0 with its ports.
static int findCard(u16 slot, u16* amount) {
  const u16 configured = static_cast<u16>(get_config_card_type(slot));
  if (caCheckCardTypeIsMsanCard(configured) != 0) return -102;
  if (get_card_type(slot) < 1) return -100;
  return ddGetBoardServePortAmountByType(configured, amount) == 0 && *amount != 0 ? 0 : -102;
}

int get_gepon_slot_msan_state_base(u8, u16 slot, u16 id, const u8* request, u32 requestLength, u8* answer,
                                   u32* answerLength) {
  if (request == nullptr || answer == nullptr || answerLength == nullptr) {
    ulogPrintf(gModuleId_Msan, 10, "%s(%d):Pointer is NULL.\r\n", __func__, __LINE__);
    return -1;
  }
  u16 amount = 0;
  int result = findCard(slot, &amount);
  if (result == 0 && !asksForPorts(WireIn(request, requestLength), slot, amount)) result = -5;
  if (result == 0)
    result = gpon_send_and_wait_for_response_copy(slot, id, 0, request, requestLength, answer, answerLength, 0);
  if (result < 0) *answerLength = 0;
  return result;
}
