#pragma once
// Messages to cards about ports: a u32 count, and a block for each port. The ports of a slot travel in one message.

#include "common/interface_list.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "common/wire.h"
#include "voice/common/voice_msc.h"

inline constexpr u32 kPortsFrame = sizeof(MscHeader) + 4;  // envelope and number of ports
inline constexpr u32 kPortHead = 20;                       // slot, port and 16 zeros, with which a block begins

inline void putPortHead(Writer& to, const ObjIndex& port) {
  to.number(2, port.addr[1]);
  to.number(2, port.addr[2]);
  to.zeros(kPortHead - 4);
}

// Sends what was collected for a slot. A failure goes to the log alone.
void sendPortBlocks(u16 id, u16 slot, u8* message, u32 length, u32 ports);

// Sends the list's ports, which stand in the order of their slots in nodes that begin with an ObjIndex. `append` adds a
// node's block, or gives false to leave it out; `idOf` gives the message for a slot. 0, or -1 for an empty list or
// without memory.
template <class Node, class Append, class IdOf>
int sendBySlot(LIST* list, u32 count, u32 room, Append append, IdOf idOf) {
  if (list == nullptr || count == 0 || lstFirst(list) == nullptr) return -1;
  const PoolBytes message(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, room, __FILE__, __LINE__)));
  if (message == nullptr) return -1;
  NODE* cell = lstFirst(list);
  while (cell != nullptr && count > 0) {
    const u16 slot = dataOf<const ObjIndex>(cell)->addr[1];
    Writer to(WireOut(message.get(), room));
    to.skip(kPortsFrame);
    u32 ports = 0;
    for (; cell != nullptr && count > 0; cell = lstNext(cell), --count) {
      if (dataOf<const ObjIndex>(cell)->addr[1] != slot) break;
      if (append(*dataOf<const Node>(cell), to)) ++ports;
    }
    sendPortBlocks(idOf(slot), slot, message.get(), to.length(), ports);
  }
  return 0;
}
