#include "ppda/volt_current.h"

#include <cstring>

#include "common/debug_control.h"
#include "common/interface_list.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "common/trace.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_msc.h"
#include "voice/common/voice_obj.h"

static constexpr u16 kFeedMessage = 2839;
static constexpr u32 kUnit = sizeof(PotsFeed);
static constexpr u32 kMaxRecords = 960;  // of a request
static constexpr u32 kReplyArea = 36;
static constexpr u32 kDefaultVoltage = 42, kDefaultCurrent = 22;

// --- Wire ---

int vparse_pots_voltcurrent_code(WireIn wire, PotsFeed* record) {
  if (wire.size() < kUnit || record == nullptr) return -1;
  record->slot = static_cast<u16>(getNumber(wire.data(), 2));
  record->port = static_cast<u16>(getNumber(wire.data() + 2, 2));
  record->voltage = getNumber(wire.data() + 20, 4);
  record->current = getNumber(wire.data() + 24, 4);
  return 0;
}

int vmsc_encode_pots_voltcurrent(const PotsFeed* record, WireOut wire, u32* length) {
  if (record == nullptr || length == nullptr || wire.size() < kUnit) return -1;
  std::memset(wire.data(), 0, kUnit);
  putNumber(wire.data(), 2, record->slot);
  putNumber(wire.data() + 2, 2, record->port);
  putNumber(wire.data() + 20, 4, record->voltage);
  putNumber(wire.data() + 24, 4, record->current);
  *length = kUnit;
  return 0;
}

int vencode_pots_voltcurrent(NODE* at, WireOut wire, u32* length) {
  if (at == nullptr) return -1;
  PotsFeed record = *recordOf<PotsFeed>(at);
  record.slot = static_cast<DataNode*>(at)->slot;
  record.port = static_cast<DataNode*>(at)->port;
  return vmsc_encode_pots_voltcurrent(&record, wire, length);
}

int vparse_set_pots_voltcurrent(WireIn area, u32* count, LIST* list) {
  if (area.size() < 4 || count == nullptr || list == nullptr) return -1;
  *count = getNumber(area.data(), 4);
  const u16 nodes = static_cast<u16>(*count);
  if (vCreateDataNode(list, nodes, kUnit) != 0) return -1;
  WireIn rest = area.subspan(4);
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    auto* record = recordOf<PotsFeed>(at);
    if (vparse_pots_voltcurrent_code(rest, record) != 0) return -1;
    auto* node = static_cast<DataNode*>(at);
    node->slot = record->slot;
    node->port = record->port;
    node->msgId = kFeedAttribute;
    rest = rest.subspan(kUnit);
  }
  return 0;
}

int vencode_pots_voltcurrent_handle(LIST* list, WireOut wire, u32* length) {
  if (list == nullptr || length == nullptr || wire.size() < 4) return -1;
  putNumber(wire.data(), 4, static_cast<u32>(lstCount(list)));
  u32 at = 4;
  for (NODE* node = lstFirst(list); node != nullptr; node = lstNext(node)) {
    u32 bytes = 0;
    if (vencode_pots_voltcurrent(node, wire.subspan(at), &bytes) != 0) return -1;
    at += bytes;
  }
  *length = at;
  return 0;
}

// --- Check ---

int vcheck_pots_voltcurrent(const PotsFeed* record, SnmpErrInfo* err) {
  if (record == nullptr || err == nullptr) return -1;
  if (record->voltage < 37 || record->voltage > 51) {
    vSetErrorInfo(65375, &record->voltage, sizeof record->voltage, err);
    areaTrace<Area::ppda>("invalid feed voltage: %d", record->voltage);
    return -1;
  }
  if (record->current < 18 || record->current > 49) {
    vSetErrorInfo(65374, &record->current, sizeof record->current, err);
    areaTrace<Area::ppda>("invalid feed current: %d", record->current);
    return -1;
  }
  return 0;
}

int vcheck_pots_voltcurrent_handle(LIST* list, SnmpErrInfo* err) {
  if (list == nullptr) return -1;
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    if (vcheck_pots_voltcurrent(recordOf<PotsFeed>(at), err) != 0) return -1;
  }
  return 0;
}

// --- Send ---

static void dumpGated(const u8* packet, u32 length) {
  if (debugOn(Area::ppda, DebugWord::buf)) ulogTypePkt(gModuleId_Msan, kLogDebug, packet, length);
}

int vbuild_set_pots_voltcurrent_msc_packet(LIST* list, LIST* sends) {
  MscSlotInfo slots[kMscSlots] = {};
  u16 count = 0;
  if (sends == nullptr || vSetMscSlotInfo(list, slots, &count) != 0 ||
      vCreateSlotDataNode(sends, slots, count, kUnit) != 0) {
    return -1;
  }
  DataNode* messages[kMscSlots] = {};
  u32 ends[kMscSlots] = {};
  u16 at = 0;
  for (NODE* node = lstFirst(sends); node != nullptr; node = lstNext(node), ++at) {
    messages[at] = static_cast<DataNode*>(node);
    buildMscHeader(messages[at]->data, kFeedMessage, 0);
    putNumber(messages[at]->data + sizeof(MscHeader) + 2, 2, slots[at].items);
    ends[at] = sizeof(MscHeader) + 4;
  }
  for (NODE* node = lstFirst(list); node != nullptr; node = lstNext(node)) {
    u16 i = 0;
    while (slots[i].slot != static_cast<DataNode*>(node)->slot) ++i;
    u32 bytes = 0;
    const WireOut message(messages[i]->data, messages[i]->dataLen);
    if (vencode_pots_voltcurrent(node, message.subspan(ends[i]), &bytes) != 0) return -1;
    ends[i] += bytes;
  }
  for (u16 i = 0; i < count; ++i) {
    messages[i]->dataLen = ends[i];
    dumpGated(messages[i]->data, ends[i]);
  }
  return 0;
}

// Builds and sends what the list holds. 0, or the code of the step that failed.
static u16 buildAndSend(LIST* list) {
  DataList sends;
  u16 code = 0;
  const char* step = "build";
  if (vbuild_set_pots_voltcurrent_msc_packet(list, sends) != 0) {
    code = kBuildFailed;
  } else if (vSendMscPacket(sends) != 0) {
    code = kSendFailed;
    step = "send";
  }
  if (code != 0) areaTrace<Area::ppda>("%s MSC msg 0x%04X failed", step, kFeedMessage);
  return code;
}

// True if a POTS card is configured in the slot. That there is none at all is traced.
static bool isPotsSlot(u16 slot) {
  if (get_config_card_type(slot) == 0) areaTrace<Area::ppda>("no card is configured in slot %d", slot);
  return vCheckSlotNo(slot, kPotsCardKind) == 0;
}

void vdistrib_pots_voltcurrent(u16 slot) {
  if (!isPotsSlot(slot)) return;
  DataList list;
  if (vGetSlotObjManageDataHandle(slot, kFeedAttribute, kUnit, list) != 0) {
    areaTrace<Area::ppda>("get POTS feed voltage and current config of slot %d failed", slot);
    return;
  }
  buildAndSend(list);
}

int vset_pots_voltcurrent_list(LIST* addresses, const PotsFeed* record, LIST* list) {
  if (record == nullptr || vSetPortObjList(addresses, kFeedAttribute, kUnit, list) != 0) return -1;
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    auto* own = recordOf<PotsFeed>(at);
    own->slot = node->slot;
    own->port = node->port;
    own->voltage = record->voltage;
    own->current = record->current;
  }
  return 0;
}

int vdistrib_pots_voltcurrentx(LIST* addresses, const PotsFeed* record, SnmpErrInfo* err) {
  if (err == nullptr) return -1;
  DataList list;
  if (vset_pots_voltcurrent_list(addresses, record, list) != 0) return -1;
  if (vSetObjManageData(kPotsPort, list) != 0) {
    vSetErrorInfo(kNotStored, err);
    return -1;
  }
  msan_cfg_sync_trigger(list, kFeedMessage, 3, kDataNodeList);
  if (const u16 code = buildAndSend(list)) vSetErrorInfo(code, err);
  return 0;
}

int verase_pots_voltcurrent(u16 slot) {
  ObjList objects;
  if (!isPotsSlot(slot) || vGetSlotObjIndex(slot, objects) != 0 || lstCount(objects) == 0) return -1;
  for (NODE* cell = lstFirst(objects); cell != nullptr; cell = lstNext(cell)) {
    const auto* object = dataOf<const ObjIndex>(cell);
    const PotsFeed record{object->addr[1], object->addr[2], {}, kDefaultVoltage, kDefaultCurrent, {}};
    if (vEraseObjManageData(object, kFeedAttribute, kPotsPort, &record, kUnit) != 0) {
      areaTrace<Area::ppda>("erase POTS feed voltage and current config failed");
      return -1;
    }
  }
  vdistrib_pots_voltcurrent(slot);
  return 0;
}

void volt_current_callback_after_cardauth_db(u16 slot) { verase_pots_voltcurrent(slot); }

// --- SNMP ---

static int answerAndDump(u16 id, const SnmpErrInfo& err, u8* reply, u32* replyLen) {
  answerError(id, err, reply, replyLen);
  dumpGated(reply, 32);
  return -1;
}

static int answerFailed(u16 id, u8* reply, u32* replyLen) {
  SnmpErrInfo err;
  vSetErrorInfo(kStepFailed, &err);
  return answerAndDump(id, err, reply, replyLen);
}

int vsnmp_set_pots_voltcurrent(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  if (id != kFeedMessage || vCheckSnmpSetCmdPara(data, reply, replyLen) != 0) {
    areaTrace<Area::ppda>("invalid SNMP command 0x%04X", id);
    return -1;
  }
  SnmpErrInfo err;
  WireIn area;
  if (checkListFrame(data, length, kUnit, kMaxRecords, area, &err) != 0) {
    return answerAndDump(id, err, reply, replyLen);
  }
  DataList list;
  u32 count = 0;
  if (vparse_set_pots_voltcurrent(area, &count, list) != 0) {
    return answerFailed(id, reply, replyLen);
  }
  if (vcheck_pots_voltcurrent_handle(list, &err) != 0) return answerAndDump(id, err, reply, replyLen);
  if (vSetObjManageData(kPotsPort, list) != 0) return answerFailed(id, reply, replyLen);
  msan_cfg_sync_trigger(list, kFeedMessage, 1, kDataNodeList);
  buildAndSend(list);
  vBuildSuccessInfo(reply, replyLen);
  return 0;
}

int vsnmp_get_pots_voltcurrent(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  if (id != kFeedMessage || vCheckSnmpPara(last, data, reply, replyLen) != 0) {
    areaTrace<Area::ppda>("invalid SNMP command 0x%04X", id);
    return -1;
  }
  SnmpErrInfo err;
  WireIn area;
  if (checkListFrame(data, length, kLocation, kMaxRecords, area, &err) != 0) {
    return answerAndDump(id, err, reply, replyLen);
  }
  DataList locations, records;
  u32 count = 0;
  if (vParsePOTSPortLocation(area, kPotsPort, &count, locations) != 0) {
    return answerFailed(id, reply, replyLen);
  }
  // Locations of all ports may have become more records than a reply holds.
  count = static_cast<u32>(lstCount(locations));
  if (count > kMaxRecords) {
    vSetErrorInfo(kBadCount, &count, sizeof count, &err);
    return answerAndDump(id, err, reply, replyLen);
  }
  if (vCheckPOTSPortLocationHandle(kFeedMessage, kPotsCardKind, locations, &err) != 0) {
    return answerAndDump(id, err, reply, replyLen);
  }
  u32 bytes = 0;
  const WireOut out = WireOut(reply, kMaxPacket).subspan(kReplyArea);
  if (vGetObjManageDataHandle(kPotsPort, kFeedAttribute, kUnit, locations, records) != 0 ||
      vencode_pots_voltcurrent_handle(records, out, &bytes) != 0) {
    return answerFailed(id, reply, replyLen);
  }
  putNumber(reply, 4, 1);
  *replyLen = bytes + kReplyArea;
  return 0;
}

static constexpr SnmpMsgReg message{kFeedMessage,
                                    {0, 0},
                                    vsnmp_set_pots_voltcurrent,
                                    vsnmp_get_pots_voltcurrent,
                                    4 + kMaxRecords* kUnit,
                                    "Set POTS port feed voltage & current parameters"};

void reg_snmp_pots_voltcurrent_init() { registerMessage(message); }
