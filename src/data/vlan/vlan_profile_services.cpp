// The six commands that add a service to the profile that is edited.

#include <algorithm>
#include <string_view>

#include "common/commands.h"
#include "data/common/terminal.h"
#include "data/vlan/vlan_profile.h"
#include "platform/flow_store.h"
#include "platform/wrappers.h"

// --- Values. Each reader takes a word; 0, or -1 with a line ---

static bool isDigit(char c) { return c >= '0' && c <= '9'; }

static int readVid(Vty* vty, const char* text, u16* vid) {
  *vid = cutNumber(text);
  return *vid >= kMinVid && *vid <= kMaxVid ? 0 : refuse(vty, "Invalid cvlan id %d.\r\n", *vid);
}

static int readTagVid(Vty* vty, const char* text, u16* vid) {
  *vid = cutNumber(text);
  if (*vid >= kMinVid && *vid <= kMaxVid) return 0;
  return refuse(vty, "Invalid cvlan id %d. vid scope %d-%d\r\n", *vid, kMinVid, kMaxVid);
}

static int readVidOrAll(Vty* vty, const char* text, u16* vid) {
  *vid = kNoTag;
  if (bep_StrCmp(text, "all") == 0) return 0;
  const std::string_view word = text;
  const auto strange = std::ranges::find_if_not(word, isDigit);
  if (strange != word.end()) {
    return refuse(vty, "Invalid vlan id %c, please input 0-4085 or all.\r\n", *strange);
  }
  *vid = cutNumber(text);
  return *vid >= kMinVid && *vid <= kMaxVid ? 0 : refuse(vty, "Invalid vlan id %d.\r\n", *vid);
}

static int readCos(Vty* vty, const char* text, u16* cos) {
  *cos = cutNumber(text);
  return *cos <= kMaxCos ? 0 : refuse(vty, "Invalid cvlan cos %d.\r\n", *cos);
}

// A cos or "null".
static int readChoice(Vty* vty, const char* text, u16* cos, Text<const char*> noNumber, Text<u16> tooHigh) {
  *cos = kNoTag;
  if (bep_StrCmp(text, "null") == 0) return 0;
  if (!std::ranges::all_of(std::string_view(text), isDigit)) {
    vty_out(vty, noNumber.format, text);
    return -1;
  }
  *cos = cutNumber(text);
  if (*cos <= kMaxCos) return 0;
  vty_out(vty, tooHigh.format, *cos);
  return -1;
}

static int readCosOrNull(Vty* vty, const char* text, u16* cos) {
  return readChoice(vty, text, cos, "Invalid cvlan cos %s, please input 0-7 or null.\r\n", "Invalid cvlan cos %d.\r\n");
}

// The same; what it says leaves "null" out.
static int readMulticastCos(Vty* vty, const char* text, u16* cos) {
  return readChoice(vty, text, cos, "Invalid cvlan cos %s, please input 0-7.\r\n", "Invalid cvlan cos %d.\r\n");
}

static int readRule(Vty* vty, const char* name, int* id) {
  *id = 0;
  if (tooLong(name)) return refuse(vty, "Rule name %.20s is too long.\r\n", name);
  if (bep_StrCmp(name, "null") == 0) return 0;
  *id = flowRuleGetIdByName(name);
  return *id >= 0 ? 0 : refuse(vty, "Rule %.20s is not exist.\r\n", name);
}

// tpid, vid and cos behind "outvlan".
static int readOutvlan(Vty* vty, char** words, VlanService* service) {
  service->transTpid = cutNumber(words[0]);
  service->transVid = cutNumber(words[1]);
  if (service->transVid < kMinVid || service->transVid > kMaxVid) {
    return refuse(vty, "Invalid outvlan id %d.\r\n", service->transVid);
  }
  return readChoice(vty, words[2], &service->transCos, "Invalid outvlan cos %s, please input 0-7 or null.\r\n",
                    "Invalid outvlan cos %d.\r\n");
}

// tpid, vid, cos and rule behind "qinq".
static int readQinq(Vty* vty, char** words, VlanService* service) {
  service->qinqEnable = 1;
  service->qinqTpid = cutNumber(words[0]);
  service->qinqVid = cutNumber(words[1]);
  if (service->qinqVid < kMinVid || service->qinqVid > kMaxVid) {
    return refuse(vty, "Invalid qinq vlan id %d.\r\n", service->qinqVid);
  }
  service->qinqCos = cutNumber(words[2]);
  if (service->qinqCos > kMaxCos) return refuse(vty, "Invalid qinq cos %d.\r\n", service->qinqCos);
  int rule = 0;
  if (readRule(vty, words[3], &rule) != 0) return -1;
  service->qinqRuleId = static_cast<u16>(rule);
  return 0;
}

// --- The road ---

using ReadValue = int(Vty* vty, const char* text, u16* value);

// How the commands differ.
struct AddForm {
  ServiceType type;
  VlanMode mode;
  ReadValue* readVid;
  ReadValue* readCos;

  bool translates() const { return mode == kTranslation; }
  int words() const { return translates() ? 7 : 4; }  // without an outer tag, which has four more
};

// In the order of the words: tpid, vid, cos, those behind "outvlan", rule, those behind "qinq".
static int readService(Vty* vty, const AddForm& form, int argc, char** argv, VlanService* service) {
  service->serviceType = form.type;
  service->vlanMode = form.mode;
  service->entryState = kInUse;
  service->cvlanTpid = cutNumber(argv[0]);
  leaveTranslation(service);
  leaveQinq(service);
  if (form.readVid(vty, argv[1], &service->cvlanVid) != 0 || form.readCos(vty, argv[2], &service->cvlanCos) != 0) {
    return -1;
  }
  if (form.translates() && readOutvlan(vty, argv + 3, service) != 0) return -1;
  int rule = 0;
  if (readRule(vty, argv[form.words() - 1], &rule) != 0) return -1;
  service->cvlanRuleId = static_cast<i16>(rule);
  return argc == form.words() ? 0 : readQinq(vty, argv + form.words(), service);
}

static bool isUnicastTag(const VlanService& service) {
  return service.serviceType == kUnicast && service.vlanMode == kTag;
}

// One for each profile; profile 0 takes a port's row back as it was, whatever a manager has put into it.
static bool hasItsUnicastTag(const VlanProfile& profile) {
  const VlanItem& item = profile.item;
  return profile.id != 0 && std::any_of(item.services, item.services + item.serviceNum, isUnicastTag);
}

static int addService(Vty* vty, const AddForm& form, int argc, char** argv) {
  if (argc != form.words() && argc != form.words() + 4) return refuse(vty, "Unknown command.\r\n");
  VlanProfile* profile = currentProfile(vty);
  if (profile == nullptr) return -1;
  VlanItem& item = profile->item;
  if (item.serviceNum >= kVlanServices) {
    vty_out(vty, "Vlan profile %.20s(id:%d) already has %d service, can't add more.\r\n", profile->name, profile->id,
            item.serviceNum);
    return -1;
  }
  if (form.type == kUnicast && form.mode == kTag && hasItsUnicastTag(*profile)) {
    return refuse(vty, "can not add more unicast tag service\r\n");
  }
  VlanService service;
  if (readService(vty, form, argc, argv, &service) != 0) return -1;
  item.services[item.serviceNum++] = service;
  vty_out(vty, "Vlan profile %.20s(id:%d) add service(id:%d) success.\r\n", profile->name, profile->id,
          item.serviceNum);
  return 0;
}

// --- The commands ---

// clang-format off
static constexpr AddForm unicastTag           = {kUnicast,   kTag,         readTagVid,   readCos};
static constexpr AddForm unicastTransparent   = {kUnicast,   kTransparent, readVidOrAll, readCosOrNull};
static constexpr AddForm unicastTranslation   = {kUnicast,   kTranslation, readVid,      readCosOrNull};
static constexpr AddForm multicastTag         = {kMulticast, kTag,         readVidOrAll, readMulticastCos};
static constexpr AddForm multicastTransparent = {kMulticast, kTransparent, readVidOrAll, readCosOrNull};
static constexpr AddForm multicastTranslation = {kMulticast, kTranslation, readVid,      readCosOrNull};
// clang-format on

static int cli_add_unicast_tag_vlan_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return addService(vty, unicastTag, argc, argv);
}
static int cli_add_unicast_transparent_vlan_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return addService(vty, unicastTransparent, argc, argv);
}
static int cli_add_unicast_translation_vlan_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return addService(vty, unicastTranslation, argc, argv);
}
static int cli_add_multicast_tag_vlan_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return addService(vty, multicastTag, argc, argv);
}
static int cli_add_multicast_transparent_vlan_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return addService(vty, multicastTransparent, argc, argv);
}
static int cli_add_multicast_translation_vlan_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return addService(vty, multicastTranslation, argc, argv);
}

#define QINQ " {qinq tpid <tpid> vid <vid> cos <cos> rule [<name>|null]}*1"
static constexpr const char* kHelp = "add a service to the VLAN profile that is edited";
static constexpr Command commands[] = {
    command(CONFIG_NODE, "add unicast tag cvlan tpid <tpid> vid <vid> cos <cos> rule [<name>|null]" QINQ,
            cli_add_unicast_tag_vlan_func, kHelp),
    command(CONFIG_NODE,
            "add unicast transparent cvlan tpid <tpid> vid [<vid>|all] cos [<cos>|null] rule [<name>|null]" QINQ,
            cli_add_unicast_transparent_vlan_func, kHelp),
    command(CONFIG_NODE,
            "add unicast translation cvlan tpid <tpid> vid <vid> cos [<cos>|null] "
            "outvlan tpid <tpid> vid <vid> cos [<cos>|null] rule [<name>|null]" QINQ,
            cli_add_unicast_translation_vlan_func, kHelp),
    command(CONFIG_NODE, "add multicast tag cvlan tpid <tpid> vid [<cvid>|all] cos <cos> rule [<name>|null]" QINQ,
            cli_add_multicast_tag_vlan_func, kHelp),
    command(CONFIG_NODE,
            "add multicast transparent cvlan tpid <tpid> vid [<vid>|all] cos [<cos>|null] rule [<name>|null]" QINQ,
            cli_add_multicast_transparent_vlan_func, kHelp),
    command(CONFIG_NODE,
            "add multicast translation cvlan tpid <tpid> vid <vid> cos [<cos>|null] "
            "outvlan tpid <tpid> vid <vid> cos [<cos>|null] rule [<name>|null]" QINQ,
            cli_add_multicast_translation_vlan_func, kHelp),
};
#undef QINQ

void installVlanServiceCommands() { installCommands(commands); }
