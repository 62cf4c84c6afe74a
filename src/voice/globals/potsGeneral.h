#pragma once
// Electrical and timing parameters of all POTS lines of the node. They go to the cards, slot by slot, and a card that
// comes up gets them again.

#include "voice/common/voice_item.h"

struct PotsGeneral {
  u16 pulseWidth = 0;        // ms, 30 to 2500
  u16 pulseInterval = 0;     // ms, 50 to 2500, and at least 10 more than the width
  u16 flashWidth = 0;        // ms, 90 to 2500, below onHookCheckTime
  u16 billType = 0;          // 0 16 kHz, 1 12 kHz, 2 ANC
  u32 billPulseVoltage = 0;  // 0.1 V, 4 to 30
  u16 POTSImpMode = 0;       // 0 600, 1 560, 2 680 ohms
  u16 offHookCheckTime = 0;  // ms, 10 to 400
  u16 onHookCheckTime = 0;   // ms, 90 to 2500
  i32 sendCODECGain = 0;     // 0.1 dB, 0 to 100
  i32 recvCODECGain = 0;     // 0.1 dB, -100 to 0
};

// A unit of 560 bytes on the wire: 22 bytes of object label, the fields, 512 reserved bytes.
extern const VoiceItem potsGeneral;

// Stores, and sends to all POTS cards. -1 while nothing is stored; behind that 0, and a failure shows in `err` alone.
int distrib_pots_general_parax(const PotsGeneral* cfg, SnmpErrInfo* err);
int distrib_pots_general_para(u16 slot);  // what is stored to one slot, of whatever card
int erase_pots_general_para();
void showrun_pots_general_para(Vty* vty);
void installPotsGeneralCommands();
