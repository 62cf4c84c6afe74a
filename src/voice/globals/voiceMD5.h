#pragma once
// The MD5 authentication of the media gateway.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"

struct VoiceMD5 {
  u8 authSwitch = 0;  // 0 close, 1 open
  // Texts fill their width when they are at their longest, and have no terminator then.
  char MGID[32] = {};
  char sharedKey[32] = {};
  char exchangedBase[16] = {};    // of gCriteriaMD5, or empty
  char exchangedPrime[256] = {};  // of gCriteriaMD5, or empty
};

// The steps of the pattern (voice/common/voice_item.h).
int nParseVoiceMD5(WireIn unit, VoiceMD5* cfg, u32* length);
int nParseVoiceMD5Handle(WireIn area, u32* count, LIST* list);
int nCheckVoiceMD5(const VoiceMD5* cfg, SnmpErrInfo* err);
int nCheckVoiceMD5Handle(LIST* list, SnmpErrInfo* err);
int nSetVoiceMD5(const VoiceMD5* cfg);
int nSetVoiceMD5Handle(LIST* list);
int nGetVoiceMD5(VoiceMD5* cfg);
int nGetVoiceMD5Handle(LIST* list);
int nEncodeVoiceMD5(const VoiceMD5* cfg, WireOut unit, u32* length);
int nEncodeVoiceMD5Handle(LIST* list, WireOut buffer, u32* length);
int ngnSetVoiceMD5db(const VoiceMD5* cfg, u32 key);
int ngnGetVoiceMD5db(VoiceMD5* cfg, u32 key);
SnmpSetHandler nSnmpSetVoiceMD5;
SnmpGetHandler nSnmpGetVoiceMD5;
int nDistribVoiceMD5X(const VoiceMD5* cfg, SnmpErrInfo* err);
int nDistribVoiceMD5();
int nEraseVoiceMD5();
int nInitVoiceMD5();

int nShowRunVoiceMD5(Vty* vty);
int SnmpMsgRegisterVoiceMD5();
int installVoiceMD5Commands();
CommandHandler cli_set_voice_md5_config_func;
CommandHandler cli_show_voice_md5_config_func;
CommandHandler cli_distribute_erase_voice_md5_config_func;
