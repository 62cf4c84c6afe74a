#pragma once
// How many addresses a data port, or each PVC of it, may learn.

#include "common/msan_obj.h"
#include "data/common/data_item.h"
#include "data/port_rows.h"

struct MacLimitRow {
  u16 pvcIndex = 0;  // the row's number; kNoPvc in a command without a PVC
  u8 enable = 0;
  u8 gap = 0;
  u16 number = 16;
};

// The value of the attribute.
struct MacLimitRecord {
  u16 pvcNum = kPvcRows;  // rows that count
  MacLimitRow rows[kPvcRows];
};
static_assert(sizeof(MacLimitRecord) == 50);

// A record of a work list.
struct PortMacLimit {
  ObjIndex object;
  MacLimitRecord value;
};

extern const DataItem macLimit;

void recover_macnum_limit_cfg(u16 slot);
void delete_macnum_limit_cfg(u16 slot);  // of a data card: all rows of its ports, those of another card as well

// Attribute 278; its value moves as a whole, a row by its place in it. 0; -24 for a null value, -33 for a part, -32 for
// more than eight rows, -900 for a connection, start or commit that failed, -1 for any other failure.
int set_mac_limit_cfg_dbapi(u32 objectId, const void* value, u32 offset, u32 length);
int get_mac_limit_cfg_dbapi(u32 objectId, void* value, u32 offset, u32 length);
void delete_mac_limit_cfg_dbapi(u32 objectId, u16 row);  // one that is not there is fine
