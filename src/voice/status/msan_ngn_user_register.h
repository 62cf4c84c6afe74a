#pragma once
// Registration of the users of POTS ports with the voice side: an order for a list of ports, nothing is stored.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/lists.h"

struct UserRegister {
  u16 option = 0;  // 1 register, 2 unregister
};

// A manager's items of 82 bytes as the voice side's units of 86: four zero bytes come behind the 16 bytes of a
// location. `area` begins at the count and holds that many items. 0, or -1 if the buffer does not hold them.
int mspack_register_user(u32 count, WireIn area, WireOut buffer);
// Checks the ports, but not during recovery, and sends. -1 for a failed check alone; behind it 0, and a failure shows
// in `err`.
int nregister_user(LIST* list, SnmpErrInfo* err);

void usereg_regsnmpcmd_handle();
void ninstall_ngnuser_register_cmdline();
