#include "voice/port/msan_vportenable_cfg.h"

#include "common/commands.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "common/words.h"
#include "platform/objects.h"
#include "voice/common/ngn_view.h"
#include "voice/port/voice_port_record.h"

static constexpr u16 kMessage = 3095;

// clang-format off
static constexpr Field fields[] = {
    field<&VoicePortEnable::enable>({.offset = 0, .allowed = {{0, 1}}, .code = 65416, .complaint = "invalid voice port enable: %d"}),
};
// clang-format on
static constexpr Record shape(17, fields);
// The message has room for locations that it does not hold: zeros behind all units.
static constexpr PortUnits ports = {.id = kMessage,
                                    .shape = &shape,
                                    .bytes = sizeof(VoicePortEnable),
                                    .attribute = kVoicePortAttribute,
                                    .maximum = 512,
                                    .slack = 16,
                                    .kind = 0};
static constexpr Word switchWords[] = {{"disable", 0}, {"enable", 1}};

// --- Store ---

// The port's whole record. 0 or -1.
static int readRecord(const DataNode* node, VoicePort* record) {
  return vGetObjManageDataUnit(node->slot, node->port, kPotsPort, kVoicePortAttribute, 0, sizeof *record,
                               reinterpret_cast<u8*>(record));
}

int set_voice_port_enable_objdata(u32, LIST* list) {
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    VoicePort record;
    ObjIndex object;
    if (readRecord(node, &record) != 0 || SlotNoPortConvertObjIndex(node->slot, node->port, 0, &object) != 0) return -1;
    record.enable = recordOf<VoicePortEnable>(at)->enable;
    if (setObjAttrDataByCondition(&object, kVoicePortAttribute, &record, 0, sizeof record) != 0) return -1;
  }
  return 0;
}

int get_voice_port_enable_objdata(u32, LIST* list) {
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    VoicePort record;
    if (readRecord(static_cast<const DataNode*>(at), &record) != 0) return -1;
    recordOf<VoicePortEnable>(at)->enable = record.enable;
  }
  return 0;
}

int distrib_voice_port_enable(LIST* list, SnmpErrInfo* err) {
  if (inRecoverConfProcess() != 1 && checkPorts(ports, list, err) != 0) return -1;
  if (set_voice_port_enable_objdata(0, list) != 0) {
    vSetErrorInfo(kNotStored, err);
    return -1;
  }
  msan_cfg_sync_trigger(list, kMessage, 3, kDataNodeList);
  if (const u16 code = sendPorts(ports, list)) vSetErrorInfo(code, err);
  return 0;
}

void voice_port_enable_hotplug() {
  u32 slots[kMostServeSlots];
  u32 count = 0;
  if (getServeSlots(slots, &count) != 0) return;
  for (u32 i = 0; i < count; ++i) {
    const u16 slot = static_cast<u16>(slots[i]);
    if (vCheckSlotNo(slot, kPotsCardKind) != 0) continue;
    u16 amount = 0;
    DataList list;
    if (ddGetBoardServePortAmountByType(static_cast<u16>(get_config_card_type(slot)), &amount) != 0 ||
        nCreatePortDataNode(list, slot, amount, kVoicePortAttribute, sizeof(VoicePortEnable)) != 0 ||
        get_voice_port_enable_objdata(0, list) != 0 || sendPorts(ports, list) != 0)
      return;
  }
}

// --- SNMP ---

static int snmp_set_voice_port_enable(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, nullptr, data, length, reply, replyLen};
  const Where where = Where::here();
  if (beginRequest(kMessage, call, Asks::orders, where) != 0) return -1;
  SnmpErrInfo err;
  WireIn area;
  DataList list;
  if (checkPortsFrame(ports, data, length, area, &err) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  if (parsePorts(ports, area, list) != 0) return answerFailed(call, "parse configuration failed", where);
  if (checkPorts(ports, list, &err) != 0) return answerError(call, err, "check configuration failed", where);
  if (set_voice_port_enable_objdata(0, list) != 0) return answerFailed(call, "set configuration failed", where);
  msan_cfg_sync_trigger(list, kMessage, 1, kDataNodeList);
  const u16 code = sendPorts(ports, list);
  if (code == kEncodeFailed) return answerFailed(call, "encode configuration failed", where);
  if (code != 0) printTrace(where, "build MSC msg 0x%04X failed", id);
  return answerSuccess(call, 0);
}

static int snmp_get_voice_port_enable(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGetPorts(ports, {id, last, data, length, reply, replyLen}, sizeof(VoicePortEnable),
                      [](LIST* list) { return get_voice_port_enable_objdata(0, list); });
}

static constexpr SnmpMsgReg message{kMessage,
                                    {0, 0},
                                    snmp_set_voice_port_enable,
                                    snmp_get_voice_port_enable,
                                    18948,
                                    "Set voice port enable configuration"};
void msan_reg_vportenable_snmp() { registerMessage(message); }

// --- Commands ---

// The ports of an interface string, all of POTS cards. 0, or -1 behind a line.
static int listPorts(Vty* vty, const char* ifStr, LIST* list) {
  if (readPorts(vty, ifStr, kVoicePortAttribute, sizeof(VoicePortEnable), list) != 0) return -1;
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at))
    if (vCheckSlotNo(static_cast<DataNode*>(at)->slot, kPotsCardKind) != 0)
      return refuse(vty, "set port OBJM list failed");
  return 0;
}

static int cli_set_voice_port_enable_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2) return refuse(vty, "invalid parameter quantity");
  const auto value = valueOf(switchWords, argv[0]);
  if (!value) return refuse(vty, "invalid enable option");
  const VoicePortEnable record{static_cast<u8>(*value)};
  DataList list;
  if (listPorts(vty, argv[1], list) != 0) return -1;
  if (nSetPortObjDataList(&record, list) != 0) return refuse(vty, "set voice port enable configuration list failed");
  SnmpErrInfo err;
  const int result = lstCount(list) != 0 ? distrib_voice_port_enable(list, &err) : 0;
  vty_out(vty, "\r\n set voice port enable configuration %s(%d). \r\n", result == 0 ? "successfully" : "failed",
          static_cast<i16>(err.errCode));
  return result;
}

static int cli_show_voice_port_enable_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  DataList list;
  if (listPorts(vty, argv[0], list) != 0) return -1;
  if (get_voice_port_enable_objdata(0, list) != 0) return refuse(vty, "get voice port enable configuration failed");
  vty_out(vty, "\r\n Voice Port Enable Configuration");
  vty_out(vty, "\r\n ---------------------------------");
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    vty_out(vty, "\r\n %-19s%d/%d %s\r\n", "Slot No./Port No.: ", node->slot, node->port,
            recordOf<VoicePortEnable>(at)->enable != 0 ? "Enable" : "Disable");
  }
  vty_out(vty, "\r\n get voice port enable configuration successfully(%d). \r\n", 0);
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show voice port enable configuration interface <ifStr>",
            cli_show_voice_port_enable_config_func, "which POTS ports are enabled"),
    command(CONFIG_NODE, "set voice port [disable|enable] interface <ifStr>", cli_set_voice_port_enable_config_func,
            "switch POTS ports on or off"),
};
int msan_init_vportenable_cmd() { return installCommands(commands); }
