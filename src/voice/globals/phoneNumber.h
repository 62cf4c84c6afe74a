#pragma once
// Two lists of up to ten telephone numbers for the whole node, one for POTS, one for IPT. They are twins: what they
// share goes by the name of the record.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"

inline constexpr u16 kNumbers = 10;  // of a list

struct PHNNumber {
  char phnNumber[20] = {};  // of gCriteriaPOTSIPT; without a terminator when it is full
  u16 phnType = 0;          // 0 to 7: A to H
};

int nParsePHNNumber(WireIn unit, PHNNumber* cfg, u32* length);
int nParsePHNNumberHandle(WireIn area, u32* count, LIST* list);
int nCheckPHNNumber(const PHNNumber* cfg, SnmpErrInfo* err);
// Each record, then that no number stands twice.
int nCheckPHNNumberHandle(LIST* list, SnmpErrInfo* err);
// 1 and the number (20 bytes) for the first pair of equal ones, 0 for none, -1 for null.
int nIsPHNNumberDuplicate(const LIST* list, char* number);
int nEncodePHNNumber(const PHNNumber* cfg, WireOut unit, u32* length);
// A u32 count, then the units.
int nEncodePHNNumberHandle(LIST* list, WireOut buffer, u32* length);
int SnmpMsgRegisterPhoneNumber();

// The POTS list. A row is got and set by its index, 0 to 9; the list's handles leave out, and fill up with, empty rows.
int nGetPOTSNumber(u16 index, PHNNumber* cfg);
int nSetPOTSNumber(u16 index, const PHNNumber* cfg);
int nGetPOTSNumberHandle(LIST* list);
int nSetPOTSNumberHandle(LIST* list);
int ngnSetPotsNumberdb(const PHNNumber* cfg, u32 key);
int ngnGetPotsNumberdb(PHNNumber* cfg, u32 key);
SnmpSetHandler nSnmpSetPOTSNumber;
SnmpGetHandler nSnmpGetPOTSNumber;
int nDistribPOTSNumberX(LIST* list, SnmpErrInfo* err);
int nDistribPOTSNumber();
int nErasePOTSNumber();
int nInitPOTSNumber();
int nShowRunPOTSNumber(Vty* vty);
CommandHandler cli_add_pots_telephone_number_config_func;
CommandHandler cli_show_pots_telephone_number_config_func;
CommandHandler cli_distribute_erase_pots_telephone_number_config_func;

// The IPT list.
int nGetIPTNumber(u16 index, PHNNumber* cfg);
int nSetIPTNumber(u16 index, const PHNNumber* cfg);
int nGetIPTNumberHandle(LIST* list);
int nSetIPTNumberHandle(LIST* list);
int ngnSetIPTNumberdb(const PHNNumber* cfg, u32 key);
int ngnGetIPTNumberdb(PHNNumber* cfg, u32 key);
SnmpSetHandler nSnmpSetIPTNumber;
SnmpGetHandler nSnmpGetIPTNumber;
int nDistribIPTNumberX(LIST* list, SnmpErrInfo* err);
int nDistribIPTNumber();
int nEraseIPTNumber();
int nInitIPTNumber();
int nShowRunIPTNumber(Vty* vty);
CommandHandler cli_add_ipt_telephone_number_config_func;
CommandHandler cli_show_ipt_telephone_number_config_func;
CommandHandler cli_distribute_erase_ipt_telephone_number_config_func;

int installPhoneNumberCommands();
