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
static constexpr Word switchWords[] = {{"disable", 0}, {"initiative", 1}, {"passive", 2}};
static constexpr Word formatWords[] = {{"notify", 0}, {"servicechange", 1}};
static constexpr int kAddress = sizeof(MGC::primaryMGC);

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

static int cli_set_mgc_addr_port_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2 && argc != 4) return refuse(vty, "invalid parameter quantity");
  if (tooLong(vty, "primary", argv[0]) || (argc == 4 && tooLong(vty, "secondary", argv[2]))) return -1;
  MGC cfg;
  if (loadItem(mgc, &cfg) != 0) return refuse(vty, kNoRecord);
  take(cfg.primaryMGC, argv[0]);
  cfg.primaryMGCPort = static_cast<u32>(bep_atoiEx(argv[1]));
  if (argc == 4) {
    take(cfg.secondaryMGC, argv[2]);
    cfg.secondaryMGCPort = static_cast<u32>(bep_atoiEx(argv[3]));
  }
  return configure(vty, mgc, &cfg, "set MGC address and port");
}

static int cli_set_mgc_heartbeat_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1 && argc != 4) return refuse(vty, "invalid parameter quantity");
  MGC cfg;
  if (loadItem(mgc, &cfg) != 0) return refuse(vty, kNoRecord);
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
  return configure(vty, mgc, &cfg, "set MGC heartbeat");
}

static void show(Vty* vty, const MGC* cfg) {
  static constexpr Word switches[] = {{"Disable", 0}, {"Initiative", 1}, {"Passive", 2}};
  static constexpr Word formats[] = {{"Notify", 0}, {"ServiceChange", 1}};
  vty_out(vty, "\r\n Softswitch Platform Configuration");
  vty_out(vty, "\r\n ---------------------------------------");
  vty_out(vty, "\r\n %-23s%-30.64s", "Primary MGC Address: ", cfg->primaryMGC);
  vty_out(vty, "\r\n %-23s%-6d", "Primary MGC Port: ", static_cast<i32>(cfg->primaryMGCPort));
  vty_out(vty, "\r\n %-23s%-30.64s", "Secondary MGC Address: ", cfg->secondaryMGC);
  vty_out(vty, "\r\n %-23s%-6d", "Secondary MGC Port: ", static_cast<i32>(cfg->secondaryMGCPort));
  vty_out(vty, "\r\n %-23s%-15s", "Heartbeat: ", textOf(switches, cfg->heartbeat, "N/A"));
  vty_out(vty, "\r\n %-23s%-6d", "Heartbeat Interval(s): ", static_cast<i32>(cfg->heartbeatInterval));
  vty_out(vty, "\r\n %-23s%-6d", "Heartbeat Timeouts: ", static_cast<i32>(cfg->heartbeatTimeOuts));
  vty_out(vty, "\r\n %-23s%-15s\r\n", "Heartbeat Format: ", textOf(formats, cfg->heartbeatFormat, "N/A"));
}

static void showrun_mgc(Vty* vty, const MGC* cfg) {
  const auto given = [](const char* address) { return address[0] != '\0'; };
  const bool secondary = given(cfg->secondaryMGC);
  if (!given(cfg->primaryMGC) && !secondary) return;
  vty_out(vty, "set mgc primary %.64s port %d", cfg->primaryMGC, static_cast<i32>(cfg->primaryMGCPort));
  if (secondary) {
    vty_out(vty, " secondary %.64s port %d", cfg->secondaryMGC, static_cast<i32>(cfg->secondaryMGCPort));
  }
  vty_out(vty, "\r\n");
  if (cfg->heartbeat == 0) {
    vty_out(vty, "set mgc heartbeat %s\r\n", "disable");
    return;
  }
  vty_out(vty, "set mgc heartbeat %s interval %d timeouts %d format %s\r\n",
          textOf(switchWords, cfg->heartbeat, "passive"), static_cast<i32>(cfg->heartbeatInterval),
          static_cast<i32>(cfg->heartbeatTimeOuts), cfg->heartbeatFormat == 0 ? "notify" : "servicechange");
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show mgc configuration", showOf<mgc>, "media gateway controllers"),
    command(CONFIG_NODE,
            "set mgc primary <primaryAddr> port <primaryPort> {secondary <secondaryAddr> port <secondaryPort>}*1",
            cli_set_mgc_addr_port_config_func, "media gateway controllers"),
    command(CONFIG_NODE,
            "set mgc heartbeat [disable|initiative|passive] {interval <bInterval> timeouts <bTimeouts> format "
            "[notify|servicechange]}*1",
            cli_set_mgc_heartbeat_config_func, "heartbeat of the gateway"),
    command(CONFIG_NODE, "[distribute|erase] mgc configuration", distributeEraseOf<mgc>,
            "media gateway controllers"),
};
// clang-format on

constexpr VoiceItem mgc = {
    .id = 3073,
    .stem = "mgc",
    .names = &kPlainItem,
    .words = "MGC",
    .kept = kept<MGC>(shape, table),
    .label = 50,
    .show = onRecord<show>,
    .showrun = onRecord<showrun_mgc>,
    .commands = commands,
    .message = setAndGet<mgc>(455, "Set MGC configuration"),
};
