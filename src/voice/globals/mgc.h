#pragma once
// The media gateway controllers that the node's voice side registers with: their addresses, the heartbeat, and the
// command to register with one of them, of which nothing is stored.

#include "voice/common/voice_item.h"

struct MGC {
  char primaryMGC[64] = {};  // an address as text, without a terminator when it is full
  u32 primaryMGCPort = 0;    // 0 to 65535
  char secondaryMGC[64] = {};
  u32 secondaryMGCPort = 0;
  u8 heartbeat = 0;           // 0 disable, 1 initiative, 2 passive
  u32 heartbeatInterval = 0;  // seconds, 1 to 86400
  u32 heartbeatTimeOuts = 0;  // 1 to 120
  u8 heartbeatFormat = 0;     // 0 notify, 1 servicechange
};

extern const VoiceItem mgc;

// A registration: an action, not a configuration.
struct MGCRegister {
  u16 option = 0;         // 1 register, 2 unregister
  char address[64] = {};  // for a register not empty
};
extern const VoiceItem mgcRegister;
