#pragma once
// Feed voltage and current of POTS ports: kept for each port here, sent to the card in the port's slot.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"
#include "platform/types.h"

// A port's record: 60 bytes, as it is stored, in host order.
struct PotsFeed {
  u16 slot = 0;
  u16 port = 0;
  u8 location[16] = {};  // reserved
  u32 voltage = 0;       // V, 37 to 51
  u32 current = 0;       // mA, 18 to 49
  u8 reserved[32] = {};
};
static_assert(sizeof(PotsFeed) == 60);

// On the wire: u16 slot, u16 port, 16 zeros, u32 voltage, u32 current, 32 zeros. 0 or -1.
int vparse_pots_voltcurrent_code(WireIn wire, PotsFeed* record);
int vmsc_encode_pots_voltcurrent(const PotsFeed* record, WireOut wire, u32* length);
int vencode_pots_voltcurrent(NODE* node, WireOut wire, u32* length);  // with the node's slot and port
// Lists: a u32 count and the records. The count that is taken is cut to 16 bits.
int vparse_set_pots_voltcurrent(WireIn area, u32* count, LIST* list);
int vencode_pots_voltcurrent_handle(LIST* list, WireOut wire, u32* length);

int vcheck_pots_voltcurrent(const PotsFeed* record, SnmpErrInfo* err);
int vcheck_pots_voltcurrent_handle(LIST* list, SnmpErrInfo* err);

// A message for each slot of the list: u16 0, u16 number of records, the records of the slot.
int vbuild_set_pots_voltcurrent_msc_packet(LIST* list, LIST* sends);
// A node for each address with the record's values.
int vset_pots_voltcurrent_list(LIST* addresses, const PotsFeed* record, LIST* list);

void vdistrib_pots_voltcurrent(u16 slot);                                                   // sends what is stored
int vdistrib_pots_voltcurrentx(LIST* addresses, const PotsFeed* record, SnmpErrInfo* err);  // stores and sends
int verase_pots_voltcurrent(u16 slot);                                                      // default, and sends
void volt_current_callback_after_cardauth_db(u16 slot);

SnmpSetHandler vsnmp_set_pots_voltcurrent;
SnmpGetHandler vsnmp_get_pots_voltcurrent;
void reg_snmp_pots_voltcurrent_init();
void volt_current_install();
void vshow_run_pots_voltcurrent(Vty* vty);
int show_pots_voltcurrent_by_slot(u16 slot, Vty* vty);

// Attribute 285. On a card that is not the master nothing is written. 0; -24 for a null record, -9 for more than a
// record, -900 for a failure of the database, or no row. A read fills slot, port and the two values.
int set_post_voltcurrent_db_api(u32 objectId, const void* record, u32 offset, u32 length);
int get_post_voltcurrent_db_api(u32 objectId, void* record, u32 offset, u32 length);
int del_post_voltcurrent_db_api(u32 objectId);
