#pragma once
// Whether the ports of a card are kept from reaching one another: one switch for each card, which is on unless it was
// turned off.

#include "common/msan_obj.h"
#include "data/common/data_item.h"

// A record of a work list; the byte is the value of the attribute.
struct PortIsolateRecord {
  ObjIndex object;
  u8 isolation_enable = 1;
};

extern const DataItem portIsolation;

void hotplug_port_isolation(u16 slot);

// Attribute 274. 0; -24 for a null value, -9 for a part, -900 for a connection, start or commit that failed, -1 for any
// other failure.
int set_port_isolation_dbapi(u32 objectId, const void* value, u32 offset, u32 length);
int get_port_isolation_dbapi(u32 objectId, void* value, u32 offset, u32 length);
int del_port_isolation_dbapi(u32 objectId);  // -900 for a slot without a row, too
