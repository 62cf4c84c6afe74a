#pragma once
// A list of POTS ports in a request, each with a unit: its location, and what is to be done at the port. Nothing of it
// is stored. In memory a port is a DataNode; its data is the item's record.

#include "common/msan_snmp.h"
#include "common/record.h"
#include "common/wire.h"
#include "platform/lists.h"
#include "voice/common/voice_obj.h"

struct PortUnits {
  u16 id;                         // of the message, for the check of the ports
  const Record* shape = nullptr;  // behind the location; null: 64 reserved bytes
  u32 bytes = 2;                  // of a port's record in memory
  u32 location = kLocation;       // bytes of it in a manager's request
  int (*valid)(u16 id, u16 kind, u16 slot, u16 port, SnmpErrInfo* err) = nIsOBJMValid;
  int (*check)(const void* record, SnmpErrInfo* err) = nullptr;  // of a port's record; null: its fields' ranges
  int (*checkList)(LIST* list, SnmpErrInfo* err) = nullptr;      // behind the check of each port

  constexpr u32 body() const { return shape != nullptr ? shape->unit : 64; }
  constexpr u32 unit() const { return location + body(); }
};

inline constexpr u32 kMostPorts = 960;  // of a manager's request

// The frame behind the envelope, and what the list of its ports becomes. 0 or -1; a bad frame fills `err`.
int checkPortsFrame(const PortUnits& units, const u8* data, i32 length, WireIn& area, SnmpErrInfo* err, Where where);
int parsePorts(const PortUnits& units, WireIn area, LIST* list);
// Each port, then its record; the list at last. 0, or -1 with `err` filled.
int checkPorts(const PortUnits& units, LIST* list, SnmpErrInfo* err);
// A u32 count and the units, with locations of 20 bytes; reserved bytes are left as they are. 0 or -1.
int encodePorts(const PortUnits& units, LIST* list, Writer& out);
