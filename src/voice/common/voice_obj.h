#pragma once
// What is stored for POTS ports (OBJM data): from the locations of a request to lists of ports, their check, and the
// way to the attribute store and back.
//
// There are two sets of the same operations. The v set serves the older POTS items, whose records begin with their
// location; the n set serves the voice services, whose location stands in the list's nodes alone. Lists are of
// DataNodes: slot and port are the location, msgId the attribute, data the record. Operations return 0 or -1 and trace
// a failure; a list that a failure leaves half made is its caller's to free.

#include "common/msan_obj.h"
#include "common/wire.h"
#include "platform/lists.h"
#include "platform/types.h"
#include "voice/common/voice_snmp.h"

// A port's location on the wire: u16 slot, u16 port, 16 reserved bytes. Port 65535 is every port of the slot.
inline constexpr u32 kLocation = 20;
inline constexpr u16 kAllPorts = 65535;

// Port types of POTS cards: by their own, or by the card types that combine POTS with DSL lines.
inline constexpr u16 kPotsPort = 600;
inline constexpr u16 kAdslPotsCard = 12, kAdslPotsPort = 817;
inline constexpr u16 kVdslPotsCard = 13, kVdslPotsPort = 818;
inline constexpr u16 kPotsCardKind = 61;  // in check calls; the card is looked at, the kind is not

// The head of a v set's record.
struct Location {
  u16 slot = 0;
  u16 port = 0;
};

// The option word of a check by message id; -1 and 0 for any other id.
int vSetObjCheckOption(u16 id, u32* option);
int nSetObjCheckOption(u16 id, u32* option);

int vCheckSlotNo(u16 slot, u16 kind);       // 0: a POTS card is configured
int vCheckSlotNoX(u16 slot, u16 cardType);  // 0: the card type is configured
int vCheckPortNo(u16 slot, u16 port);       // 0: all ports, or one of the card's
// 1 if the location is good, else 0 with `err` filled.
int vIsOBJMValid(u16 id, u16 kind, u16 slot, u16 port, SnmpErrInfo* err);
int nIsOBJMValid(u16 id, u16 kind, u16 slot, u16 port, SnmpErrInfo* err);
int vGetSlotPortObjType(u16 slot, u16* cardType, u16* subtype, u16* portType);

// --- Store and read -----------------------------------------------------------------------------------------------

// All nodes, up to the first failure: the nodes ahead of it stay written. The type is not looked at.
int vSetObjManageData(u16 type, LIST* list);
int vGetObjManageData(u16 type, LIST* list);
// The n set's write leaves the first byte of a stored record as it is; the record must exist.
int nSetObjManageData(u16 type, u32 offset, LIST* list);
int nGetObjManageData(u16 type, u32 offset, LIST* list);
int vGetObjManageDataUnit(u16 slot, u16 port, u16 type, u32 attribute, u32 offset, u32 length, u8* data);
// A node of `size` bytes for each location, read from the store.
int vGetObjManageDataHandle(u16 type, u32 attribute, u32 size, LIST* locations, LIST* out);
int vEraseObjManageData(const ObjIndex* object, u32 attribute, u16 type, const void* initial, u32 length);

// --- Objects of a slot --------------------------------------------------------------------------------------------

// The POTS ports of a slot, of all slots for 0; Ex: the objects of one type.
int vGetSlotObjIndex(u16 slot, LIST* objects);
int vGetSlotObjIndexEx(u16 slot, u16 type, LIST* objects);
// A node with the stored record for each of them. In the v set slot and port come from the record.
int vGetSlotObjManageDataHandle(u16 slot, u32 attribute, u32 size, LIST* list);
int vGetSlotObjManageDataHandleEx(u16 slot, u16 type, u32 attribute, u32 size, LIST* list);
int nGetSlotObjManageDataHandle(u16 slot, u32 attribute, u32 offset, u32 size, LIST* list);

// --- Lists of ports -----------------------------------------------------------------------------------------------

// A node for each entry of an interface string's list, with a zeroed record.
int vSetPortObjList(LIST* addresses, u32 attribute, u32 size, LIST* out);
int nSetPortObjList(LIST* addresses, u32 attribute, u32 size, LIST* out);
// The same for slots: a record of a location with all ports.
int vSetSlotObjList(LIST* addresses, u32 attribute, LIST* out);
int nSetPortObjDataList(const void* record, LIST* list);  // a copy into every node
int nCreatePortDataNode(LIST* list, u16 slot, u16 count, u32 attribute, u32 size);

// Nodes that mean all ports of a slot become a node for each port, at the end of the list.
int vExtendPOTSPortList(LIST* list, u16 portType);
int nExtendPortObjList(LIST* list);

// From the wire: a u32 count and the locations. Locations of all ports are extended.
int vParsePOTSPortLocation(WireIn area, u16 portType, u32* count, LIST* list);
int vParsePOTSPortLocationCode(WireIn location, Location* record);
int nParsePortLocation(WireIn location, Location* out);
int nParsePortLocationHandle(WireIn area, u32 attribute, u32 size, u32* count, LIST* list);
int nEncodePortLocation(const Location* location, WireOut wire, u32* length);
int nEncodePortLocationHandle(LIST* list, WireOut wire, u32* length);

int vCheckPOTSPortLocation(u16 id, u16 kind, const Location* record, SnmpErrInfo* err);
int vCheckPOTSPortLocationHandle(u16 id, u16 kind, LIST* list, SnmpErrInfo* err);
int nCheckPortLocationHandle(LIST* list, u16 id, SnmpErrInfo* err);

// The slots whose voice card is good for the message; the array holds kVoiceSlots. -1 if there is none.
inline constexpr u16 kVoiceSlots = 20;
int nGetCurrentVoiceSlotNo(u16 id, u16* slots, u16* count);
// A node for every port of these.
int nGetCurrentVoicePortList(u16 id, u32 attribute, u32 size, LIST* list);
