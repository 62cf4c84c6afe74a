#pragma once
// A list of POTS ports in a request, each with a unit: its location, and what is to be done at the port. Nothing of it
// is stored. In memory a port is a DataNode; its data is the item's record.

#include "common/msan_snmp.h"
#include "common/record.h"
#include "common/wire.h"
#include "platform/lists.h"
#include "voice/common/voice_obj.h"
#include "voice/common/voice_packets.h"

struct PortUnits {
  u16 id;                         // of the message, for the check of the ports
  const Record* shape = nullptr;  // behind the location; null: 64 reserved bytes
  u32 bytes = 2;                  // of a port's record in memory
  u32 attribute = 0;              // under which the records are stored
  u32 location = kLocation;       // bytes of it in a manager's request
  u32 maximum = 960;              // ports of a manager's request
  u32 slack = 0;                  // zeros for each port, behind all units of a message to the NGN side
  u16 kind = kPotsCardKind;       // in the check of the ports
  int (*valid)(u16 id, u16 kind, u16 slot, u16 port, SnmpErrInfo* err) = nIsOBJMValid;
  int (*check)(const void* record, SnmpErrInfo* err) = nullptr;  // of a port's record; null: its fields' ranges
  int (*checkList)(LIST* list, SnmpErrInfo* err) = nullptr;      // behind the check of each port

  constexpr u32 body() const { return shape != nullptr ? shape->unit : 64; }
  constexpr u32 unit() const { return location + body(); }
};

// The frame behind the envelope, and what the list of its ports becomes. 0 or -1; a bad frame fills `err`.
int checkPortsFrame(const PortUnits& units, const u8* data, i32 length, WireIn& area, SnmpErrInfo* err);
int parsePorts(const PortUnits& units, WireIn area, LIST* list);
// Each port, then its record; the list at last. 0, or -1 with `err` filled.
int checkPorts(const PortUnits& units, LIST* list, SnmpErrInfo* err);
// A u32 count and the units, with locations of 20 bytes; reserved bytes are left as they are. 0 or -1.
int encodePorts(const PortUnits& units, LIST* list, Writer& out);

// A message to the NGN side with all of the list. 0, or the code of the step that failed; a send that fails shows in
// the trace alone.
u16 sendPorts(const PortUnits& units, LIST* list);
// The same from bytes that stand as the message has them.
u16 sendPortBytes(const PortUnits& units, const u8* payload, u32 length);

// Where a record's text stands that no two ports may share, over all its bytes.
struct UniqueText {
  u32 at;
  u32 width;
  bool emptyCounts;
};
// The first node whose text a later one has again; null if none.
const DataNode* firstTwice(LIST* list, UniqueText text);

// A GET: the ports that are named, widened, or all POTS ports of the node for a count of 0; `read` fills the records of
// those that are named, of so many bytes. Of more than kMostAnswered ports none is told. 0, or the answered failure.
inline constexpr u32 kMostAnswered = 1024;
int snmpGetPorts(const PortUnits& units, const SnmpCall& call, u32 bytes, int (*read)(LIST* list),
                 Where where = Where::here());
