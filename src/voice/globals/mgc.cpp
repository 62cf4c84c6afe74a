#include "voice/globals/mgc.h"

#include <cstring>

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&MGC::primaryMGC, MGCCfg_primaryMGC_get, MGCCfg_primaryMGC_put>({.offset = 0}),
    field<&MGC::primaryMGCPort, MGCCfg_primaryMGCPort_get, MGCCfg_primaryMGCPort_put>(
        {.offset = 64, .initial = 0, .allowed = {{0, 65535}}, .code = 65414, .complaint = "invalid primary MGC port: %d"}),
    field<&MGC::secondaryMGC, MGCCfg_secondaryMGC_get, MGCCfg_secondaryMGC_put>({.offset = 68}),
    field<&MGC::secondaryMGCPort, MGCCfg_secondaryMGCPort_get, MGCCfg_secondaryMGCPort_put>(
        {.offset = 132, .initial = 0, .allowed = {{0, 65535}}, .code = 65413, .complaint = "invalid secondary MGC port: %d"}),
    field<&MGC::heartbeat, MGCCfg_heartbeat_get, MGCCfg_heartbeat_put>(
        {.offset = 136, .initial = 1, .allowed = {{0, 2}}, .code = 65411, .complaint = "invalid MGC heartbeat switch: %d"}),
    field<&MGC::heartbeatInterval, MGCCfg_heartbeatInterval_get, MGCCfg_heartbeatInterval_put>(
        {.offset = 137, .initial = 30, .allowed = {{1, 86400}}, .code = 65410, .complaint = "invalid MGC heartbeat interval: %d"}),
    field<&MGC::heartbeatTimeOuts, MGCCfg_heartbeatTimeOuts_get, MGCCfg_heartbeatTimeOuts_put>(
        {.offset = 141, .initial = 3, .allowed = {{1, 120}}, .code = 65409, .complaint = "invalid MGC heartbeat timeouts: %d"}),
    field<&MGC::heartbeatFormat, MGCCfg_heartbeatFormat_get, MGCCfg_heartbeatFormat_put>(
        {.offset = 145, .initial = 0, .allowed = {{0, 1}}, .code = 65408, .complaint = "invalid MGC heartbeat format: %d"}),
};
// clang-format on
static constexpr Record shape(401, fields);
static constexpr Table<MGCCfg> table{"MGCCfg",   "treeIdx",           MGCCfg_treeIdx_find,
                                     MGCCfg_new, MGCCfg_recordid_put, ownConnection};
static constexpr VoiceItem item{.id = 3073,
                                .setName = "set_mgc",
                                .words = "MGC",
                                .viewWords = "MGC",
                                .shape = &shape,
                                .recordBytes = sizeof(MGC),
                                .label = 50,
                                .parse = onRecord<parse_mgc>,
                                .check = onRecord<check_mgc>,
                                .set = onRecord<set_mgc>,
                                .get = onRecord<get_mgc>,
                                .encode = onRecord<encode_mgc>,
                                .parseHandle = parse_mgc_handle,
                                .checkHandle = check_mgc_handle,
                                .setHandle = set_mgc_handle,
                                .getHandle = get_mgc_handle,
                                .encodeHandle = encode_mgc_handle,
                                .init = init_mgc,
                                .distribute = distrib_mgc,
                                .erase = erase_mgc};
static constexpr Word switchWords[] = {{"disable", 0}, {"initiative", 1}, {"passive", 2}};
static constexpr Word formatWords[] = {{"notify", 0}, {"servicechange", 1}};
static constexpr int kAddress = sizeof(MGC::primaryMGC);

// Steps that are done as by every item.
int parse_mgc(WireIn unit, MGC* cfg, u32* length) { return parseUnit(shape, unit, cfg, length); }
int parse_mgc_handle(WireIn area, u32* count, LIST* list) { return parseUnits(item, area, count, list); }
int check_mgc(const MGC* cfg, SnmpErrInfo* err) { return checkFields(fields, cfg, err); }
int check_mgc_handle(LIST* list, SnmpErrInfo* err) { return checkUnits(item, list, err); }
int set_mgc(const MGC* cfg) { return db_set_mgc_prf(cfg, 0); }
int set_mgc_handle(LIST* list) { return setUnits(item, list); }
int get_mgc(MGC* cfg) { return db_get_mgc_prf(cfg, 0); }
int get_mgc_handle(LIST* list) { return getUnit(item, list); }
int encode_mgc(const MGC* cfg, WireOut unit, u32* length) { return encodeUnit(shape, cfg, unit, length); }
int encode_mgc_handle(LIST* list, WireOut buffer, u32* length) { return encodeUnits(item, list, buffer, length); }
int db_set_mgc_prf(const MGC* cfg, u32 key) { return storeRow(table, fields, cfg, key); }
int db_get_mgc_prf(MGC* cfg, u32 key) { return loadRow(table, fields, cfg, key); }
int distrib_mgcx(const MGC* cfg, SnmpErrInfo* err) { return storeAndSend(item, cfg, err); }
int distrib_mgc() { return sendStored(item, MGC{}); }
int erase_mgc() { return eraseItem(item); }
int init_mgc() { return initItem(item, MGC{}); }

int snmp_set_mgc(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpSet(item, {id, nullptr, data, length, reply, replyLen});
}
int snmp_get_mgc(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGet(item, {id, last, data, length, reply, replyLen});
}

// Commands. The two that set change a part of the stored record each.
static const char* const kNoRecord = "get current MGC configuration failed";

// True, with a line, for an address that does not fit.
static bool tooLong(Vty* vty, const char* which, const char* address) {
  if (bep_StrLen(address) <= static_cast<std::size_t>(kAddress)) return false;
  vty_out(vty, "\r\n the %s MGC address length is more than %d bytes. \r\n", which, kAddress);
  return true;
}

static void take(char* field, const char* address) {
  std::memset(field, 0, kAddress);
  std::memcpy(field, address, bep_StrLen(address));
}

int cli_set_mgc_addr_port_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2 && argc != 4) return refuse(vty, "invalid parameter quantity");
  if (tooLong(vty, "primary", argv[0]) || (argc == 4 && tooLong(vty, "secondary", argv[2]))) return -1;
  MGC cfg;
  if (get_mgc(&cfg) != 0) return refuse(vty, kNoRecord);
  take(cfg.primaryMGC, argv[0]);
  cfg.primaryMGCPort = static_cast<u32>(bep_atoiEx(argv[1]));
  if (argc == 4) {
    take(cfg.secondaryMGC, argv[2]);
    cfg.secondaryMGCPort = static_cast<u32>(bep_atoiEx(argv[3]));
  }
  SnmpErrInfo err;
  const int result = distrib_mgcx(&cfg, &err);
  return finishSet(vty, item, "set MGC address and port", result, err);
}

int cli_set_mgc_heartbeat_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1 && argc != 4) return refuse(vty, "invalid parameter quantity");
  MGC cfg;
  if (get_mgc(&cfg) != 0) return refuse(vty, kNoRecord);
  const auto heartbeat = valueOf(switchWords, argv[0]);
  if (!heartbeat) return refuse(vty, "invalid heartbeat switch");
  cfg.heartbeat = static_cast<u8>(*heartbeat);
  if (argc == 4) {
    if (cfg.heartbeat != 0) {
      cfg.heartbeatInterval = static_cast<u32>(bep_atoiEx(argv[1]));
      cfg.heartbeatTimeOuts = static_cast<u32>(bep_atoiEx(argv[2]));
    }
    const auto format = valueOf(formatWords, argv[3]);
    if (!format) return refuse(vty, "invalid heartbeat format");
    cfg.heartbeatFormat = static_cast<u8>(*format);
  }
  SnmpErrInfo err;
  const int result = distrib_mgcx(&cfg, &err);
  return finishSet(vty, item, "set MGC heartbeat", result, err);
}

int cli_show_mgc_config_func(const CommandElement*, Vty* vty, int, char**) {
  static constexpr Word switches[] = {{"Disable", 0}, {"Initiative", 1}, {"Passive", 2}};
  static constexpr Word formats[] = {{"Notify", 0}, {"ServiceChange", 1}};
  MGC cfg;
  const int result = get_mgc(&cfg);
  if (result == 0) {
    vty_out(vty, "\r\n Softswitch Platform Configuration");
    vty_out(vty, "\r\n ---------------------------------------");
    vty_out(vty, "\r\n %-23s%-30.64s", "Primary MGC Address: ", cfg.primaryMGC);
    vty_out(vty, "\r\n %-23s%-6d", "Primary MGC Port: ", static_cast<i32>(cfg.primaryMGCPort));
    vty_out(vty, "\r\n %-23s%-30.64s", "Secondary MGC Address: ", cfg.secondaryMGC);
    vty_out(vty, "\r\n %-23s%-6d", "Secondary MGC Port: ", static_cast<i32>(cfg.secondaryMGCPort));
    vty_out(vty, "\r\n %-23s%-15s", "Heartbeat: ", textOf(switches, cfg.heartbeat, "N/A"));
    vty_out(vty, "\r\n %-23s%-6d", "Heartbeat Interval(s): ", static_cast<i32>(cfg.heartbeatInterval));
    vty_out(vty, "\r\n %-23s%-6d", "Heartbeat Timeouts: ", static_cast<i32>(cfg.heartbeatTimeOuts));
    vty_out(vty, "\r\n %-23s%-15s\r\n", "Heartbeat Format: ", textOf(formats, cfg.heartbeatFormat, "N/A"));
  }
  return finishShow(vty, item, result);
}

int cli_distribute_erase_mgc_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return cliDistributeErase(item, vty, argc, argv);
}

int showrun_mgc(Vty* vty) {
  MGC cfg;
  get_mgc(&cfg);
  const bool secondary = cfg.secondaryMGC[0] != '\0';
  if (cfg.primaryMGC[0] == '\0' && !secondary) return 0;
  vty_out(vty, "set mgc primary %.64s port %d", cfg.primaryMGC, static_cast<i32>(cfg.primaryMGCPort));
  if (secondary) {
    vty_out(vty, " secondary %.64s port %d", cfg.secondaryMGC, static_cast<i32>(cfg.secondaryMGCPort));
  }
  vty_out(vty, "\r\n");
  if (cfg.heartbeat == 0) {
    vty_out(vty, "set mgc heartbeat %s\r\n", "disable");
    return 0;
  }
  vty_out(vty, "set mgc heartbeat %s interval %d timeouts %d format %s\r\n",
          textOf(switchWords, cfg.heartbeat, "passive"), static_cast<i32>(cfg.heartbeatInterval),
          static_cast<i32>(cfg.heartbeatTimeOuts), cfg.heartbeatFormat == 0 ? "notify" : "servicechange");
  return 0;
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show mgc configuration", cli_show_mgc_config_func, "media gateway controllers"),
    command(CONFIG_NODE,
            "set mgc primary <primaryAddr> port <primaryPort> {secondary <secondaryAddr> port <secondaryPort>}*1",
            cli_set_mgc_addr_port_config_func, "media gateway controllers"),
    command(CONFIG_NODE,
            "set mgc heartbeat [disable|initiative|passive] {interval <bInterval> timeouts <bTimeouts> format "
            "[notify|servicechange]}*1",
            cli_set_mgc_heartbeat_config_func, "heartbeat of the gateway"),
    command(CONFIG_NODE, "[distribute|erase] mgc configuration", cli_distribute_erase_mgc_config_func,
            "media gateway controllers"),
};
// clang-format on
static constexpr SnmpMsgReg message{3073, {0, 0}, snmp_set_mgc, snmp_get_mgc, 455, "Set MGC configuration"};

int installMgcCommands() { return installCommands(commands); }
int registerMgcMessage() { return registerMessage(message); }
