#pragma once
// Which rate-limit profile a data port is bound to; 0, the default, is unbound. A card gets the profile's values, not
// its id.

#include "common/msan_obj.h"
#include "data/common/data_item.h"
#include "data/rate/port_rate_profile.h"

// The value of the attribute, of which the profile alone is stored.
struct PortRateBindRecord {
  u16 slot = 0;
  u16 port = 0;
  u8 reserved[16] = {};
  u16 prfId = 0;
  u8 reserved2[32] = {};
};
static_assert(sizeof(PortRateBindRecord) == 54);

// A record of a work list.
struct PortRateBinding {
  ObjIndex object;
  PortRateBindRecord value;
};

extern const DataItem portRateBind;

// A copy of a record behind the others. 0 or kNoMemory.
int addCopy(const PortRateBinding& record, LIST* records);

void recover_port_rate_limit_attach_cfg(u16 slot);

// Sends a profile whose values have changed to all ports that are bound to it.
void updata_port_rate_limit_prf_bind(u16 id);
// Whether a port is bound to it. 0; kRateId for an id that can't be; -1, or kNoMemory, for ports that can't be read.
int port_rate_profile_is_bind(u16 id, bool* bound);

enum RateDirection : int { kRateUpstream = 0, kRateDownstream = 1 };
// The rate of the profile that a port is bound to, 64 where it does not limit the direction. 0, -9 for a direction that
// there is not, or another negative code.
int get_port_rate_limit_info(u16 slot, u16 port, int direction, u32* rate);

// Attribute 275. 0; kRateNull for a null value, -9 for another length, -900 for the database.
int set_port_rate_limit_prf_attach_dbapi(u32 objectId, const void* value, u32 offset, u32 length);
int get_port_rate_limit_prf_attach_dbapi(u32 objectId, void* value, u32 offset, u32 length);
int del_port_rate_limit_prf_attach_dbapi(u32 objectId);  // -900 for a port without a row, too
