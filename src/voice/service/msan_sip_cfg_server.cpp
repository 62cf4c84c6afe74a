#include <cstring>

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"
#include "voice/service/msan_sip_cfg.h"

// clang-format off
static constexpr Field fields[] = {
    field<&SipServer::proxyServer, SIPServerCfg_proxyServer_get, SIPServerCfg_proxyServer_put>({.offset = 0}),
    field<&SipServer::proxyServPort, SIPServerCfg_proxyServPort_get, SIPServerCfg_proxyServPort_put>(
        {.offset = 64, .initial = 5060, .allowed = {{1025, 65535}}, .code = 65414, .complaint = "invalid proxy server port: %d"}),
    field<&SipServer::bakProxyServ, SIPServerCfg_bakProxyServ_get, SIPServerCfg_bakProxyServ_put>({.offset = 68}),
    field<&SipServer::bakProxyServPort, SIPServerCfg_bakProxyServPort_get, SIPServerCfg_bakProxyServPort_put>(
        {.offset = 132, .initial = 5060, .allowed = {{1025, 65535}}, .code = 65413, .complaint = "invalid backup proxy server port: %d"}),
    field<&SipServer::proxyServReg, SIPServerCfg_proxyServReg_get, SIPServerCfg_proxyServReg_put>({.offset = 136}),
    field<&SipServer::proxyServRegPort, SIPServerCfg_proxyServRegPort_get, SIPServerCfg_proxyServRegPort_put>(
        {.offset = 200, .initial = 5060, .allowed = {{1025, 65535}}, .code = 65412, .complaint = "invalid register port: %d"}),
    field<&SipServer::bakProxyServReg, SIPServerCfg_bakProxyServReg_get, SIPServerCfg_bakProxyServReg_put>({.offset = 204}),
    field<&SipServer::bakProxyServRegPort, SIPServerCfg_bakProxyServRegPort_get, SIPServerCfg_bakProxyServRegPort_put>(
        {.offset = 268, .initial = 5060, .allowed = {{1025, 65535}}, .code = 65411, .complaint = "invalid backup register port: %d"}),
    field<&SipServer::regInterval, SIPServerCfg_regInterval_get, SIPServerCfg_regInterval_put>(
        {.offset = 340, .initial = 3600, .allowed = {{60, 3600}}, .code = 65406, .complaint = "invalid register interval: %d"}),
    field<&SipServer::heartbeat, SIPServerCfg_heartbeat_get, SIPServerCfg_heartbeat_put>(
        {.offset = 344, .initial = 1, .allowed = {{0, 2}}, .code = 65405, .complaint = "invalid heartbeat switch: %d"}),
    field<&SipServer::heartbeatInterval, SIPServerCfg_heartbeatInterval_get, SIPServerCfg_heartbeatInterval_put>(
        {.offset = 345, .initial = 30, .allowed = {{1, 43200}}, .code = 65404, .complaint = "invalid heartbeat interval: %d",
         .when = when<&SipServer::heartbeat>({1, 255})}),
    field<&SipServer::heartbeatTimeOuts, SIPServerCfg_heartbeatTimeOuts_get, SIPServerCfg_heartbeatTimeOuts_put>(
        {.offset = 347, .initial = 3, .allowed = {{1, 120}}, .code = 65403, .complaint = "invalid heartbeat timeouts: %d",
         .when = when<&SipServer::heartbeat>({1, 255})}),
    field<&SipServer::heartbeatMode, SIPServerCfg_heartbeatMode_get, SIPServerCfg_heartbeatMode_put>(
        {.offset = 349, .initial = 0, .allowed = {{0, 1}}, .code = 65402, .complaint = "invalid heartbeat mode: %d"}),
};
// clang-format on
static constexpr Record shape(606, fields);
static constexpr Table<SIPServerCfg> table{"SIPServerCfg", "treeIdx", SIPServerCfg_treeIdx_find, SIPServerCfg_new,
                                           SIPServerCfg_recordid_put};
static constexpr Word switchWords[] = {{"disable", 0}, {"initiative", 1}, {"passive", 2}};
static constexpr Word modeWords[] = {{"bydevice", 0}, {"byport", 1}};

// --- Commands: each changes a part of what is stored ---

static int load(Vty* vty, SipServer* cfg) {
  return loadItem(sipServer, cfg) == 0 ? 0 : refuse(vty, "get current SIP server configuration failed");
}

// Where a pair of addresses and ports stands.
struct Addresses {
  char (SipServer::*first)[64];
  u32 SipServer::*firstPort;
  char (SipServer::*backup)[64];
  u32 SipServer::*backupPort;
};
static constexpr Addresses proxies = {&SipServer::proxyServer, &SipServer::proxyServPort, &SipServer::bakProxyServ,
                                      &SipServer::bakProxyServPort};
static constexpr Addresses registrars = {&SipServer::proxyServReg, &SipServer::proxyServRegPort,
                                         &SipServer::bakProxyServReg, &SipServer::bakProxyServRegPort};

static bool tooLong(Vty* vty, const char* which, const char* address) {
  if (std::strlen(address) <= sizeof SipServer::proxyServer) return false;
  vty_out(vty, "\r\n the %s address length is more than %d bytes. \r\n", which, 64);
  return true;
}

static void take(char (&field)[64], const char* address) {
  std::memset(field, 0, sizeof field);
  std::memcpy(field, address, std::strlen(address));
}

// A backup that is not given stays as it is.
static int setAddresses(Vty* vty, const Addresses& at, const char* done, int argc, char** argv) {
  if (argc != 2 && argc != 4) return refuse(vty, "invalid parameter quantity");
  if (tooLong(vty, "sip server", argv[0]) || (argc == 4 && tooLong(vty, "backup sip server", argv[2]))) return -1;
  SipServer cfg;
  if (load(vty, &cfg) != 0) return -1;
  take(cfg.*at.first, argv[0]);
  cfg.*at.firstPort = static_cast<u32>(bep_atoiEx(argv[1]));
  if (argc == 4) {
    take(cfg.*at.backup, argv[2]);
    cfg.*at.backupPort = static_cast<u32>(bep_atoiEx(argv[3]));
  }
  return configure(vty, sipServer, &cfg, done);
}

static int cli_set_sip_addr_port_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return setAddresses(vty, proxies, "set SIP server address and port", argc, argv);
}

static int cli_set_sip_reg_addr_port_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return setAddresses(vty, registrars, "set SIP server register address and port", argc, argv);
}

static int cli_set_sip_reg_interval_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  SipServer cfg;
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  if (load(vty, &cfg) != 0) return -1;
  cfg.regInterval = static_cast<u32>(bep_atoiEx(argv[0]));
  return configure(vty, sipServer, &cfg, "set SIP server register interval");
}

static int cli_set_sip_heartbeat_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  SipServer cfg;
  if (argc != 1 && argc != 4) return refuse(vty, "invalid parameter quantity");
  if (load(vty, &cfg) != 0) return -1;
  const auto heartbeat = valueOf(switchWords, argv[0]);
  if (!heartbeat) return refuse(vty, "invalid heartbeat switch");
  cfg.heartbeat = static_cast<u8>(*heartbeat);
  if (argc == 4) {
    if (cfg.heartbeat != 0) {
      cfg.heartbeatInterval = static_cast<u16>(bep_atoiEx(argv[1]));
      cfg.heartbeatTimeOuts = static_cast<u16>(bep_atoiEx(argv[2]));
    }
    const auto mode = valueOf(modeWords, argv[3]);
    if (!mode) return refuse(vty, "invalid heartbeat mode");
    cfg.heartbeatMode = static_cast<u8>(*mode);
  }
  return configure(vty, sipServer, &cfg, "set SIP server heartbeat");
}

static void show(Vty* vty, const SipServer* cfg) {
  static constexpr Word switches[] = {{"Disable", 0}, {"Initiative", 1}, {"Passive", 2}};
  static constexpr Word modes[] = {{"By Device", 0}, {"By Port", 1}};
  vty_out(vty, "\r\n SIP Server Configuration");
  vty_out(vty, "\r\n ------------------------------------------------------------");
  vty_out(vty, "\r\n %-35s%.64s", "Proxy Server Addr: ", cfg->proxyServer);
  vty_out(vty, "\r\n %-35s%u", "Proxy Server Port: ", cfg->proxyServPort);
  vty_out(vty, "\r\n %-35s%.64s", "Backup Proxy Server Addr: ", cfg->bakProxyServ);
  vty_out(vty, "\r\n %-35s%u", "Backup Proxy Server Port: ", cfg->bakProxyServPort);
  vty_out(vty, "\r\n %-35s%.64s", "Proxy Server Register Addr: ", cfg->proxyServReg);
  vty_out(vty, "\r\n %-35s%u", "Proxy Server Register Port: ", cfg->proxyServRegPort);
  vty_out(vty, "\r\n %-35s%.64s", "Backup Proxy Server Register Addr: ", cfg->bakProxyServReg);
  vty_out(vty, "\r\n %-35s%u", "Backup Proxy Server Register Port: ", cfg->bakProxyServRegPort);
  vty_out(vty, "\r\n %-35s%u", "Register Interval(s): ", cfg->regInterval);
  vty_out(vty, "\r\n %-35s%s", "Heartbeat: ", textOf(switches, cfg->heartbeat, "N/A"));
  vty_out(vty, "\r\n %-35s%d", "Heartbeat Interval(s): ", cfg->heartbeatInterval);
  vty_out(vty, "\r\n %-35s%d", "Heartbeat Timeouts: ", cfg->heartbeatTimeOuts);
  vty_out(vty, "\r\n %-35s%s\r\n", "Heartbeat Mode: ", textOf(modes, cfg->heartbeatMode, "N/A"));
}

static void printAddresses(Vty* vty, const SipServer& cfg, const Addresses& at, const char* command) {
  if ((cfg.*at.first)[0] == '\0') return;
  vty_out(vty, "%s %.64s port %d", command, cfg.*at.first, static_cast<i32>(cfg.*at.firstPort));
  if ((cfg.*at.backup)[0] != '\0')
    vty_out(vty, " backup server %.64s port %d", cfg.*at.backup, static_cast<i32>(cfg.*at.backupPort));
  vty_out(vty, "\r\n");
}

static void nshowrun_sip_server(Vty* vty, const SipServer* cfg) {
  if (cfg->proxyServer[0] == '\0' && cfg->proxyServReg[0] == '\0') return;
  printAddresses(vty, *cfg, proxies, "set sip server address");
  printAddresses(vty, *cfg, registrars, "set sip server register address");
  vty_out(vty, "set sip server register interval %d\r\n", static_cast<i32>(cfg->regInterval));
  if (cfg->heartbeat == 0) {
    vty_out(vty, "set sip server heartbeat disable\r\n");
    return;
  }
  vty_out(vty, "set sip server heartbeat %s interval %d timeouts %d mode %s\r\n",
          textOf(switchWords, cfg->heartbeat, "passive"), cfg->heartbeatInterval, cfg->heartbeatTimeOuts,
          textOf(modeWords, cfg->heartbeatMode, "bydevice"));
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show sip server", showOf<sipServer>, "proxy and register servers"),
    command(CONFIG_NODE, "set sip server address <serverAddr> port <serverPort> {backup server <backupAddr> port <backupPort>}*1",
            cli_set_sip_addr_port_config_func, "the proxy server, and its backup"),
    command(CONFIG_NODE,
            "set sip server register address <registerAddr> port <registerPort> {backup server <bRegisterAddr> port "
            "<bRegisterPort>}*1",
            cli_set_sip_reg_addr_port_config_func, "the register server, and its backup"),
    command(CONFIG_NODE, "set sip server register interval <regInterval>", cli_set_sip_reg_interval_config_func,
            "seconds between two registrations"),
    command(CONFIG_NODE,
            "set sip server heartbeat [disable|initiative|passive] {interval <bInterval> timeouts <bTimeouts> mode "
            "[bydevice|byport]}*1",
            cli_set_sip_heartbeat_config_func, "heartbeat to the servers"),
    command(CONFIG_NODE, "[distribute|erase] sip server", distributeEraseOf<sipServer>, "proxy and register servers"),
};
// clang-format on

constexpr VoiceItem sipServer = {
    .id = 3088,
    .stem = "sip_server",
    .names = &sipServerNames,
    .words = "SIP server",
    .kept = kept<SipServer>(shape, table),
    .label = 50,
    .forward = Forward::encodedOrRefused,
    .show = onRecord<show>,
    .showrun = onRecord<nshowrun_sip_server>,
    .commands = commands,
    .message = setAndGet<sipServer>(660, "Set SIP server configuration"),
};
