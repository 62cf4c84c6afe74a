#pragma once
// The media gateway controllers that the node's voice side registers with: their addresses, the heartbeat, and the
// command to register with one of them, of which nothing is stored.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"

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

// The steps of the pattern (voice/common/voice_item.h) under this family's names.
int parse_mgc(WireIn unit, MGC* cfg, u32* length);
int parse_mgc_handle(WireIn area, u32* count, LIST* list);
int check_mgc(const MGC* cfg, SnmpErrInfo* err);
int check_mgc_handle(LIST* list, SnmpErrInfo* err);
int set_mgc(const MGC* cfg);
int set_mgc_handle(LIST* list);
int get_mgc(MGC* cfg);
int get_mgc_handle(LIST* list);
int encode_mgc(const MGC* cfg, WireOut unit, u32* length);
int encode_mgc_handle(LIST* list, WireOut buffer, u32* length);
int db_set_mgc_prf(const MGC* cfg, u32 key);
int db_get_mgc_prf(MGC* cfg, u32 key);
SnmpSetHandler snmp_set_mgc;
SnmpGetHandler snmp_get_mgc;
int distrib_mgcx(const MGC* cfg, SnmpErrInfo* err);
int distrib_mgc();
int erase_mgc();
int init_mgc();
int showrun_mgc(Vty* vty);
int registerMgcMessage();
int installMgcCommands();
CommandHandler cli_show_mgc_config_func;
CommandHandler cli_set_mgc_addr_port_config_func;
CommandHandler cli_set_mgc_heartbeat_config_func;
CommandHandler cli_distribute_erase_mgc_config_func;

// A registration: an action, not a configuration.
struct MGCRegister {
  u16 option = 0;         // 1 register, 2 unregister
  char address[64] = {};  // for a register not empty
};
int nparse_register_mgc(WireIn unit, MGCRegister* order, u32* length);
int nparse_register_mgc_handle(WireIn area, u32* count, LIST* list);
int ncheck_register_mgc(const MGCRegister* order, SnmpErrInfo* err);
int ncheck_register_mgc_handle(LIST* list, SnmpErrInfo* err);
int nencode_register_mgc(const MGCRegister* order, WireOut unit, u32* length);
SnmpSetHandler nsnmp_register_mgc;
int nregister_mgc(const MGCRegister* order, SnmpErrInfo* err);
int mgc_reg_cfg_regsnmpcmd_handle();
int ninstall_mgc_register_cmdline();
CommandHandler cli_ctrl_mgc_register_func;
