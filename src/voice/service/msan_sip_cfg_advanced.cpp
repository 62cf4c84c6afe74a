#include <cstring>
#include <string_view>

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_public.h"
#include "voice/service/msan_sip_cfg.h"

static constexpr u16 kRefer = 1;

// clang-format off
static constexpr Field fields[] = {
    field<&SipAdvanced::CWCONFMode, SIPAdvancedCfg_CWCONFMode_get, SIPAdvancedCfg_CWCONFMode_put>(
        {.offset = 0, .initial = 0, .allowed = {{0, 4}}, .code = 65416, .complaint = "invalid call-waiting/conference mode: %d"}),
    field<&SipAdvanced::conferenceURI, SIPAdvancedCfg_conferenceURI_get, SIPAdvancedCfg_conferenceURI_put>(
        {.offset = 2, .when = when<&SipAdvanced::CWCONFMode>({kRefer, kRefer})}),
    field<&SipAdvanced::sharpCharEscape, SIPAdvancedCfg_sharpCharEscape_get, SIPAdvancedCfg_sharpCharEscape_put>(
        {.offset = 66, .initial = 0, .allowed = {{0, 1}}, .code = 65413, .complaint = "invalid sharp character escape: %d"}),
    field<&SipAdvanced::callerIDHeadField, SIPAdvancedCfg_callerIDHeadField_get, SIPAdvancedCfg_callerIDHeadField_put>(
        {.offset = 67, .initial = 0, .allowed = {{0, 1}}, .code = 65412, .complaint = "invalid caller-id head field: %d"}),
};
// clang-format on
static constexpr Record shape(324, fields);
static constexpr Table<SIPAdvancedCfg> table{"SIPAdvancedCfg", "treeIdx", SIPAdvancedCfg_treeIdx_find,
                                             SIPAdvancedCfg_new, SIPAdvancedCfg_recordid_put};
static constexpr Word modeWords[] = {{"normal", 0}, {"refer", kRefer}, {"info1", 2}, {"info2", 3}, {"other", 4}};
static constexpr Word escapeWords[] = {{"disable", 1}, {"enable", 0}};
static constexpr Word headWords[] = {{"asserted", 0}, {"from", 1}};

static int checkUri(const SipAdvanced* cfg, SnmpErrInfo* err) {
  const std::size_t length = strnlen(cfg->conferenceURI, sizeof cfg->conferenceURI);
  if (length == 0) {
    vSetErrorInfo(65415, err);
    trace("the conference URI is NULL");
    return -1;
  }
  const int valid = nIsValidString(cfg->conferenceURI, static_cast<u16>(length), gCriteriaConfURI);
  if (valid == 1) return 0;
  if (valid == -1)
    vSetErrorInfo(kStepFailed, err);
  else
    vSetErrorInfo(65414, cfg->conferenceURI, sizeof cfg->conferenceURI, err);
  trace("invalid conference URI: %.64s", cfg->conferenceURI);
  return -1;
}

static int ncheck_sipadvanced(const SipAdvanced* cfg, SnmpErrInfo* err) {
  constexpr Fields all(fields);
  if (checkRecord(all.first(1), cfg, err) != 0) return -1;
  if (cfg->CWCONFMode == kRefer && checkUri(cfg, err) != 0) return -1;
  return checkRecord(all.subspan(1), cfg, err);
}

// The URI stands ahead of the last two words, where there is one.
static int cli_set_sip_advanced_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  SipAdvanced cfg;
  if (argc < 1) return refuse(vty, "invalid parameter quantity");
  const auto mode = valueOf(modeWords, argv[0]);
  if (!mode) return refuse(vty, "invalid call-waiting/triple conference mode");
  if (argc != (*mode == kRefer ? 4 : 3)) return refuse(vty, "invalid parameter quantity");
  if (loadItem(sipAdvanced, &cfg) != 0) return refuse(vty, "get current SIP advanced configuration failed");
  cfg.CWCONFMode = static_cast<u16>(*mode);
  if (*mode == kRefer) {
    const std::string_view uri = argv[1];
    if (uri.size() > sizeof cfg.conferenceURI) {
      vty_out(vty, "\r\n the triple conference uri length is more than %d bytes. \r\n", 64);
      return -1;
    }
    std::memset(cfg.conferenceURI, 0, sizeof cfg.conferenceURI);
    uri.copy(cfg.conferenceURI, sizeof cfg.conferenceURI);
  }
  const auto escape = valueOf(escapeWords, argv[argc - 2]);
  if (!escape) return refuse(vty, "invalid sharp character escape option");
  const auto head = valueOf(headWords, argv[argc - 1]);
  if (!head) return refuse(vty, "invalid caller-id head field option");
  cfg.sharpCharEscape = static_cast<u8>(*escape);
  cfg.callerIDHeadField = static_cast<u8>(*head);
  return configure(vty, sipAdvanced, &cfg);
}

static void show(Vty* vty, const SipAdvanced* cfg) {
  static constexpr Word modes[] = {{"Common", 0}, {"Refer", kRefer}, {"Info 1", 2}, {"Info 2", 3}, {"Other", 4}};
  vty_out(vty, "\r\n SIP Advanced Configuration");
  vty_out(vty, "\r\n -------------------------------------");
  vty_out(vty, "\r\n %-22s%s", "CW/CONF Mode: ", textOf(modes, cfg->CWCONFMode, "Other"));
  vty_out(vty, "\r\n %-22s%.64s", "Conference URI: ", cfg->conferenceURI);
  vty_out(vty, "\r\n %-22s%s", "# Escape Mode: ", cfg->sharpCharEscape != 0 ? "Disable" : "Enable");
  vty_out(vty, "\r\n %-22s%s\r\n", "Caller ID Head Field: ", cfg->callerIDHeadField == 0 ? "P-Asserted-ID" : "From");
}

static void nshowrun_sipadvanced(Vty* vty, const SipAdvanced* cfg) {
  vty_out(vty, "\r\nset sip call-waiting-conference mode %s", textOf(modeWords, cfg->CWCONFMode, "other"));
  if (cfg->CWCONFMode == kRefer) vty_out(vty, " conference uri %.64s", cfg->conferenceURI);
  vty_out(vty, " sharp escape %s caller-id head %s", textOf(escapeWords, cfg->sharpCharEscape, "enable"),
          textOf(headWords, cfg->callerIDHeadField, "from"));
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show sip advanced configuration", showOf<sipAdvanced>, "call waiting, conferences, number forms"),
    command(CONFIG_NODE,
            "set sip call-waiting-conference mode [normal|refer|info1|info2|other] {conference uri <confURI>}*1 sharp "
            "escape [disable|enable] caller-id head [asserted|from]",
            cli_set_sip_advanced_config_func, "call waiting, conferences, number forms"),
    command(CONFIG_NODE, "[distribute|erase] sip advanced configuration", distributeEraseOf<sipAdvanced>,
            "call waiting, conferences, number forms"),
};
// clang-format on

constexpr VoiceItem sipAdvanced = {
    .id = 3090,
    .stem = "sipadvanced",
    .names = &sipAdvancedNames,
    .words = "SIP advanced",
    .shownWords = "SIP Advanced",
    .kept = kept<SipAdvanced>(shape, table),
    .check = onRecord<ncheck_sipadvanced>,
    .show = onRecord<show>,
    .showrun = onRecord<nshowrun_sipadvanced>,
    .commands = commands,
    .message = setAndGet<sipAdvanced>(350, "Set SIP advanced configuration"),
};
