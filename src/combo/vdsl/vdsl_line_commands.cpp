// The commands of VDSL line profiles.

#include <cstdlib>

#include "combo/vdsl/vdsl_line_func_prf.h"
#include "combo/vdsl/vdsl_words.h"
#include "common/commands.h"
#include "platform/command_line.h"
#include "platform/database.h"

PROFILE_HANDLER(add_vdsl_line_prf_Func, cliAddProfile, vdslLineKind)
PROFILE_HANDLER(del_vdsl_line_prf_Func, cliDeleteProfile, vdslLineKind)
PROFILE_HANDLER(show_vdsl_line_prf_Func, cliShowProfile, vdslLineKind)
PROFILE_HANDLER(attach_vdsl_line_prf_Func, cliAttachProfile, vdslLineKind)
PROFILE_HANDLER(show_attach_vdsl_line_prf_Func, cliShowAttached, vdslLineKind)
PROFILE_HANDLER(config_vdsl_line_profile_node_Func, cliSelectProfile, vdslLineKind)

static int edit(Vty* vty, const VdslLinePrfRecord& values, u32 selector) {
  SnmpErrInfo err;
  if (modify_spc_vdsl_line_prf_para(&err, &values, selector) != 0) {
    return complain(vty, "failed,error code is ", err.errCode);
  }
  trigger_obj_crc(9, 0, 0, vdslLineKind.writeId, 3);
  return 0;
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
static std::optional<ScaledPower> readPower(Vty* vty, const char* text, double most) {
  const double power = std::atof(text);
  if (!(power >= 0.0 && power <= most)) {
    vty_out(vty, "para is wrong\r\n");
    return std::nullopt;
  }
  // In memory it is rounded to a double, also where registers hold more: 20.2 times 10 is 202 then, not a bit less.
  const volatile double tenths = power * 10;
  return ScaledPower{0, 1, static_cast<u32>(tenths)};
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
    command(CONFIG_NODE, "add vdslLine profile <name> {id <id>}*1", add_vdsl_line_prf_Func, "make a VDSL line profile"),
    command(CONFIG_NODE, "delete vdslLine profile [id|name] <idOrName>", del_vdsl_line_prf_Func, "delete a VDSL line profile"),
    command(CONFIG_NODE, "show vdslLine profile [id|name|all] {<idOrName>}*1", show_vdsl_line_prf_Func, "VDSL line profiles"),
    command(CONFIG_NODE, "attach vdslLine profile [id|name] <idOrName> interface <ifStr>", attach_vdsl_line_prf_Func, "give ports a VDSL line profile"),
    command(CONFIG_NODE, "show vdslLine profile attach interface <ifStr>", show_attach_vdsl_line_prf_Func, "VDSL line profiles of ports"),
    command(CONFIG_NODE, "set vdslLine profile [id|name] <idOrName>", config_vdsl_line_profile_node_Func, "select a VDSL line profile"),
    command(CONFIG_NODE, "set vdslline para portmode [atm|ptm|self-adaption]", cli_set_vdslLine_portmode_func, "transfer mode"),
    command(CONFIG_NODE, "set vdslline para stdPrf [8a|8b|8c|8d|12a|12b|17a|30a|all]", cli_set_vdslLine_stdprf_func, "VDSL2 profile"),
    command(CONFIG_NODE, "set vdslline para psd <0-42>", cli_set_vdslLine_psd_func, "shape of the power spectral density"),
    command(CONFIG_NODE, "set vdslline para maxTxPowerDn <value>", cli_set_vdslLine_maxTxPowerDn_func, "largest downstream transmit power, dBm"),
    command(CONFIG_NODE, "set vdslline para maxTxPowerUp <value>", cli_set_vdslLine_maxTxPowerUp_func, "largest upstream transmit power, dBm"),
    command(CONFIG_NODE, "set vdslline para rfi {start <0-4095> end <0-4095>}*8 {start <0-4095> end <0-4095>}*8", cli_set_vdslLine_rfi_func, "tones of radio frequency interference"),
    command(CONFIG_NODE, "set vdslline para tone {start <0-4095> end <0-4095>}*8", cli_set_vdslLine_tone_func, "tones left out"),
};
// clang-format on

int install_vdsl_line_cmd() { return installCommands(commands); }
