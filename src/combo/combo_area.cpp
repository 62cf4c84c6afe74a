// The DSL area's lists.

#include "common/areas.h"
#include "common/msan_init.h"
#include "platform/command_line.h"
#include "platform/log.h"

int msan_combo_init() {
  ulogPrintf(gModuleId_Msan, 10, "msan combo init ok! \n\r");
  return 0;
}

int msan_combo_snmp_register() {
  ulogPrintf(gModuleId_Msan, 10, "msan combo snmp register ok! \n\r");
  return 0;
}

int msan_combo_cli_install() { return 0; }

int msan_combo_showrun(Vty* vty) {
  vty_out(vty, "!msan combo config ---------------- %s", "\r\n");
  return 0;
}

int msan_combo_hotplug(u16) { return 0; }
