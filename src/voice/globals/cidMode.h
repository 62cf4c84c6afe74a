#pragma once
// The caller-identification mode of the node.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"

struct CIDMode {
  u16 mode = 0;  // 1 FSK, 2 DTMF
};

// The steps of the pattern (voice/common/voice_item.h).
int nParseCIDMode(WireIn unit, CIDMode* cfg, u32* length);
int nParseCIDModeHandle(WireIn area, u32* count, LIST* list);
int nCheckCIDMode(const CIDMode* cfg, SnmpErrInfo* err);
int nCheckCIDModeHandle(LIST* list, SnmpErrInfo* err);
int nSetCIDMode(const CIDMode* cfg);
int nSetCIDModeHandle(LIST* list);
int nGetCIDMode(CIDMode* cfg);
int nGetCIDModeHandle(LIST* list);
int nEncodeCIDMode(const CIDMode* cfg, WireOut unit, u32* length);
int nEncodeCIDModeHandle(LIST* list, WireOut buffer, u32* length);
int ngnSetCIDModedb(const CIDMode* cfg, u32 key);
int ngnGetCIDModedb(CIDMode* cfg, u32 key);
SnmpSetHandler nSnmpSetCIDMode;
SnmpGetHandler nSnmpGetCIDMode;
int nDistribCIDModeX(const CIDMode* cfg, SnmpErrInfo* err);
int nDistribCIDMode();
int nEraseCIDMode();
int nInitCIDMode();

int nShowRunCIDMode(Vty* vty);
int SnmpMsgRegisterCIDMode();
int installCidModeCommands();
CommandHandler cli_set_cid_mode_config_func;
CommandHandler cli_show_cid_mode_config_func;
CommandHandler cli_distribute_erase_cid_mode_config_func;
