#pragma once
// The two roads of messages that were built on data nodes: to a card by slot, and to the NGN side by command id.
//
// Operations return 0 or -1; a failure is traced. Lists belong to their caller for the length of one call.

#include "voice/common/voice_packets.h"

// The message with its envelope, `length` bytes in all; the platform's result, negative on failure.
int sendMscMsg(u16 slot, const u8* buffer, u32 length);

// The synchronous reply record, empty on this road.
struct MscReplyRecord;
MscReplyRecord* createMscReplyRecordNode(u16 slot, u16 id);
void addMscReplyRecordNode(LIST* list, MscReplyRecord* record);
int recvMscSynReply(LIST* list, i32 timeoutMs);
void freeMscReplyRecordList(LIST* list);

// Send all nodes, to their slots or to the NGN side. 0 for any list: a send that fails shows in the trace alone.
int vSendMscPacket(const LIST* list);
int vSendMscPacketI(const LIST* list);

// Waits for confirms; can't succeed while the reply records are empty.
int vRecvMscPacket(const LIST* sent, LIST* received);
int vFreeMscRecvList(LIST* list);
