#include "voice/profiles/ngn_dsp.h"

#include <cstddef>
#include <cstdio>

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/port/voice_port_record.h"
#include "voice/service/ngn_vo_common.h"

// A gain of -14 to 6 dB, as its 16 bits are read.
static constexpr Range kNegativeGain{65536 - 14, 65535}, kGain{0, 6};

// clang-format off
static constexpr Field fields[] = {
    field<&DspProfile::id, DspCfgProf_id_get, DspCfgProf_id_put>({.offset = 0}),
    field<&DspProfile::name, DspCfgProf_name_get, DspCfgProf_name_put>({.offset = 2}),
    field<&DspProfile::defaultCode, DspCfgProf_defaultCode_get, DspCfgProf_defaultCode_put>(
        {.offset = 22, .initial = 1, .allowed = {{0, 3}}, .code = 65409, .complaint = "invalid default coder: %d"}),
    field<&DspProfile::mute, DspCfgProf_mute_get, DspCfgProf_mute_put>(
        {.offset = 24, .initial = 0, .allowed = {{0, 1}}, .code = 65408, .complaint = "invalid mute switch: %d"}),
    field<&DspProfile::echoCancel, DspCfgProf_echoCancel_get, DspCfgProf_echoCancel_put>(
        {.offset = 25, .initial = 1, .allowed = {{0, 1}}, .code = 65407, .complaint = "invalid echo cancel switch: %d"}),
    field<&DspProfile::inputGain, DspCfgProf_inputGain_get, DspCfgProf_inputGain_put>(
        {.offset = 26, .initial = 0, .allowed = {kGain, kNegativeGain}, .code = 65406, .complaint = "invalid input gain: %d"}),
    field<&DspProfile::outputGain, DspCfgProf_outputGain_get, DspCfgProf_outputGain_put>(
        {.offset = 28, .initial = 0, .allowed = {kGain, kNegativeGain}, .code = 65405, .complaint = "invalid output gain: %d"}),
    field<&DspProfile::dtmfMode, DspCfgProf_dtmfMode_get, DspCfgProf_dtmfMode_put>(
        {.offset = 30, .initial = 0, .allowed = {{0, 3}}, .code = 65404, .complaint = "invalid DTMF mode: %d"}),
    field<&DspProfile::jitterBuffer, DspCfgProf_jitterBuffer_get, DspCfgProf_jitterBuffer_put>(
        {.offset = 32, .initial = 40, .allowed = {{1, 254}}, .code = 65403, .complaint = "invalid jitter buffer: %d"}),
    field<&DspProfile::faxJitterBuffer, DspCfgProf_faxJitterBuffer_get, DspCfgProf_faxJitterBuffer_put>(
        {.offset = 34, .initial = 100, .allowed = {{1, 254}}, .code = 65402, .complaint = "invalid fax jitter buffer: %d"}),
    field<&DspProfile::packetInterval, DspCfgProf_packetInterval_get, DspCfgProf_packetInterval_put>(
        {.offset = 36, .initial = 20, .allowed = {{10, 60, 10}}, .code = 65420, .complaint = "invalid packet interval: %d"}),
    field<&DspProfile::faxRate, DspCfgProf_faxRate_get, DspCfgProf_faxRate_put>(
        {.offset = 38, .initial = 14400, .allowed = {{2400, 14400, 2400}}, .code = 65401, .complaint = "invalid fax rate: %d"}),
};
// clang-format on
static constexpr Record shape(100, fields);
static constexpr Table<DspCfgProf> table{
    "DspCfgProf", "idTreeIdx",
    [](mco_trans_h handle, u32 id, DspCfgProf* row) {
      return DspCfgProf_idTreeIdx_find(handle, static_cast<u16>(id), row);
    },
    DspCfgProf_new, [](DspCfgProf* row, u32 id) { return DspCfgProf_id_put(row, static_cast<u16>(id)); }};

static constexpr Word codeWords[] = {{"711u", 0}, {"711a", 1}, {"723", 2}, {"729", 3}};
static constexpr Word switchWords[] = {{"disable", 0}, {"enable", 1}};
static constexpr Word dtmfWords[] = {{"transparent", 0}, {"2833", 1}, {"2833redun", 2}, {"outband", 3}};
static constexpr Word intervalWords[] = {{"10", 10}, {"20", 20}, {"30", 30}, {"40", 40}, {"50", 50}, {"60", 60}};
static constexpr Word rateWords[] = {{"2400", 2400}, {"4800", 4800},   {"7200", 7200},
                                     {"9600", 9600}, {"12000", 12000}, {"14400", 14400}};

static void freshName(u16 id, char* name) { std::snprintf(name, kProfileName, "p%d", id); }

// --- Commands ---

static int badQuantity(Vty* vty) { return refuse(vty, "invalid parameter quantity"); }

static int cli_set_dsp_profile_name_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return nameProfile(vty, dspProfiles, argc, argv, "name");
}

static int cli_set_dsp_code_mute_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  DspProfile profile;
  if (argc != 5) return badQuantity(vty);
  if (chooseProfile(vty, dspProfiles, argv, &profile) != 0) return -1;
  const auto code = valueOf(codeWords, argv[2]);
  if (!code) return refuse(vty, "invalid default coder");
  const auto mute = valueOf(switchWords, argv[3]);
  if (!mute) return refuse(vty, "invalid mute switch");
  const auto echo = valueOf(switchWords, argv[4]);
  if (!echo) return refuse(vty, "invalid echo cancel switch");
  profile.defaultCode = static_cast<u16>(*code);
  profile.mute = static_cast<u8>(*mute);
  profile.echoCancel = static_cast<u8>(*echo);
  return configureProfile(vty, dspProfiles, &profile, "default coder, mute and echo cancel");
}

static int cli_set_dsp_gain_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  DspProfile profile;
  if (argc != 4) return badQuantity(vty);
  if (chooseProfile(vty, dspProfiles, argv, &profile) != 0) return -1;
  profile.inputGain = static_cast<i16>(bep_atoiEx(argv[2]));
  profile.outputGain = static_cast<i16>(bep_atoiEx(argv[3]));
  return configureProfile(vty, dspProfiles, &profile, "I/O gain", "I/O gaind");
}

static int cli_set_dsp_dtmf_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  DspProfile profile;
  if (argc != 3) return badQuantity(vty);
  if (chooseProfile(vty, dspProfiles, argv, &profile) != 0) return -1;
  const auto mode = valueOf(dtmfWords, argv[2]);
  if (!mode) return refuse(vty, "invalid DTMF mode");
  profile.dtmfMode = static_cast<u16>(*mode);
  return configureProfile(vty, dspProfiles, &profile, "DTMF mode");
}

static int cli_set_dsp_buffer_interval_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  DspProfile profile;
  if (argc != 5) return badQuantity(vty);
  if (chooseProfile(vty, dspProfiles, argv, &profile) != 0) return -1;
  profile.jitterBuffer = static_cast<u16>(bep_atoiEx(argv[2]));
  profile.faxJitterBuffer = static_cast<u16>(bep_atoiEx(argv[3]));
  const auto interval = valueOf(intervalWords, argv[4]);
  if (!interval) return refuse(vty, "invalid packet interval");
  profile.packetInterval = static_cast<u16>(*interval);
  return configureProfile(vty, dspProfiles, &profile, "jitter buffer and packet interval");
}

static int cli_set_dsp_fax_rate_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  DspProfile profile;
  if (argc != 3) return badQuantity(vty);
  if (chooseProfile(vty, dspProfiles, argv, &profile) != 0) return -1;
  const auto rate = valueOf(rateWords, argv[2]);
  if (!rate) return refuse(vty, "invalid fax rate");
  profile.faxRate = static_cast<u16>(*rate);
  return configureProfile(vty, dspProfiles, &profile, "fax rate");
}

static void show(Vty* vty, const void* stored) {
  static constexpr Word codes[] = {{"G.711u", 0}, {"G.711A", 1}, {"G.723", 2}, {"G.729", 3}};
  static constexpr Word switches[] = {{"Disable", 0}, {"Enable", 1}};
  static constexpr Word modes[] = {{"Transparent", 0}, {"RFC2833", 1}, {"RFC2833 Redundance", 2}, {"Outband", 3}};
  const auto& profile = *static_cast<const DspProfile*>(stored);
  vty_out(vty, "\r\n %-28s%d/%.20s", "Profile ID/Name: ", profile.id, profile.name);
  vty_out(vty, "\r\n %-28s%s", "Default Coder: ", textOf(codes, profile.defaultCode, "N/A"));
  vty_out(vty, "\r\n %-28s%s", "Mute: ", textOf(switches, profile.mute, "N/A"));
  vty_out(vty, "\r\n %-28s%s", "Echo Cancel: ", textOf(switches, profile.echoCancel, "N/A"));
  vty_out(vty, "\r\n %-28s%d", "Input Gain(dB): ", profile.inputGain);
  vty_out(vty, "\r\n %-28s%d", "Output Gain(dB): ", profile.outputGain);
  vty_out(vty, "\r\n %-28s%s", "DTMF Mode: ", textOf(modes, profile.dtmfMode, "N/A"));
  vty_out(vty, "\r\n %-28s%d", "Jitter Buffer Size(ms): ", profile.jitterBuffer);
  vty_out(vty, "\r\n %-28s%d", "Fax Jitter Buffer Size(ms): ", profile.faxJitterBuffer);
  vty_out(vty, "\r\n %-28s%d", "Packet Interval(ms): ", profile.packetInterval);
  vty_out(vty, "\r\n %-28s%d\r\n", "Fax Rate(bps): ", profile.faxRate);
}

static void printLines(Vty* vty, const void* stored) {
  const auto& profile = *static_cast<const DspProfile*>(stored);
  const int id = profile.id;
  vty_out(vty, "set dsp profile %d name %.20s\r\n", id, profile.name);
  vty_out(vty, "set dsp profile id %d default code %s mute %s echo cancel %s\r\n", id,
          textOf(codeWords, profile.defaultCode, "711a"), textOf(switchWords, profile.mute, "disable"),
          textOf(switchWords, profile.echoCancel, "enable"));
  vty_out(vty, "set dsp profile id %d input gain %d output gain %d\r\n", id, profile.inputGain, profile.outputGain);
  vty_out(vty, "set dsp profile id %d dtmf mode %s\r\n", id, textOf(dtmfWords, profile.dtmfMode, "transparent"));
  // A recovery may have stored an interval or a rate that no word names.
  vty_out(vty, "set dsp profile id %d jitter buffer %d fax jitter buffer %d packet interval %d\r\n", id,
          profile.jitterBuffer, profile.faxJitterBuffer, profile.packetInterval);
  vty_out(vty, "set dsp profile id %d fax rate %d\r\n", id, profile.faxRate);
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show dsp profile [id|name|all] {<IDorName>}*1", profileCommand<dspProfiles, showProfiles>,
            "DSP profiles of POTS ports"),
    command(CONFIG_NODE, "set dsp profile <profileID> name <profileName>", cli_set_dsp_profile_name_config_func,
            "name of a DSP profile"),
    command(CONFIG_NODE,
            "set dsp profile [id|name] <IDorName> default code [711u|711a|723|729] mute [disable|enable] echo cancel [disable|enable]",
            cli_set_dsp_code_mute_config_func, "codec, mute and echo cancellation"),
    command(CONFIG_NODE, "set dsp profile [id|name] <IDorName> input gain <inputGain> output gain <outputGain>",
            cli_set_dsp_gain_config_func, "gains in dB, -14 to 6"),
    command(CONFIG_NODE, "set dsp profile [id|name] <IDorName> dtmf mode [transparent|2833|2833redun|outband]",
            cli_set_dsp_dtmf_config_func, "how digits are sent"),
    command(CONFIG_NODE,
            "set dsp profile [id|name] <IDorName> jitter buffer <bufSize> fax jitter buffer <faxBufSize> packet interval "
            "[10|20|30|40|50|60]",
            cli_set_dsp_buffer_interval_config_func, "buffers and packets in milliseconds"),
    command(CONFIG_NODE, "set dsp profile [id|name] <IDorName> fax rate [2400|4800|7200|9600|12000|14400]",
            cli_set_dsp_fax_rate_config_func, "bits per second of fax"),
    command(CONFIG_NODE, "[distribute|erase] dsp profile", profileCommand<dspProfiles, distributeEraseProfiles>,
            "DSP profiles of POTS ports"),
    command(CONFIG_NODE, "delete dsp profile [id|name] <IDorName>", profileCommand<dspProfiles, deleteProfile>,
            "give a DSP profile its first values again"),
};
// clang-format on

static int checkOthers(const void* profile, SnmpErrInfo* err) { return checkFields(dspProfiles.item, profile, err); }

constexpr VoiceProfiles dspProfiles = {
    .item = {.id = 3075,
             .stem = "dsp_profile",
             .names = &kPlainDbItem,
             .words = "DSP profile",
             .kept = kept<DspProfile>(shape, table),
             .countWidth = 4,
             .maximum = kProfiles,
             .check = checkOthers,
             .commands = commands},
    .deleteId = 34755,
    .snmpDelete = "snmp_delete_*",
    .noun = "DSP profile",
    .nameNoun = "dsp profile",
    .freshName = freshName,
    .cited = offsetof(VoicePort, DSPProfileID),
    .report = Report::first,
    .send = send_ngn_msc_packet,
    .reportsOrders = false,
    .defaultDeleteRefused = true,
    .show = show,
    .title = "DSP Profile Configuration",
    .dashes = 45,
};

int is_valid_dsp_profile(u16 id) { return isValidProfile(dspProfiles, id); }
int get_dsp_profile_ex(const char* name, DspProfile* profile) { return findProfile(dspProfiles, name, profile); }
int init_dsp() { return initProfiles(dspProfiles); }
void distrib_dsp_profile() { distributeProfiles(dspProfiles); }
void show_run_dsp_profile(Vty* vty) { forEachNamed(dspProfiles, vty, printLines); }
void registerDspProfiles() {
  registerProfiles<dspProfiles>(1004, "Set DSP configuration profile", "Delete DSP configuration profile");
}
void install_dsp_cmd_line() {
  install_offers("dsp", offerProfiles, &dspProfiles);
  installCommands(commands);
}
