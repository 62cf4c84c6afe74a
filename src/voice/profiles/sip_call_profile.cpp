#include "voice/profiles/sip_call_profile.h"

#include <cstddef>
#include <cstring>

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_public.h"
#include "voice/port/voice_port_record.h"

// clang-format off
static constexpr Field fields[] = {
    field<&SipCallProfile::id, SipUserCallCfgProf_profileID_get, SipUserCallCfgProf_profileID_put>({.offset = 0}),
    field<&SipCallProfile::name, SipUserCallCfgProf_profileName_get, SipUserCallCfgProf_profileName_put>({.offset = 2}),
    field<&SipCallProfile::callIDType, SipUserCallCfgProf_callIDType_get, SipUserCallCfgProf_callIDType_put>(
        {.offset = 22, .initial = 1, .allowed = {{0, 3}}, .code = 65409, .complaint = "invalid call ID type: %d"}),
    field<&SipCallProfile::callWaiting, SipUserCallCfgProf_callWaiting_get, SipUserCallCfgProf_callWaiting_put>(
        {.offset = 24, .initial = 0, .allowed = {{0, 1}}, .code = 65408, .complaint = "invalid call waiting switch: %d"}),
    field<&SipCallProfile::busyFWD, SipUserCallCfgProf_busyFWD_get, SipUserCallCfgProf_busyFWD_put>(
        {.offset = 25, .initial = 0, .allowed = {{0, 1}}, .code = 65407, .complaint = "invalid busy forward switch: %d"}),
    field<&SipCallProfile::ringFWD, SipUserCallCfgProf_ringFWD_get, SipUserCallCfgProf_ringFWD_put>(
        {.offset = 26, .initial = 0, .allowed = {{0, 1}}, .code = 65406, .complaint = "invalid ring forward switch: %d"}),
    field<&SipCallProfile::forceFWD, SipUserCallCfgProf_forceFWD_get, SipUserCallCfgProf_forceFWD_put>(
        {.offset = 27, .initial = 0, .allowed = {{0, 1}}, .code = 65405, .complaint = "invalid force forward switch: %d"}),
    field<&SipCallProfile::fwdNumber, SipUserCallCfgProf_fwdNumber_get, SipUserCallCfgProf_fwdNumber_put>({.offset = 28}),
    field<&SipCallProfile::callConference, SipUserCallCfgProf_callConference_get, SipUserCallCfgProf_callConference_put>(
        {.offset = 60, .initial = 0, .allowed = {{0, 1}}, .code = 65403, .complaint = "invalid call conference switch: %d"}),
    field<&SipCallProfile::polarityReverse, SipUserCallCfgProf_polarityReverse_get, SipUserCallCfgProf_polarityReverse_put>(
        {.offset = 61, .initial = 1, .allowed = {{0, 1}}, .code = 65402, .complaint = "invalid reverse polarity switch: %d"}),
};
// clang-format on
static constexpr std::size_t kBehindNumber = 8;  // the first field behind the number
static constexpr Record shape(124, fields);
static constexpr Table<SipUserCallCfgProf> table{
    "SipUserCallCfgProf", "treeIdx",
    [](mco_trans_h handle, u32 id, SipUserCallCfgProf* row) {
      return SipUserCallCfgProf_treeIdx_find(handle, static_cast<u16>(id), row);
    },
    SipUserCallCfgProf_new,
    [](SipUserCallCfgProf* row, u32 id) { return SipUserCallCfgProf_profileID_put(row, static_cast<u16>(id)); }};

static constexpr Word typeWords[] = {{"disable", 0}, {"sdmf", 1}, {"mdmf", 2}, {"dtmf", 3}};
static constexpr Word switchWords[] = {{"disable", 0}, {"enable", 1}};
static constexpr u32 kNumber = sizeof(SipCallProfile::fwdNumber);

static int checkNumber(const SipCallProfile* profile, SnmpErrInfo* err) {
  const auto length = static_cast<u16>(strnlen(profile->fwdNumber, kNumber));
  const int valid = length == 0 ? 1 : nIsValidString(profile->fwdNumber, length, gCriteriaSIPNumber);
  if (valid == 1) return 0;
  if (valid == -1)
    vSetErrorInfo(kStepFailed, err);
  else
    vSetErrorInfo(65404, profile->fwdNumber, kNumber, err);
  trace("invalid forward number: %.32s", profile->fwdNumber);
  return -1;
}

static int checkOthers(const SipCallProfile* profile, SnmpErrInfo* err) {
  constexpr Fields all(fields);
  if (checkRecord(all.first(kBehindNumber), profile, err) != 0 || checkNumber(profile, err) != 0) return -1;
  return checkRecord(all.subspan(kBehindNumber), profile, err);
}

// --- Commands ---

static int badQuantity(Vty* vty) { return refuse(vty, "invalid parameter quantity"); }

static int configure(Vty* vty, const SipCallProfile& profile) {
  return configureProfile(vty, sipCallProfiles, &profile, "configuration");
}

static int cli_set_sip_call_profile_name_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return nameProfile(vty, sipCallProfiles, argc, argv, "configuration");
}

static int cli_set_sip_call_id_type_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  SipCallProfile profile;
  if (argc != 3) return badQuantity(vty);
  if (chooseProfile(vty, sipCallProfiles, argv, &profile) != 0) return -1;
  const auto type = valueOf(typeWords, argv[2]);
  if (!type) return refuse(vty, "invalid call id type");
  profile.callIDType = static_cast<u16>(*type);
  return configure(vty, profile);
}

// Takes the values of switches that follow each other. 0, or -1 behind the complaint of the first that is none.
struct Switch {
  u8 SipCallProfile::*member;
  const char* complaint;
};
static int takeSwitches(Vty* vty, std::span<const Switch> switches, char** words, SipCallProfile* profile) {
  for (const Switch& one : switches) {
    const auto value = valueOf(switchWords, *words++);
    if (!value) return refuse(vty, one.complaint);
    profile->*one.member = static_cast<u8>(*value);
  }
  return 0;
}

static int cli_set_sip_call_forward_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr Switch switches[] = {{&SipCallProfile::callWaiting, "invalid call waiting switch"},
                                        {&SipCallProfile::busyFWD, "invalid busy forward switch"},
                                        {&SipCallProfile::ringFWD, "invalid ring forward switch"},
                                        {&SipCallProfile::forceFWD, "invalid force forward switch"}};
  SipCallProfile profile;
  if (argc != 6) return badQuantity(vty);
  if (chooseProfile(vty, sipCallProfiles, argv, &profile) != 0) return -1;
  return takeSwitches(vty, switches, argv + 2, &profile) == 0 ? configure(vty, profile) : -1;
}

static int cli_set_sip_call_forward_number_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  SipCallProfile profile;
  if (argc != 3) return badQuantity(vty);
  if (chooseProfile(vty, sipCallProfiles, argv, &profile) != 0) return -1;
  const std::size_t length = std::strlen(argv[2]);
  if (length == 0) return refuse(vty, "there is no any call forward phone number");
  if (length > kNumber) {
    vty_out(vty, "\r\n the call forward phone number is more than %d bytes. \r\n", static_cast<int>(kNumber));
    return -1;
  }
  std::memset(profile.fwdNumber, 0, kNumber);
  std::memcpy(profile.fwdNumber, argv[2], length);
  return configure(vty, profile);
}

static int cli_set_sip_call_conference_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr Switch switches[] = {{&SipCallProfile::callConference, "invalid call conference switch"},
                                        {&SipCallProfile::polarityReverse, "invalid reverse polarity switch"}};
  SipCallProfile profile;
  if (argc != 4) return badQuantity(vty);
  if (chooseProfile(vty, sipCallProfiles, argv, &profile) != 0) return -1;
  return takeSwitches(vty, switches, argv + 2, &profile) == 0 ? configure(vty, profile) : -1;
}

static const char* shown(u8 value) { return value != 0 ? "Enable" : "Disable"; }
static const char* printed(u8 value) { return textOf(switchWords, value, "enable"); }

static void show(Vty* vty, const void* stored) {
  static constexpr Word types[] = {{"Disable", 0}, {"FSK-SDMF", 1}, {"FSK-MDMF", 2}, {"DTMF", 3}};
  const auto& profile = *static_cast<const SipCallProfile*>(stored);
  vty_out(vty, "\r\n %-22s%d/%.20s", "Profile ID/Name: ", profile.id, profile.name);
  vty_out(vty, "\r\n %-22s%s", "Call ID Type: ", textOf(types, profile.callIDType, "N/A"));
  vty_out(vty, "\r\n %-22s%s", "Call Waiting: ", shown(profile.callWaiting));
  vty_out(vty, "\r\n %-22s%s", "Busy Forward: ", shown(profile.busyFWD));
  vty_out(vty, "\r\n %-22s%s", "Ring Forward: ", shown(profile.ringFWD));
  vty_out(vty, "\r\n %-22s%s", "Force Forward: ", shown(profile.forceFWD));
  vty_out(vty, "\r\n %-22s%.32s", "Forward Phone Number: ", profile.fwdNumber);
  vty_out(vty, "\r\n %-22s%s", "Call Conference: ", shown(profile.callConference));
  vty_out(vty, "\r\n %-22s%s\r\n", "Polarity Reverse: ", shown(profile.polarityReverse));
}

// Each line begins with its end; the last one has another behind it.
static void printLines(Vty* vty, const void* stored) {
  const auto& profile = *static_cast<const SipCallProfile*>(stored);
  const int id = profile.id;
  vty_out(vty, "\r\nset sip user call profile %d name %.20s", id, profile.name);
  vty_out(vty, "\r\nset sip user call profile id %d call-id type %s", id,
          textOf(typeWords, profile.callIDType, "dtmf"));
  vty_out(vty, "\r\nset sip user call profile id %d call-waiting %s busy-forward %s ring-forward %s force-forward %s ",
          id, printed(profile.callWaiting), printed(profile.busyFWD), printed(profile.ringFWD),
          printed(profile.forceFWD));
  vty_out(vty, "\r\nset sip user call profile id %d call-forward telephone-number %.32s", id, profile.fwdNumber);
  vty_out(vty, "\r\nset sip user call profile id %d call-conference %s reverse-polarity %s\r\n", id,
          printed(profile.callConference), printed(profile.polarityReverse));
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show sip user call profile [id|name|all] {<IDorName>}*1",
            profileCommand<sipCallProfiles, showProfiles>, "supplementary services of POTS ports"),
    command(CONFIG_NODE, "set sip user call profile <profileID> name <profileName>",
            cli_set_sip_call_profile_name_config_func, "name of a call profile"),
    command(CONFIG_NODE, "set sip user call profile [id|name] <IDorName> call-id type [disable|sdmf|mdmf|dtmf]",
            cli_set_sip_call_id_type_config_func, "how the caller is shown"),
    command(CONFIG_NODE,
            "set sip user call profile [id|name] <IDorName> call-waiting [disable|enable] busy-forward [disable|enable] "
            "ring-forward [disable|enable] force-forward [disable|enable]",
            cli_set_sip_call_forward_config_func, "call waiting and forwarding"),
    command(CONFIG_NODE, "set sip user call profile [id|name] <IDorName> call-forward telephone-number <phoneNumber>",
            cli_set_sip_call_forward_number_config_func, "where calls are forwarded to"),
    command(CONFIG_NODE,
            "set sip user call profile [id|name] <IDorName> call-conference [disable|enable] reverse-polarity [disable|enable]",
            cli_set_sip_call_conference_config_func, "conferences and polarity"),
    command(CONFIG_NODE, "[distribute|erase] sip user call profile", profileCommand<sipCallProfiles, distributeEraseProfiles>,
            "supplementary services of POTS ports"),
    command(CONFIG_NODE, "delete sip user call profile [id|name] <IDorName>", profileCommand<sipCallProfiles, deleteProfile>,
            "delete a call profile"),
};
// clang-format on

static constexpr StepNames names =
    serviceItem("db_set_sipuser_callcfg_prf", "db_get_sipuser_callcfg_prf", kServiceItem.registrar);

constexpr VoiceProfiles sipCallProfiles = {
    .item = {.id = 3091,
             .stem = "sipcallprofile",
             .names = &names,
             .words = "SIP user call profile",
             .kept = kept<SipCallProfile>(shape, table),
             .countWidth = 4,
             .maximum = kProfiles,
             .check = onRecord<checkOthers>,
             .commands = commands},
    .deleteId = 34771,
    .snmpDelete = "nsnmp_delete_*",
    .noun = "SIP user call profile",
    .nameNoun = "SIP user call profile",
    .blankDetail = kProfileName,
    .cited = offsetof(VoicePort, SIPUserCallProfileID),
    .report = Report::whenSent,
    .deletionToCard = true,
    .reportsOrders = true,
    .defaultDeleteRefused = false,
    .show = show,
    .title = "SIP User Call Profile Configuration",
    .dashes = 37,
};

int nget_sipcallprofile_ex(const char* name, SipCallProfile* profile) {
  return findProfile(sipCallProfiles, name, profile);
}
void init_sipcallprofile() { initProfiles(sipCallProfiles); }
void ndistrib_sipcallprofile() { distributeProfiles(sipCallProfiles); }
int nshowrun_sipcallprofile(Vty* vty) { return forEachNamed(sipCallProfiles, vty, printLines); }
void registerSipCallProfiles() {
  registerProfiles<sipCallProfiles>(1244, "Set SIP user call configuration profile",
                                    "Delete SIP user call configuration profile");
}
void ninstall_sipcallprf_cfgline() {
  install_offers("call", offerProfiles, &sipCallProfiles);
  installCommands(commands);
}
