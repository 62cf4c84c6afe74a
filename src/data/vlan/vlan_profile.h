#pragma once
// VLAN profiles: named templates of a port's VLAN treatment, an optional outer tag (TLS) and up to 16 services.
// Attaching copies a profile into the port's own table (port_vlan.h). Profiles live in memory alone; operators make
// them.
//
// Profile 0, defVlanPrf, exists for commands only while the startup configuration is executed: the running
// configuration prints a port's row as the commands that fill profile 0, and an attach that empties it again.

#include "common/words.h"
#include "platform/command_line.h"
#include "platform/types.h"

inline constexpr u16 kVlanProfiles = 1024;  // of operators
inline constexpr u16 kVlanServices = 16;    // of a profile, of a row, and of a whole port
inline constexpr u32 kVlanName = 20;        // characters; a name of 20 is without a terminator
inline constexpr u16 kMinVid = 1, kMaxVid = 4085;
inline constexpr u16 kMaxCos = 7;
inline constexpr u16 kNoTag = 65535;         // a vid of all, a cos of none, a value that is not in use
inline constexpr u16 kDefaultTpid = 0x8100;  // also printed as decimal, 33024

enum ServiceType : u8 { kUnicast = 0, kMulticast = 1 };
enum VlanMode : u16 { kTag = 1, kTranslation = 2, kTransparent = 3 };
enum EntryState : u8 { kFree = 0, kInUse = 2 };
inline constexpr Word kServiceTypeWords[] = {{"unicast", kUnicast}, {"multicast", kMulticast}};
inline constexpr Word kVlanModeWords[] = {{"tag", kTag}, {"translation", kTranslation}, {"transparent", kTransparent}};

// What a service does with a stream. Stored and copied whole, so the gaps have names.
struct VlanService {
  u8 serviceType = kUnicast;
  u8 gap1 = 0;
  u16 vlanMode = 0;
  i16 cvlanRuleId = 0;  // flow rule; 0 the default rule
  u16 cvlanTpid = 0;
  u16 cvlanVid = 0;  // kNoTag: all
  u16 cvlanCos = 0;  // kNoTag: none
  u16 transTpid = 0;
  u16 transVid = 0;
  u16 transCos = 0;
  u8 qinqEnable = 0;
  u8 gap2 = 0;
  u16 qinqRuleId = 0;
  u16 qinqTpid = 0;
  u16 qinqVid = 0;
  u16 qinqCos = 0;
  u8 entryState = kFree;
  u8 gap3 = 0;
  u16 reserved = 0;
};
static_assert(sizeof(VlanService) == 32);

// A profile's content, and a row of a port's table.
struct VlanItem {
  u16 pvcIndex = 0;  // of a port's row; in a profile, where it was attached last
  u8 tlsEnable = 0;
  u8 gap1 = 0;
  u16 tlsTpid = kDefaultTpid;
  u16 tlsVid = 0;
  u16 tlsCos = 0;
  u8 tlsCosCopy = 1;
  u8 gap2 = 0;
  u16 serviceNum = 0;
  VlanService services[kVlanServices];
};
static_assert(sizeof(VlanItem) == 14 + 32 * kVlanServices);

struct VlanProfile {
  u8 valid = 0;
  u16 id = 0;
  char name[kVlanName] = {};
  VlanItem item;
};

extern VlanProfile* gPortVlanPrf;  // 1025, by id; null if there was no memory for them
extern u16 gCurrentVlanPrfId;      // the profile that the commands edit, one for all terminals; 0 none

void init_port_vlan_cfg_module();  // without memory: a log line
void cfg_def_vlan_profile();
void init_port_vlan_profile(u16 id);  // empties a profile
int vlan_profile_is_valid(u16 id);    // 1 or 0; profile 0 counts during recovery alone
int find_vlan_prf_id_by_name(const char* name, u16* id);
// A port's row with nothing configured.
void init_vlan_item(VlanItem* item, u16 pvcIndex);
void leaveTranslation(VlanService* service);  // the values of a service that does not translate
void leaveQinq(VlanService* service);         // and of one without an outer tag

bool tooLong(const char* name);  // for the name of a profile or rule

// The lines of a service, and what stands above the services of a profile or of a port's row.
void show_vlan_profile_service(Vty* vty, const VlanService& service, u16 number);
void showVlanHead(Vty* vty, const VlanItem& item);

// The profile that the commands edit; null, told, without one.
VlanProfile* currentProfile(Vty* vty);

// Each installs its part of the commands.
void installVlanProfileCommands();
void installVlanServiceCommands();
void installVlanProfileShow();
