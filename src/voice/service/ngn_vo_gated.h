#pragma once
// The end of a change that may be refused: the NGN side takes addresses and VLANs only while a protocol type is set.
// What can't be sent is taken back from the store; behind a message that went each POTS card is told its part.

#include "platform/types.h"

struct GatedItem {
  u16 id;
  int (*takeBack)(const void* old);
  int (*tellSlot)(u16 slot);
};

struct GatedResult {
  u16 code = 0;            // 0, or the step that failed
  bool takenBack = false;  // the message was refused
  int sent = 0;            // the send's own result
};

GatedResult sendGated(const GatedItem& item, const u8* payload, u32 length, const void* old);
// The message alone, of what is stored: -1 for a failure; a closed gate is none.
int distributeGated(u16 id, u16 slot, const u8* payload, u32 length);
