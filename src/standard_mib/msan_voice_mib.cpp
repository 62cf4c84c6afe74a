// POTS ports for standard MIBs.

#include <algorithm>

#include "common/card_exchange.h"
#include "common/obj_attributes.h"
#include "platform/objects.h"
#include "standard_mib/ports.h"
#include "voice/common/ngn_exchange.h"
#include "voice/common/voice_obj.h"
#include "voice/port/voice_port_record.h"

static constexpr int kNoSlot = -3, kNoPort = -5, kNoCard = -18, kNullCardType = -2;

// Reads the record of a port of a POTS card.
static int readPort(u16 slot, u16 port, ObjIndex* object, VoicePort* record) {
  if (!potsPortsOf(slot) || SlotNoPortConvertObjIndex(slot, port, 0, object) != 0) return -1;
  return getObjAttrDataByCondition(object, kVoicePortAttribute, record, 0, sizeof *record) == 0 ? 0 : -1;
}

int std_snmp_pots_port_enable_set(u16 slot, u16 port, u8 value) {
  ObjIndex object;
  VoicePort record;
  if (readPort(slot, port, &object, &record) != 0) return -1;
  record.enable = value;
  return setObjAttrDataByCondition(&object, kVoicePortAttribute, &record, 0, sizeof record) == 0 ? 0 : -1;
}

int std_snmp_pots_port_enable_get(u16 slot, u16 port, u8* value) {
  if (value == nullptr) return kNullArgument;
  ObjIndex object;
  VoicePort record;
  if (readPort(slot, port, &object, &record) != 0) return -1;
  *value = record.enable;
  return 0;
}

// Port 65535 passes: it stands for all ports.
int check_common_voice_port(u16 slot, u16 port, u16* cardType) {
  if (cardType == nullptr) return kNullCardType;
  u32 number = 0;
  if (ddIsRealSlot(slot, &number) != 0) return kNoSlot;
  const int card = get_config_card_type(slot);
  if (card <= 0) return kNoCard;
  *cardType = static_cast<u16>(card);
  if (vCheckSlotNo(slot, kPotsCardKind) == -1) return kNoSlot;
  return vCheckPortNo(slot, port) == -1 ? kNoPort : 0;
}

int std_snmp_get_voice_port_type(u16 slot, u16 port, u16* type) {
  if (type == nullptr) return kNullArgument;
  u16 card = 0;
  if (const int code = check_common_voice_port(slot, port, &card)) return code;
  return ddGetPortTypeByBoardType(card, port, type);
}

int std_snmp_voice_port_status_get(u16 slot, u16 port) {
  static constexpr u16 kPortStatus = 3100;
  static constexpr u32 kStatus = 24;  // in the answer, 2 bytes
  SnmpErrInfo err;
  if (nIsOBJMValid(kPortStatus, kPotsCardKind, slot, port, &err) != 1) return -1;
  const OnePortRequest request(slot, port);
  u8 answer[112] = {};
  const auto length = askNgn(kPortStatus, request.bytes, answer);
  return length && *length >= kStatus + 2 ? static_cast<int>(getNumber(answer + kStatus, 2)) : -1;
}

// The first slot of at least `least` with a POTS port.
static int firstPort(u32 least, u16* slot, u16* port) {
  const ServiceSlots slots;
  const auto list = slots.list();
  const auto found = std::ranges::find_if(
      list, [least](u32 number) { return number >= least && potsPortsOf(static_cast<u16>(number)).value_or(0) != 0; });
  if (found == list.end()) return -1;
  *slot = static_cast<u16>(*found);
  *port = 1;
  return 0;
}

int std_snmp_first_pots_port_get(u16* slot, u16* port) {
  if (slot == nullptr || port == nullptr) return kNullArgument;
  return firstPort(0, slot, port);
}

int std_snmp_next_pots_port_get(u16* slot, u16* port) {
  if (slot == nullptr || port == nullptr) return kNullArgument;
  u16 card = 0;
  if (check_common_voice_port(*slot, *port, &card) != 0 || *port >= potsPortsOf(*slot).value_or(0)) {
    return firstPort(*slot + 1u, slot, port);
  }
  ++*port;
  return 0;
}
