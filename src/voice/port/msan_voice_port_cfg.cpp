#include "voice/port/msan_voice_port_cfg.h"

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <unordered_set>

#include "common/interface_list.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "platform/objects.h"
#include "voice/common/voice_item.h"
#include "voice/profiles/ngn_dsp.h"

static constexpr u16 kMessage = 3092;
static constexpr u32 kNumber = sizeof(VoicePort::userNumber);
static constexpr UniqueText kUnique{offsetof(VoicePort, userNumber), kNumber, false};

// --- Wire ---

static constexpr Field fields[] = {
    field<&VoicePort::protocolType>({.offset = 0}),     field<&VoicePort::userNumber>({.offset = 1}),
    field<&VoicePort::DSPProfileID>({.offset = 33}),    field<&VoicePort::SIPAuthUserName>({.offset = 35}),
    field<&VoicePort::SIPAuthPassword>({.offset = 99}), field<&VoicePort::SIPUserCallProfileID>({.offset = 163}),
};
static constexpr Record shape(227, fields);

// --- Check ---

static int failedId(SnmpErrInfo* err, u16 code, u16 id) {
  vSetErrorInfo(code, &id, sizeof id, err);
  trace("invalid profile of a voice port: %d", id);
  return -1;
}

// Of the call profile the range alone counts.
static int ncheck_voiceport(const VoicePort* record, SnmpErrInfo* err) {
  if (record->DSPProfileID >= kProfiles) return failedId(err, 65413, record->DSPProfileID);
  const int valid = is_valid_dsp_profile(record->DSPProfileID);
  if (valid == -1) {
    vSetErrorInfo(kStepFailed, err);
    return -1;
  }
  if (valid == 0) return failedId(err, 65412, record->DSPProfileID);
  return record->SIPUserCallProfileID < kProfiles ? 0 : failedId(err, 65411, record->SIPUserCallProfileID);
}

static std::string_view numberOf(const DataNode* node) {
  return {reinterpret_cast<const char*>(node->data) + kUnique.at, kNumber};
}

static bool hasNumber(const DataNode* node) { return numberOf(node).front() != '\0'; }

static u32 placeOf(const DataNode* node) { return u32{node->slot} << 16 | node->port; }

// The first port of the list whose number a port that is not in it has. False when the store can't be read.
static bool findStored(LIST* list, const DataNode** taken) {
  std::unordered_set<u32> ours;
  bool any = false;
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    ours.insert(placeOf(static_cast<DataNode*>(at)));
    any = any || hasNumber(static_cast<DataNode*>(at));
  }
  if (!any) return true;
  DataList stored;
  if (nGetSlotObjManageDataHandle(0, kVoicePortAttribute, 0, sizeof(VoicePort), stored) != 0) return false;
  std::unordered_set<std::string_view> numbers;
  for (NODE* at = lstFirst(stored); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    if (hasNumber(node) && !ours.contains(placeOf(node))) numbers.insert(numberOf(node));
  }
  for (NODE* at = lstFirst(list); at != nullptr && *taken == nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    if (hasNumber(node) && numbers.contains(numberOf(node))) *taken = node;
  }
  return true;
}

void offerPortNumbers(const void*, CommandOffers* to) {
  DataList stored;
  if (nGetSlotObjManageDataHandle(0, kVoicePortAttribute, 0, sizeof(VoicePort), stored) != 0) return;
  for (NODE* at = lstFirst(stored); at != nullptr; at = lstNext(at)) {
    const std::string_view number = numberOf(static_cast<const DataNode*>(at));
    const std::size_t length = std::min(number.find('\0'), number.size());
    if (length != 0) offer_to_cli(to, -1, number.data(), static_cast<u32>(length));
  }
}

int nis_port_usernumber_duplicate(LIST* list, u16* slot, u16* port, char* number) {
  if (list == nullptr || slot == nullptr || port == nullptr || number == nullptr) return -1;
  const DataNode* twice = firstTwice(list, kUnique);
  if (twice == nullptr && !findStored(list, &twice)) return -1;
  if (twice == nullptr) return 0;
  *slot = twice->slot;
  *port = twice->port;
  numberOf(twice).copy(number, kNumber);
  return 1;
}

static int checkNumbers(LIST* list, SnmpErrInfo* err) {
  u16 slot = 0, port = 0;
  char number[kNumber] = {};
  const int twice = nis_port_usernumber_duplicate(list, &slot, &port, number);
  if (twice == 0) return 0;
  if (twice == 1) {
    vSetErrorInfo(65414, number, sizeof number, err);
    trace("slot %d port %d user number is duplicate", slot, port);
  } else {
    vSetErrorInfo(kStepFailed, err);
  }
  return -1;
}

constexpr PortUnits voicePorts = {.id = kMessage,
                                  .shape = &shape,
                                  .bytes = sizeof(VoicePort),
                                  .attribute = kVoicePortAttribute,
                                  .check = onRecord<ncheck_voiceport>,
                                  .checkList = checkNumbers};

// --- Fill ---

template <class Fill>
static int fill(LIST* list, Fill each) {
  if (list == nullptr) return -1;
  u32 i = 0;
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at), ++i)
    if (!each(*recordOf<VoicePort>(at), i)) return -1;
  return 0;
}

int nset_voiceport_datalista(const VoicePort* from, LIST* list) {
  return fill(list, [&](VoicePort& record, u32) {
    record.protocolType = from->protocolType;
    record.DSPProfileID = from->DSPProfileID;
    record.SIPUserCallProfileID = from->SIPUserCallProfileID;
    return true;
  });
}

static bool putNumber32(VoicePort& record, const char* text, int length) {
  if (length < 0 || static_cast<u32>(length) > kNumber) return false;
  std::memset(record.userNumber, 0, kNumber);
  std::memcpy(record.userNumber, text, static_cast<u32>(length));
  return true;
}

int nset_voiceport_datalistb(const char* prefix, u32 start, u32 step, LIST* list) {
  return fill(list, [&](VoicePort& record, u32 i) {
    char text[2 * kNumber];
    const int length = step == 0 ? std::snprintf(text, sizeof text, "%s", prefix)
                                 : std::snprintf(text, sizeof text, "%s%u", prefix, start + step * i);
    return putNumber32(record, text, length);
  });
}

int nset_voiceport_datalistbx(u32 start, u32 step, LIST* list) {
  return fill(list, [&](VoicePort& record, u32 i) {
    char text[kNumber];
    return putNumber32(record, text, std::snprintf(text, sizeof text, "%u", start + step * i));
  });
}

int nset_voiceport_datalistc(const VoicePort* from, LIST* list) {
  return fill(list, [&](VoicePort& record, u32) {
    std::memcpy(record.SIPAuthUserName, from->SIPAuthUserName, sizeof record.SIPAuthUserName);
    if (from->SIPAuthPassword[0] != '\0')
      std::memcpy(record.SIPAuthPassword, from->SIPAuthPassword, sizeof record.SIPAuthPassword);
    return true;
  });
}

// --- Store and send ---

int ndistrib_voiceportx(LIST* list, SnmpErrInfo* err) {
  if (inRecoverConfProcess() != 1 && checkPorts(voicePorts, list, err) != 0) return -1;
  if (nSetObjManageData(kPotsPort, 0, list) != 0) {
    vSetErrorInfo(kNotStored, err);
    return -1;
  }
  if (const u16 code = sendPorts(voicePorts, list)) vSetErrorInfo(code, err);
  return 0;
}

int ndistrib_voiceport(u16 slot) {
  if (vCheckSlotNo(slot, kPotsCardKind) != 0) return 0;
  DataList list;
  if (nGetSlotObjManageDataHandle(slot, kVoicePortAttribute, 0, sizeof(VoicePort), list) != 0) return -1;
  return sendPorts(voicePorts, list) == 0 ? 0 : -1;
}

// The slots of service cards.
template <class Each>
static void forEachSlot(Each each) {
  for (u16 slot = 1; slot <= 18; ++slot)
    if (slot != 9 && slot != 10) each(slot);
}

void distrib_voiceport() {
  forEachSlot([](u16 slot) { ndistrib_voiceport(slot); });
}

// Writes a record that keeps the enabling alone. 0, 1 when it can't be read, -1 when it can't be written.
static int eraseObject(const ObjIndex* object) {
  VoicePort record;
  if (getObjAttrDataByCondition(object, kVoicePortAttribute, &record, 0, sizeof record) != 0) return 1;
  VoicePort empty;
  empty.enable = record.enable;
  return setObjAttrDataByCondition(object, kVoicePortAttribute, &empty, 0, sizeof empty) == 0 ? 0 : -1;
}

int nerase_voiceport(u16 slot) {
  SnmpErrInfo err;
  ObjList objects;
  if (nIsOBJMValid(kMessage, kPotsCardKind, slot, kAllPorts, &err) != 1 || vGetSlotObjIndex(slot, objects) != 0)
    return -1;
  for (NODE* cell = lstFirst(objects); cell != nullptr; cell = lstNext(cell)) {
    const int result = eraseObject(dataOf<const ObjIndex>(cell));
    if (result == -1) return -1;
    if (result == 1) break;
  }
  return ndistrib_voiceport(slot);
}

// --- SNMP ---

static int nsnmp_set_voiceport(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, nullptr, data, length, reply, replyLen};
  const Where where = Where::here();
  if (beginRequest(kMessage, call, Asks::orders, where) != 0) return -1;
  SnmpErrInfo err;
  WireIn area;
  DataList list;
  if (checkPortsFrame(voicePorts, data, length, area, &err) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  if (parsePorts(voicePorts, area, list) != 0) return answerFailed(call, "parse configuration failed", where);
  if (checkPorts(voicePorts, list, &err) != 0) return answerError(call, err, "check configuration failed", where);
  if (nSetObjManageData(kPotsPort, 0, list) != 0) return answerFailed(call, "set configuration failed", where);
  // What was received goes on, reserved bytes included.
  const u32 bytes = 4 + voicePorts.unit() * static_cast<u32>(lstCount(list));
  const u16 code = sendPortBytes(voicePorts, area.data(), bytes);
  answerSuccess(call, 0);
  if (code == 0)
    msan_cfg_sync_trigger(list, kMessage, 1, kDataNodeList);
  else
    printTrace(where, "build MSC msg 0x%04X failed", id);
  return 0;
}

static int nsnmp_get_voiceport(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGetPorts(voicePorts, {id, last, data, length, reply, replyLen}, sizeof(VoicePort),
                      [](LIST* list) { return nGetObjManageData(kPotsPort, 0, list); });
}

static constexpr SnmpMsgReg message{
    kMessage, {0, 0}, nsnmp_set_voiceport, nsnmp_get_voiceport, 253956, "Set voice port configuration"};
void voiceportcfg_regsnmpcmdhandle() { registerMessage(message); }

// --- Running configuration ---

static void printPort(Vty* vty, const VoicePort& record, int slot, int port) {
  if (record.enable == 1) vty_out(vty, "set voice port enable interface %d/%d\r\n", slot, port);
  if (record.userNumber[0] == '\0') return;
  vty_out(vty, "set voice port dsp profile id %d call profile id %d interface %d/%d\r\n", record.DSPProfileID,
          record.SIPUserCallProfileID, slot, port);
  vty_out(vty, "set voice port user name %.32s start 0 step 0 interface %d/%d\r\n", record.userNumber, slot, port);
  if (record.SIPAuthUserName[0] == '\0') return;
  vty_out(vty, "set voice port sip authentication user %.64s", record.SIPAuthUserName);
  if (record.SIPAuthPassword[0] != '\0') vty_out(vty, " password %.64s", record.SIPAuthPassword);
  vty_out(vty, " interface %d/%d\r\n", slot, port);
}

int showrun_voiceport(Vty* vty) {
  forEachSlot([&](u16 slot) {
    u16 amount = 0;
    if (vCheckSlotNo(slot, kPotsCardKind) != 0 ||
        ddGetBoardServePortAmountByType(static_cast<u16>(get_config_card_type(slot)), &amount) != 0)
      return;
    for (u32 port = 1; port <= amount; ++port) {
      VoicePort record;
      u8* bytes = reinterpret_cast<u8*>(&record);
      if (vGetObjManageDataUnit(slot, static_cast<u16>(port), kPotsPort, kVoicePortAttribute, 0, sizeof record,
                                bytes) == 0)
        printPort(vty, record, slot, static_cast<int>(port));
    }
  });
  return 0;
}
