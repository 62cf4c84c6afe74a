#pragma once
// The flow policies and rules that are bound to the PVCs of a port.

#include "data/policy/policy_binding.h"

// The value of the attribute, one for each PVC.
struct PvcPolicyRow {
  u16 pvcIndex = 0;
  BoundPolicies bound;
};
static_assert(sizeof(PvcPolicyRow) == 68);

extern const DataItem pvcPolicy;

void init_pvc_attach_plc();  // the flow store asks from now on
void showrun_pvc_plc_attach(Vty* vty);
void res_pvc_plc_attach_cfg(u16 slot);

// What the flow store asks ahead of removing a rule or a policy: 1 bound, 0 not; -1 for another type, or a node without
// DSL lines. Ports as a whole don't count.
int pvc_bind_fr_check_func(i16 type, u16 id);
int pvc_bind_fp_check_func(i16 type, u16 id);
int check_fr_attached_pvc(u16 id);
int check_fp_attached_pvc(u16 id);

// Attribute 283: the row of the PVC that the value names, which stays as it is when there is none. 0 or -900.
int set_plc_prf_att_dbapi(u32 objectId, const void* value, u32 offset, u32 length);
int get_plc_prf_att_dbapi(u32 objectId, void* value, u32 offset, u32 length);
int clr_pvc_plc_attach_cfg_dbapi(u32 objectId);  // the rows of all PVCs
