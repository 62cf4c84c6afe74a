#pragma once
// The call timers.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"

struct VoiceTimer {
  u16 maxWaitTime = 0;  // seconds, 0 to 254
  // Seconds, 1 to 3600.
  u32 startTimer = 0;
  u32 longTimer = 0;
  u32 shortTimer = 0;
  u8 digitMapNotify = 0;  // 0 not immediately, 1 immediately
};

// The steps of the pattern (voice/common/voice_item.h).
int nParseVoiceTimer(WireIn unit, VoiceTimer* cfg, u32* length);
int nParseVoiceTimerHandle(WireIn area, u32* count, LIST* list);
int nCheckVoiceTimer(const VoiceTimer* cfg, SnmpErrInfo* err);
int nCheckVoiceTimerHandle(LIST* list, SnmpErrInfo* err);
int nSetVoiceTimer(const VoiceTimer* cfg);
int nSetVoiceTimerHandle(LIST* list);
int nGetVoiceTimer(VoiceTimer* cfg);
int nGetVoiceTimerHandle(LIST* list);
int nEncodeVoiceTimer(const VoiceTimer* cfg, WireOut unit, u32* length);
int nEncodeVoiceTimerHandle(LIST* list, WireOut buffer, u32* length);
int ngnSetVoiceTimerdb(const VoiceTimer* cfg, u32 key);
int ngnGetVoiceTimerdb(VoiceTimer* cfg, u32 key);
SnmpSetHandler nSnmpSetVoiceTimer;
SnmpGetHandler nSnmpGetVoiceTimer;
int nDistribVoiceTimerX(const VoiceTimer* cfg, SnmpErrInfo* err);
int nDistribVoiceTimer();
int nEraseVoiceTimer();
int nInitVoiceTimer();

int nShowRunVoiceTimer(Vty* vty);
int SnmpMsgRegisterVoiceTimer();
int installVoiceTimerCommands();
CommandHandler cli_set_voice_timer_config_func;
CommandHandler cli_show_voice_timer_config_func;
CommandHandler cli_distribute_erase_voice_timer_config_func;
