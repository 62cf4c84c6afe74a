#include "voice/alarm/alarm_attach.h"

#include <cstring>

#include "combo/adsl/adsl_config_aux.h"
#include "common/commands.h"
#include "common/interface_list.h"
#include "common/obj_attributes.h"
#include "common/report.h"
#include "platform/cards.h"
#include "platform/objects.h"
#include "voice/alarm/alarm_area.h"
#include "voice/alarm/ngn_alarm_prof.h"

static constexpr u16 kAttach = 2824;
static constexpr u32 kMostPorts = 1024;  // of a manager's write
static constexpr u16 kNoSuchPort = 65529;

// What a card gets for a port: a number that is always 1, the port, the thresholds as they lie in the record.
struct AlarmMessage {
  AlarmMessage(u16 slot, u16 port, const AlarmPrfRecord& record) {
    putNumber(bytes, 4, 1);
    putNumber(bytes + 4, 2, slot);
    putNumber(bytes + 6, 2, port);
    std::memcpy(bytes + 24, &record.item, kThresholdBytes);
  }
  u8 bytes[88] = {};
};

// Whether it arrived matters to an operator alone.
static int sendAlarm(u16 slot, u16 port, const AlarmPrfRecord& record) {
  const AlarmMessage message(slot, port, record);
  return dm_MakeCmdPkt_GEPON(slot, kAttach, message.bytes, sizeof message.bytes);
}

int attach_alarm_prf_adapt(LIST* nodes, u32 count) {
  NODE* cell = nodes != nullptr ? lstFirst(nodes) : nullptr;
  for (u32 i = 0; i < count && cell != nullptr; ++i, cell = lstNext(cell)) {
    const auto& node = *dataOf<AdslPortPrfNode>(cell);
    AlarmPrfRecord record;
    SnmpErrInfo err;
    if (get_alarm_prf(&err, &record, node.prfId) != 0) return -1;
    const AlarmMessage message(node.port.addr[1], node.port.addr[2], record);
    dm_MakeCmdPkt_EPON(node.port.addr[1], kAttach, message.bytes, sizeof message.bytes);
  }
  return 0;
}

void hotplug_alarm_prf_attach(u16 slot) {
  const int card = get_config_card_type(slot);
  u16 ports = 0;
  if (card <= 0 || caCheckCardTypeIsMsanCard(static_cast<u16>(card)) != 0 ||
      ddGetBoardServePortAmountByType(static_cast<u16>(card), &ports) != 0) {
    return;
  }
  for (u16 port = 1; port <= ports; ++port) {
    ObjIndex object;
    u16 id = 0;
    if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0) continue;
    if (attachedProfile(alarmKind, &object, &id) < 0 || id == kDefaultProfile) continue;
    AlarmPrfRecord record;
    if (get_alarm_profile_attribute(id, &record) != 0) return;
    sendAlarm(slot, port, record);
  }
}

// Stores the id for the port and reads the profile. The port keeps an id without a profile.
static int bind(SnmpErrInfo* err, u16 slot, u16 port, u16 id, AlarmPrfRecord* record) {
  ObjIndex object;
  if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0 ||
      setObjAttrDataByCondition(&object, kAlarmAttribute, &id, 0, sizeof id) != 0) {
    return reject(err, kNoSuchPort, {slot, port});
  }
  return get_alarm_profile_attribute(id, record) == 0 ? 0 : reject(err, kNoSuchProfile, {id});
}

// --- Messages ---

static int snmp_set_adsl_prf_attach(u16 messageId, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  static constexpr u32 kItems = 36, kItem = 38, kLocation = 20;
  if (data == nullptr || length < static_cast<i32>(kItems)) return -1;
  const u32 count = getNumber(data + kItems - 4, 4);
  if (count == 0 || count > kMostPorts || kItem * count + kItems > static_cast<u32>(length)) return -1;
  SnmpErrInfo err;
  for (u32 i = 0; i < count; ++i) {
    const u8* item = data + kItems + i * kItem;
    const u16 slot = static_cast<u16>(getNumber(item, 2)), port = static_cast<u16>(getNumber(item + 2, 2));
    AlarmPrfRecord record;
    if (bind(&err, slot, port, static_cast<u16>(getNumber(item + kLocation, 2)), &record) != 0) {
      return answerError(messageId, err, reply, replyLen);
    }
    sendAlarm(slot, port, record);
    reportChange(slot, kAttach, 1);
  }
  return answerSuccess(reply, replyLen);
}

static int get_dsl_prf_attach_info(SnmpErrInfo* err, LIST* ports, Writer& to) {
  to.number(4, static_cast<u32>(lstCount(ports)));
  for (NODE* cell = lstFirst(ports); cell != nullptr; cell = lstNext(cell)) {
    const auto* port = dataOf<const ObjIndex>(cell);
    u16 id = 0;
    if (checkObjErr(kAttach, kAlarmAttribute, port, kAnyCard, err) != 0) return -1;
    const int code = attachedProfile(alarmKind, port, &id);
    if (code != 0 && code != DB_NOT_FOUND) return -1;
    to.number(2, port->addr[1]);
    to.number(2, port->addr[2]);
    to.zeros(16);
    to.number(2, id);
    to.zeros(16);
  }
  return to.failed() ? -1 : 0;
}

// The ports of a read are other ones than those that a changed profile goes to.
static int snmp_get_dsl_prf_attach(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  static constexpr u16 types[] = {kVdslPort, kAdslPort, kAdslPotsPort, kDslPort};
  const SnmpCall call{id, last, data, length, reply, replyLen};
  ObjList ports;
  SnmpErrInfo err;
  if (askedPorts(types, call, &err, ports) != 0) return answerError(id, err, reply, replyLen);
  Writer to = beginReply(call);
  if (get_dsl_prf_attach_info(&err, ports, to) != 0) return answerError(id, err, reply, replyLen);
  return endReply(call, to);
}

void registerAlarmAttachment() {
  static constexpr ProfileMessage messages[] = {
      {"DSL_ALARM_PRF_ATTACH", "Set alarm prf banding", kAttach, snmp_set_adsl_prf_attach, snmp_get_dsl_prf_attach,
       38916},
  };
  registerProfileMessages(messages);
}

// --- Commands ---

static int findAttached(Vty* vty, char** argv, u16* id) {
  if (bep_StrCmp("id", argv[0]) != 0) return findByName(alarmKind, vty, argv[1], id);
  const auto number = numberOf(argv[1]);
  if (!number) return complain(vty, "Please input legal id");
  *id = static_cast<u16>(*number);
  if (*number == kDefaultProfile || (*number <= kMostAlarmId && is_alarm_prf_id_free(*id) != 0)) return 0;
  vty_out(vty, "no prfId = %d \r\n", static_cast<int>(*number));
  return -1;
}

// What is ahead of a port that fails is attached.
static int attach_alarm_prf_Func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 3) return -1;
  u16 id = 0;
  if (findAttached(vty, argv, &id) != 0) return -1;
  ObjList addresses;
  if (CliInputConvertObjIndex(argv[2], addresses) != 0) return complainInterface(alarmKind, vty);
  SnmpErrInfo err;
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    const auto& address = *dataOf<const CliAddr>(cell);
    AlarmPrfRecord record;
    if (bind(&err, address.slot, address.port, id, &record) != 0) return -1;
    if (sendAlarm(address.slot, address.port, record) < 0) return -1;
    reportChange(address.slot, kAttach, 3);
  }
  return 0;
}

static int show_attach_alarm_prf_Func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return -1;
  ObjList addresses;
  if (CliInputConvertObjIndex(argv[0], addresses) != 0) return complainInterface(alarmKind, vty);
  vty_out(vty, "%-10s%-10s%-10s%s", "slotNO", "portNo", "profile id", "\r\n");
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    const auto& address = *dataOf<const CliAddr>(cell);
    ObjIndex object;
    u16 id = 0;
    if (SlotNoPortConvertObjIndex(address.slot, address.port, 0, &object) != 0) return -1;
    const int code = attachedProfile(alarmKind, &object, &id);
    if (code != 0 && code != DB_NOT_FOUND) return complain(vty, "getObjAttrData failed!");
    vty_out(vty, "%-10d%-10d%-10d%s", address.slot, address.port, id, "\r\n");
  }
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "attach alarm profile [id|name] <idOrName> interface <ifStr>", attach_alarm_prf_Func,
            "the alarm profile of ports"),
    command(CONFIG_NODE, "show alarm profile attach interface <ifStr>", show_attach_alarm_prf_Func,
            "the alarm profile of ports"),
};
void installAlarmAttachment() { installCommands(commands); }

static void adsl_alarm_attach_showrun(Vty* vty, u16 slot, u16 port) {
  ObjIndex object;
  u16 id = 0;
  if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0) return;
  if (attachedProfile(alarmKind, &object, &id) != 0 || id == kDefaultProfile) return;
  vty_out(vty, "attach alarm profile id %d interface %d/%d%s", id, slot, port, "\r\n");
}

void showrun_adsl_alarm_attach(Vty* vty) {
  for (u16 slot = 1; slot <= 18; ++slot) {
    const int card = slot != 9 && slot != 10 ? get_config_card_type(slot) : 0;
    u16 ports = 0;
    if (card <= 0 || ddGetBoardServePortAmountByType(static_cast<u16>(card), &ports) != 0) continue;
    for (u16 port = 1; port <= ports; ++port) adsl_alarm_attach_showrun(vty, slot, port);
  }
}
