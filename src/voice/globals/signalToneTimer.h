#pragma once
// How long each signal tone lasts.

#include "voice/common/voice_item.h"

struct SGNToneTimer {
  // Seconds, 1 to 3600.
  u32 busyTime = 0;
  u32 dialTime = 0;
  u32 rohTime = 0;
  u32 callWaitTime = 0;
  u32 ringTime = 0;
  u32 ringBackTime = 0;
  u32 noAnswerTime = 0;
  u32 intervalDialTime = 0;
};

extern const VoiceItem signalToneTimer;
