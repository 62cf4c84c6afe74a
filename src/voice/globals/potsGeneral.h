#pragma once
// Electrical and timing parameters of all POTS lines of the node. They go to the cards, slot by slot, and a card that
// comes up gets them again.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"

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

// Unit of 560 bytes on the wire: 22 bytes of object label, the fields, 512 reserved bytes. 0 or -1.
int parse_pots_general_para_code(WireIn unit, PotsGeneral* cfg);
int parse_set_pots_general_para(WireIn area, u32* count, LIST* list);  // a u32 count of 1, the unit
int check_pots_general_para(const PotsGeneral* cfg, SnmpErrInfo* err);
int check_pots_general_para_handle(LIST* list, SnmpErrInfo* err);
int set_pots_general_para(const PotsGeneral* cfg);
int set_pots_general_para_handle(LIST* list);
int set_pots_general_para_list(const PotsGeneral* cfg, LIST* list);
int get_pots_gerneral_para(PotsGeneral* cfg);
int get_pots_gerneral_para_handle(LIST* list);
int encode_pots_general_para(const PotsGeneral* cfg, WireOut unit, u32* length);
int encode_pots_general_para_handle(LIST* list, WireOut buffer, u32* length);
int db_set_general_prf(const PotsGeneral* cfg, u32 key);
int db_get_general_prf(PotsGeneral* cfg, u32 key);
SnmpSetHandler snmp_set_pots_general_para;
SnmpGetHandler snmp_get_pots_general_para;
// Stores, and sends to all POTS cards. -1 while nothing is stored; behind that 0, and a failure shows in `err` alone.
int distrib_pots_general_parax(const PotsGeneral* cfg, SnmpErrInfo* err);
int distrib_pots_general_para(u16 slot);  // what is stored to one slot, of whatever card
int erase_pots_general_para();
int init_pots_gerneral_para();
int showrun_pots_general_para(Vty* vty);
int registerPotsGeneralMessage();
int installPotsGeneralCommands();
