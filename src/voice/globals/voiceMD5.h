#pragma once
// The MD5 authentication of the media gateway.

#include "voice/common/voice_item.h"

struct VoiceMD5 {
  u8 authSwitch = 0;  // 0 close, 1 open
  // Texts fill their width when they are at their longest, and have no terminator then.
  char MGID[32] = {};
  char sharedKey[32] = {};
  char exchangedBase[16] = {};    // of gCriteriaMD5, or empty
  char exchangedPrime[256] = {};  // of gCriteriaMD5, or empty
};

extern const VoiceItem voiceMD5;
