#include "data/vlan/vlan_profile.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "common/commands.h"
#include "common/msan_init.h"
#include "data/common/terminal.h"
#include "platform/log.h"
#include "platform/pool.h"
#include "platform/wrappers.h"

VlanProfile* gPortVlanPrf = nullptr;
u16 gCurrentVlanPrfId = 0;

static constexpr const char* kDefaultName = "defVlanPrf";

// --- The table ---

void init_port_vlan_cfg_module() {
  const u32 size = (kVlanProfiles + 1) * sizeof(VlanProfile);
  void* memory = mpuAlloc_(g_MsanMemPoolId, size, __FILE__, __LINE__);
  if (memory == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "\r\n %s, %d, malloc for gPortVlanPrf fail!. \r\n", __func__, __LINE__);
    return;
  }
  std::memset(memory, 0, size);
  gPortVlanPrf = static_cast<VlanProfile*>(memory);
  cfg_def_vlan_profile();
}

void cfg_def_vlan_profile() {
  VlanProfile& profile = gPortVlanPrf[0];
  profile.valid = 1;
  profile.id = 0;
  bep_StrNCpy(profile.name, kDefaultName, kVlanName);
  init_port_vlan_profile(0);
}

// Profile 0 is emptied outside recovery too, so what counts is the entry.
void init_port_vlan_profile(u16 id) {
  if (gPortVlanPrf == nullptr || id > kVlanProfiles || gPortVlanPrf[id].valid != 1) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s profile %d is not exist.\r\n", __func__, id);
    return;
  }
  gPortVlanPrf[id].item = VlanItem{};
}

int vlan_profile_is_valid(u16 id) {
  if (gPortVlanPrf == nullptr || id > kVlanProfiles || gPortVlanPrf[id].valid != 1) return 0;
  return id != 0 || inRecoverConfProcess() == 1 ? 1 : 0;
}

static bool isNamed(const VlanProfile& profile, const char* name) {
  return bep_StrNCmp(profile.name, name, kVlanName) == 0;
}

int find_vlan_prf_id_by_name(const char* name, u16* id) {
  for (u16 at = 0; at <= kVlanProfiles; ++at) {
    if (vlan_profile_is_valid(at) == 0 || !isNamed(gPortVlanPrf[at], name)) continue;
    *id = at;
    return 0;
  }
  return -1;
}

void leaveTranslation(VlanService* service) {
  service->transTpid = kDefaultTpid;
  service->transVid = kNoTag;
  service->transCos = kNoTag;
}

void leaveQinq(VlanService* service) {
  service->qinqEnable = 0;
  service->qinqRuleId = 0;
  service->qinqTpid = kDefaultTpid;
  service->qinqVid = kNoTag;
  service->qinqCos = kNoTag;
}

void init_vlan_item(VlanItem* item, u16 pvcIndex) {
  *item = VlanItem{};
  item->pvcIndex = pvcIndex;
  VlanService free;
  free.vlanMode = kTransparent;
  free.cvlanTpid = kDefaultTpid;
  free.cvlanVid = kNoTag;
  free.cvlanCos = kNoTag;
  leaveTranslation(&free);
  leaveQinq(&free);
  std::ranges::fill(item->services, free);
}

bool tooLong(const char* name) { return bep_StrLen(name) > kVlanName; }

VlanProfile* currentProfile(Vty* vty) {
  if (vlan_profile_is_valid(gCurrentVlanPrfId) == 1) return &gPortVlanPrf[gCurrentVlanPrfId];
  vty_out(vty, "Please enter a valid vlan profile first.\r\n");
  return nullptr;
}

// --- Commands ---

// The profile of an operator that is called so; null if there is none.
static VlanProfile* findOperators(const char* name) {
  if (gPortVlanPrf == nullptr) return nullptr;
  const std::span all(gPortVlanPrf + 1, kVlanProfiles);
  const auto found = std::ranges::find_if(all, [&](const VlanProfile& p) { return p.valid == 1 && isNamed(p, name); });
  return found != all.end() ? &*found : nullptr;
}

static VlanProfile* findFree() {
  if (gPortVlanPrf == nullptr) return nullptr;
  const std::span all(gPortVlanPrf + 1, kVlanProfiles);
  const auto found = std::ranges::find(all, 0, &VlanProfile::valid);
  return found != all.end() ? &*found : nullptr;
}

static bool isDefaultName(const char* name) { return bep_StrCmp(name, kDefaultName) == 0; }

static int create(Vty* vty, const char* name) {
  if (tooLong(name)) return refuse(vty, "Rule name's length is too long.\r\n");
  if (isDefaultName(name)) return refuse(vty, "Can't use system default vlan profile name.\r\n");
  if (findOperators(name) != nullptr) return refuse(vty, "Profile name has been used, please change a name.\r\n");
  VlanProfile* profile = findFree();
  if (profile == nullptr) return refuse(vty, "Can't find empty space.\r\n");
  profile->id = static_cast<u16>(profile - gPortVlanPrf);
  bep_StrNCpy(profile->name, name, kVlanName);
  profile->valid = 1;
  gCurrentVlanPrfId = profile->id;
  init_port_vlan_profile(profile->id);
  vty_out(vty, "Create vlan profile %.20s(id:%d) success.\r\n", profile->name, profile->id);
  return 0;
}

static int destroy(Vty* vty, const char* name) {
  VlanProfile* profile = findOperators(name);
  if (profile == nullptr) return refuse(vty, "vlan profile %.20s is not exist.\r\n", name);
  const u16 id = profile->id;
  if (gCurrentVlanPrfId == id) gCurrentVlanPrfId = 0;
  std::memset(static_cast<void*>(profile), 0, sizeof *profile);
  vty_out(vty, "vlan profile %.20s(id:%d) has been destroyed.\r\n", name, id);
  return 0;
}

static CommandHandler cli_create_vlan_prf_func;
int cli_create_vlan_prf_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc == 2 && bep_StrCmp(argv[0], "create") == 0) return create(vty, argv[1]);
  if (argc == 2 && bep_StrCmp(argv[0], "destroy") == 0) return destroy(vty, argv[1]);
  return refuse(vty, "Unknown command.\r\n");
}

static CommandHandler cli_enter_vlan_prf_func;
int cli_enter_vlan_prf_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "Unknown command.\r\n");
  const char* name = argv[0];
  if (tooLong(name)) return refuse(vty, "vlan profile name's length is too long.\r\n");
  if (isDefaultName(name)) return refuse(vty, "Can't enter system default vlan profile name.\r\n");
  const VlanProfile* profile = findOperators(name);
  if (profile == nullptr) return refuse(vty, "Vlan profile %.20s is not exist.\r\n", name);
  gCurrentVlanPrfId = profile->id;
  vty_out(vty, "Enter vlan profile %20.20s(id:%d).\r\n", profile->name, profile->id);
  return 0;
}

// The words behind "enable": tpid, vid, cos, and whether the inner cos is copied.
static int readTls(Vty* vty, VlanItem& item, char** argv) {
  const u16 vid = cutNumber(argv[2]);
  const u16 cos = cutNumber(argv[3]);
  if (vid < kMinVid || vid > kMaxVid) return refuse(vty, "Invalid vlan id %d.\r\n", vid);
  if (cos > kMaxCos) return refuse(vty, "Invalid cos %d.\r\n", cos);
  const auto copy = valueOf(kSwitchWords, argv[4]);
  if (!copy) return refuse(vty, "Unknown command.\r\n");
  item.tlsEnable = 1;
  item.tlsTpid = cutNumber(argv[1]);
  item.tlsVid = vid;
  item.tlsCos = cos;
  item.tlsCosCopy = static_cast<u8>(*copy);
  return 0;
}

static int enableTls(Vty* vty, VlanItem& item, int argc, char** argv) {
  const std::span services(item.services, item.serviceNum);
  if (std::ranges::any_of(services, [](const VlanService& s) { return s.vlanMode != kTranslation; })) {
    return refuse(vty, "there is non-translation service in the profile, can not enable tls\r\n");
  }
  if (argc == 1) return refuse(vty, "Incomplete command, please input tls paremeters.\r\n");
  return readTls(vty, item, argv);
}

static void disableTls(VlanItem& item) {
  const VlanItem plain;
  item.tlsEnable = plain.tlsEnable;
  item.tlsTpid = plain.tlsTpid;
  item.tlsVid = plain.tlsVid;
  item.tlsCos = plain.tlsCos;
  item.tlsCosCopy = plain.tlsCosCopy;
}

static CommandHandler cli_set_tls_func;
int cli_set_tls_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1 && argc != 5) return refuse(vty, "unknown command\r\n");
  VlanProfile* profile = currentProfile(vty);
  if (profile == nullptr) return -1;
  const auto enable = valueOf(kSwitchWords, argv[0]);
  if (!enable) return refuse(vty, "Unknown command.\r\n");
  if (*enable == 0) {
    disableTls(profile->item);
  } else if (enableTls(vty, profile->item, argc, argv) != 0) {
    return -1;
  }
  vty_out(vty, "Vlan Profile %.20s(id:%d) set tls success.\r\n", profile->name, profile->id);
  return 0;
}

static CommandHandler cli_delete_vlan_service_func;
int cli_delete_vlan_service_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2) return refuse(vty, "Unknown command.\r\n");
  const char* name = argv[0];
  const u16 service = cutNumber(argv[1]);
  if (tooLong(name)) return refuse(vty, "Profile name %.20s is too long.\r\n", name);
  if (isDefaultName(name)) return refuse(vty, "Can't delete system default vlan profile name.\r\n");
  VlanProfile* profile = findOperators(name);
  if (profile == nullptr) return refuse(vty, "Profile %.20s is not exist.\r\n", name);
  VlanItem& item = profile->item;
  if (service < 1 || service > kVlanServices) {
    return refuse(vty, "ServiceId %d invalid.valid scope:%d-%d\r\n", service, 1, kVlanServices);
  }
  if (service > item.serviceNum) return refuse(vty, "Invalid service index %d.\r\n", service);
  std::copy(item.services + service, item.services + item.serviceNum, item.services + service - 1);
  item.services[--item.serviceNum] = VlanService{};
  vty_out(vty, "Vlan profile %.20s(id:%d) delete service(id:%d) success.\r\n", profile->name, profile->id, service);
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "[create|destroy] vlan profile <name>", cli_create_vlan_prf_func,
            "make a VLAN profile and edit it, or remove it"),
    command(CONFIG_NODE, "enter vlan profile <name>", cli_enter_vlan_prf_func, "edit a VLAN profile"),
    command(CONFIG_NODE,
            "set tls [enable|disable] {tpid [<tpid>] vid [<vid>] cos [<cos>] copy-inner-cos [enable|disable]}*1",
            cli_set_tls_func, "outer tag of the VLAN profile that is edited"),
    command(CONFIG_NODE, "delete vlan service profile <name> service <serviceid>", cli_delete_vlan_service_func,
            "take a service out of a VLAN profile"),
};

static void offerProfiles(const void*, CommandOffers* to) {
  for (u16 id = 1; gPortVlanPrf != nullptr && id <= kVlanProfiles; ++id) {
    const VlanProfile& profile = gPortVlanPrf[id];
    if (profile.valid == 1) offer_to_cli(to, id, profile.name, static_cast<u32>(strnlen(profile.name, kVlanName)));
  }
}

void installVlanProfileCommands() {
  install_offers("vlan", offerProfiles, nullptr);
  installCommands(commands);
}
