#pragma once
// How the node handles fax calls.

#include "voice/common/voice_item.h"

struct FaxParameter {
  u16 faxMode = 0;           // 0 T.30 transparent, 1 T.38
  u8 eventNotify = 0;        // 0 disable, 1 enable
  u8 ansNotify = 0;          // the same; with event notification alone
  u16 eventNotifyType = 0;   // 0 normal, 1 only V21, 2 all V21
  u8 VBDEnable = 0;          // 0 or 1; in T.30 mode alone
  u16 encodeMode = 0;        // 0 G.711U, 1 G.711A, 255 default
  u16 txPacketInterval = 0;  // ms, 10 to 60 in tens
  u16 rxPacketInterval = 0;
  u8 SDPType = 0;       // 0 single, 1 multiple media
  u16 controlMode = 0;  // 1 passthrough, 2 SS, 3 auto VBD
};

extern const VoiceItem faxParameter;
