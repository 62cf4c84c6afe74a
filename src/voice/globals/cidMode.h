#pragma once
// The caller-identification mode of the node.

#include "voice/common/voice_item.h"

struct CIDMode {
  u16 mode = 0;  // 1 FSK, 2 DTMF
};

extern const VoiceItem cidMode;
