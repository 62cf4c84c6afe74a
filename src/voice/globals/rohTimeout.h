#pragma once
// What becomes of a line that stays off-hook too long (receiver off hook).

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"

struct ROHTimeout {
  u16 operation = 0;       // 0 not unregister, 1 unregister
  u16 terminalStatus = 0;  // 0 keep the service, 1 over
};

// The steps of the pattern (voice/common/voice_item.h).
int nParseROHTimeout(WireIn unit, ROHTimeout* cfg, u32* length);
int nParseROHTimeoutHandle(WireIn area, u32* count, LIST* list);
int nCheckROHTimeout(const ROHTimeout* cfg, SnmpErrInfo* err);
int nCheckROHTimeoutHandle(LIST* list, SnmpErrInfo* err);
int nSetROHTimeout(const ROHTimeout* cfg);
int nSetROHTimeoutHandle(LIST* list);
int nGetROHTimeout(ROHTimeout* cfg);
int nGetROHTimeoutHandle(LIST* list);
int nEncodeROHTimeout(const ROHTimeout* cfg, WireOut unit, u32* length);
int nEncodeROHTimeoutHandle(LIST* list, WireOut buffer, u32* length);
int ngnSetROHTimeoutdb(const ROHTimeout* cfg, u32 key);
int ngnGetROHTimeoutdb(ROHTimeout* cfg, u32 key);
SnmpSetHandler nSnmpSetROHTimeout;
SnmpGetHandler nSnmpGetROHTimeout;
int nDistribROHTimeoutX(const ROHTimeout* cfg, SnmpErrInfo* err);
int nDistribROHTimeout();
int nEraseROHTimeout();
int nInitROHTimeout();

int nShowRunROHTimeout(Vty* vty);
int SnmpMsgRegisterROHTimeout();
int installRohTimeoutCommands();
CommandHandler cli_set_roh_timeout_process_config_func;
CommandHandler cli_show_roh_timeout_process_config_func;
CommandHandler cli_distribute_erase_roh_timeout_process_config_func;
