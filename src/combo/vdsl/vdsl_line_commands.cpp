// The commands of VDSL line profiles.

#include "combo/vdsl/vdsl_line_func_prf.h"
#include "combo/vdsl/vdsl_words.h"
#include "common/commands.h"
#include "platform/command_line.h"

static int edit(Vty* vty, const VdslLinePrfRecord& values, u32 selector) {
  SnmpErrInfo err;
  return finishEdit(vdslLineKind, vty, modify_spc_vdsl_line_prf_para(&err, &values, selector), err);
}

static int unknownCommand(Vty* vty) { return complain(vty, "unknown command"); }

static int cli_set_vdslLine_portmode_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  const auto mode = argc == 1 ? valueOf(portModeWords, argv[0]) : std::nullopt;
  if (!mode) return unknownCommand(vty);
  VdslLinePrfRecord values{};
  values.item.portMode = static_cast<u16>(*mode);
  return edit(vty, values, 1);
}

static int cli_set_vdslLine_stdprf_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  const auto bands = argc == 1 ? valueOf(stPrfWords, argv[0]) : std::nullopt;
  if (!bands) return unknownCommand(vty);
  VdslLinePrfRecord values{};
  values.item.stPrf = static_cast<u16>(*bands);
  return edit(vty, values, 2);
}

static int cli_set_vdslLine_psd_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return unknownCommand(vty);
  VdslLinePrfRecord values{};
  values.item.psdShape = static_cast<u16>(bep_atoiEx(argv[0]));
  return edit(vty, values, 3);
}

// A power in dB as tenths, cut. Nothing behind a complaint.
static std::optional<ScaledValue> readPower(Vty* vty, const char* text, double most) {
  const double power = typedNumber(text);
  if (power >= 0.0 && power <= most) return ScaledValue{0, 1, scaled(power, 1)};
  vty_out(vty, "para is wrong\r\n");
  return std::nullopt;
}

static int cli_set_vdslLine_maxTxPowerDn_func(const CommandElement*, Vty* vty, int, char** argv) {
  const auto power = readPower(vty, argv[0], 25.5);
  if (!power) return -1;
  VdslLinePrfRecord values{};
  values.item.maxTxPwrDn = *power;
  return edit(vty, values, 4);
}

static int cli_set_vdslLine_maxTxPowerUp_func(const CommandElement*, Vty* vty, int, char** argv) {
  const auto power = readPower(vty, argv[0], 20.2);
  if (!power) return -1;
  VdslLinePrfRecord values{};
  values.item.maxTxPwrUp = *power;
  return edit(vty, values, 5);
}

// Pairs of start and end. -1 behind a complaint.
static int readRanges(Vty* vty, int argc, char** argv, std::span<ToneRange> ranges, u16* count) {
  if (argc < 0 || argc % 2 != 0 || static_cast<u32>(argc) / 2 > ranges.size()) {
    vty_out(vty, "input para number is wrong! argc = %d \r\n", argc);
    return -1;
  }
  *count = static_cast<u16>(argc / 2);
  for (u32 i = 0; i < *count; ++i) {
    ranges[i] = {static_cast<u16>(bep_atoiEx(argv[2 * i])), static_cast<u16>(bep_atoiEx(argv[2 * i + 1])), {}};
  }
  return 0;
}

static int cli_set_vdslLine_rfi_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VdslLinePrfRecord values{};
  u16 count = 0;
  if (readRanges(vty, argc, argv, values.item.rfi, &count) != 0) return -1;
  values.item.rfiNum = count;
  return edit(vty, values, 6);
}

static int cli_set_vdslLine_tone_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VdslLinePrfRecord values{};
  u16 count = 0;
  if (readRanges(vty, argc, argv, values.item.tones, &count) != 0) return -1;
  values.item.tbNum = count;
  return edit(vty, values, 7);
}

// clang-format off
static constexpr Command commands[] = {
    PROFILE_COMMANDS(vdslLineKind, "vdslLine", "VDSL line"),
    command(CONFIG_NODE, "set vdslline para portmode [atm|ptm|self-adaption]", cli_set_vdslLine_portmode_func, "transfer mode"),
    command(CONFIG_NODE, "set vdslline para stdPrf [8a|8b|8c|8d|12a|12b|17a|30a|all]", cli_set_vdslLine_stdprf_func, "VDSL2 profile"),
    command(CONFIG_NODE, "set vdslline para psd <0-42>", cli_set_vdslLine_psd_func, "shape of the power spectral density"),
    command(CONFIG_NODE, "set vdslline para maxTxPowerDn <value>", cli_set_vdslLine_maxTxPowerDn_func, "largest downstream transmit power, dBm"),
    command(CONFIG_NODE, "set vdslline para maxTxPowerUp <value>", cli_set_vdslLine_maxTxPowerUp_func, "largest upstream transmit power, dBm"),
    command(CONFIG_NODE, "set vdslline para rfi {start <0-4095> end <0-4095>}*8 {start <0-4095> end <0-4095>}*8", cli_set_vdslLine_rfi_func, "tones of radio frequency interference"),
    command(CONFIG_NODE, "set vdslline para tone {start <0-4095> end <0-4095>}*8", cli_set_vdslLine_tone_func, "tones left out"),
};
// clang-format on

void install_vdsl_line_cmd() { installCommands(commands); }
