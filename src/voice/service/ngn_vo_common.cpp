#include "voice/service/ngn_vo_common.h"

#include <cstdio>

#include "common/debug_control.h"
#include "common/msan_init.h"
#include "common/trace.h"
#include "platform/log.h"
#include "platform/ngn.h"
#include "platform/objects.h"
#include "voice/common/voice_msc.h"
#include "voice/service/ngndb.h"

// True if the stored protocol type lets addresses and VLANs of the voice service out.
static bool gateOpen() {
  u16 type = kNoProtocol;
  if (db_get_ngn_protocol_type(&type) == 0 && type != kNoProtocol) return true;
  if (debugOn(Area::voice)) std::printf("us_ngn_type = %d \r\n", type);
  return false;
}

int send_ngn_msc_packet(u32 id, const LIST* list) {
  if (list == nullptr) {
    trace("MSC packet send list para is NULL");
    return -1;
  }
  const bool gated = id == kVoiceIpMessage || id == kVoiceVlanMessage;
  if (gated && !gateOpen()) return kGateClosed;
  for (const NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    const int result = writeNgnCmd(static_cast<u16>(id), 0, node->data, node->dataLen, 0, 0, 0, 0);
    if (result == 0) {
      trace("send MSC packet to slot %d successfully", node->slot);
      continue;
    }
    trace("send MSC packet to slot %d failed", node->slot);
    if (gated) return result;
  }
  return 0;
}

// A line of get_msan_card_slot_list with its numbers.
template <class... Arguments>
static int slotListError(const Where where, int result, const char* format, Arguments... arguments) {
  char words[200];
  std::snprintf(words, sizeof words, format, arguments...);
  ulogPrintf(gModuleId_Msan, kLogError, "\r\n %s, %s %d, %s\r\n", where.function, fileName(where), where.line, words);
  return result;
}

int get_msan_card_slot_list(u16* slots, u16* amount) {
  if (slots == nullptr || amount == nullptr) {
    return slotListError(Where::here(), -1, "configuration list para is NULL. pSlotNo = %p, pusSlotAmount = %p",
                         static_cast<void*>(slots), static_cast<void*>(amount));
  }
  u32 list[100];
  u32 count = 0;
  u32 maximum = 0;
  if (const int result = ddGetServeSlotList(list, 100, &count)) {
    return slotListError(Where::here(), result,
                         "->ddGetServeSlotList err! iResult = %d, ulArrayAmount = %d, ulSlotAmount = %d", result, 100,
                         count);
  }
  if (const int result = ddGetMaxSlotNum(&maximum)) {
    return slotListError(Where::here(), -1, "->ddGetMaxSlotNum err! iResult = %d, ulMaxSlotNum = %d", result, maximum);
  }
  if (count > maximum) {
    return slotListError(Where::here(), -1,
                         "->ddGetServeSlotList err! iResult = %d, ulSlotAmount = %d, ulMaxSlotNum = %d", 0, count,
                         maximum);
  }
  u16 found = 0;
  for (u32 i = 0; i < count; ++i) {
    const int card = get_config_card_type(static_cast<u16>(list[i]));
    if (card <= 0 || caCheckCardTypeIsMsanPotsCard(static_cast<u16>(card)) != 0) continue;
    if (found == *amount) {
      return slotListError(Where::here(), -1, "->ddGetServeSlotList err! ulItemCount = %d, *pusSlotAmount = %d",
                           found + 1, *amount);
    }
    slots[found++] = static_cast<u16>(list[i]);
  }
  *amount = found;
  return 0;
}
