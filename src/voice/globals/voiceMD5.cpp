#include "voice/globals/voiceMD5.h"

#include <algorithm>
#include <cstring>

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_public.h"

// clang-format off
static constexpr Field fields[] = {
    field<&VoiceMD5::authSwitch, VOICEMD5db_authSwitch_get, VOICEMD5db_authSwitch_put>(
        {.offset = 0, .initial = 0, .allowed = {{0, 1}}, .code = 65416,
         .complaint = "invalid MD5 authentication switch: %d"}),
    field<&VoiceMD5::MGID, VOICEMD5db_MGID_get, VOICEMD5db_MGID_put>({.offset = 1}),
    field<&VoiceMD5::sharedKey, VOICEMD5db_sharedKey_get, VOICEMD5db_sharedKey_put>({.offset = 33}),
    field<&VoiceMD5::exchangedBase, VOICEMD5db_exchangedBase_get, VOICEMD5db_exchangedBase_put>({.offset = 65}),
    field<&VoiceMD5::exchangedPrime, VOICEMD5db_exchangedPrime_get, VOICEMD5db_exchangedPrime_put>({.offset = 81}),
};
// clang-format on
static constexpr Record shape(849, fields);
static constexpr Table<VOICEMD5db> table{"VOICEMD5db", "treeIdx", VOICEMD5db_treeIdx_find, VOICEMD5db_new,
                                         VOICEMD5db_recordid_put};
static constexpr Word switchWords[] = {{"open", 1}, {"close", 0}};
static constexpr int kMGID = sizeof(VoiceMD5::MGID);
static constexpr int kKey = sizeof(VoiceMD5::sharedKey);
static constexpr int kBase = sizeof(VoiceMD5::exchangedBase);
static constexpr int kPrime = sizeof(VoiceMD5::exchangedPrime);

// What nIsValidString says of a field's text; an empty one is good.
static int validKey(const char* text, int width) {
  const auto length = static_cast<u16>(strnlen(text, static_cast<std::size_t>(width)));
  if (length == 0) return 1;
  return nIsValidString(text, length, gCriteriaMD5);
}

// The keys count only while the switch is on.
static int nCheckVoiceMD5(const VoiceMD5* cfg, SnmpErrInfo* err) {
  if (checkFields(voiceMD5, cfg, err) != 0) return -1;
  if (cfg->authSwitch == 0) return 0;
  const int base = validKey(cfg->exchangedBase, kBase);
  const int prime = base == 1 ? validKey(cfg->exchangedPrime, kPrime) : 1;
  if (base == -1 || prime == -1) {
    vSetErrorInfo(kStepFailed, err);
    trace("invalid check para");
    return -1;
  }
  if (base == 0) {
    vSetErrorInfo(65412, cfg->exchangedBase, kBase, err);
    trace("invalid exchanged base: %.16s", cfg->exchangedBase);
    return -1;
  }
  if (prime == 0) {
    vSetErrorInfo(65410, err);
    trace("invalid exchanged prime: %.256s", cfg->exchangedPrime);
    return -1;
  }
  return 0;
}

// A text of the command replaces a whole field. False, with a line, when it is too long.
static bool take(Vty* vty, const char* what, const char* text, char* field, int width) {
  const std::size_t length = bep_StrLen(text);
  if (length > static_cast<std::size_t>(width)) {
    vty_out(vty, "\r\n the length of %s is more than %d bytes. \r\n", what, width);
    return false;
  }
  std::memset(field, 0, static_cast<std::size_t>(width));
  std::memcpy(field, text, length);
  return true;
}

static int cli_set_voice_md5_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc < 1 || argc > 5) return refuse(vty, "invalid parameter quantity");
  VoiceMD5 cfg;
  if (loadItem(voiceMD5, &cfg) != 0) return refuse(vty, "get voice MD5 authentication configuration failed");
  const auto on = valueOf(switchWords, argv[0]);
  if (!on) return refuse(vty, "invalid MD5 authentication switch");
  cfg.authSwitch = static_cast<u8>(*on);
  // The texts count by their position, whatever keywords were typed.
  if (cfg.authSwitch == 1 && ((argc > 1 && !take(vty, "MG ID", argv[1], cfg.MGID, kMGID)) ||
                              (argc > 2 && !take(vty, "shared key", argv[2], cfg.sharedKey, kKey)) ||
                              (argc > 3 && !take(vty, "exchanged base", argv[3], cfg.exchangedBase, kBase)) ||
                              (argc > 4 && !take(vty, "exchanged prime", argv[4], cfg.exchangedPrime, kPrime)))) {
    return -1;
  }
  return configure(vty, voiceMD5, &cfg);
}

// The keys of an open switch, the prime in lines of 32 characters.
static void showKeys(Vty* vty, const VoiceMD5& cfg) {
  vty_out(vty, "\r\n %-17s%-32.32s", "MG ID: ", cfg.MGID);
  vty_out(vty, "\r\n %-17s%-32.32s", "Shared Key: ", cfg.sharedKey);
  vty_out(vty, "\r\n %-17s%-16.16s", "Exchanged Base: ", cfg.exchangedBase);
  const auto length = static_cast<int>(strnlen(cfg.exchangedPrime, kPrime));
  const char* label = "Exchanged Prime: ";
  for (int at = 0; at == 0 || at < length; at += 32, label = " ") {
    vty_out(vty, "\r\n %-17s%-32.*s", label, std::min(32, length - at), cfg.exchangedPrime + at);
  }
}

static void show(Vty* vty, const VoiceMD5* cfg) {
  static constexpr Word shown[] = {{"Open", 1}, {"Close", 0}};
  vty_out(vty, "\r\n Voice MD5 Authentication Configuration");
  vty_out(vty, "\r\n ---------------------------------------------------");
  vty_out(vty, "\r\n %-17s%-6s", "MD5 Switch: ", textOf(shown, cfg->authSwitch, "N/A"));
  if (cfg->authSwitch == 1) showKeys(vty, *cfg);
  vty_out(vty, "\r\n");
}

// The longest form that the fields fill, from the last one backward.
static void nShowRunVoiceMD5(Vty* vty, const VoiceMD5* cfg) {
  vty_out(vty, "set voice md5 authentication %s", textOf(switchWords, cfg->authSwitch, "close"));
  if (cfg->authSwitch == 1) {
    const auto given = [](const char* text) { return text[0] != '\0'; };
    const bool prime = given(cfg->exchangedPrime);
    const bool base = prime || given(cfg->exchangedBase);
    const bool key = base || given(cfg->sharedKey);
    const bool id = key || given(cfg->MGID);
    if (id) vty_out(vty, " mg id %.32s", cfg->MGID);
    if (key) vty_out(vty, " shared key %.32s", cfg->sharedKey);
    if (base) vty_out(vty, " exchanged base %.16s", cfg->exchangedBase);
    if (prime) vty_out(vty, " prime %.256s", cfg->exchangedPrime);
  }
  vty_out(vty, "\r\n");
}

static constexpr Command commands[] = {
    command(CONFIG_NODE,
            "set voice md5 authentication [open|close] {mg id <mgID>}*1 {shared key <sharedKey>}*1 "
            "{exchanged base <xBase>}*1 {prime <xPrime>}*1",
            cli_set_voice_md5_config_func, "MD5 authentication of the gateway"),
    command(CONFIG_NODE, "show voice md5 authentication", showOf<voiceMD5>, "MD5 authentication of the gateway"),
    command(CONFIG_NODE, "[distribute|erase] voice md5 authentication", distributeEraseOf<voiceMD5>,
            "MD5 authentication of the gateway"),
};

constexpr VoiceItem voiceMD5 = {
    .id = 3081,
    .stem = "VoiceMD5",
    .words = "voice MD5 authentication",
    .viewWords = "voice md5 authentication",
    .kept = kept<VoiceMD5>(shape, table),
    .check = onRecord<nCheckVoiceMD5>,
    .show = onRecord<show>,
    .showrun = onRecord<nShowRunVoiceMD5>,
    .commands = commands,
    .message = setAndGet<voiceMD5>(875, "Set voice md5 authentication"),
};
