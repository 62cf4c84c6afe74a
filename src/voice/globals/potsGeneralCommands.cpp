// The commands of the POTS general parameters: five that change a part of the record each. Many of their lines have a
// blank ahead.

#include "common/commands.h"
#include "common/report.h"
#include "common/words.h"
#include "voice/common/voice_item.h"
#include "voice/globals/potsGeneral.h"

static constexpr u16 kMessage = 2841;

static constexpr Word billWords[] = {{"12kc", 1}, {"16kc", 0}, {"anc", 2}};
static constexpr Word impedanceWords[] = {{"560", 1}, {"600", 0}, {"680", 2}};

static int refuseAhead(Vty* vty, const char* why) {
  vty_out(vty, " \r\n %s. \r\n", why);
  return -1;
}

static u16 number16(const char* text) { return static_cast<u16>(bep_atoiEx(text)); }

// Reads the stored record, lets `change` put the arguments into it, which gives null or what is wrong with them, stores
// and sends.
template <class Change>
static int setPart(Vty* vty, int argc, int quantity, const char* word, Change change) {
  if (argc != quantity) return refuseAhead(vty, "invalid parameter quantity");
  PotsGeneral cfg;
  if (loadItem(potsGeneral, &cfg) != 0) return refuseAhead(vty, "get POTS general para failed");
  if (const char* wrong = change(cfg)) return refuseAhead(vty, wrong);
  SnmpErrInfo err;
  const int result = distrib_pots_general_parax(&cfg, &err);
  vty_out(vty, "\r\n set POTS general para configuration involves %s %s(%d). \r\n", word,
          result == -1 ? "failed" : "successfully", static_cast<i16>(err.errCode));
  if (result == -1) return -1;
  reportChange(kNode, kMessage, 3);
  return 0;
}

static int cli_set_pots_general_para_pulse_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return setPart(vty, argc, 3, "pulse", [argv](PotsGeneral& cfg) -> const char* {
    cfg.pulseWidth = number16(argv[0]);
    cfg.pulseInterval = number16(argv[1]);
    cfg.flashWidth = number16(argv[2]);
    return nullptr;
  });
}

static int cli_set_pots_general_para_bill_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return setPart(vty, argc, 2, "bill", [argv](PotsGeneral& cfg) -> const char* {
    const auto type = valueOf(billWords, argv[0]);
    if (!type) return "invalid bill type option";
    cfg.billType = static_cast<u16>(*type);
    cfg.billPulseVoltage = static_cast<u32>(bep_atoiEx(argv[1]));
    return nullptr;
  });
}

static int cli_set_pots_general_para_impedance_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return setPart(vty, argc, 1, "impedance", [argv](PotsGeneral& cfg) -> const char* {
    const auto mode = valueOf(impedanceWords, argv[0]);
    if (!mode) return "invalid impedance mode option";
    cfg.POTSImpMode = static_cast<u16>(*mode);
    return nullptr;
  });
}

static int cli_set_pots_general_para_hooktime_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return setPart(vty, argc, 2, "hooktime", [argv](PotsGeneral& cfg) -> const char* {
    cfg.offHookCheckTime = number16(argv[0]);
    cfg.onHookCheckTime = number16(argv[1]);
    return nullptr;
  });
}

static int cli_set_pots_general_para_gain_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return setPart(vty, argc, 2, "codec gain", [argv](PotsGeneral& cfg) -> const char* {
    cfg.sendCODECGain = bep_atoiEx(argv[0]);
    cfg.recvCODECGain = bep_atoiEx(argv[1]);
    return nullptr;
  });
}

static int cli_distribute_pots_general_para_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuseAhead(vty, "invalid parameter quantity");
  const u16 slot = number16(argv[0]);
  const int result = distrib_pots_general_para(slot);
  vty_out(vty, "\r\n distribute slot %d POTS general para configuration %s. \r\n", slot,
          result == 0 ? "successfully" : "failed");
  if (result != 0) return -1;
  reportChange(kNode, kMessage, 3);
  return 0;
}

static int cli_erase_pots_general_para_config_func(const CommandElement*, Vty* vty, int, char**) {
  if (erase_pots_general_para() != 0) return refuse(vty, "erase POTS general para configuration failed");
  reportChange(kNode, kMessage, 3);
  vty_out(vty, "\r\n erase POTS general para configuration successfully. \r\n");
  return 0;
}

static int cli_show_pots_general_para_config_func(const CommandElement*, Vty* vty, int, char**) {
  static constexpr Word bills[] = {{"16KC", 0}, {"12KC", 1}};
  static constexpr int ohms[] = {600, 560};
  PotsGeneral cfg;
  if (loadItem(potsGeneral, &cfg) != 0) return refuseAhead(vty, "get POTS general para configuration failed");
  const auto line = [vty](const char* label, i32 value) { vty_out(vty, " \r\n %-27s%-6d", label, value); };
  vty_out(vty, " \r\n POTS General Parameters Configuration");
  vty_out(vty, " \r\n --------------------------------------");
  line("Pulse Width(ms): ", cfg.pulseWidth);
  line("Pulse Interval(ms): ", cfg.pulseInterval);
  line("Flash Width(ms): ", cfg.flashWidth);
  vty_out(vty, " \r\n %-27s%s", "Bill Type: ", textOf(bills, cfg.billType, "ANC"));
  line("Bill Pulse Voltage(0.1V): ", static_cast<i32>(cfg.billPulseVoltage));
  line("POTS Impedance Mode(Ohm): ", cfg.POTSImpMode < 2 ? ohms[cfg.POTSImpMode] : 680);
  line("Off Hook Check Time(ms): ", cfg.offHookCheckTime);
  line("On Hook Check Time(ms): ", cfg.onHookCheckTime);
  line("Send CODEC Gain(0.1dB): ", cfg.sendCODECGain);
  vty_out(vty, " \r\n %-27s%-6d \r\n", "Recv CODEC Gain(0.1dB): ", cfg.recvCODECGain);
  vty_out(vty, "\r\n get POTS general para configuration successfully. \r\n");
  return 0;
}

// A record that a check would refuse is left out as a whole.
void showrun_pots_general_para(Vty* vty) {
  PotsGeneral cfg;
  SnmpErrInfo err;
  if (loadItem(potsGeneral, &cfg) != 0) {
    trace("get POTS general para configuration failed");
    return;
  }
  if (checkItem(potsGeneral, &cfg, &err) != 0) {
    trace("invalid POTS general para configuration(%d)", static_cast<i16>(err.errCode));
    return;
  }
  vty_out(vty, "set pots general para pulse width %d interval %d flash width %d\r\n", cfg.pulseWidth, cfg.pulseInterval,
          cfg.flashWidth);
  vty_out(vty, "set pots general para bill type %s pulse voltage %d\r\n", textOf(billWords, cfg.billType, "anc"),
          static_cast<i32>(cfg.billPulseVoltage));
  vty_out(vty, "set pots general para impedance mode %s\r\n", textOf(impedanceWords, cfg.POTSImpMode, "680"));
  vty_out(vty, "set pots general para off hooktime %d on hooktime %d\r\n", cfg.offHookCheckTime, cfg.onHookCheckTime);
  vty_out(vty, "set pots general para codec gain send %d receive %d\r\n", cfg.sendCODECGain, cfg.recvCODECGain);
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "set pots general para pulse width <pulseWidth> interval <pulseInterval> flash width <flashWidth>",
            cli_set_pots_general_para_pulse_config_func, "parameters of all POTS lines"),
    command(CONFIG_NODE, "set pots general para bill type [12kc|16kc|anc] pulse voltage <billPulseVoltage>",
            cli_set_pots_general_para_bill_config_func, "parameters of all POTS lines"),
    command(CONFIG_NODE, "set pots general para impedance mode [560|600|680]",
            cli_set_pots_general_para_impedance_config_func, "parameters of all POTS lines"),
    command(CONFIG_NODE, "set pots general para off hooktime <offHookcheckTime> on hooktime <onHookcheckTime>",
            cli_set_pots_general_para_hooktime_config_func, "parameters of all POTS lines"),
    command(CONFIG_NODE, "set pots general para codec gain send <sendCodecGain> receive <recvCodecGain>",
            cli_set_pots_general_para_gain_config_func, "parameters of all POTS lines"),
    command(CONFIG_NODE, "show pots general para configuration", cli_show_pots_general_para_config_func,
            "parameters of all POTS lines"),
    command(CONFIG_NODE, "erase pots general para configuration", cli_erase_pots_general_para_config_func,
            "parameters of all POTS lines"),
    command(CONFIG_NODE, "distribute slot <slotNo> pots general para configuration",
            cli_distribute_pots_general_para_config_func, "parameters of all POTS lines"),
};
// clang-format on

void installPotsGeneralCommands() { installCommands(commands); }
