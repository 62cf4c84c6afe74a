#include "voice/service/msan_fax_para_cfg.h"

#include <cstdio>

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&FaxParameter::faxMode, FaxParaCfgProf_faxMode_get, FaxParaCfgProf_faxMode_put>(
        {.offset = 0, .initial = 0, .allowed = {{0, 1}}, .code = 65416, .complaint = "invalid fax mode: %d"}),
    field<&FaxParameter::eventNotify, FaxParaCfgProf_eventNotify_get, FaxParaCfgProf_eventNotify_put>(
        {.offset = 2, .initial = 1, .allowed = {{0, 1}}, .code = 65415, .complaint = "invalid fax event notify: %d"}),
    field<&FaxParameter::ansNotify, FaxParaCfgProf_ansNotify_get, FaxParaCfgProf_ansNotify_put>(
        {.offset = 3, .initial = 0, .allowed = {{0, 1}}, .code = 65414, .complaint = "invalid ANS notify: %d",
         .when = when<&FaxParameter::eventNotify>({1, 1})}),
    field<&FaxParameter::eventNotifyType, FaxParaCfgProf_eventNotifyType_get, FaxParaCfgProf_eventNotifyType_put>(
        {.offset = 4, .initial = 1, .allowed = {{0, 2}}, .code = 65413, .complaint = "invalid fax event notify type: %d"}),
    field<&FaxParameter::VBDEnable, FaxParaCfgProf_VBDEnable_get, FaxParaCfgProf_VBDEnable_put>(
        {.offset = 6, .initial = 0, .allowed = {{0, 1}}, .code = 65412, .complaint = "invalid VBD enable option: %d",
         .when = when<&FaxParameter::faxMode>({0, 0})}),
    field<&FaxParameter::encodeMode, FaxParaCfgProf_encodeMode_get, FaxParaCfgProf_encodeMode_put>(
        {.offset = 7, .initial = 255, .allowed = {{0, 1}, {255, 255}}, .code = 65411, .complaint = "invalid fax encode mode: %d"}),
    field<&FaxParameter::txPacketInterval, FaxParaCfgProf_txPacketInterval_get, FaxParaCfgProf_txPacketInterval_put>(
        {.offset = 9, .initial = 20, .allowed = {{10, 60, 10}}, .code = 65419, .complaint = "invalid fax Tx packet interval: %d"}),
    field<&FaxParameter::rxPacketInterval, FaxParaCfgProf_rxPacketInterval_get, FaxParaCfgProf_rxPacketInterval_put>(
        {.offset = 11, .initial = 20, .allowed = {{10, 60, 10}}, .code = 65418, .complaint = "invalid fax Rx packet interval: %d"}),
    field<&FaxParameter::SDPType, FaxParaCfgProf_SDPType_get, FaxParaCfgProf_SDPType_put>(
        {.offset = 13, .initial = 0, .allowed = {{0, 1}}, .code = 65410, .complaint = "invalid fax sdp media type: %d"}),
    field<&FaxParameter::controlMode, FaxParaCfgProf_controlMode_get, FaxParaCfgProf_controlMode_put>(
        {.offset = 14, .initial = 3, .allowed = {{1, 3}}, .code = 65409, .complaint = "invalid fax control mode: %d"}),
};
// clang-format on
static constexpr Record shape(523, fields);
static constexpr Table<FaxParaCfgProf> table{"FaxParaCfgProf", "treeIdx", FaxParaCfgProf_treeIdx_find,
                                             FaxParaCfgProf_new, FaxParaCfgProf_recordid_put};

static constexpr Word modeWords[] = {{"t30", 0}, {"t38", 1}};
static constexpr Word switchWords[] = {{"disable", 0}, {"enable", 1}};
static constexpr Word typeWords[] = {{"normal", 0}, {"only_v21", 1}, {"all_v21", 2}};
static constexpr Word encodeWords[] = {{"default", 255}, {"711u", 0}, {"711a", 1}};
static constexpr Word intervalWords[] = {{"10", 10}, {"20", 20}, {"30", 30}, {"40", 40}, {"50", 50}, {"60", 60}};
static constexpr Word mediaWords[] = {{"single", 0}, {"multiple", 1}};
static constexpr Word controlWords[] = {{"passthrough", 1}, {"ss", 2}, {"auto", 3}};

// --- Commands: each changes a part of what is stored ---

static int load(Vty* vty, FaxParameter* cfg) {
  return loadItem(faxParameter, cfg) == 0 ? 0 : refuse(vty, "get fax parameter configuration failed");
}

// Takes a word's value. 0, or -1 behind its complaint.
template <class Number>
static int take(Vty* vty, std::span<const Word> words, const char* text, const char* complaint, Number* value) {
  const auto known = valueOf(words, text);
  if (!known) return refuse(vty, complaint);
  *value = static_cast<Number>(*known);
  return 0;
}

static int cli_set_fax_mode_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  FaxParameter cfg;
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  if (load(vty, &cfg) != 0 || take(vty, modeWords, argv[0], "invalid fax mode", &cfg.faxMode) != 0) return -1;
  return configure(vty, faxParameter, &cfg);
}

// The words count by their position: the third is that of the ANS notification, whatever keyword was typed.
static int cli_set_fax_event_notify_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  FaxParameter cfg;
  if (argc < 2 || argc > 4) return refuse(vty, "invalid parameter quantity");
  if (load(vty, &cfg) != 0 || take(vty, switchWords, argv[0], "invalid fax event notify", &cfg.eventNotify) != 0 ||
      take(vty, typeWords, argv[1], "invalid fax event notify type", &cfg.eventNotifyType) != 0)
    return -1;
  if (argc > 2 && cfg.eventNotify == 1 && take(vty, switchWords, argv[2], "invalid ANS notify", &cfg.ansNotify) != 0)
    return -1;
  if (argc == 4 && cfg.faxMode == 0 &&
      take(vty, switchWords, argv[3], "invalid VBD enable option", &cfg.VBDEnable) != 0)
    return -1;
  return configure(vty, faxParameter, &cfg);
}

static int cli_set_fax_encode_mode_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  FaxParameter cfg;
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  if (load(vty, &cfg) != 0 || take(vty, encodeWords, argv[0], "invalid fax encode mode", &cfg.encodeMode) != 0)
    return -1;
  return configure(vty, faxParameter, &cfg);
}

static int cli_set_fax_pkt_interval_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  FaxParameter cfg;
  if (argc != 2) return refuse(vty, "invalid parameter quantity");
  if (load(vty, &cfg) != 0 ||
      take(vty, intervalWords, argv[0], "invalid fax Tx packet interval", &cfg.txPacketInterval) != 0 ||
      take(vty, intervalWords, argv[1], "invalid fax Rx packet interval", &cfg.rxPacketInterval) != 0)
    return -1;
  return configure(vty, faxParameter, &cfg);
}

static int cli_set_fax_sdp_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  FaxParameter cfg;
  if (argc != 2) return refuse(vty, "invalid parameter quantity");
  if (load(vty, &cfg) != 0 || take(vty, mediaWords, argv[0], "invalid fax sdp media type", &cfg.SDPType) != 0 ||
      take(vty, controlWords, argv[1], "invalid fax control mode", &cfg.controlMode) != 0)
    return -1;
  return configure(vty, faxParameter, &cfg);
}

static void show(Vty* vty, const FaxParameter* cfg) {
  static constexpr Word modes[] = {{"T.30 Transparent", 0}, {"T.38", 1}};
  static constexpr Word switches[] = {{"Disable", 0}, {"Enable", 1}};
  static constexpr Word types[] = {{"Normal", 0}, {"Only V21", 1}, {"All V21", 2}};
  static constexpr Word encodings[] = {{"G.711U", 0}, {"G.711A", 1}, {"Default", 255}};
  static constexpr Word media[] = {{"Single Media", 0}, {"Multiple Media", 1}};
  static constexpr Word controls[] = {{"Passthrough", 1}, {"SS", 2}, {"Auto VBD", 3}};
  vty_out(vty, "\r\n Fax Parameters Configuration");
  vty_out(vty, "\r\n ------------------------------------------");
  vty_out(vty, "\r\n %-24s%s", "Fax Mode: ", textOf(modes, cfg->faxMode, "N/A"));
  vty_out(vty, "\r\n %-24s%s", "Fax Event Notify: ", textOf(switches, cfg->eventNotify, "N/A"));
  vty_out(vty, "\r\n %-24s%s", "ANS Notify: ", textOf(switches, cfg->ansNotify, "N/A"));
  vty_out(vty, "\r\n %-24s%s", "Fax Event Notify Type: ", textOf(types, cfg->eventNotifyType, "N/A"));
  vty_out(vty, "\r\n %-24s%s", "VBD Enable: ", textOf(switches, cfg->VBDEnable, "N/A"));
  vty_out(vty, "\r\n %-24s%s", "Encode Mode: ", textOf(encodings, cfg->encodeMode, "N/A"));
  vty_out(vty, "\r\n %-24s%d", "Tx Packet Interval(ms): ", cfg->txPacketInterval);
  vty_out(vty, "\r\n %-24s%d", "Rx Packet Interval(ms): ", cfg->rxPacketInterval);
  vty_out(vty, "\r\n %-24s%s", "SDP Media Type: ", textOf(media, cfg->SDPType, "N/A"));
  vty_out(vty, "\r\n %-24s%s\r\n", "Control Mode: ", textOf(controls, cfg->controlMode, "N/A"));
}

static void nshowrun_faxparameter(Vty* vty, const FaxParameter* cfg) {
  vty_out(vty, "set fax mode %s\r\n", textOf(modeWords, cfg->faxMode, "t38"));
  vty_out(vty, "set fax event notify %s type %s", textOf(switchWords, cfg->eventNotify, "disable"),
          textOf(typeWords, cfg->eventNotifyType, "normal"));
  if (cfg->eventNotify == 1) vty_out(vty, " ans %s", textOf(switchWords, cfg->ansNotify, "disable"));
  if (cfg->faxMode == 0) vty_out(vty, " vbd %s", textOf(switchWords, cfg->VBDEnable, "disable"));
  vty_out(vty, "\r\nset fax encode mode %s\r\n", textOf(encodeWords, cfg->encodeMode, "default"));
  // A recovery may have stored an interval that no word names.
  vty_out(vty, "set fax packet interval tx %d rx %d\r\n", cfg->txPacketInterval, cfg->rxPacketInterval);
  vty_out(vty, "set fax sdp media type %s control mode %s\r\n", textOf(mediaWords, cfg->SDPType, "multiple"),
          textOf(controlWords, cfg->controlMode, "auto"));
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show fax parameter", showOf<faxParameter>, "how fax calls are handled"),
    command(CONFIG_NODE, "set fax mode [t30|t38]", cli_set_fax_mode_config_func, "transparent or relayed"),
    command(CONFIG_NODE,
            "set fax event notify [disable|enable] type [normal|only_v21|all_v21] {ans [disable|enable]}*1 {vbd [disable|enable]}*1",
            cli_set_fax_event_notify_config_func, "which fax events are reported"),
    command(CONFIG_NODE, "set fax encode mode [default|711u|711a]", cli_set_fax_encode_mode_config_func, "codec of fax calls"),
    command(CONFIG_NODE, "set fax packet interval tx [10|20|30|40|50|60] rx [10|20|30|40|50|60]",
            cli_set_fax_pkt_interval_config_func, "milliseconds of a packet of fax"),
    command(CONFIG_NODE, "set fax sdp media type [single|multiple] control mode [passthrough|ss|auto]",
            cli_set_fax_sdp_config_func, "how fax is negotiated"),
    command(CONFIG_NODE, "[distribute|erase] fax parameter", distributeEraseOf<faxParameter>, "how fax calls are handled"),
};
// clang-format on

static constexpr StepNames names = serviceItem("db_set_faxpara", "db_get_faxpara", "faxparacfg_regsnmpcmd_handle");

constexpr VoiceItem faxParameter = {
    .id = 3079,
    .stem = "faxparameter",
    .names = &names,
    .words = "fax parameter",
    .kept = kept<FaxParameter>(shape, table),
    .show = onRecord<show>,
    .showrun = onRecord<nshowrun_faxparameter>,
    .commands = commands,
    .message = setAndGet<faxParameter>(549, "Set fax parameters"),
};
