#pragma once
// Data nodes, the lists on which voice items build messages, and what is built on them: for a card with an envelope
// ahead of the payload, for the NGN side the payload alone. voice_msc.h sends them.
//
// Operations return 0 or -1; a failure is traced. Lists belong to their caller for the length of one call.

#include "platform/lists.h"
#include "platform/types.h"

// Envelope of a message to a card, ahead of its payload. It stays in the module: sendMscMsg reads the command id from
// it and hands over what follows.
struct MscHeader {
  u8 zero[8];
  u16 id;  // host order
  u8 rest[22];
};
static_assert(sizeof(MscHeader) == 32);

// A node of a list; it owns its data. Both come from the pool.
struct DataNode : NODE {
  u16 slot;   // destination, or the slot of an object
  u16 port;   // in a port list, else 0
  u32 msgId;  // command id, for the NGN side
  u8* data;   // zeroed when made
  u32 dataLen;
};
// A PortDataNode is a DataNode whose data begins with u16 slot, u16 port, in host order.

// How many items a slot has.
struct MscSlotInfo {
  u16 slot;
  u16 items;
};
inline constexpr u16 kMscSlots = 20;  // of the callers' arrays

// The data of a node as a record.
template <class R>
R* recordOf(NODE* node) {
  return reinterpret_cast<R*>(static_cast<DataNode*>(node)->data);
}

int buildMscHeader(u8* buffer, u16 id, u8);  // 32 bytes

// Appends `count` nodes with `size` zeroed bytes each.
int vCreateDataNode(LIST* list, i32 count, u32 size);
// Appends a node for each port from basePort + 1 on.
int vCreatePortDataNode(LIST* list, u16 basePort, u16 slot, u16 count, u32 size);
// Appends a node for each pair: room for the envelope, a count of up to 4 bytes, and the pair's items.
int vCreateSlotDataNode(LIST* list, const MscSlotInfo* slots, u16 count, i32 unit);
void vFreeDataNode(LIST* list, DataNode* node);
void vFreeDataList(LIST* list);                            // from the tail, and initialises the list
int vMemAlloc(u8** memory, i32 size);                      // zeroed
int vFreeMem(u8** memory);                                 // and nulls
int nSetDataList(const void* data, u32 size, LIST* list);  // appends a copy

// Messages to cards. S, SX and I take the list's first node for their own: the list must be empty.
int vBuildMscPacketN(u16 slot, u16 id, u8, LIST* list);                                  // header alone
int vBuildMscPacketND(const LIST* slots, u16 id, u8, LIST* list);                        // N for each node's slot
int vBuildMscPacketS(u16 slot, u16 id, u8, const u8* payload, u32 length, LIST* list);   // header and payload
int vBuildMscPacketSX(u16 slot, u16 id, u8, const u8* payload, u32 length, LIST* list);  // its u32 count as u16
int vBuildMscPacketD(const u16* slots, u16 count, u16 id, u8, const u8* payload, u32 length, LIST* list);
// A message to the NGN side: the payload alone.
int vBuildMscPacketI(u16 slot, u16 id, u8, const u8* payload, u32 length, LIST* list);

// Groups the nodes by slot in the order of their first appearance. A slot beyond the array's kMscSlots is refused.
int vSetMscSlotInfo(const LIST* list, MscSlotInfo* slots, u16* count);

// A list that belongs to a scope.
class DataList {
 public:
  DataList() { lstInit(&list_); }
  ~DataList() { vFreeDataList(&list_); }
  DataList(const DataList&) = delete;
  DataList& operator=(const DataList&) = delete;
  operator LIST*() { return &list_; }

 private:
  LIST list_;
};
