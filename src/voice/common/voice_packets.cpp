// Data nodes, and the messages that are built on them.

#include "voice/common/voice_packets.h"

#include <cstring>
#include <span>

#include "common/msan_init.h"
#include "common/trace.h"
#include "common/wire.h"
#include "platform/pool.h"

static constexpr u32 kHeader = sizeof(MscHeader);

// Memory of the pool, zeroed; null when there is none.
static u8* zeroed(u32 size) {
  void* memory = mpuAlloc_(g_MsanMemPoolId, size, __FILE__, __LINE__);
  if (memory != nullptr) std::memset(memory, 0, size);
  return static_cast<u8*>(memory);
}

// Appends one node; null when there is no memory.
static DataNode* append(LIST* list, u32 size) {
  auto* node = reinterpret_cast<DataNode*>(zeroed(sizeof(DataNode)));
  if (node == nullptr) return nullptr;
  node->data = zeroed(size);
  if (node->data == nullptr) {
    mpuFree(node);
    return nullptr;
  }
  node->dataLen = size;
  lstAdd(list, node);
  return node;
}

int vCreateDataNode(LIST* list, i32 count, u32 size) {
  if (list == nullptr || count <= 0 || size == 0) {
    trace("invalid data node para");
    return -1;
  }
  for (i32 i = 0; i < count; ++i) {
    if (append(list, size) == nullptr) {
      trace("create data node failed");
      return -1;
    }
  }
  return 0;
}

int vCreatePortDataNode(LIST* list, u16 basePort, u16 slot, u16 count, u32 size) {
  if (list == nullptr || count == 0 || size < 4) {
    trace("invalid data node para");
    return -1;
  }
  for (u32 i = 1; i <= count; ++i) {
    DataNode* node = append(list, size);
    if (node == nullptr) {
      trace("create data node failed");
      return -1;
    }
    node->slot = slot;
    node->port = static_cast<u16>(basePort + i);
    std::memcpy(node->data, &node->slot, 2);
    std::memcpy(node->data + 2, &node->port, 2);
  }
  return 0;
}

int vCreateSlotDataNode(LIST* list, const MscSlotInfo* slots, u16 count, i32 unit) {
  if (list == nullptr || slots == nullptr || count == 0 || unit <= 0) {
    trace("invalid data node para");
    return -1;
  }
  for (u32 i = 0; i < count; ++i) {
    DataNode* node = append(list, kHeader + 4 + slots[i].items * static_cast<u32>(unit));
    if (node == nullptr) {
      trace("create data node failed");
      return -1;
    }
    node->slot = slots[i].slot;
  }
  return 0;
}

void vFreeDataNode(LIST* list, DataNode* node) {
  if (list == nullptr || node == nullptr) return;
  mpuFree(node->data);
  lstDelete(list, node);
  mpuFree(node);
}

void vFreeDataList(LIST* list) {
  if (list == nullptr) return;
  while (NODE* node = lstLast(list)) vFreeDataNode(list, static_cast<DataNode*>(node));
  lstInit(list);
}

int vMemAlloc(u8** memory, i32 size) {
  if (memory == nullptr || size <= 0) {
    trace("invalid memory para");
    return -1;
  }
  *memory = zeroed(static_cast<u32>(size));
  if (*memory == nullptr) {
    trace("malloc memory failed");
    return -1;
  }
  return 0;
}

int vFreeMem(u8** memory) {
  if (memory == nullptr || *memory == nullptr) return 0;
  mpuFree(*memory);
  *memory = nullptr;
  return 0;
}

int nSetDataList(const void* data, u32 size, LIST* list) {
  if (data == nullptr || list == nullptr || size == 0) {
    trace("invalid data node para");
    return -1;
  }
  DataNode* node = append(list, size);
  if (node == nullptr) {
    trace("create data node failed");
    return -1;
  }
  std::memcpy(node->data, data, size);
  return 0;
}

int buildMscHeader(u8* buffer, u16 id, u8) {
  if (buffer == nullptr) return -1;
  const MscHeader header{{}, id, {}};
  std::memcpy(buffer, &header, sizeof header);
  return 0;
}

int vBuildMscPacketN(u16 slot, u16 id, u8 spare, LIST* list) {
  if (vCreateDataNode(list, 1, kHeader) != 0) return -1;
  auto* node = static_cast<DataNode*>(lstLast(list));
  node->slot = slot;
  return buildMscHeader(node->data, id, spare);
}

int vBuildMscPacketND(const LIST* slots, u16 id, u8 spare, LIST* list) {
  if (slots == nullptr) {
    trace("slot list para is NULL");
    return -1;
  }
  for (const NODE* at = lstFirst(slots); at != nullptr; at = lstNext(at)) {
    if (vBuildMscPacketN(static_cast<const DataNode*>(at)->slot, id, spare, list) != 0) return -1;
  }
  return 0;
}

// Makes the one node of an empty list; null when that fails.
static DataNode* only(LIST* list, const u8* payload, u32 size, Where where = Where::here()) {
  if (payload == nullptr) {
    printTrace(where, "invalid payload para");
    return nullptr;
  }
  if (vCreateDataNode(list, 1, size) != 0) return nullptr;
  return static_cast<DataNode*>(lstFirst(list));
}

int vBuildMscPacketS(u16 slot, u16 id, u8 spare, const u8* payload, u32 length, LIST* list) {
  DataNode* node = only(list, payload, kHeader + length);
  if (node == nullptr) return -1;
  node->slot = slot;
  std::memcpy(node->data + kHeader, payload, length);
  return buildMscHeader(node->data, id, spare);
}

int vBuildMscPacketSX(u16 slot, u16 id, u8 spare, const u8* payload, u32 length, LIST* list) {
  if (length < 4) {
    trace("invalid payload length %d", length);
    return -1;
  }
  DataNode* node = only(list, payload, kHeader - 2 + length);
  if (node == nullptr) return -1;
  node->slot = slot;
  std::memcpy(node->data + kHeader, payload + 2, length - 2);
  return buildMscHeader(node->data, id, spare);
}

int vBuildMscPacketD(const u16* slots, u16 count, u16 id, u8 spare, const u8* payload, u32 length, LIST* list) {
  if (slots == nullptr || payload == nullptr || length == 0) {
    trace("invalid payload para");
    return -1;
  }
  if (vCreateDataNode(list, count, kHeader + length) != 0) return -1;
  NODE* at = lstFirst(list);
  for (const u16 slot : std::span(slots, count)) {
    auto* node = static_cast<DataNode*>(at);
    node->slot = slot;
    std::memcpy(node->data + kHeader, payload, length);
    buildMscHeader(node->data, id, spare);
    at = lstNext(at);
  }
  return 0;
}

int vBuildMscPacketI(u16 slot, u16 id, u8, const u8* payload, u32 length, LIST* list) {
  DataNode* node = only(list, payload, length);
  if (node == nullptr) return -1;
  node->slot = slot;
  node->msgId = id;
  std::memcpy(node->data, payload, length);
  return 0;
}

int vSetMscSlotInfo(const LIST* list, MscSlotInfo* slots, u16* count) {
  if (list == nullptr || slots == nullptr || count == nullptr) {
    trace("slot information para is NULL");
    return -1;
  }
  for (const NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const u16 slot = static_cast<const DataNode*>(at)->slot;
    u16 i = 0;
    while (i < *count && slots[i].slot != slot) ++i;
    if (i == *count) {
      if (i == kMscSlots) {
        trace("more than %d slots", kMscSlots);
        return -1;
      }
      slots[(*count)++] = {slot, 0};
    }
    ++slots[i].items;
  }
  return 0;
}
