#include "combo/adsl_config_aux.h"

#include "common/msan_obj.h"

u32 maxAdPortNum = 0;

int get_sys_max_adsl_port_num() {
  const int slots = getSysMaxSlotNum();
  maxAdPortNum = slots > 0 ? static_cast<u32>(slots) * kPortsOfSlot : 0;
  return 0;
}
