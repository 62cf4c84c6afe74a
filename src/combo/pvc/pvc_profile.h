#pragma once
// The PVC profile: up to eight permanent virtual circuits of an ATM line.

#include "combo/profile/profile_kind.h"

#pragma pack(push, 1)
struct PvcEntry {
  u16 pvcNo;  // 0 to 7
  u16 vpi;    // 0 to 255, or 65535
  u32 vci;    // 0, 32 to 255, or 0xFFFFFFFF; a pair of zeros is an unused circuit
  u8 zero[4];
};

struct PvcPrfItem {
  u16 PvcNum;
  PvcEntry pvcs[8];
};
#pragma pack(pop)
using PvcPrfRecord = ProfileRecord<PvcPrfItem>;
static_assert(sizeof(PvcPrfItem) == 98 && sizeof(PvcPrfRecord) == 128);

extern const ProfileKind pvcKind;
extern i16 pvcPrfType;
extern i16 pvcPrfCfgId;
extern SemaphoreId pvc_prf_config_mux;

void pvc_create_dft_prf();
int check_pvc_prf_para(SnmpErrInfo* err, const ProfileHead* record);
int get_pvc_prf(PvcPrfRecord* record, u16 id);
int set_pvc_prf(SnmpErrInfo* err, PvcPrfRecord* records, u16 count);
int del_spc_pvc_prf(SnmpErrInfo* err, const u16* ids, u16 count);
// Gives the circuit with the entry's number in the selected profile the entry's VPI and VCI.
int modify_spc_pvc_prf_para(SnmpErrInfo* err, const PvcEntry* values);
int attach_pvc_prf(SnmpErrInfo* err, LIST* nodes, u16 count);
int attach_pvc_prf_adapt(LIST* nodes, u16 count);
int flush_pvc_prf(SnmpErrInfo* err, u16 id, int flag);
int check_pvc_prf_attached(SnmpErrInfo* err, u16 id);
void hotplug_pvc_prf_attach(u16 slot);
int clr_pvc_prf_attach(u16 slot);
int pvc_att_dft_prf(u16 slot);
void pvc_prf_showrun(Vty* vty);
void pvc_prf_attach_showrun(Vty* vty);
