#pragma once
// What the platform's standard MIB agent calls in the module: plain functions over ids, slots and ports. Negative
// results are failures, or the end of a walk.

#include "platform/types.h"

#pragma GCC visibility push(default)  // the module hides everything else
extern "C" {

// The data port behind another one: of the next slot with a data card when it was the last of its own.
int std_snmp_next_dsl_port_get(u16* slot, u16* port);

// --- Rate-limit profiles ---

// The walk: the default, 0; then each next id.
int std_snmp_get_first_rate_prf();
int std_snmp_get_next_rate_prf(u16 id);
int std_snmp_rate_prf_id_assign();  // an id that is free

// Make a profile that limits nothing, give it another name, take away one that no port has. A new name that the store
// refuses gives 0, too.
int std_snmp_rate_prf_add(u16 id, const char* name);
int std_snmp_rate_prf_name_mod(u16 id, const char* name);
int std_snmp_rate_prf_delete_by_id(u16 id);

// The rate of a direction, 0 up, 1 down; 0 where it is not limited. A rate that is set limits the direction; one that
// is refused, as 0 is, gives 0, too.
int std_snmp_rate_prf_rate_get(u16 id, int direction);
int std_snmp_rate_prf_rate_set(u16 id, int direction, u32 rate);

// The name, until the next call; null for none.
const char* std_snmp_get_rate_prf_name_by_id(u16 id);

// The profile of a port, 0 for none. Bind it; by name, 0 says no more than that there is a profile of the name.
int std_snmp_rate_prf_attach_info_get(u16 slot, u16 port);
int std_snmp_rate_prf_attach_by_id(u16 slot, u16 port, u16 id);
int std_snmp_rate_prf_attach_by_name(u16 slot, u16 port, const char* name);

// The first port that is bound; the port behind another one, bound or not.
int std_snmp_get_attach_bw_first_prfid(u16* slot, u16* port, u16* id);
int std_snmp_get_attach_bw_next_prfid(u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id);

// --- Addresses that lines have learned ---

// The walk over data ports whose cards are there.
int stdmib_get_first_obj(u16* slot, u16* port);
int stdmib_get_next_obj(u16 slot, u16 port, u16* nextSlot, u16* nextPort);

// What the card tells of a port: 6 bytes of address and the VLAN in 2 bytes, for each. `length` goes in as the room and
// comes back as what was filled.
int stdmib_get_port_fdb(u16 slot, u16 port, u8* addresses, u32* length);

}  // extern "C"
#pragma GCC visibility pop
