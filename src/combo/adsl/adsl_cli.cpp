// The commands of ADSL line and PVC profiles.

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string_view>

#include "combo/adsl/adsl_config_interface.h"
#include "combo/adsl/adsl_profile.h"
#include "combo/adsl/adsl_words.h"
#include "combo/pvc/pvc_profile.h"
#include "common/commands.h"
#include "common/report.h"
#include "platform/command_line.h"

static void reportChange(const ProfileKind& kind) { reportChange(kNode, kind.writeId, 3); }

// --- Commands of both kinds ---

PROFILE_HANDLER(add_adsl_line_prf_Func, cliAddProfile, adslLineKind)
PROFILE_HANDLER(del_adsl_line_prf_Func, cliDeleteProfile, adslLineKind)
PROFILE_HANDLER(show_adsl_line_prf_Func, cliShowProfile, adslLineKind)
PROFILE_HANDLER(flush_adsl_line_prf_Func, cliFlushProfile, adslLineKind)
PROFILE_HANDLER(config_adsl_line_profile_node_Func, cliSelectProfile, adslLineKind)
PROFILE_HANDLER(attach_adsl_line_prf_Func, cliAttachProfile, adslLineKind)
PROFILE_HANDLER(show_attach_adsl_line_prf_Func, cliShowAttached, adslLineKind)
PROFILE_HANDLER(add_pvc_prf_Func, cliAddProfile, pvcKind)
PROFILE_HANDLER(del_pvc_prf_Func, cliDeleteProfile, pvcKind)
PROFILE_HANDLER(show_pvc_prf_Func, cliShowProfile, pvcKind)
PROFILE_HANDLER(flush_pvc_prf_Func, cliFlushProfile, pvcKind)
PROFILE_HANDLER(config_pvc_profile_node_Func, cliSelectProfile, pvcKind)
PROFILE_HANDLER(attach_pvc_prf_Func, cliAttachProfile, pvcKind)
PROFILE_HANDLER(show_attach_pvc_prf_Func, cliShowAttached, pvcKind)

// --- Edit of an ADSL line profile ---

// Changes one field of the selected profile, under the caller's lock.
static int modify(Vty* vty, const AdslPrfRecord& values, u32 selector) {
  SnmpErrInfo err;
  if (modify_spc_adsl_prf_para(&err, &values, selector) == 0) return 0;
  return complain(vty, "modify_spc_adsl_prf_para failed,error code is ", err.errCode);
}

static int edit(Vty* vty, const AdslPrfRecord& values, u32 selector) {
  const ProfileLock lock(adslLineKind);
  if (modify(vty, values, selector) != 0) return -1;
  reportChange(adslLineKind);
  return 0;
}

static bool sameWord(std::string_view a, std::string_view b) {
  const auto same = [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
  };
  return std::ranges::equal(a, b, same);
}

// The value of a word in any case; the last word's for one that is not in the list.
static u16 valueOfAny(std::span<const Word> words, const char* text) {
  for (const Word& word : words) {
    if (sameWord(word.text, text)) return static_cast<u16>(word.value);
  }
  return static_cast<u16>(words.back().value);
}

static bool isDown(const char* direction) { return sameWord(direction, "down"); }

// The number of an argument. False after a complaint, when it is none or above the most.
static bool readNumber(Vty* vty, const char* text, u32 most, const char* refusal, u32& value) {
  const auto number = numberOf(text);
  if (!number) {
    complain(vty, "Please input legal numerals");
    return false;
  }
  value = *number;
  if (value <= most) return true;
  complain(vty, refusal);
  return false;
}

// Edits of a field that is one number.
static int editField(Vty* vty, u32 selector, u32 value) {
  AdslPrfRecord values{};
  setAdslField(&values.item, selector, value);
  return edit(vty, values, selector);
}

static int editNumber(Vty* vty, const char* text, u32 most, const char* refusal, u32 selector) {
  u32 value = 0;
  return readNumber(vty, text, most, refusal, value) ? editField(vty, selector, value) : -1;
}

// Of a pair of selectors, the downstream one's is first.
static u32 selector(const char* direction, u32 down) { return isDown(direction) ? down : down + 1; }

#define EDIT(name) static int name(const CommandElement*, Vty* vty, [[maybe_unused]] int argc, char** argv)

EDIT(cli_set_adslLine_transmode_func) { return editField(vty, 1, valueOfAny(transmodeWords, argv[0])); }
EDIT(cli_set_adslLine_UpRateMode_func) { return editField(vty, 2, valueOfAny(rateModeWords, argv[0])); }
EDIT(cli_set_adslLine_DownRateMode_func) { return editField(vty, 3, valueOfAny(rateModeWords, argv[0])); }
EDIT(cli_set_adslLine_LineType_func) { return editField(vty, 4, valueOfAny(lineTypeWords, argv[0])); }

EDIT(cli_set_adslLine_SnrmMargin_func) {
  u32 value = 0;
  if (!readNumber(vty, argv[1], 31, "SnrmMargin must between 0.0-31.0", value)) return -1;
  AdslPrfRecord values{};
  values.item.SnrmDn = values.item.SnrmUp = {0, 1, static_cast<i32>(value) * 10};
  return edit(vty, values, selector(argv[0], 5));
}

EDIT(cli_set_adslLine_MaxInterLeaveDelay_func) {
  return editNumber(vty, argv[1], 63, "MaxInterLeaveDelay must between 0-63", selector(argv[0], 7));
}
EDIT(cli_set_adslLine_MinInp_func) {
  return editNumber(vty, argv[1], 18, "MinInp must between 0-18", selector(argv[0], 9));
}
EDIT(cli_set_adslLine_BitSwap_func) { return editField(vty, selector(argv[0], 11), valueOfAny(enableWords, argv[1])); }
EDIT(cli_set_adslLine_PowerMode_func) { return editField(vty, 13, valueOfAny(powerModeWords, argv[0])); }
EDIT(cli_set_adslLine_PmL0Time_func) { return editNumber(vty, argv[0], 65534, "PmL0Time must between 0-65534", 14); }
EDIT(cli_set_adslLine_PmL2Time_func) { return editNumber(vty, argv[0], 65534, "PmL2Time must between 0-65534", 15); }
EDIT(cli_set_adslLine_PmL2Atprt_func) { return editNumber(vty, argv[0], 15, "PmL2Atprt must between 0-15", 16); }
EDIT(cli_set_adslLine_PmL2Rate_func) { return editNumber(vty, argv[0], 1024, "PmL2Rate must between 0-1024", 17); }
EDIT(cli_set_adslLine_MinRate_func) {
  return editNumber(vty, argv[1], 100000, "MinRate must between 0-100000", selector(argv[0], 25));
}

// Two writes, the maximum first: each is checked against the other half as it is stored.
EDIT(cli_set_adslLine_Snrm_func) {
  u32 most = 0, least = 0;
  if (!readNumber(vty, argv[1], 31, "MaxSnrm must between 0-31", most) ||
      !readNumber(vty, argv[2], most, "MinSnrm must between  0 and MaxSnrm", least)) {
    return -1;
  }
  AdslPrfRecord values{};
  values.item.MaxSnrmDn = values.item.MaxSnrmUp = static_cast<u16>(most);
  values.item.MinSnrmDn = values.item.MinSnrmUp = static_cast<u16>(least);
  const bool down = isDown(argv[0]);
  const ProfileLock lock(adslLineKind);
  if (modify(vty, values, down ? 21 : 22) != 0 || modify(vty, values, down ? 23 : 24) != 0) return -1;
  reportChange(adslLineKind);
  return 0;
}

EDIT(cli_set_adslLine_toneblackout_func) {
  if (argc < 1 || argc % 3 != 1) return complain(vty, "argc is error ");
  u32 count = 0;
  if (!readNumber(vty, argv[0], 16, "pointNumber must between 0-16", count)) return -1;
  AdslPrfRecord values{};
  values.item.ToneBlackoutNum = static_cast<u16>(count);
  for (int i = 1; i < argc; i += 3) {
    static constexpr const char* kBadIndex = "Index must between 0 and ToneBlackoutNum ";
    u32 at = 0, start = 0, end = 0;
    if (!readNumber(vty, argv[i], 15, kBadIndex, at)) return -1;
    if (at >= count) return complain(vty, kBadIndex);
    if (!readNumber(vty, argv[i + 1], 511, "ToneBlackoutStart must between 0-511", start) ||
        !readNumber(vty, argv[i + 2], 511, "ToneBlackoutEnd must between 0-511", end)) {
      return -1;
    }
    values.item.tones[at] = {static_cast<u16>(start), static_cast<u16>(end), {}};
  }
  return edit(vty, values, 18);
}

// --- Edit of a PVC profile ---

EDIT(cli_set_pvc_profile_vc_func) {
  u32 number = 0, vpi = 0, vci = 0;
  static constexpr const char* kBadVci = "vci must between 32-65535";
  if (!readNumber(vty, argv[0], 7, "pvcNo must between 0-7", number) ||
      !readNumber(vty, argv[1], 255, "vpi must between 0-255", vpi) || !readNumber(vty, argv[2], 65535, kBadVci, vci)) {
    return -1;
  }
  if (vci != 0 && vci < 32) return complain(vty, kBadVci);
  const PvcEntry values{static_cast<u16>(number), static_cast<u16>(vpi), vci, {}};
  const ProfileLock lock(pvcKind);
  SnmpErrInfo err;
  if (modify_spc_pvc_prf_para(&err, &values) != 0) {
    return complain(vty, "modify_spc_pvc_prf_para failed,error.code is ", err.errCode, " exist");
  }
  reportChange(pvcKind);
  return 0;
}
#undef EDIT

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "add adslLine profile <name> {id <id>}*1", add_adsl_line_prf_Func, "make an ADSL line profile"),
    command(CONFIG_NODE, "delete adslLine profile [id|name] <idOrName>", del_adsl_line_prf_Func, "delete an ADSL line profile"),
    command(CONFIG_NODE, "show adslLine profile [id|name|all] {<idOrName>}*1", show_adsl_line_prf_Func, "ADSL line profiles"),
    command(CONFIG_NODE, "flush adslLine profile [id|name] <idOrName>", flush_adsl_line_prf_Func, "send an ADSL line profile to its ports"),
    command(CONFIG_NODE, "set adslLine profile [id|name] <idOrName>", config_adsl_line_profile_node_Func, "select an ADSL line profile"),
    command(CONFIG_NODE, "set adsl transmode [adpt|gdmt|adsl_2|adsl2+|t1413]", cli_set_adslLine_transmode_func, "transmission mode"),
    command(CONFIG_NODE, "set adsl UpRateMode [StartAdpt|fixed|RunAdpt]", cli_set_adslLine_UpRateMode_func, "upstream rate adaption"),
    command(CONFIG_NODE, "set adsl DownRateMode [StartAdpt|fixed|RunAdpt]", cli_set_adslLine_DownRateMode_func, "downstream rate adaption"),
    command(CONFIG_NODE, "set adsl LineType [none|fastOnly|interleave|FastOrInter|FastAndInter]", cli_set_adslLine_LineType_func, "latency of the channels"),
    command(CONFIG_NODE, "set adsl SnrmMargin [down|up] <value>", cli_set_adslLine_SnrmMargin_func, "target noise margin, dB"),
    command(CONFIG_NODE, "set adsl MaxInterLeaveDelay [down|up] <value>", cli_set_adslLine_MaxInterLeaveDelay_func, "largest interleave delay, ms"),
    command(CONFIG_NODE, "set adsl MinInp [down|up] <value>", cli_set_adslLine_MinInp_func, "least impulse noise protection"),
    command(CONFIG_NODE, "set adsl BitSwap [down|up] [enable|disable]", cli_set_adslLine_BitSwap_func, "bit swapping"),
    command(CONFIG_NODE, "set adsl PowerMode [L0Mode|L3Mode|L2Mode|L2AndL3]", cli_set_adslLine_PowerMode_func, "power management"),
    command(CONFIG_NODE, "set adsl PmL0Time <value>", cli_set_adslLine_PmL0Time_func, "least time in L0"),
    command(CONFIG_NODE, "set adsl PmL2Time <value>", cli_set_adslLine_PmL2Time_func, "least time in L2"),
    command(CONFIG_NODE, "set adsl PmL2Atprt <value>", cli_set_adslLine_PmL2Atprt_func, "power reduction in L2, dB"),
    command(CONFIG_NODE, "set adsl PmL2Rate <value>", cli_set_adslLine_PmL2Rate_func, "least rate in L2, kbit/s"),
    command(CONFIG_NODE, "set adsl Snrm [down|up] MaxSnrm <value1> MinSnrm <value2>", cli_set_adslLine_Snrm_func, "limits of the noise margin, dB"),
    command(CONFIG_NODE, "set adsl MinRate [down|up] <value>", cli_set_adslLine_MinRate_func, "least rate, kbit/s"),
    command(CONFIG_NODE, "set adsl toneblackout number <number> {<no> start <value1> end <value2>}*8 {<no> start <value3> end <value4>}*8", cli_set_adslLine_toneblackout_func, "tones left out"),
    command(CONFIG_NODE, "attach adslLine profile [id|name] <idOrName> interface <ifStr>", attach_adsl_line_prf_Func, "give ports an ADSL line profile"),
    command(CONFIG_NODE, "show adslLine profile attach interface <ifStr>", show_attach_adsl_line_prf_Func, "ADSL line profiles of ports"),
    command(CONFIG_NODE, "add pvc profile <name> {id <id>}*1", add_pvc_prf_Func, "make a PVC profile"),
    command(CONFIG_NODE, "delete pvc profile [id|name] <idOrName>", del_pvc_prf_Func, "delete a PVC profile"),
    command(CONFIG_NODE, "show pvc profile [id|name|all] {<idOrName>}*1", show_pvc_prf_Func, "PVC profiles"),
    command(CONFIG_NODE, "attach pvc profile [id|name] <idOrName> interface <ifStr>", attach_pvc_prf_Func, "give ports a PVC profile"),
    command(CONFIG_NODE, "show pvc profile attach interface <ifStr>", show_attach_pvc_prf_Func, "PVC profiles of ports"),
    command(CONFIG_NODE, "flush pvc profile [id|name] <idOrName>", flush_pvc_prf_Func, "send a PVC profile to its ports"),
    command(CONFIG_NODE, "set pvc profile [id|name] <idOrName>", config_pvc_profile_node_Func, "select a PVC profile"),
    command(CONFIG_NODE, "set adsl pvcNo <value1> vpi <value2> vci <value3>", cli_set_pvc_profile_vc_func, "a circuit of the PVC profile"),
};
// clang-format on

void init_adsl_cmd() { installCommands(commands); }
