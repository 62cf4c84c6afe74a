#pragma once
// The DTMF relay settings of RFC 2833 and RFC 2198.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"

struct RFC2833 {
  u16 neg2833 = 0;  // 0 manual, 1 auto
  u16 neg2198 = 0;
  u16 pt2833 = 0;  // payload types: 0, or 96 to 127
  u16 pt2198 = 0;
};

// The steps of the pattern (voice/common/voice_item.h).
int nParseRFC2833(WireIn unit, RFC2833* cfg, u32* length);
int nParseRFC2833Handle(WireIn area, u32* count, LIST* list);
int nCheckRFC2833(const RFC2833* cfg, SnmpErrInfo* err);
int nCheckRFC2833Handle(LIST* list, SnmpErrInfo* err);
int nSetRFC2833(const RFC2833* cfg);
int nSetRFC2833Handle(LIST* list);
int nGetRFC2833(RFC2833* cfg);
int nGetRFC2833Handle(LIST* list);
int nEncodeRFC2833(const RFC2833* cfg, WireOut unit, u32* length);
int nEncodeRFC2833Handle(LIST* list, WireOut buffer, u32* length);
int ngnSetRFC2833db(const RFC2833* cfg, u32 key);
int ngnGetRFC2833db(RFC2833* cfg, u32 key);
SnmpSetHandler nSnmpSetRFC2833;
SnmpGetHandler nSnmpGetRFC2833;
int nDistribRFC2833X(const RFC2833* cfg, SnmpErrInfo* err);
int nDistribRFC2833();
int nEraseRFC2833();
int nInitRFC2833();

int nShowRunRFC2833(Vty* vty);
int SnmpMsgRegisterRFC2833();
int installRfc2833Commands();
CommandHandler cli_set_rfc2833_config_func;
CommandHandler cli_show_rfc2833_config_func;
CommandHandler cli_distribute_erase_rfc2833_config_func;
