#include "combo/adsl/adsl_config_aux.h"

#include "combo/adsl/adsl_profile.h"
#include "common/interface_list.h"
#include "common/msan_obj.h"
#include "platform/objects.h"

u32 maxAdPortNum = 0;

int get_sys_max_adsl_port_num() {
  const int slots = getSysMaxSlotNum();
  maxAdPortNum = slots > 0 ? static_cast<u32>(slots) * kPortsOfSlot : 0;
  return 0;
}

int msan_data_obj_validation(u16 slot, u16 port) {
  const int card = get_card_type(slot);
  if (card <= 0 || caCheckCardTypeIsMsanDataCard(static_cast<u16>(card)) != 0) return -1;
  u16 ports = 0;
  if (ddGetBoardServePortAmountByType(static_cast<u16>(card), &ports) != 0) return -1;
  return port >= 1 && port <= ports ? 0 : -1;
}

int adsl_min_rate_get(u16 slot, u16 port, int which, u32* rate) {
  if (rate == nullptr || msan_data_obj_validation(slot, port) != 0) return -1;
  ObjIndex object;
  if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0) return -1;
  u16 id = kDefaultProfile;
  if (attachedProfile(adslLineKind, &object, &id) < 0) return -1;
  if (id == kDefaultProfile) {
    *rate = 0;
    return 0;
  }
  AdslPrfRecord record;
  if (get_adsl_prf(&record, id) != 0 || (which != kUpstream && which != kDownstream)) return -1;
  *rate = which == kUpstream ? record.item.MinRateUp : record.item.MinRateDn;
  return 0;
}
