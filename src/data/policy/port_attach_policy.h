#pragma once
// The flow policies and rules that are bound to a port as a whole.

#include "data/policy/policy_binding.h"

extern const DataItem portPolicy;

void showrun_port_plc_attach(Vty* vty);
void res_port_plc_attach_cfg(u16 slot);

// Attribute 284. 0 or -900, which a read of a port without a row gives, too.
int set_port_plc_prf_att_dbapi(u32 objectId, const void* value, u32 offset, u32 length);
int get_port_plc_prf_att_dbapi(u32 objectId, void* value, u32 offset, u32 length);
int clr_port_plc_attach_cfg_dbapi(u32 objectId);  // a row stays, without bindings
