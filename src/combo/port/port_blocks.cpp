#include "combo/port/port_blocks.h"

#include "platform/log.h"

void sendPortBlocks(u16 id, u16 slot, u8* message, u32 length, u32 ports) {
  putNumber(message + sizeof(MscHeader), 4, ports);
  if (buildMscHeader(message, id, 0) != 0 || sendMscMsg(slot, message, length) < 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: message %d to slot %d failed!\r\n", __func__, id, slot);
  }
}
