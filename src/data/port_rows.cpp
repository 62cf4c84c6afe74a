#include "data/port_rows.h"

#include "combo/port/dsl_port_mode.h"
#include "data/common/data_item.h"

int get_pvcnum(u16 slot, u16 port, u16* rows) {
  if (isAdslCard(slot)) {
    *rows = kPvcRows;
    return 0;
  }
  u16 mode = 0;
  if (!isVdslCard(slot) || get_dsl_port_mode(slot, port, &mode) != 0 || (mode != kAtmMode && mode != kPtmMode))
    return -1;
  *rows = mode == kAtmMode ? kPvcRows : u16{1};
  return 0;
}

bool hasRows(const ObjIndex* object) {
  u16 rows = 0;
  return get_pvcnum(object->addr[1], object->addr[2], &rows) == 0;
}

int check_pvcnum(u16 slot, u16 port, u16* rows, bool* multiPvc, SnmpErrInfo* err) {
  u16 right = 0;
  if (get_pvcnum(slot, port, &right) != 0) return -1;
  if (isAdslCard(slot) && *rows != kPvcRows) return reject(err, kRowCount, {slot, port, *rows});
  *rows = right;
  *multiPvc = right == kPvcRows;
  return 0;
}
