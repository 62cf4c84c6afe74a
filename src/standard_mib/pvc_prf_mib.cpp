// PVC profiles and their ports for standard MIBs.

#include "combo/adsl/adsl_config_aux.h"
#include "combo/pvc/pvc_profile.h"
#include "platform/database.h"
#include "standard_mib/profiles.h"

static constexpr u16 kPvcs = 8;

static void pvc_prf_to_pri_mib(const StdPvcPrf& view, PvcPrfRecord& record) {
  copyName(record.name, view.name);
  for (u16 i = 0; i < kPvcs; ++i) record.item.pvcs[i] = {i, view.pvcs[i].vpi, view.pvcs[i].vci, {}};
}

// Of entries with one number the last one holds; a number without an entry is zero.
static int pvc_prf_to_std_mib(const PvcPrfRecord& record, StdPvcPrf& view) {
  if (record.item.PvcNum > kPvcs) return -1;
  StdPvcPrf made{};
  made.id = record.prfId;
  copyName(made.name, record.name);
  for (u16 i = 0; i < record.item.PvcNum; ++i) {
    const PvcEntry& entry = record.item.pvcs[i];
    if (entry.pvcNo >= kPvcs) return -1;
    made.pvcs[entry.pvcNo] = {entry.vpi, entry.vci};
  }
  view = made;
  return 0;
}

static int write(const StdPvcPrf& view, u16 id) {
  PvcPrfRecord record;
  fillDefaults(pvcKind, &record);
  pvc_prf_to_pri_mib(view, record);
  record.requestId = id;
  SnmpErrInfo err;
  return set_pvc_prf(&err, &record, 1);
}

int std_snmp_pvc_prf_add(const StdPvcPrf* view) { return view != nullptr ? write(*view, kAllocateId) : kNullArgument; }

int std_snmp_pvc_prf_del(u16 id) {
  SnmpErrInfo err;
  return del_spc_pvc_prf(&err, &id, 1);
}

int std_snmp_pvc_line_prf_mod(const StdPvcPrf* view) {
  if (view == nullptr) return kNullArgument;
  SnmpErrInfo err;
  if (checkIdLegal(pvcKind, &err, view->id) != 0 || !profileExists(pvcKind, view->id)) return -1;
  return write(*view, view->id);
}

int std_snmp_pvc_prf_get(u16 id, StdPvcPrf* view) {
  if (view == nullptr) return kNullArgument;
  SnmpErrInfo err;
  PvcPrfRecord record;
  return getProfile(pvcKind, &err, &record, id) == 0 ? pvc_prf_to_std_mib(record, *view) : -1;
}

int std_snmp_get_first_pvc_prf(StdPvcPrf* view) {
  if (view == nullptr) return kNullArgument;
  PvcPrfRecord record;
  fillDefaults(pvcKind, &record);
  return pvc_prf_to_std_mib(record, *view);
}

int std_snmp_get_next_pvc_prf(u16 id, StdPvcPrf* view) {
  if (view == nullptr) return kNullArgument;
  return id < pvcKind.mostId ? std_snmp_pvc_prf_get(static_cast<u16>(id + 1), view) : -1;
}

// --- Ports ---

static bool isObject(const ObjIndex& object) {
  SnmpErrInfo err;
  return checkObjErr(pvcKind.attachId, 69, &object, kAnyCard, &err) == 0;
}

int std_snmp_attach_pvc_line_prf(u16 slot, u16 port, u16 id) {
  ObjIndex object;
  if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0 || !isObject(object)) return -1;
  return attachOne(pvcKind, slot, port, id);
}

int std_snmp_get_attach_pvc_prfid(u16 slot, u16 port) {
  ObjIndex object;
  if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0 || !isObject(object)) return -1;
  u16 id = 0;
  const int code = attachedProfile(pvcKind, &object, &id);
  return code == 0 || code == DB_NOT_FOUND || code == DB_END ? id : -1;
}

int std_snmp_get_attach_pvc_first_prfid(u16* slot, u16* port, u16* id) {
  static constexpr u16 types[] = {kAdslPotsPort, kAdslPort, kVdslPort, kVdslPotsPort};
  return firstAttached(types, std_snmp_get_attach_pvc_prfid, slot, port, id);
}

int std_snmp_get_attach_pvc_next_prfid(u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id) {
  return nextAttached(std_snmp_get_attach_pvc_prfid, slot, port, nextSlot, nextPort, id);
}
