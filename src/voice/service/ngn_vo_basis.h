#pragma once
// Domain and transport of the voice protocol.

#include "voice/common/voice_item.h"

struct VoiceBasis {
  char domainName[64] = {};
  u16 localPort = 0;   // up to 65534
  u16 encodeType = 0;  // 0 compact, 1 uncompacted
  u16 transport = 0;   // 0 udp, 1 tcp
};

extern const VoiceItem voiceBasis;
