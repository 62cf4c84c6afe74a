// Alarm profiles and their ports for standard MIBs.

#include <cstring>

#include "common/interface_list.h"
#include "common/obj_attributes.h"
#include "common/report.h"
#include "standard_mib/profiles.h"
#include "voice/alarm/alarm_attach.h"
#include "voice/alarm/ngn_alarm_prof.h"

static constexpr int kNoSlots = -2, kNoPort = -3, kNoPorts = -102;
static constexpr int kStandardMib = 2;  // origin of a report

static void copy_alarm_prf_to_pri_mib(const StdAlarmPrf& view, AlarmPrfRecord& record) {
  copyName(record.name, view.name);
  record.item.NeLossThreshold15min = view.neLoss;
  record.item.NeLofsThreshold15min = view.neLofs;
  record.item.NeEsThreshold15min = view.neEs;
  record.item.NeLolsThreshold15min = view.neLols;
  record.item.FeLossThreshold15min = view.feLoss;
  record.item.FeLofsThreshold15min = view.feLofs;
  record.item.FeEsThreshold15min = view.feEs;
  record.item.FeLprsThreshold15min = view.feLprs;
}

static void copy_alarm_prf_to_std_mib(const AlarmPrfRecord& record, StdAlarmPrf& view) {
  view.id = record.prfId;
  copyName(view.name, record.name);
  view.neLoss = record.item.NeLossThreshold15min;
  view.neLofs = record.item.NeLofsThreshold15min;
  view.neEs = record.item.NeEsThreshold15min;
  view.neLols = record.item.NeLolsThreshold15min;
  view.feLoss = record.item.FeLossThreshold15min;
  view.feLofs = record.item.FeLofsThreshold15min;
  view.feEs = record.item.FeEsThreshold15min;
  view.feLprs = record.item.FeLprsThreshold15min;
}

int std_dsl_alarm_prf_add(const StdAlarmPrf* view) {
  if (view == nullptr) return kNullArgument;
  AlarmPrfRecord record;
  fill_alarm_prf_dft_para(&record);
  copy_alarm_prf_to_pri_mib(*view, record);
  record.requestId = view->id;
  SnmpErrInfo err;
  return set_alarm_prf(&err, &record, 1);
}

int std_dsl_alarm_prf_del(u16 id) {
  SnmpErrInfo err;
  return check_alarm_prf_id_legal_exp0(&err, id) == 0 ? delete_spc_alarm_prf(&err, &id, 1) : -1;
}

int std_dsl_alarm_prf_mod(const StdAlarmPrf* view) {
  if (view == nullptr) return kNullArgument;
  SnmpErrInfo err;
  AlarmPrfRecord stored;
  if (check_alarm_prf_id_legal_exp0(&err, view->id) != 0) return -1;
  return get_alarm_profile_attribute(view->id, &stored) == 0 ? std_dsl_alarm_prf_add(view) : -1;
}

int std_dsl_alarm_prf_get(u16 id, StdAlarmPrf* view) {
  if (view == nullptr) return kNullArgument;
  SnmpErrInfo err;
  AlarmPrfRecord record;
  if (check_alarm_prf_id_legal(&err, id) != 0 || get_alarm_prf(&err, &record, id) != 0) return -1;
  copy_alarm_prf_to_std_mib(record, *view);
  return 0;
}

int std_get_first_dsl_alarm_prf(StdAlarmPrf* view) { return std_dsl_alarm_prf_get(kDefaultProfile, view); }

int std_get_next_dsl_alarm_prf(u16 id, StdAlarmPrf* view) {
  if (view == nullptr) return kNullArgument;
  for (u32 next = u32{id} + 1; next <= kMostAlarmId; ++next) {
    if (std_dsl_alarm_prf_get(static_cast<u16>(next), view) == 0) return 0;
  }
  return -1;
}

int std_dsl_alarm_prf_available_id() {
  AlarmTable all;
  SnmpErrInfo err;
  u16 id = 0;
  return all && get_free_alarm_prf_id(&err, all.rows(), &id) == 0 ? id : -1;
}

// --- Ports ---

int std_alarm_profile_msan_obj_validation(u16 slot, u16 port) {
  const auto ports = dataPortsOf(slot);
  return ports && port >= 1 && port <= *ports ? 0 : -1;
}

int std_attach_dsl_alarm_prf_by_id(u16 slot, u16 port, u16 id) {
  ObjIndex object;
  ObjList nodes;
  SnmpErrInfo err;
  AlarmPrfRecord record;
  if (std_alarm_profile_msan_obj_validation(slot, port) != 0 || check_alarm_prf_id_legal(&err, id) != 0 ||
      get_alarm_profile_attribute(id, &record) != 0 || SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0 ||
      setObjAttrDataByCondition(&object, kAlarmAttribute, &id, 0, sizeof id) != 0 ||
      addPortNode(nodes, &err, object, id) != 0) {
    return -1;
  }
  // It is stored: a message that fails is repaired when the card returns.
  attach_alarm_prf_adapt(nodes, 1);
  reportChange(slot, alarmKind.attachId, kStandardMib);
  return 0;
}

int std_attach_dsl_alarm_prf_by_name(u16 slot, u16 port, const char* name) {
  if (name == nullptr) return kNullArgument;
  SnmpErrInfo err;
  u16 id = 0;
  if (strnlen(name, kProfileNameBytes + 1) > kProfileNameBytes) return -1;
  return get_alarm_prf_id_by_name(&err, &id, name) == 0 ? std_attach_dsl_alarm_prf_by_id(slot, port, id) : -1;
}

int std_get_attached_dsl_alarm_prf_id(u16 slot, u16 port) {
  ObjIndex object;
  u16 id = 0;
  if (std_alarm_profile_msan_obj_validation(slot, port) != 0 ||
      SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0 || attachedProfile(alarmKind, &object, &id) != 0) {
    return -1;
  }
  return id;
}

int std_snmp_get_attach_alarm_first_prfid(u16* slot, u16* port, u16* id) {
  return std_snmp_get_attach_alarm_next_prfid(0, 0, slot, port, id);
}

// The first port with a row behind a place.
int std_snmp_get_attach_alarm_next_prfid(u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id) {
  if (nextSlot == nullptr || nextPort == nullptr || id == nullptr) return kNullArgument;
  const ServiceSlots slots;
  if (!slots) return kNoSlots;
  for (const u32 number : slots.list()) {
    const auto ports = number >= slot ? dataPortsOf(static_cast<u16>(number)) : std::nullopt;
    if (!ports) continue;
    if (*ports == 0) return kNoPorts;
    if (number == slot && port > *ports) return kNoPort;
    for (u32 at = number == slot ? port + 1u : 1u; at <= *ports; ++at) {
      const int attached = std_get_attached_dsl_alarm_prf_id(static_cast<u16>(number), static_cast<u16>(at));
      if (attached == -1) continue;
      *nextSlot = static_cast<u16>(number);
      *nextPort = static_cast<u16>(at);
      *id = static_cast<u16>(attached);
      return 0;
    }
  }
  return -1;
}
