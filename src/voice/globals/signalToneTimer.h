#pragma once
// How long each signal tone lasts.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"

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

// The steps of the pattern (voice/common/voice_item.h).
int nParseSGNToneTimer(WireIn unit, SGNToneTimer* cfg, u32* length);
int nParseSGNToneTimerHandle(WireIn area, u32* count, LIST* list);
int nCheckSGNToneTimer(const SGNToneTimer* cfg, SnmpErrInfo* err);
int nCheckSGNToneTimerHandle(LIST* list, SnmpErrInfo* err);
int nSetSGNToneTimer(const SGNToneTimer* cfg);
int nSetSGNToneTimerHandle(LIST* list);
int nGetSGNToneTimer(SGNToneTimer* cfg);
int nGetSGNToneTimerHandle(LIST* list);
int nEncodeSGNToneTimer(const SGNToneTimer* cfg, WireOut unit, u32* length);
int nEncodeSGNToneTimerHandle(LIST* list, WireOut buffer, u32* length);
int ngnSetSGNToneTimerdb(const SGNToneTimer* cfg, u32 key);
int ngnGetSGNToneTimerdb(SGNToneTimer* cfg, u32 key);
SnmpSetHandler nSnmpSetSGNToneTimer;
SnmpGetHandler nSnmpGetSGNToneTimer;
int nDistribSGNToneTimerX(const SGNToneTimer* cfg, SnmpErrInfo* err);
int nDistribSGNToneTimer();
int nEraseSGNToneTimer();
int nInitSGNToneTimer();

int nShowRunSGNToneTimer(Vty* vty);
int SnmpMsgRegisterSGNToneTimer();
int installSignalToneTimerCommands();
CommandHandler cli_set_signal_tone_timers_config_func;
CommandHandler cli_set_signal_tone_timers_ext_config_func;
CommandHandler cli_show_signal_tone_timers_config_func;
CommandHandler cli_distribute_erase_signal_tone_timers_config_func;
