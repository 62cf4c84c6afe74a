#pragma once
// The VLAN table of a data port: a row for each PVC, or one row for a port without PVCs. Kept here, told to the card in
// the port's slot, printed as the commands that fill it again.

#include <algorithm>
#include <cstddef>

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "data/common/data_item.h"
#include "data/port_rows.h"
#include "data/vlan/vlan_profile.h"
#include "platform/lists.h"

// The value of the attribute.
struct PortVlanTable {
  u16 pvcNum = 0;  // rows that count, 1 to 8
  VlanItem rows[kPvcRows];
};
static_assert(sizeof(PortVlanTable) == 4210);

// A record of a work list.
struct PortVlanRecord {
  ObjIndex object;
  PortVlanTable table;
};

inline constexpr u16 kVlanMessage = 2846;

enum PortVlanError : int {
  kServiceCount = -102,  // of a row or a port; also, without details: no data card
  kServiceType = -103,
  kCvlanRule = -105,
  kQinqRule = -106,
  kQinqVid = -107,
  kQinqCos = -108,
  kTlsVid = -109,
  kTlsCos = -110,
  kCvlanVid = -112,
  kCvlanCos = -113,
  kTransVid = -114,
  kTransCos = -115,
  kUnicastTags = -116,       // more than one with the default rule
  kMulticastPvcs = -117,     // more than one
  kTransparentAlone = -118,  // one for all vids shares its row
  kPvcIndex = -120,
};

extern const DataItem portVlan;

// The steps that are its own. 0 or -1, with `err` filled where one is given.
int check_port_vlan_cfg(PortVlanRecord* record,
                        SnmpErrInfo* err);  // sets row count and PVC indexes as the port has them
void showrunPortVlan(Vty* vty, const PortVlanRecord* record);
void recover_port_vlan_cfg(u16 slot);

void install_port_vlan_cfg_cli_element();

inline bool isInUse(const VlanService& service) { return service.entryState == kInUse; }
inline u16 servicesInUse(const VlanItem& row) { return static_cast<u16>(std::ranges::count_if(row.services, isInUse)); }

// Attribute 272; its value moves as a whole. 0; -24 for a null value, -33 for a part, -900 for a connection, start or
// commit that failed, -1 for any other failure. A port without rows reads as one with nothing configured.
int set_port_vlan_cfg_db_api(u32 objectId, const void* value, u32 offset, u32 length);
int get_port_vlan_cfg_db_api(u32 objectId, void* value, u32 offset, u32 length);
int del_port_vlan_cfg_db_api(u32 objectId);
