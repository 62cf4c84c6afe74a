// The commands of the voice service's addresses, and their lines of the running configuration.

#include <algorithm>
#include <cstring>

#include "common/commands.h"
#include "common/words.h"
#include "voice/common/voice_item.h"
#include "voice/service/ngn_vo_ip.h"

static constexpr Word modeWords[] = {
    {"static", kStatic}, {"pppoe", kPppoe}, {"dhcp", kDhcp}, {"pppoe_v6", kPppoeV6}, {"dhcp_v6", kDhcpV6}};
static constexpr Word pppoeWords[] = {{"dial", 1}, {"disconnect", 0}};
static constexpr Word authenticationWords[] = {{"pap", 1}, {"chap", 2}};
static constexpr Word switchWords[] = {{"disable", 0}, {"enable", 1}};

static bool isPppoe(u16 mode) { return mode == kPppoe || mode == kPppoeV6; }
static bool isDhcp(u16 mode) { return mode == kDhcp || mode == kDhcpV6; }

static int badQuantity(Vty* vty) { return refuse(vty, "invalid parameter quantity"); }

static int load(Vty* vty, VoiceIp* record) {
  return get_voice_ip(record) == 0 ? 0 : refuse(vty, "get voice IP configuration failed");
}

static int finish(Vty* vty, const VoiceIp& record, const char* what) {
  SnmpErrInfo err;
  const int result = distrib_voice_ipx(&record, &err);
  vty_out(vty, "\r\n set voice %s configuration %s(%d). \r\n", what, result == 0 ? "successfully" : "failed",
          static_cast<i16>(err.errCode));
  return result;
}

static int cli_set_voice_ip_mode_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VoiceIp record;
  if (argc != 1) return badQuantity(vty);
  if (load(vty, &record) != 0) return -1;
  const auto mode = valueOf(modeWords, argv[0]);
  if (!mode) return refuse(vty, "invalid voice IP configuration mode");
  record.mode = static_cast<u16>(*mode);
  return finish(vty, record, "IP");
}

// --- Addresses. Another mode is told, and no failure ---

static bool isStatic(Vty* vty, const VoiceIp& record) {
  if (record.mode == kStatic) return true;
  refuse(vty, "the voice IP configuration mode is Not static");
  return false;
}

// An IPv4 address. 0, or -1 behind a line with what it is.
static int takeAddress(Vty* vty, const char* what, const char* text, LocalIP* ip) {
  u32 value = 0;
  if (text[0] == '\0') {
    vty_out(vty, "\r\n the %s address is NULL. \r\n", what);
    return -1;
  }
  if (nStringIP2ULongIP(text, &value) != 0) {
    vty_out(vty, "\r\n get %s address failed. \r\n", what);
    return -1;
  }
  ip->ipType = 1;
  std::memset(ip->ipAddr, 0, sizeof ip->ipAddr);
  std::memcpy(ip->ipAddr, &value, sizeof value);
  return 0;
}

struct AddressCommand {
  VoiceAddress ip, gateway;
  const char* ipWords;
  const char* gatewayWords;
  const char* done;
};

static int setAddress(Vty* vty, const AddressCommand& command, int argc, char** argv) {
  VoiceIp record;
  if (argc != 2 && argc != 3) return badQuantity(vty);
  if (load(vty, &record) != 0) return -1;
  if (!isStatic(vty, record)) return 0;
  if (takeAddress(vty, command.ipWords, argv[0], &record.address[command.ip]) != 0) return -1;
  record.address[command.ip].ipMask = static_cast<u32>(bep_atoiEx(argv[1]));
  if (argc == 3 && takeAddress(vty, command.gatewayWords, argv[2], &record.address[command.gateway]) != 0) return -1;
  return finish(vty, record, command.done);
}

static int cli_set_voice_signalling_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr AddressCommand command{kSigIp, kSigGateway, "signalling IP", "signalling gateway", "signalling IP"};
  return setAddress(vty, command, argc, argv);
}

static int cli_set_voice_rtp_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr AddressCommand command{kRtpIp, kRtpGateway, "RTP IP", "RTP gateway", "RTP IP"};
  return setAddress(vty, command, argc, argv);
}

static int cli_set_voice_dns_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VoiceIp record;
  if (argc != 1 && argc != 2) return badQuantity(vty);
  if (load(vty, &record) != 0) return -1;
  if (!isStatic(vty, record)) return 0;
  if (takeAddress(vty, "primary DNS IP", argv[0], &record.address[kPrimaryDns]) != 0) return -1;
  if (argc == 2 && takeAddress(vty, "secondary DNS IP", argv[1], &record.address[kSecondaryDns]) != 0) return -1;
  return finish(vty, record, "DNS IP");
}

// --- PPPoE and DHCP ---

// Replaces a text; what does not fit is cut.
static void take(char (&field)[32], const char* text) {
  std::memset(field, 0, sizeof field);
  std::memcpy(field, text, std::min(std::strlen(text), sizeof field));
}

static int cli_set_voice_pppoe_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VoiceIp record;
  if (argc != 1 && argc != 4) return badQuantity(vty);
  if (load(vty, &record) != 0) return -1;
  if (!isPppoe(record.mode)) {
    refuse(vty, "voice IP configuration mode is Not PPPoE");
    return 0;
  }
  const auto operation = valueOf(pppoeWords, argv[0]);
  if (!operation) return refuse(vty, "invalid PPPoE operation");
  record.pppoeOperation = static_cast<u8>(*operation);
  if (argc == 4 && record.pppoeOperation == 1) {
    if (argv[1][0] == '\0') return refuse(vty, "user name is NULL");
    const auto mode = valueOf(authenticationWords, argv[3]);
    if (!mode) return refuse(vty, "invalid PPPoE authentication mode");
    take(record.pppoeUser, argv[1]);
    take(record.pppoePassword, argv[2]);
    record.pppoeAuthentication = static_cast<u16>(*mode);
  }
  return finish(vty, record, "IP PPPoE");
}

static int cli_set_voice_dhcp_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VoiceIp record;
  if (argc != 1 && argc != 2 && argc != 4) return badQuantity(vty);
  if (load(vty, &record) != 0) return -1;
  if (!isDhcp(record.mode)) {
    refuse(vty, "voice IP configuration mode is Not DHCP");
    return 0;
  }
  const auto operation = valueOf(switchWords, argv[0]);
  if (!operation) return refuse(vty, "invalid DHCP operation");
  record.dhcpOperation = static_cast<u8>(*operation);
  if (argc >= 2 && record.dhcpOperation == 1) {
    const auto option60 = valueOf(switchWords, argv[1]);
    if (!option60) return refuse(vty, "invalid DHCP option60 switch");
    record.option60 = static_cast<u8>(*option60);
    if (argc == 4 && record.option60 == 1) {
      take(record.option60Fixed, argv[2]);
      take(record.option60Suffix, argv[3]);
    }
  }
  return finish(vty, record, "IP DHCP");
}

static int cli_distribute_erase_voice_ip_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return badQuantity(vty);
  const bool erases = bep_StrCmp(argv[0], "erase") == 0;
  if (!erases && bep_StrCmp(argv[0], "distribute") != 0) return refuse(vty, "invalid configuration operation");
  const int result = erases ? erase_voice_ip() : distrib_voice_ip();
  vty_out(vty, "\r\n %s voice IP configuration %s. \r\n", argv[0], result == 0 ? "successfully" : "failed");
  return result;
}

// --- Show ---

struct AddressText {
  char text[17] = {};
};

static AddressText dotted(const LocalIP& ip) {
  AddressText out;
  u32 value = 0;
  std::memcpy(&value, ip.ipAddr, sizeof value);
  nULongIP2StringIP(value, out.text);
  return out;
}

// Another type's bytes as they stand, what can't be printed as dots.
static AddressText shown(const LocalIP& ip) {
  if (ip.ipType == 1) return dotted(ip);
  AddressText out;
  for (std::size_t i = 0; i < sizeof ip.ipAddr && ip.ipAddr[i] != 0; ++i)
    out.text[i] = ip.ipAddr[i] > ' ' && ip.ipAddr[i] < 0x7f ? static_cast<char>(ip.ipAddr[i]) : '.';
  return out;
}

static const char* typeOf(const LocalIP& ip) { return ip.ipType == 1 ? "IPv4" : "IPv6"; }

static void showStatic(Vty* vty, const VoiceIp& record) {
  const LocalIP* ip = record.address;
  vty_out(vty, "\r\n %-14s%-4s%-8s%-16s/%d", "Signalling IP(", typeOf(ip[kSigIp]), "): ", shown(ip[kSigIp]).text,
          static_cast<i32>(ip[kSigIp].ipMask));
  vty_out(vty, "\r\n %-19s%-4s%-3s%-16s", "Signalling Gateway(", typeOf(ip[kSigGateway]),
          "): ", shown(ip[kSigGateway]).text);
  vty_out(vty, "\r\n %-7s%-4s%-15s%-16s/%d", "RTP IP(", typeOf(ip[kRtpIp]), "): ", shown(ip[kRtpIp]).text,
          static_cast<i32>(ip[kRtpIp].ipMask));
  vty_out(vty, "\r\n %-12s%-4s%-10s%-16s", "RTP Gateway(", typeOf(ip[kRtpGateway]), "): ", shown(ip[kRtpGateway]).text);
  vty_out(vty, "\r\n %-12s%-4s%-10s%-16s", "Primary DNS(", typeOf(ip[kPrimaryDns]), "): ", shown(ip[kPrimaryDns]).text);
  vty_out(vty, "\r\n %-14s%-4s%-8s%-16s", "Secondary DNS(", typeOf(ip[kSecondaryDns]),
          "): ", shown(ip[kSecondaryDns]).text);
}

static void showPppoe(Vty* vty, const VoiceIp& record) {
  vty_out(vty, "\r\n %-26s%s", "PPPoE Operation: ", record.pppoeOperation == 1 ? "Dial" : "Disconnect");
  if (record.pppoeOperation != 1) return;
  vty_out(vty, "\r\n %-26s%.32s", "PPPoE User Name: ", record.pppoeUser);
  vty_out(vty, "\r\n %-26s%.32s", "PPPoE Password: ", record.pppoePassword);
  vty_out(vty, "\r\n %-26s%s", "PPPoE Auth Mode: ", record.pppoeAuthentication == 1 ? "PAP" : "CHAP");
}

static void showDhcp(Vty* vty, const VoiceIp& record) {
  vty_out(vty, "\r\n %-26s%s", "DHCP Operation: ", record.dhcpOperation == 1 ? "Enable" : "Disable");
  if (record.dhcpOperation != 1) return;
  vty_out(vty, "\r\n %-26s%s", "DHCP Option60: ", record.option60 == 1 ? "Enable" : "Disable");
  if (record.option60 != 1) return;
  vty_out(vty, "\r\n %-26s%.32s", "DHCP Option60 Fixed: ", record.option60Fixed);
  vty_out(vty, "\r\n %-26s%.32s", "DHCP Option60 Suffix: ", record.option60Suffix);
}

static int cli_show_voice_ip_config_func(const CommandElement*, Vty* vty, int, char**) {
  static constexpr Word modes[] = {
      {"Static", kStatic}, {"PPPoE", kPppoe}, {"DHCP", kDhcp}, {"PPPoE V6", kPppoeV6}, {"DHCP V6", kDhcpV6}};
  VoiceIp record;
  if (load(vty, &record) != 0) return -1;
  vty_out(vty, "\r\n Voice IP Configuration");
  vty_out(vty, "\r\n ----------------------------------------------");
  vty_out(vty, "\r\n %-26s%s", "IP Configuration Mode: ", textOf(modes, record.mode, "N/A"));
  if (record.mode == kStatic) showStatic(vty, record);
  if (isPppoe(record.mode)) showPppoe(vty, record);
  if (isDhcp(record.mode)) showDhcp(vty, record);
  vty_out(vty, "\r\n");
  vty_out(vty, "\r\n get voice IP configuration successfully. \r\n");
  return 0;
}

// --- Running configuration ---

// A gateway or second server is printed when its first byte is not 0, which is the last number of an address.
static void printAddress(Vty* vty, const char* command, const LocalIP& ip, const LocalIP& gateway) {
  vty_out(vty, "%s ipv4 %s mask %d", command, dotted(ip).text, static_cast<i32>(ip.ipMask));
  if (gateway.ipAddr[0] != 0) vty_out(vty, " gateway %s", dotted(gateway).text);
  vty_out(vty, "\r\n");
}

static void printPppoe(Vty* vty, const VoiceIp& record) {
  if (record.pppoeOperation == 1)
    vty_out(vty, "set voice pppoe operation dial user name %.32s password %.32s authentication mode %s\r\n",
            record.pppoeUser, record.pppoePassword, record.pppoeAuthentication == 1 ? "pap" : "chap");
  else
    vty_out(vty, "set voice pppoe operation disconnect\r\n");
}

static void printDhcp(Vty* vty, const VoiceIp& record) {
  if (record.dhcpOperation != 1)
    vty_out(vty, "set voice dhcp operation disable\r\n");
  else if (record.option60 != 1)
    vty_out(vty, "set voice dhcp operation enable option60 disable\r\n");
  else
    vty_out(vty, "set voice dhcp operation enable option60 enable base %.32s suffix %.32s\r\n", record.option60Fixed,
            record.option60Suffix);
}

void show_run_voice_ip(Vty* vty) {
  VoiceIp record;
  if (get_voice_ip(&record) != 0) return;
  vty_out(vty, "set voice ip configuration mode %s\r\n", textOf(modeWords, record.mode, "static"));
  if (record.mode == kStatic) {
    printAddress(vty, "set voice signalling ip", record.address[kSigIp], record.address[kSigGateway]);
    printAddress(vty, "set voice rtp ip", record.address[kRtpIp], record.address[kRtpGateway]);
    vty_out(vty, "set voice dns ipv4 primary %s", dotted(record.address[kPrimaryDns]).text);
    if (record.address[kSecondaryDns].ipAddr[0] != 0)
      vty_out(vty, " secondary %s", dotted(record.address[kSecondaryDns]).text);
    vty_out(vty, "\r\n");
  }
  if (isPppoe(record.mode)) printPppoe(vty, record);
  if (isDhcp(record.mode)) printDhcp(vty, record);
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show voice ip", cli_show_voice_ip_config_func, "addresses of the voice service"),
    command(CONFIG_NODE, "set voice ip configuration mode [static|pppoe|dhcp|pppoe_v6|dhcp_v6]",
            cli_set_voice_ip_mode_config_func, "where the voice service gets its addresses"),
    command(CONFIG_NODE, "set voice signalling ip ipv4 <ipAddress> mask <ipMask> {gateway <gateAddress>}*1",
            cli_set_voice_signalling_config_func, "address of the signalling, with its prefix length"),
    command(CONFIG_NODE, "set voice rtp ip ipv4 <ipAddress> mask <ipMask> {gateway <gateAddress>}*1",
            cli_set_voice_rtp_config_func, "address of the voice streams, with its prefix length"),
    command(CONFIG_NODE, "set voice dns ipv4 primary <primaryAddr> {secondary <secondaryAddr>}*1",
            cli_set_voice_dns_config_func, "name servers of the voice service"),
    command(CONFIG_NODE,
            "set voice pppoe operation [dial|disconnect] {user name <userName> password <password> authentication mode "
            "[pap|chap]}*1",
            cli_set_voice_pppoe_config_func, "PPPoE of the voice service"),
    command(CONFIG_NODE,
            "set voice dhcp operation [disable|enable] {option60 [disable|enable]}*1 {base <option60Fixed> suffix "
            "<option60Suffix>}*1",
            cli_set_voice_dhcp_config_func, "DHCP of the voice service"),
    command(CONFIG_NODE, "[distribute|erase] voice ip ", cli_distribute_erase_voice_ip_config_func,
            "addresses of the voice service"),
};
// clang-format on
void installVoiceIp() { installCommands(commands); }
