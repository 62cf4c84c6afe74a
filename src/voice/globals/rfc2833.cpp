#include "voice/globals/rfc2833.h"

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&RFC2833::neg2833, RFC2833db_rfc2833Neg_get, RFC2833db_rfc2833Neg_put>(
        {.offset = 0, .initial = 0, .allowed = {{0, 1}}, .code = 65416, .complaint = "invalid RFC2833 negotiation: %d"}),
    field<&RFC2833::neg2198, RFC2833db_rfc2198Neg_get, RFC2833db_rfc2198Neg_put>(
        {.offset = 2, .initial = 0, .allowed = {{0, 1}}, .code = 65415, .complaint = "invalid RFC2198 negotiation: %d"}),
    field<&RFC2833::pt2833, RFC2833db_rfc2833PTDefault_get, RFC2833db_rfc2833PTDefault_put>(
        {.offset = 4, .initial = 97, .allowed = {{0, 0}, {96, 127}}, .code = 65414,
         .complaint = "invalid default RFC2833 PT: %d"}),
    field<&RFC2833::pt2198, RFC2833db_rfc2198PTDefault_get, RFC2833db_rfc2198PTDefault_put>(
        {.offset = 6, .initial = 96, .allowed = {{0, 0}, {96, 127}}, .code = 65413,
         .complaint = "invalid default RFC2198 PT: %d"}),
};
// clang-format on
static constexpr Record shape(40, fields);
static constexpr Table<RFC2833db> table{"RFC2833db", "treeIdx", RFC2833db_treeIdx_find, RFC2833db_new,
                                        RFC2833db_recordid_put};
static constexpr Word negotiationWords[] = {{"auto", 1}, {"manul", 0}};

static int cli_set_rfc2833_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 4) return refuse(vty, "invalid parameter quantity");
  const auto neg2833 = valueOf(negotiationWords, argv[0]);
  if (!neg2833) return refuse(vty, "invalid RFC2833 negotiation");
  const auto neg2198 = valueOf(negotiationWords, argv[2]);
  if (!neg2198) return refuse(vty, "invalid RFC2198 negotiation");
  const RFC2833 cfg{static_cast<u16>(*neg2833), static_cast<u16>(*neg2198), static_cast<u16>(bep_atoiEx(argv[1])),
                    static_cast<u16>(bep_atoiEx(argv[3]))};
  return configure(vty, rfc2833, &cfg);
}

static void show(Vty* vty, const RFC2833* cfg) {
  static constexpr Word shown[] = {{"Auto", 1}, {"Manul", 0}};
  vty_out(vty, "\r\n RFC2833 Configuration");
  vty_out(vty, "\r\n ----------------------------");
  vty_out(vty, "\r\n %-21s%-15s", "RFC2833 Negotiation: ", textOf(shown, cfg->neg2833, "N/A"));
  vty_out(vty, "\r\n %-21s%-15s", "RFC2198 Negotiation: ", textOf(shown, cfg->neg2198, "N/A"));
  vty_out(vty, "\r\n %-21s%-6d", "Default RFC2833 PT: ", cfg->pt2833);
  vty_out(vty, "\r\n %-21s%-6d", "Default RFC2198 PT: ", cfg->pt2198);
  vty_out(vty, "\r\n");
}

static void nShowRunRFC2833(Vty* vty, const RFC2833* cfg) {
  vty_out(vty, "set rfc2833 negotiation %s default pt %d rfc2198 negotiation %s default pt %d\r\n",
          textOf(negotiationWords, cfg->neg2833, "manul"), cfg->pt2833, textOf(negotiationWords, cfg->neg2198, "manul"),
          cfg->pt2198);
}

static constexpr Command commands[] = {
    command(
        CONFIG_NODE,
        "set rfc2833 negotiation [auto|manul] default pt <default2833PT> rfc2198 negotiation [auto|manul] default pt "
        "<default2198PT>",
        cli_set_rfc2833_config_func, "DTMF relay"),
    command(CONFIG_NODE, "show rfc2833 configuration", showOf<rfc2833>, "DTMF relay"),
    command(CONFIG_NODE, "[distribute|erase] rfc2833 configuration", distributeEraseOf<rfc2833>, "DTMF relay"),
};

constexpr VoiceItem rfc2833 = {
    .id = 3082,
    .stem = "RFC2833",
    .words = "RFC2833",
    .kept = kept<RFC2833>(shape, table),
    .show = onRecord<show>,
    .showrun = onRecord<nShowRunRFC2833>,
    .commands = commands,
    .message = setAndGet<rfc2833>(66, "Set RFC2833"),
};
