#pragma once
// The DTMF relay settings of RFC 2833 and RFC 2198.

#include "voice/common/voice_item.h"

struct RFC2833 {
  u16 neg2833 = 0;  // 0 manual, 1 auto
  u16 neg2198 = 0;
  u16 pt2833 = 0;  // payload types: 0, or 96 to 127
  u16 pt2198 = 0;
};

extern const VoiceItem rfc2833;
