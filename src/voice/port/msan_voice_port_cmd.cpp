// The commands of the voice ports' configuration.

#include <cstring>

#include "common/commands.h"
#include "common/obj_attributes.h"
#include "common/report.h"
#include "voice/common/ngn_view.h"
#include "voice/port/msan_voice_port_cfg.h"
#include "voice/profiles/ngn_dsp.h"
#include "voice/profiles/sip_call_profile.h"

static int badQuantity(Vty* vty) { return refuse(vty, "invalid parameter quantity"); }
static int badList(Vty* vty) { return refuse(vty, "set voice port configuration list failed"); }

static int listPorts(Vty* vty, const char* ifStr, LIST* list) {
  return readPorts(vty, ifStr, kVoicePortAttribute, sizeof(VoicePort), list);
}

static int readRecords(Vty* vty, LIST* list) {
  return nGetObjManageData(kPotsPort, 0, list) == 0 ? 0 : refuse(vty, "get voice port configuration failed");
}

static int finish(Vty* vty, LIST* list) {
  SnmpErrInfo err;
  const int result = ndistrib_voiceportx(list, &err);
  vty_out(vty, "\r\n set voice port configuration %s(%d). \r\n", result == 0 ? "successfully" : "failed",
          static_cast<i16>(err.errCode));
  if (result == 0) msan_cfg_sync_trigger(list, voicePorts.id, 3, kDataNodeList);
  return result;
}

static int cli_show_voice_port_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return badQuantity(vty);
  DataList list;
  if (listPorts(vty, argv[0], list) != 0 || readRecords(vty, list) != 0) return -1;
  vty_out(vty, "\r\n Voice Port Configuration");
  vty_out(vty, "\r\n ---------------------------------------");
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    const auto* record = recordOf<const VoicePort>(at);
    vty_out(vty, "\r\n %-29s%d/%d", "Slot No./Port No.: ", node->slot, node->port);
    vty_out(vty, "\r\n %-29s%-32.32s", "User Name/SIP Telephone No.: ", record->userNumber);
    vty_out(vty, "\r\n %-29s%-6d", "DSP ProfileID: ", record->DSPProfileID);
    vty_out(vty, "\r\n %-29s%-64.64s", "SIP Auth Name: ", record->SIPAuthUserName);
    vty_out(vty, "\r\n %-29s%-64.64s", "SIP Auth Password: ", record->SIPAuthPassword);
    vty_out(vty, "\r\n %-29s%-6d\r\n", "SIP User Call Profile ID: ", record->SIPUserCallProfileID);
  }
  vty_out(vty, "\r\n get voice port configuration successfully(%d). \r\n", 0);
  return 0;
}

// The id of a profile that is given by "id" or "name". 0, or -1 behind a line.
template <class Profile>
static int readProfile(Vty* vty, char** words, const char* noun, const char* badOption,
                       int (*find)(const char*, Profile*), u16* id) {
  if (bep_StrCmp(words[0], "id") == 0) {
    *id = static_cast<u16>(bep_atoiEx(words[1]));
    return 0;
  }
  if (bep_StrCmp(words[0], "name") != 0) return refuse(vty, badOption);
  Profile profile;
  if (find(words[1], &profile) != 0) {
    vty_out(vty, "\r\n get %s %s configuration failed. \r\n", noun, words[1]);
    return -1;
  }
  *id = profile.id;
  return 0;
}

static int cli_set_voice_port_protocol_profile_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VoicePort record;
  if (argc != 3 && argc != 5) return badQuantity(vty);
  if (readProfile(vty, argv, "DSP profile", "invalid DSP profile option", get_dsp_profile_ex, &record.DSPProfileID) !=
      0)
    return -1;
  if (argc == 5 && readProfile(vty, argv + 2, "SIP user call profile", "invalid SIP user call profile option",
                               nget_sipcallprofile_ex, &record.SIPUserCallProfileID) != 0)
    return -1;
  DataList list;
  if (listPorts(vty, argv[argc - 1], list) != 0 || readRecords(vty, list) != 0) return -1;
  return nset_voiceport_datalista(&record, list) == 0 ? finish(vty, list) : badList(vty);
}

// Several ports want a step: one number would stand at all of them.
int listCounted(Vty* vty, const char* ifStr, u32 attribute, u32 step, LIST* list) {
  if (readPorts(vty, ifStr, attribute, sizeof(VoicePort), list) != 0) return -1;
  if (step != 0 || lstCount(list) <= 1) return 0;
  vty_out(vty, "\r\n invalid user name step: %d. \r\n", 0);
  return -1;
}

static int readCounted(Vty* vty, const char* ifStr, u32 step, LIST* list) {
  return listCounted(vty, ifStr, kVoicePortAttribute, step, list) == 0 ? readRecords(vty, list) : -1;
}

static bool tooLong(Vty* vty, const char* what, const char* text) {
  if (std::strlen(text) <= sizeof(VoicePort::userNumber)) return false;
  vty_out(vty, "\r\n the length of %s is more than %d bytes. \r\n", what, 32);
  return true;
}

bool numberIsTooLong(Vty* vty, const char* number) { return tooLong(vty, "telephone number", number); }

static int cli_set_voice_port_user_name_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 4) return badQuantity(vty);
  if (argv[0][0] == '\0') return refuse(vty, "the start user name is NULL");
  if (tooLong(vty, "prefix", argv[0])) return -1;
  const u32 start = static_cast<u32>(bep_atoiEx(argv[1]));
  const u32 step = static_cast<u32>(bep_atoiEx(argv[2]));
  DataList list;
  if (readCounted(vty, argv[3], step, list) != 0) return -1;
  return nset_voiceport_datalistb(argv[0], start, step, list) == 0 ? finish(vty, list) : badList(vty);
}

int setNumbers(const char* number, u32 step, LIST* list) {
  const std::size_t length = std::strlen(number);
  if (step == 0) return nset_voiceport_datalistb(number, 0, 0, list);
  const std::size_t head = length < 10 ? 0 : length < 19 ? 9 : length < 28 ? 18 : 27;
  const u32 start = static_cast<u32>(bep_atoiEx(number + head));
  if (head == 0) return nset_voiceport_datalistbx(start, step, list);
  char prefix[sizeof(VoicePort::userNumber)] = {};
  std::memcpy(prefix, number, head);
  return nset_voiceport_datalistb(prefix, start, step, list);
}

static int cli_set_voice_port_telephone_number_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 3) return badQuantity(vty);
  if (numberIsTooLong(vty, argv[0])) return -1;
  const u32 step = static_cast<u32>(bep_atoiEx(argv[1]));
  DataList list;
  if (readCounted(vty, argv[2], step, list) != 0) return -1;
  return setNumbers(argv[0], step, list) == 0 ? finish(vty, list) : badList(vty);
}

static int cli_set_voice_port_authentication_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  VoicePort record;
  if (argc != 2 && argc != 3) return badQuantity(vty);
  const std::size_t user = std::strlen(argv[0]);
  if (user > sizeof record.SIPAuthUserName) {
    vty_out(vty, "\r\n invalid sip authentication user name: %s. \r\n", argv[0]);
    return -1;
  }
  std::memcpy(record.SIPAuthUserName, argv[0], user);
  if (argc == 3) {
    const std::size_t password = std::strlen(argv[1]);
    if (password > sizeof record.SIPAuthPassword) {
      vty_out(vty, "\r\n invalid sip authentication password: %s. \r\n", argv[1]);
      return -1;
    }
    std::memcpy(record.SIPAuthPassword, argv[1], password);
  }
  DataList list;
  if (listPorts(vty, argv[argc - 1], list) != 0 || readRecords(vty, list) != 0) return -1;
  return nset_voiceport_datalistc(&record, list) == 0 ? finish(vty, list) : badList(vty);
}

static int cli_distribute_erase_voice_port_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2) return badQuantity(vty);
  const bool erases = bep_StrCmp(argv[0], "erase") == 0;
  if (!erases && bep_StrCmp(argv[0], "distribute") != 0) return refuse(vty, "invalid configuration operation");
  const u16 slot = static_cast<u16>(bep_atoiEx(argv[1]));
  if (slot == 9 || slot == 10) {
    vty_out(vty, "\r\n invalid slot No.: %d. \r\n", slot);
    return -1;
  }
  const int result = erases ? nerase_voiceport(slot) : ndistrib_voiceport(slot);
  vty_out(vty, "\r\n %s slot %d voice port configuration %s. \r\n", argv[0], slot,
          result == 0 ? "successfully" : "failed");
  if (result == 0) reportChange(slot, voicePorts.id, 3);
  return result;
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show voice port configuration interface <ifStr>", cli_show_voice_port_config_func,
            "subscriber, profiles and credentials of POTS ports"),
    command(CONFIG_NODE,
            "set voice port dsp profile [id|name] <dspProfileIDorName> {call profile [id|name] <callProfileIDorName>}*1 "
            "interface <ifStr>",
            cli_set_voice_port_protocol_profile_config_func, "profiles of POTS ports"),
    command(CONFIG_NODE,
            "set voice port user name <userNamePrefix> start <userNameStart> step <userNameStep> interface <ifStr>",
            cli_set_voice_port_user_name_func, "user names of POTS ports, a prefix and a number that is counted up"),
    command(CONFIG_NODE, "set voice port telephone number <startNumber> step <numberStep> interface <ifStr>",
            cli_set_voice_port_telephone_number_func, "telephone numbers of POTS ports, counted up"),
    command(CONFIG_NODE,
            "set voice port sip authentication user <authUserName> {password <authPassword>}*1 interface <ifStr>",
            cli_set_voice_port_authentication_config_func, "credentials of POTS ports"),
    command(CONFIG_NODE, "[distribute|erase] voice port configuration slot <slotNo>",
            cli_distribute_erase_voice_port_config_func, "configuration of a slot's POTS ports"),
};
// clang-format on
void ninstall_voiceportcfg_cmdline() {
  install_offers("telephone", offerPortNumbers, nullptr);
  installCommands(commands);
}
