#include "combo/port/dsl_port_mode.h"

#include <new>

#include "combo/adsl/adsl_config_aux.h"
#include "combo/vdsl/vdsl_line_func_prf.h"
#include "common/interface_list.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "platform/log.h"

static constexpr u16 kSelfAdaption = 3;

// The mode that the port's line profile asks for.
static int modeOfVdsl(const ObjIndex* object, u16* mode) {
  u16 id = 0;
  if (attachedProfile(vdslLineKind, object, &id) < 0) return -1;
  VdslLinePrfRecord record;
  SnmpErrInfo err;
  if (get_vdsl_line_prf_base(&err, &record, id) != 0) return -1;
  const u16 portMode = record.item.portMode;
  if (portMode != kAtmMode && portMode != kPtmMode && portMode != kSelfAdaption) return -1;
  // A line that finds its mode is treated as ATM.
  *mode = portMode == kPtmMode ? kPtmMode : kAtmMode;
  return 0;
}

int get_dsl_obj_mode(const ObjIndex* object, u16* mode) {
  if (object == nullptr || mode == nullptr) return -1;
  if (isObjAndTypeMatch(object, kVdslPort) == 0 || isObjAndTypeMatch(object, kVdslPotsPort) == 0) {
    return modeOfVdsl(object, mode);
  }
  if (isObjAndTypeMatch(object, kAdslPort) == 0) {
    *mode = kAtmMode;
    return 0;
  }
  ulogPrintf(gModuleId_Msan, kLogDebug, "input port is not dsl Port!\r\n");
  return -1;
}

int get_dsl_port_mode(u16 slot, u16 port, u16* mode) {
  ObjIndex object;
  if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0) return -1;
  return get_dsl_obj_mode(&object, mode);
}
