#include "data/common/terminal.h"

#include "platform/wrappers.h"

u16 cutNumber(const char* text) { return static_cast<u16>(bep_atoiEx(text)); }

void vty_err_info(Vty* vty, const SnmpErrInfo& err) { vty_out(vty, "errCode:%d\r\n", static_cast<i16>(err.errCode)); }

int transCliAddr2ObjIndex(Vty* vty, const CliAddr* address, ObjIndex* object) {
  if (address == nullptr || object == nullptr) return refuse(vty, "data or objIndex is NULL.\r\n");
  if (address->level < 1 || address->level > 3) return refuse(vty, "level %d err.\r\n", address->level);
  const int code = SlotNoPortConvertObjIndex(address->slot, address->port, 0, object);
  if (code == 0) return 0;
  return refuse(vty, "func %s SlotNoPortConvertObjIndex return err %d.\r\n", __func__, code);
}

int readInterfaces(Vty* vty, const char* text, LIST* addresses) {
  if (CliInputConvertObjIndex(text, addresses) == 0) return 0;
  return refuse(vty, "invalid interface %s\r\n", text);
}
