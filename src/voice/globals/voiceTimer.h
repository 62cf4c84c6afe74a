#pragma once
// The call timers.

#include "voice/common/voice_item.h"

struct VoiceTimer {
  u16 maxWaitTime = 0;  // seconds, 0 to 254
  // Seconds, 1 to 3600.
  u32 startTimer = 0;
  u32 longTimer = 0;
  u32 shortTimer = 0;
  u8 digitMapNotify = 0;  // 0 not immediately, 1 immediately
};

extern const VoiceItem voiceTimer;
