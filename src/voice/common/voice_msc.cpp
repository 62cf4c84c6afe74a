#include "voice/common/voice_msc.h"

#include <cstring>

#include "common/msan_init.h"
#include "common/trace.h"
#include "platform/cards.h"
#include "platform/log.h"
#include "platform/ngn.h"

int sendMscMsg(u16 slot, const u8* buffer, u32 length) {
  if (buffer == nullptr) return -1;
  if (length < sizeof(MscHeader)) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "\r\n%s, %d, invalid length %d", __func__, __LINE__,
               static_cast<i32>(length));
    return -1;
  }
  MscHeader header;
  std::memcpy(&header, buffer, sizeof header);
  const int result =
      dm_MakeCmdPkt_GPON(slot, header.id, buffer + sizeof header, length - static_cast<u32>(sizeof header));
  if (result < 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "\r\n%s, %d, dm_MakeCmdPkt_GPON failed!ret = %d.\r\n", __func__, __LINE__,
               result);
  }
  return result;
}

MscReplyRecord* createMscReplyRecordNode(u16, u16) { return nullptr; }
void addMscReplyRecordNode(LIST*, MscReplyRecord*) {}
int recvMscSynReply(LIST*, i32) { return 0; }
void freeMscReplyRecordList(LIST*) {}

// Sends each node by `send` and traces how it went.
template <class Send>
static int sendAll(const LIST* list, Send send, Where where) {
  if (list == nullptr) {
    printTrace(where, "MSC send list para is NULL");
    return -1;
  }
  for (const NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    if (send(*node)) {
      printTrace(where, "send MSC packet to slot %d successfully", node->slot);
    } else {
      printTrace(where, "send MSC packet to slot %d failed", node->slot);
    }
  }
  return 0;
}

int vSendMscPacket(const LIST* list) {
  return sendAll(
      list, [](const DataNode& node) { return sendMscMsg(node.slot, node.data, node.dataLen) >= 0; }, Where::here());
}

int vSendMscPacketI(const LIST* list) {
  const auto send = [](const DataNode& node) {
    return writeNgnCmd(static_cast<u16>(node.msgId), 0, node.data, node.dataLen, 0, 0, 0, 0) == 0;
  };
  return sendAll(list, send, Where::here());
}

int vRecvMscPacket(const LIST* sent, LIST* received) {
  if (sent == nullptr || received == nullptr) {
    trace("MSC receive list para is NULL");
    return -1;
  }
  for (const NODE* at = lstFirst(sent); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    MscReplyRecord* record = createMscReplyRecordNode(node->slot, static_cast<u16>(node->msgId));
    if (record == nullptr) {
      trace("create slot %d MSC receive node failed", node->slot);
      return -1;
    }
    addMscReplyRecordNode(received, record);
  }
  switch (const int code = recvMscSynReply(received, 30000)) {
    case 0:
      trace("received MSC message confirm OK");
      return 0;
    case -1:
      trace("received MSC message confirm failed");
      return -1;
    case -2:
      trace("received MSC message confirm timeout");
      return -1;
    default:
      trace("received unknown MSC message confirm code: %d", code);
      return -1;
  }
}

int vFreeMscRecvList(LIST* list) {
  if (list != nullptr) freeMscReplyRecordList(list);
  return 0;
}
