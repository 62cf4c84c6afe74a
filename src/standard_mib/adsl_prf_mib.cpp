// ADSL line profiles and their ports for standard MIBs.

#include "combo/adsl/adsl_profile.h"
#include "standard_mib/profiles.h"

static ScaledValue tenthsOf(u16 value) { return {0, 1, value}; }

static void adsl_line_prf_to_pri_mib(const StdAdslLinePrf& view, AdslPrfRecord& record) {
  record.requestId = view.id;
  copyName(record.name, view.name);
  record.item.AdslLineType = view.lineType;
  record.item.MinRateUp = view.minRateUp;
  record.item.MinRateDn = view.minRateDown;
  record.item.MaxInterLeaveDelayUp = static_cast<u16>(view.maxInterleaveDelayUp);
  record.item.MaxInterLeaveDelayDn = static_cast<u16>(view.maxInterleaveDelayDn);
  record.item.SnrmUp = tenthsOf(view.targetMarginUp);
  record.item.SnrmDn = tenthsOf(view.targetMarginDown);
  record.item.MaxSnrmUp = view.maxMarginUp;
  record.item.MaxSnrmDn = view.maxMarginDown;
  record.item.MinSnrmUp = view.minMarginUp;
  record.item.MinSnrmDn = view.minMarginDown;
}

static void adsl_line_prf_to_std_mib(const AdslPrfRecord& record, StdAdslLinePrf& view) {
  view = {};
  view.id = record.prfId;
  copyName(view.name, record.name);
  view.lineType = record.item.AdslLineType;
  view.minRateUp = record.item.MinRateUp;
  view.minRateDown = record.item.MinRateDn;
  view.maxInterleaveDelayUp = record.item.MaxInterLeaveDelayUp;
  view.maxInterleaveDelayDn = record.item.MaxInterLeaveDelayDn;
  view.targetMarginUp = static_cast<u16>(record.item.SnrmUp.value);
  view.targetMarginDown = static_cast<u16>(record.item.SnrmDn.value);
  view.maxMarginUp = record.item.MaxSnrmUp;
  view.maxMarginDown = record.item.MaxSnrmDn;
  view.minMarginUp = record.item.MinSnrmUp;
  view.minMarginDown = record.item.MinSnrmDn;
}

// The view over the defaults, by the road of batches.
static int write(const StdAdslLinePrf& view) {
  AdslPrfRecord record;
  fillDefaults(adslLineKind, &record);
  adsl_line_prf_to_pri_mib(view, record);
  SnmpErrInfo err;
  return set_adsl_line_prf(&err, &record, 1);
}

int std_snmp_adsl_line_prf_add(const StdAdslLinePrf* view) {
  if (view == nullptr) return kNullArgument;
  SnmpErrInfo err;
  if (view->id != kAllocateId && checkIdLegalExp0(adslLineKind, &err, view->id) != 0) return -1;
  return write(*view);
}

int std_snmp_adsl_line_prf_del(u16 id) {
  SnmpErrInfo err;
  if (checkIdLegalExp0(adslLineKind, &err, id) != 0) return -1;
  return del_spc_adsl_line_prf(&err, &id, 1);
}

int std_snmp_adsl_line_prf_mod(const StdAdslLinePrf* view) {
  if (view == nullptr) return kNullArgument;
  SnmpErrInfo err;
  if (checkIdLegal(adslLineKind, &err, view->id) != 0 || !profileExists(adslLineKind, view->id)) return -1;
  return write(*view);
}

int std_snmp_get_first_adsl_line_prf(StdAdslLinePrf* view) {
  if (view == nullptr) return kNullArgument;
  AdslPrfRecord record;
  fillDefaults(adslLineKind, &record);
  adsl_line_prf_to_std_mib(record, *view);
  return 0;
}

int std_snmp_adsl_line_prf_get(u16 id, StdAdslLinePrf* view) {
  if (view == nullptr) return kNullArgument;
  SnmpErrInfo err;
  AdslPrfRecord record;
  if (get_adsl_line_prf(&err, &record, id) != 0) return -1;
  adsl_line_prf_to_std_mib(record, *view);
  return 0;
}

int std_snmp_get_next_adsl_line_prf(u16 id, StdAdslLinePrf* view) {
  if (view == nullptr) return kNullArgument;
  for (u32 next = u32{id} + 1; next <= adslLineKind.mostId; ++next) {
    if (std_snmp_adsl_line_prf_get(static_cast<u16>(next), view) == 0) return 0;
  }
  return -1;
}

int std_snmp_attach_adsl_line_prf(u16 slot, u16 port, u16 id) { return attachOne(adslLineKind, slot, port, id); }

int std_snmp_get_attach_adsl_line_prfid(u16 slot, u16 port) {
  ObjIndex object;
  u16 id = 0;
  if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0) return -1;
  return attachedProfile(adslLineKind, &object, &id) < 0 ? -1 : id;
}

int std_snmp_get_attach_adsl_line_first_prfid(u16* slot, u16* port, u16* id) {
  return firstAttached(adslLineKind.portTypes, std_snmp_get_attach_adsl_line_prfid, slot, port, id);
}

// Begins at ADSL ports, and goes on over all data cards.
int std_snmp_get_attach_adsl_line_next_prfid(u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id) {
  if (slot == 0) return std_snmp_get_attach_adsl_line_first_prfid(nextSlot, nextPort, id);
  return nextAttached(std_snmp_get_attach_adsl_line_prfid, slot, port, nextSlot, nextPort, id);
}
