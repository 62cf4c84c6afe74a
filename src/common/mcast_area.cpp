// The multicast area: a frame, and nothing more.

#include "common/areas.h"
#include "common/debug_control.h"
#include "common/msan_init.h"
#include "platform/command_line.h"
#include "platform/log.h"

void msan_mcast_init() { ulogPrintf(gModuleId_Msan, kLogDebug, "msan multicast init ok! \n\r"); }

void msan_mcast_snmp_register() { ulogPrintf(gModuleId_Msan, kLogDebug, "msan multicast snmp register ok! \n\r"); }

void msan_mcast_cmd_install() {}

void msan_mcast_showrun(Vty* vty) { vty_out(vty, "!msan multicast config ---------------- %s", "\r\n"); }

void msan_mcast_hotplug(u16) {
  if (debugOn(Area::multicast)) ulogPrintf(gModuleId_Msan, kLogDebug, "%s: finished. \n\r", __func__);
}
