// Whether a data port is in service, for standard MIBs.

#include "common/obj_attributes.h"
#include "standard_mib/ports.h"

static int objectOf(u16 slot, u16 port, ObjIndex* object) {
  return configuredDataCard(slot) != 0 && SlotNoPortConvertObjIndex(slot, port, 0, object) == 0 ? 0 : -1;
}

int std_snmp_data_port_enable_set(u16 slot, u16 port, u8 value) {
  ObjIndex object;
  if (objectOf(slot, port, &object) != 0) return -1;
  return setObjAttrDataByCondition(&object, kPortEnableAttribute, &value, 0, sizeof value) == 0 ? 0 : -1;
}

int std_snmp_data_port_enable_get(u16 slot, u16 port, u8* value) {
  if (value == nullptr) return kNullArgument;
  ObjIndex object;
  u8 stored = 0;
  if (objectOf(slot, port, &object) != 0 ||
      getObjAttrDataByCondition(&object, kPortEnableAttribute, &stored, 0, sizeof stored) != 0) {
    return -1;
  }
  *value = stored;
  return 0;
}
