// The layer-2 area's lists.

#include "common/areas.h"
#include "common/msan_init.h"
#include "data/vlan_profile.h"
#include "platform/command_line.h"
#include "platform/log.h"

static constexpr Step init[] = {init_port_vlan_cfg_module};
static constexpr Step install[] = {installVlanProfileCommands, installVlanServiceCommands, installVlanProfileShow};

int msan_data_init() {
  callAll(init);
  ulogPrintf(gModuleId_Msan, 10, "msan data init ok! \n\r");
  return 0;
}

int msan_data_snmp_register() {
  ulogPrintf(gModuleId_Msan, 10, "msan data snmp register ok! \n\r");
  return 0;
}

int msan_data_cli_install() { return callAll(install); }

int msan_data_showrun(Vty* vty) {
  vty_out(vty, "!msan data config ---------------- %s", "\r\n");
  return 0;
}

int msan_data_hotplug(u16) { return 0; }
