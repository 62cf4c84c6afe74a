// The feed area's lists.

#include "common/areas.h"
#include "common/debug_control.h"
#include "common/msan_init.h"
#include "platform/command_line.h"
#include "platform/log.h"
#include "ppda/volt_current.h"

void msan_ppda_init() { ulogPrintf(gModuleId_Msan, kLogDebug, "msan ppda init ok! \n\r"); }

void msan_ppda_snmp_register() {
  reg_snmp_pots_voltcurrent_init();
  ulogPrintf(gModuleId_Msan, kLogDebug, "msan ppda snmp register ok! \n\r");
}

void msan_ppda_cmd_install() { volt_current_install(); }

void msan_ppda_showrun(Vty* vty) {
  vty_out(vty, "!msan ppda config ---------------- %s", "\r\n");
  vshow_run_pots_voltcurrent(vty);
}

void msan_ppda_hotplug(u16 slot) {
  vdistrib_pots_voltcurrent(slot);
  if (debugOn(Area::ppda)) ulogPrintf(gModuleId_Msan, kLogDebug, "%s: finished. \n\r", __func__);
}
