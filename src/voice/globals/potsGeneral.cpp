#include "voice/globals/potsGeneral.h"

#include "common/memory.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "common/report.h"
#include "platform/log.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_msc.h"
#include "voice/service/ngn_vo_common.h"

static constexpr u16 kMessage = 2841;
static constexpr u32 kLabel = 22;         // bytes of the unit ahead of its fields
static constexpr u32 kForward = 32 + 22;  // from here on a request is forwarded: the last 4 bytes of the label
static constexpr u32 kSent = 542;         // bytes to a card: the unit from the end of its label on
static constexpr u16 kCards = 30;

// clang-format off
static constexpr Field fields[] = {
    field<&PotsGeneral::pulseWidth, PotsGeneralPara_pulseWidth_get, PotsGeneralPara_pulseWidth_put>(
        {.offset = 22, .initial = 40, .allowed = {{30, 2500}}, .code = 65385, .complaint = "invalid pulse width: %d"}),
    field<&PotsGeneral::pulseInterval, PotsGeneralPara_pulseInterval_get, PotsGeneralPara_pulseInterval_put>(
        {.offset = 24, .initial = 60, .allowed = {{50, 2500}}, .code = 65384, .complaint = "invalid pulse interval: %d"}),
    field<&PotsGeneral::flashWidth, PotsGeneralPara_flashWidth_get, PotsGeneralPara_flashWidth_put>(
        {.offset = 26, .initial = 90, .allowed = {{90, 2500}}, .code = 65383, .complaint = "invalid flash width: %d"}),
    field<&PotsGeneral::billType, PotsGeneralPara_billType_get, PotsGeneralPara_billType_put>(
        {.offset = 28, .initial = 0, .allowed = {{0, 2}}, .code = 65382, .complaint = "invalid bill type: %d"}),
    field<&PotsGeneral::billPulseVoltage, PotsGeneralPara_billPulseVoltage_get, PotsGeneralPara_billPulseVoltage_put>(
        {.offset = 30, .initial = 20, .allowed = {{4, 30}}, .code = 65381, .complaint = "invalid bill pulse voltage: %d"}),
    field<&PotsGeneral::POTSImpMode, PotsGeneralPara_POTSImpMode_get, PotsGeneralPara_POTSImpMode_put>(
        {.offset = 34, .initial = 0, .allowed = {{0, 2}}, .code = 65380, .complaint = "invalid POTS impedance interface mode: %d"}),
    field<&PotsGeneral::offHookCheckTime, PotsGeneralPara_offHookCheckTime_get, PotsGeneralPara_offHookCheckTime_put>(
        {.offset = 36, .initial = 20, .allowed = {{10, 400}}, .code = 65379, .complaint = "invalid off hook check time: %d"}),
    field<&PotsGeneral::onHookCheckTime, PotsGeneralPara_onHookCheckTime_get, PotsGeneralPara_onHookCheckTime_put>(
        {.offset = 38, .initial = 200, .allowed = {{90, 2500}}, .code = 65378, .complaint = "invalid on hook check time: %d"}),
    field<&PotsGeneral::sendCODECGain, PotsGeneralPara_sendCODECGain_get, PotsGeneralPara_sendCODECGain_put>(
        {.offset = 40, .initial = 0, .allowed = {{0, 100}}, .code = 65377, .complaint = "invalid send CODEC gain: %d"}),
    // -100 to -1, and 0.
    field<&PotsGeneral::recvCODECGain, PotsGeneralPara_recvCODECGain_get, PotsGeneralPara_recvCODECGain_put>(
        {.offset = 44, .initial = static_cast<u32>(-35), .allowed = {{static_cast<u32>(-100), static_cast<u32>(-1)}, {0, 0}},
         .code = 65376, .complaint = "invalid receive CODEC gain: %d"}),
};
// clang-format on
static constexpr Record shape(560, fields);
static constexpr Table<PotsGeneralPara> table{
    "PotsGeneralPara", "treeIdx", PotsGeneralPara_treeIdx_find, PotsGeneralPara_new, PotsGeneralPara_recordid_put,
    ownConnection};

static constexpr StepNames names{.check = "check_pots_general_para",
                                 .checkHandle = "",
                                 .set = "",
                                 .snmpSet = "snmp_set_pots_general_para",
                                 .snmpGet = "snmp_get_pots_general_para",
                                 .distributeX = "distrib_pots_general_parax",
                                 .distribute = "distrib_pots_general_para",
                                 .erase = "",
                                 .init = "init_pots_gerneral_para",
                                 .store = "db_set_general_prf",
                                 .load = "db_get_general_prf",
                                 .registrar = "reg_snmp_cmd_data"};

// --- Check ---

// Ranges in their order, and two relations: the interval's stands behind the range of the interval, the flash's with
// its own.
static int check_pots_general_para(const PotsGeneral* cfg, SnmpErrInfo* err) {
  const Fields all = fields;
  const auto check = [&](Fields some) { return checkRecord(some, cfg, err, Where::here(names.check)); };
  if (check(all.first(2)) != 0) return -1;
  if (cfg->pulseInterval - cfg->pulseWidth < 10) {
    vSetErrorInfo(65375, &cfg->pulseInterval, sizeof cfg->pulseInterval, err);
    trace("pulse interval must be 10ms more than pulse width");
    return -1;
  }
  if (check(all.subspan(2, 1)) != 0) return -1;
  if (cfg->flashWidth >= cfg->onHookCheckTime) {
    vSetErrorInfo(65383, &cfg->flashWidth, sizeof cfg->flashWidth, err);
    trace("invalid flash width: %d", cfg->flashWidth);
    return -1;
  }
  return check(all.subspan(3));
}

// --- Send ---

// The record as a card gets it, in a buffer of 4 + 560 bytes: from its offset 22 on. Null without memory.
static PoolBytes encoded(const PotsGeneral& cfg, Where where = Where::here()) {
  u8* memory = nullptr;
  if (vMemAlloc(&memory, static_cast<i32>(4 + shape.unit)) != 0) {
    printTrace(where, "malloc for encode buffer failed");
    return nullptr;
  }
  PoolBytes owner(memory);
  encodeRecord(fields, &cfg, memory + 4);
  putNumber(memory + kLabel, 4, 1);
  return owner;
}

// The slots of the POTS cards. 0, or the code for what is wrong with them.
static u16 potsSlots(u16* slots, u16& count, Where where) {
  count = kCards;
  if (get_msan_card_slot_list(slots, &count) != 0) {
    printTrace(where, "get POTS slots No failed");
    return kEncodeFailed;
  }
  if (count != 0) return 0;
  printTrace(where, "there is no any POTS card");
  return kEncodeFailed;
}

// Encodes and sends to all POTS cards. 0, or the code of the step that failed.
static u16 sendToAll(const PotsGeneral& cfg, Where where = Where::here()) {
  const PoolBytes buffer = encoded(cfg, where);
  if (buffer == nullptr) return kEncodeFailed;
  u16 slots[kCards];
  u16 count = 0;
  if (const u16 code = potsSlots(slots, count, where)) return code;
  DataList sends;
  if (vBuildMscPacketD(slots, count, kMessage, 0, buffer.get() + kLabel, kSent, sends) != 0) return kBuildFailed;
  vSendMscPacket(sends);
  return 0;
}

int distrib_pots_general_parax(const PotsGeneral* cfg, SnmpErrInfo* err) {
  if (inRecoverConfProcess() != 1 && check_pots_general_para(cfg, err) != 0) return -1;
  if (storeItem(potsGeneral, cfg) != 0) {
    vSetErrorInfo(kNotStored, err);
    trace("set POTS general para configuration failed");
    return -1;
  }
  if (const u16 code = sendToAll(*cfg)) vSetErrorInfo(code, err);
  return 0;
}

int distrib_pots_general_para(u16 slot) {
  PotsGeneral cfg;
  if (loadItem(potsGeneral, &cfg) != 0) {
    trace("get POTS general para configuration failed");
    return -1;
  }
  const PoolBytes buffer = encoded(cfg);
  DataList sends;
  if (buffer == nullptr || vBuildMscPacketS(slot, kMessage, 0, buffer.get() + kLabel, kSent, sends) != 0) {
    trace("build MSC msg 0x%04X failed", kMessage);
    return -1;
  }
  return vSendMscPacket(sends);
}

int erase_pots_general_para() {
  PotsGeneral cfg;
  SnmpErrInfo err;
  if (initItem(potsGeneral) != 0) {
    trace("initialize POTS general configuration failed");
  } else if (loadItem(potsGeneral, &cfg) != 0) {
    trace("get default POTS general configuration failed");
  } else if (distrib_pots_general_parax(&cfg, &err) != 0) {
    trace("distribute POTS general configuration failed");
  } else {
    return 0;
  }
  return -1;
}

// --- SNMP ---

// Checks and stores a SET. 0, or the answered failure.
static int acceptSet(const SnmpCall& call, Where where) {
  SnmpErrInfo err;
  WireIn area;
  if (checkListFrame(call.data, call.length, shape.unit, 1, area, &err) != 0) {
    return answerError(call, err, "invalid snmp command 0x%04X para", where);
  }
  DataList list;
  if (parseUnits(potsGeneral, area, list) != 0) {
    return answerFailed(call, "parse snmp command 0x%04X failed", where);
  }
  if (checkUnits(potsGeneral, list, &err) != 0) {
    return answerError(call, err, "check POTS general configuration failed", where);
  }
  if (setUnits(potsGeneral, list) != 0) {
    return answerFailed(call, "set POTS general configuration failed", where);
  }
  return 0;
}

// What follows the label travels to all POTS cards, to its end, whatever the request's length.
static void forward(const SnmpCall& call, Where where) {
  u16 slots[kCards];
  u16 count = kCards;
  if (get_msan_card_slot_list(slots, &count) != 0) return printTrace(where, "get MSC msg destination slots No failed");
  const WireOut area = WireOut(call.data, static_cast<u32>(call.length)).subspan(kForward);
  putNumber(area.data(), 4, 1);
  DataList sends;
  if (vBuildMscPacketD(slots, count, kMessage, 0, area.data(), static_cast<u32>(area.size()), sends) != 0)
    return printTrace(where, "build MSC msg 0x%04X failed", kMessage);
  vSendMscPacket(sends);
  reportChange(kNode, kMessage, 1);
}

static int snmp_set_pots_general_para(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  if (id != kMessage) {
    trace("invalid snmp command ID: 0x%04X", id);
    return -1;
  }
  if (vCheckSnmpSetCmdPara(data, reply, replyLen) != 0) {
    trace("snmp set command para is NULL");
    return -1;
  }
  if (length > 0) ulogTypePkt(gModuleId_Msan, kLogDebug, data, static_cast<u32>(length));
  const SnmpCall call{id, nullptr, data, length, reply, replyLen};
  if (acceptSet(call, Where::here()) != 0) return -1;
  forward(call, Where::here());
  return answerSuccess(call, 0);
}

static int snmp_get_pots_general_para(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  if (id != kMessage) {
    trace("invalid snmp command ID: 0x%04X", id);
    return -1;
  }
  if (vCheckSnmpOutPara(last, reply, replyLen) != 0) {
    trace("snmp command output para is NULL");
    return -1;
  }
  const SnmpCall call{id, last, data, length, reply, replyLen};
  DataList list;
  if (getUnits(potsGeneral, list) != 0) {
    return answerFailed(call, "get POTS general para configuration failed", Where::here());
  }
  Writer out(WireOut(reply, kMaxPacket).subspan(36));
  if (encodeArea(potsGeneral, list, out) != 0) {
    return answerFailed(call, "encode POTS general para configuration failed", Where::here());
  }
  return answerSuccess(call, out.length() + 32);
}

constexpr VoiceItem potsGeneral = {
    .id = kMessage,
    .stem = "",
    .names = &names,
    .words = "POTS general para",
    .setName = "db_set_general_prf",
    .kept = kept<PotsGeneral>(shape, table),
    .countWidth = 4,
    .check = onRecord<check_pots_general_para>,
    .showrunHandle = showrun_pots_general_para,
    .message = {snmp_set_pots_general_para, snmp_get_pots_general_para, 564, "Set POTS general parameters"},
};
