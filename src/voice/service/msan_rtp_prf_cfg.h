#pragma once
// How the names of the RTP resources are formed.

#include "voice/common/voice_item.h"

struct RtpResource {
  char nameFixed[12] = {};  // what all names begin with; not empty
  u16 nameBegin = 0;        // 0 to 65534
  u16 nameEnd = 0;          // above the begin, by less than 6000 steps
  u16 nameStep = 0;         // 1 to 65534
  u8 nameFilled = 0;        // 1: numbers are padded
};

extern const VoiceItem rtpResource;
