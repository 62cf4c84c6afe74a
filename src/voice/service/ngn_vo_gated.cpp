#include "voice/service/ngn_vo_gated.h"

#include "voice/common/voice_msc.h"
#include "voice/common/voice_snmp.h"
#include "voice/service/ngn_vo_common.h"

static constexpr u16 kSendSlot = 18;  // for trace lines
static constexpr u16 kMostSlots = 30;

GatedResult sendGated(const GatedItem& item, const u8* payload, u32 length, const void* old) {
  DataList sends;
  if (vBuildMscPacketI(kSendSlot, item.id, 0, payload, length, sends) != 0) return {kBuildFailed};
  if (const int sent = send_ngn_msc_packet(item.id, sends); sent != 0) {
    if (item.takeBack(old) != 0) trace("take back message 0x%04X failed", item.id);
    return {kSendFailed, true, sent};
  }
  u16 slots[kMostSlots];
  u16 count = kMostSlots;
  if (get_msan_card_slot_list(slots, &count) != 0) return {kSendFailed};
  for (u16 i = 0; i < count; ++i) item.tellSlot(slots[i]);
  return {};
}

int distributeGated(u16 id, u16 slot, const u8* payload, u32 length) {
  DataList sends;
  if (vBuildMscPacketI(slot, id, 0, payload, length, sends) != 0) return -1;
  return send_ngn_msc_packet(id, sends) == -1 ? -1 : 0;
}
