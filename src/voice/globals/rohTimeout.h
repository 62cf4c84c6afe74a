#pragma once
// What becomes of a line that stays off-hook too long (receiver off hook).

#include "voice/common/voice_item.h"

struct ROHTimeout {
  u16 operation = 0;       // 0 not unregister, 1 unregister
  u16 terminalStatus = 0;  // 0 keep the service, 1 over
};

extern const VoiceItem rohTimeout;
