#include "voice/service/ngn_vo_vlan.h"

#include <array>

#include "common/commands.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "common/report.h"
#include "common/store.h"
#include "common/words.h"
#include "platform/cards.h"
#include "platform/objects.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_packets.h"
#include "voice/service/ngn_vo_common.h"
#include "voice/service/ngn_vo_gated.h"

static constexpr u16 kRtpVlanMessage = 2851;
static constexpr u16 kTypes = 2, kRtp = 1;
static constexpr u32 kShortUnit = 46;  // the NGN side's; a manager's is `shape.unit`
static constexpr u32 kMessage = 2 + kTypes * kShortUnit;
namespace {
enum Origin { kSnmp = 1, kCommand = 3 };
}  // namespace
using Rows = std::array<VoiceVlan, kTypes>;

// clang-format off
static constexpr Range kId{1, 4095}, kNone{kNoVlan, kNoVlan};
static constexpr Field fields[] = {
    field<&VoiceVlan::type, VoiceVlanCfg_type_get, VoiceVlanCfg_type_put>(
        {.offset = 0, .allowed = {{0, 1}}, .code = 65416, .complaint = "invalid voice VLAN type: %d"}),
    field<&VoiceVlan::serviceName, VoiceVlanCfg_serviceName_get, VoiceVlanCfg_serviceName_put>({.offset = 2, .initial = kNoVlan}),
    field<&VoiceVlan::svlanTpid, VoiceVlanCfg_svlanTpid_get, VoiceVlanCfg_svlanTpid_put>(
        {.offset = 4, .initial = 0x8100, .allowed = {{1, 65535}}, .code = 65414, .complaint = "invalid SVLAN TPID: %d"}),
    field<&VoiceVlan::svlanId, VoiceVlanCfg_svlanId_get, VoiceVlanCfg_svlanId_put>(
        {.offset = 6, .initial = kNoVlan, .allowed = {kId, kNone}, .code = 65413, .complaint = "invalid SVLAN ID: %d"}),
    field<&VoiceVlan::svlanCos, VoiceVlanCfg_svlanCos_get, VoiceVlanCfg_svlanCos_put>(
        {.offset = 8, .initial = 5, .allowed = {{0, 7}}, .code = 65412, .complaint = "invalid SVLAN COS: %d"}),
    field<&VoiceVlan::cvlanTpid, VoiceVlanCfg_cvlanTpid_get, VoiceVlanCfg_cvlanTpid_put>(
        {.offset = 10, .initial = 0x8100, .allowed = {{1, 65535}}, .code = 65411, .complaint = "invalid CVLAN TPID: %d"}),
    field<&VoiceVlan::cvlanId, VoiceVlanCfg_cvlanId_get, VoiceVlanCfg_cvlanId_put>(
        {.offset = 12, .initial = kNoVlan, .allowed = {kId, kNone}, .code = 65410, .complaint = "invalid CVLAN ID: %d"}),
    field<&VoiceVlan::cvlanCos, VoiceVlanCfg_cvlanCos_get, VoiceVlanCfg_cvlanCos_put>(
        {.offset = 14, .initial = kNoVlan, .allowed = {{0, 7}, kNone}, .code = 65409, .complaint = "invalid CVLAN COS: %d"}),
};
// clang-format on
static constexpr Record shape(48, fields);
static constexpr Table<VoiceVlanCfg> table{
    "VoiceVlanCfg", "treeIdx",
    [](mco_trans_h handle, u32 type, VoiceVlanCfg* row) {
      return VoiceVlanCfg_treeIdx_find(handle, static_cast<u16>(type), row);
    },
    VoiceVlanCfg_new, [](VoiceVlanCfg* row, u32 type) { return VoiceVlanCfg_type_put(row, static_cast<u16>(type)); }};
static constexpr Word typeWords[] = {{"signalling", 0}, {"rtpstream", kRtp}};

// --- Store ---

static int set_voice_vlan_db(const VoiceVlan& record) { return storeRow(table, fields, &record, record.type); }
static int get_voice_vlan_db(u16 type, VoiceVlan* record) { return loadRow(table, fields, record, type); }

static int getRows(Rows& rows) {
  for (u16 type = 0; type < kTypes; ++type)
    if (get_voice_vlan_db(type, &rows[type]) != 0) return -1;
  return 0;
}

static int setRows(const Rows& rows) {
  for (const VoiceVlan& row : rows)
    if (set_voice_vlan_db(row) != 0) return -1;
  return 0;
}

int init_voice_vlan(u16 type) {
  VoiceVlan record;
  resetRecord(fields, &record);
  record.type = type;
  return set_voice_vlan_db(record);
}

// --- Send ---

int send_rtp_vlan_by_slot(u16 slot) {
  VoiceVlan record;
  if (get_config_card_type(slot) < 1 || get_voice_vlan_db(kRtp, &record) != 0) return 0;
  u8 message[64] = {};
  Writer out(message);
  out.number(4, 1);
  out.zeros(16);
  for (const u16 value :
       {record.svlanTpid, record.svlanId, record.svlanCos, record.cvlanTpid, record.cvlanId, record.cvlanCos})
    out.number(2, value);
  return dm_MakeCmdPkt_GEPON(slot, kRtpVlanMessage, message, sizeof message);
}

static constexpr GatedItem gated{
    kVoiceVlanMessage, [](const void* old) { return setRows(*static_cast<const Rows*>(old)); }, send_rtp_vlan_by_slot};

// The message of both rows, in memory of the pool. 0, or the code of the step that failed.
static u16 encodeRows(PoolBytes& message) {
  constexpr u32 kRoom = 98;
  Rows rows;
  if (getRows(rows) != 0) return kNotRead;
  u8* payload = nullptr;
  if (vMemAlloc(&payload, kRoom) != 0) return kEncodeFailed;
  message.reset(payload);
  Writer out(WireOut(payload, kMessage));
  out.number(2, kTypes);
  for (const VoiceVlan& row : rows) {
    out.number(2, row.type);
    for (const u16 value : {row.svlanTpid, row.svlanId, row.svlanCos, row.cvlanTpid, row.cvlanId, row.cvlanCos})
      out.number(2, value);
    out.zeros(32);
  }
  return out.failed() ? u16{kEncodeFailed} : u16{0};
}

static GatedResult sendRows(const Rows& old) {
  PoolBytes message;
  if (const u16 code = encodeRows(message)) return {code};
  return sendGated(gated, message.get(), kMessage, &old);
}

static int failed(SnmpErrInfo* err, u16 code, int result) {
  vSetErrorInfo(code, err);
  return result;
}

int distrib_voice_vlanx(const VoiceVlan* record, SnmpErrInfo* err) {
  if (inRecoverConfProcess() != 1 && checkRecord(fields, record, err) != 0) return -1;
  Rows old;
  if (getRows(old) != 0) return -1;
  if (set_voice_vlan_db(*record) != 0) return failed(err, kNotStored, -1);
  reportChange(kNode, kVoiceVlanMessage, kCommand);
  const GatedResult sent = sendRows(old);
  return sent.code == 0 ? 0 : failed(err, sent.code, sent.takenBack ? -1 : 0);
}

int distrib_voice_vlan() {
  PoolBytes message;
  return encodeRows(message) == 0 ? distributeGated(kVoiceVlanMessage, 0, message.get(), kMessage) : -1;
}

int erase_voice_vlan() {
  if (init_voice_vlan(0) != 0 || init_voice_vlan(kRtp) != 0) return -1;
  reportChange(kNode, kVoiceVlanMessage, kCommand);
  return 0;
}

// --- SNMP ---

static constexpr u32 kLabel = 22, kItems = 58;  // bytes of the object label; where the items stand in a request

static int snmp_set_voice_vlan(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, nullptr, data, length, reply, replyLen};
  const Where where = Where::here();
  if (beginRequest(kVoiceVlanMessage, call, Asks::orders, where) != 0) return -1;
  SnmpErrInfo err;
  if (nCheckSnmpItemsLengthPre(data, length, kLabel, &err) != 0 ||
      nCheckSnmpItemsLength(data + kItems, length - static_cast<i32>(kItems), shape.unit, 2, kTypes, kTypes, &err) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  Rows rows, old;
  for (u16 i = 0; i < kTypes; ++i) parseRecord(fields, data + kItems + 2 + i * shape.unit, &rows[i]);
  for (const VoiceVlan& row : rows)
    if (checkRecord(fields, &row, &err) != 0) return answerError(call, err, "check configuration failed", where);
  if (getRows(old) != 0 || setRows(rows) != 0) return answerFailed(call, "set configuration failed", where);
  reportChange(kNode, kVoiceVlanMessage, kSnmp);
  const GatedResult sent = sendRows(old);
  if (sent.takenBack) {
    vSetErrorInfo(static_cast<u16>(sent.sent), &err);
    return answerError(call, err, "send MSC msg 0x%04X failed", where);
  }
  if (sent.code != 0) printTrace(where, "build MSC msg 0x%04X failed", id);
  return answerSuccess(call, 0);
}

static int snmp_get_voice_vlan(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  constexpr u32 kReplyArea = 36;
  const SnmpCall call{id, last, data, length, reply, replyLen};
  const Where where = Where::here();
  if (beginRequest(kVoiceVlanMessage, call, Asks::nothing, where) != 0) return -1;
  Rows rows;
  if (getRows(rows) != 0) return answerFailed(call, "get configuration failed", where);
  Writer out(WireOut(reply + kReplyArea, kMaxPacket - kReplyArea));
  out.number(4, 1);
  out.zeros(kLabel);
  out.number(2, kTypes);
  for (const VoiceVlan& row : rows) encodeRecord(fields, &row, out.skip(shape.unit));
  return answerSuccess(call, out.length() + kReplyArea - 4);
}

static constexpr SnmpMsgReg message{kVoiceVlanMessage,   {0, 0}, snmp_set_voice_vlan,
                                    snmp_get_voice_vlan, 126,    "Set voice VLAN configuration"};
void registerVoiceVlan() { registerMessage(message); }

// --- Commands ---

static int badQuantity(Vty* vty) { return refuse(vty, "invalid parameter quantity"); }

static int chooseRow(Vty* vty, const char* word, VoiceVlan* record) {
  const auto type = valueOf(typeWords, word);
  if (!type) return refuse(vty, "invalid voice VLAN type");
  if (get_voice_vlan_db(static_cast<u16>(*type), record) == 0) return 0;
  vty_out(vty, "\r\n get voice VLAN %d configuration failed. \r\n", static_cast<int>(*type));
  return -1;
}

static int finish(Vty* vty, const VoiceVlan& record) {
  SnmpErrInfo err;
  const int result = distrib_voice_vlanx(&record, &err);
  vty_out(vty, "\r\n set voice VLAN %d configuration %s(%d). \r\n", record.type,
          result == 0 ? "successfully" : "failed", static_cast<i16>(err.errCode));
  return result;
}

static u16 numberOf(const char* text) { return static_cast<u16>(bep_atoiEx(text)); }

static int cli_set_voice_vlan_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VoiceVlan record;
  if (argc != 4 && argc != 7) return badQuantity(vty);
  if (chooseRow(vty, argv[0], &record) != 0) return -1;
  record.svlanTpid = numberOf(argv[1]);
  record.svlanId = numberOf(argv[2]);
  record.svlanCos = numberOf(argv[3]);
  if (argc == 7) {
    record.cvlanTpid = numberOf(argv[4]);
    record.cvlanId = numberOf(argv[5]);
    record.cvlanCos = numberOf(argv[6]);
  }
  return finish(vty, record);
}

static int cli_set_voice_service_name_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VoiceVlan record;
  if (argc != 2) return badQuantity(vty);
  if (chooseRow(vty, argv[0], &record) != 0) return -1;
  record.serviceName = numberOf(argv[1]);
  return finish(vty, record);
}

static int cli_distribute_erase_voice_vlan_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return badQuantity(vty);
  const bool erases = bep_StrCmp(argv[0], "erase") == 0;
  if (!erases && bep_StrCmp(argv[0], "distribute") != 0) return refuse(vty, "invalid configuration operation");
  const int result = erases ? erase_voice_vlan() : distrib_voice_vlan();
  vty_out(vty, "\r\n %s voice VLAN configuration %s. \r\n", argv[0], result == 0 ? "successfully" : "failed");
  return result;
}

static void showNumber(Vty* vty, const char* label, u16 value, bool mayBeNone = true) {
  if (mayBeNone && value == kNoVlan)
    vty_out(vty, "\r\n %-12s%s", label, "NULL");
  else
    vty_out(vty, "\r\n %-12s%d", label, value);
}

static int cli_show_voice_vlan_config_func(const CommandElement*, Vty* vty, int, char**) {
  static constexpr Word types[] = {{"Signalling", 0}, {"RTP Stream", kRtp}};
  vty_out(vty, "\r\n Voice VLAN Configuration");
  vty_out(vty, "\r\n --------------------------");
  for (u16 type = 0; type < kTypes; ++type) {
    VoiceVlan record;
    if (get_voice_vlan_db(type, &record) != 0) {
      vty_out(vty, "\r\n get voice VLAN %d configuration failed. \r\n", type);
      return -1;
    }
    vty_out(vty, "\r\n %-12s%s", "VLAN Type: ", textOf(types, record.type, "N/A"));
    showNumber(vty, "SVLAN TPID: ", record.svlanTpid);
    showNumber(vty, "SVLAN ID: ", record.svlanId);
    showNumber(vty, "SVLAN COS: ", record.svlanCos, false);
    showNumber(vty, "CVLAN TPID: ", record.cvlanTpid);
    showNumber(vty, "CVLAN ID: ", record.cvlanId);
    showNumber(vty, "CVLAN COS: ", record.cvlanCos);
    vty_out(vty, "\r\n");
  }
  vty_out(vty, "\r\n get voice VLAN configuration successfully. \r\n");
  return 0;
}

void show_run_voice_vlan(Vty* vty) {
  Rows rows;
  if (getRows(rows) != 0) return;
  for (const VoiceVlan& row : rows) {
    const char* type = textOf(typeWords, row.type, "signalling");
    if (row.serviceName != kNoVlan) vty_out(vty, "set voice vlan %s service name %d\r\n", type, row.serviceName);
    vty_out(vty, "set voice %s svlan tpid %d vid %d cos %d cvlan tpid %d vid %d cos %d\r\n", type, row.svlanTpid,
            row.svlanId, row.svlanCos, row.cvlanTpid, row.cvlanId, row.cvlanCos);
  }
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show voice vlan", cli_show_voice_vlan_config_func, "VLANs of the voice service"),
    command(CONFIG_NODE,
            "set voice [signalling|rtpstream] svlan tpid <sVlanTpid> vid <sVlanID> cos <sValnCos> {cvlan tpid <cVlanTpid> vid "
            "<cVlanID> cos <cValnCos>}*1",
            cli_set_voice_vlan_config_func, "VLANs of the signalling or of the voice streams"),
    command(CONFIG_NODE, "set voice vlan [signalling|rtpstream] service name <serviceName>",
            cli_set_voice_service_name_config_func, "service of a VLAN, 1 to 150 or 65535 for none"),
    command(CONFIG_NODE, "[distribute|erase] voice vlan", cli_distribute_erase_voice_vlan_config_func,
            "VLANs of the voice service"),
};
// clang-format on
void installVoiceVlan() { installCommands(commands); }
