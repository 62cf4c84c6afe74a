#include "voice/service/ngn_vo_basis.h"

#include <cstring>

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&VoiceBasis::domainName, VoiceBasicCfg_domainName_get, VoiceBasicCfg_domainName_put>({.offset = 0}),
    field<&VoiceBasis::localPort, VoiceBasicCfg_localPort_get, VoiceBasicCfg_localPort_put>(
        {.offset = 64, .allowed = {{0, 65534}}, .code = 65415, .complaint = "invalid local port: %d"}),
    field<&VoiceBasis::encodeType, VoiceBasicCfg_encodeType_get, VoiceBasicCfg_encodeType_put>(
        {.offset = 68, .allowed = {{0, 1}}, .code = 65414, .complaint = "invalid protocol encode type: %d"}),
    field<&VoiceBasis::transport, VoiceBasicCfg_transport_get, VoiceBasicCfg_transport_put>(
        {.offset = 70, .allowed = {{0, 1}}, .code = 65413, .complaint = "invalid transport protocol type: %d"}),
};
// clang-format on
static constexpr Record shape(584, fields);
static constexpr Table<VoiceBasicCfg> table{"VoiceBasicCfg", "treeIdx", VoiceBasicCfg_treeIdx_find, VoiceBasicCfg_new,
                                            VoiceBasicCfg_key_put};
static constexpr Word transportWords[] = {{"udp", 0}, {"tcp", 1}};
static constexpr Word encodeWords[] = {{"compact", 0}, {"uncompacted", 1}};

// The transport, which stands last, is looked at first.
static int check_voice_basis(const VoiceBasis* cfg, SnmpErrInfo* err) {
  constexpr Fields all(fields);
  return checkRecord(all.last(1), cfg, err) == 0 ? checkRecord(all.first(3), cfg, err) : -1;
}

static int load(Vty* vty, VoiceBasis* cfg) {
  return loadItem(voiceBasis, cfg) == 0 ? 0 : refuse(vty, "get voice basic configuration failed");
}

static int cli_set_voice_domain_name_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VoiceBasis cfg;
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  const std::size_t length = std::strlen(argv[0]);
  if (length == 0) return refuse(vty, "the domain name is NULL");
  if (length > sizeof cfg.domainName) {
    vty_out(vty, "\r\n the length of domain name is more than %d bytes. \r\n", 64);
    return -1;
  }
  if (load(vty, &cfg) != 0) return -1;
  std::memset(cfg.domainName, 0, sizeof cfg.domainName);
  std::memcpy(cfg.domainName, argv[0], length);
  return configure(vty, voiceBasis, &cfg);
}

static int cli_set_voice_basic_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VoiceBasis cfg;
  if (argc != 3) return refuse(vty, "invalid parameter quantity");
  if (load(vty, &cfg) != 0) return -1;
  const auto transport = valueOf(transportWords, argv[0]);
  if (!transport) return refuse(vty, "invalid transport protocol type");
  const auto encode = valueOf(encodeWords, argv[2]);
  if (!encode) return refuse(vty, "invalid protocol encode type");
  cfg.transport = static_cast<u16>(*transport);
  cfg.localPort = static_cast<u16>(bep_atoiEx(argv[1]));
  cfg.encodeType = static_cast<u16>(*encode);
  return configure(vty, voiceBasis, &cfg);
}

static void show(Vty* vty, const VoiceBasis* cfg) {
  static constexpr Word transports[] = {{"UDP", 0}, {"TCP", 1}};
  static constexpr Word encodings[] = {{"Compact", 0}, {"Uncompacted", 1}};
  vty_out(vty, "\r\n Voice Basic Configuration");
  vty_out(vty, "\r\n --------------------------------------");
  vty_out(vty, "\r\n %-25s%.64s", "Domain Name: ", cfg->domainName[0] != '\0' ? cfg->domainName : "N/A");
  vty_out(vty, "\r\n %-25s%s", "Transport Protocol Type: ", textOf(transports, cfg->transport, "N/A"));
  vty_out(vty, "\r\n %-25s%d", "Local Protocol Port: ", cfg->localPort);
  vty_out(vty, "\r\n %-25s%s\r\n", "Protocol Encode Type: ", textOf(encodings, cfg->encodeType, "N/A"));
}

static void show_run_voice_basis(Vty* vty, const VoiceBasis* cfg) {
  if (cfg->domainName[0] != '\0') vty_out(vty, "set voice domain name %.64s\r\n", cfg->domainName);
  vty_out(vty, "set voice transport protocol %s local port %d encode %s\r\n",
          textOf(transportWords, cfg->transport, "tcp"), cfg->localPort,
          textOf(encodeWords, cfg->encodeType, "uncompacted"));
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show voice basic configuration", showOf<voiceBasis>, "domain and transport of the voice protocol"),
    command(CONFIG_NODE, "set voice domain name <domainName>", cli_set_voice_domain_name_config_func,
            "domain of the voice service"),
    command(CONFIG_NODE, "set voice transport protocol [udp|tcp] local port <localPort> encode [compact|uncompacted]",
            cli_set_voice_basic_config_func, "transport of the voice protocol"),
    command(CONFIG_NODE, "[distribute|erase] voice basic configuration", distributeEraseOf<voiceBasis>,
            "domain and transport of the voice protocol"),
};
// clang-format on

constexpr VoiceItem voiceBasis = {
    .id = 3078,
    .stem = "voice_basis",
    .names = &kPlainDbItem,
    .words = "voice basic",
    .kept = kept<VoiceBasis>(shape, table),
    .label = 20,
    .reportsFirst = true,
    .check = onRecord<check_voice_basis>,
    .show = onRecord<show>,
    .showrun = onRecord<show_run_voice_basis>,
    .commands = commands,
    .message = setAndGet<voiceBasis>(608, "Set vocie basis configuration"),
};
