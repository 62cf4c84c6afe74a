#include "voice/globals/cidMode.h"

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&CIDMode::mode, CIDMODEdb_CIDMode_get, CIDMODEdb_CIDMode_put>(
        {.offset = 0, .initial = 1, .allowed = {{1, 2}}, .code = 65416, .complaint = "invalid CID mode: %d"}),
};
// clang-format on
static constexpr Record shape(34, fields);
static constexpr Table<CIDMODEdb> table{"CIDMODEdb", "treeIdx", CIDMODEdb_treeIdx_find, CIDMODEdb_new,
                                        CIDMODEdb_recordid_put};
static constexpr Word modeWords[] = {{"fsk", 1}, {"dtmf", 2}};

static int cli_set_cid_mode_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  const auto mode = valueOf(modeWords, argv[0]);
  if (!mode) return refuse(vty, "invalid CID mode");
  const CIDMode cfg{static_cast<u16>(*mode)};
  return configure(vty, cidMode, &cfg);
}

static void show(Vty* vty, const CIDMode* cfg) {
  static constexpr Word shown[] = {{"FSK", 1}, {"DTMF", 2}};
  vty_out(vty, "\r\n CID Mode Configuration");
  vty_out(vty, "\r\n ------------------------");
  vty_out(vty, "\r\n %-10s%-10s\r\n", "CID Mode: ", textOf(shown, cfg->mode, "N/A"));
}

static void nShowRunCIDMode(Vty* vty, const CIDMode* cfg) {
  vty_out(vty, "set cid mode %s\r\n", textOf(modeWords, cfg->mode, "dtmf"));
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set cid mode [fsk|dtmf]", cli_set_cid_mode_config_func, "caller identification mode"),
    command(CONFIG_NODE, "show cid mode", showOf<cidMode>, "caller identification mode"),
    command(CONFIG_NODE, "[distribute|erase] cid mode", distributeEraseOf<cidMode>, "caller identification mode"),
};

constexpr VoiceItem cidMode = {
    .id = 3087,
    .stem = "CIDMode",
    .words = "CID mode",
    .kept = kept<CIDMode>(shape, table),
    .show = onRecord<show>,
    .showrun = onRecord<nShowRunCIDMode>,
    .commands = commands,
    .message = setAndGet<cidMode>(60, "Set CIDMode configuration"),
};
