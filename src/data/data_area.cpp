// The layer-2 area's lists.

#include "common/areas.h"
#include "common/msan_init.h"
#include "platform/command_line.h"
#include "platform/log.h"

int msan_data_init() {
  ulogPrintf(gModuleId_Msan, 10, "msan data init ok! \n\r");
  return 0;
}

int msan_data_snmp_register() {
  ulogPrintf(gModuleId_Msan, 10, "msan data snmp register ok! \n\r");
  return 0;
}

int msan_data_cli_install() { return 0; }

int msan_data_showrun(Vty* vty) {
  vty_out(vty, "!msan data config ---------------- %s", "\r\n");
  return 0;
}

int msan_data_hotplug(u16) { return 0; }
