// The DSL area's lists.

#include "combo/adsl/adsl_config_interface.h"
#include "combo/adsl/adsl_profile.h"
#include "combo/port/combo_port_state.h"
#include "combo/port/port_enable_config.h"
#include "combo/pvc/pvc_profile.h"
#include "combo/vdsl/vdsl_config_interface.h"
#include "common/areas.h"
#include "common/msan_init.h"
#include "platform/command_line.h"
#include "platform/log.h"

static constexpr Step init[] = {init_adsl_cfg, msan_init_data_port_enable_config, vdsl_init_cfg};
static constexpr Step snmpRegister[] = {register_portdelt_test_msg_snmp,
                                        register_portselt_test_msg_snmp,
                                        register_portstate_msg_snmp,
                                        adsl_reg_snmp_inf,
                                        vdsl_reg_snmp_info,
                                        msan_reg_data_port_enable_snmp};
static constexpr Step install[] = {install_gepon_msan_port_get_state_element, init_adsl_cmd, vdsl_init_cli_cmd,
                                   msan_init_data_port_enable_cmd};
static constexpr PrintStep showrun[] = {adsl_showrun_inf, vdsl_showrun_info, msan_data_port_enable_showrun};
static constexpr SlotStep hotplug[] = {hotplug_data_port_enable, hotplug_ad_prf_attach, hotplug_pvc_prf_attach,
                                       vdsl_hotplug};

void msan_combo_init() {
  callAll(init);
  ulogPrintf(gModuleId_Msan, kLogDebug, "msan combo init ok! \n\r");
}

void msan_combo_snmp_register() {
  callAll(snmpRegister);
  ulogPrintf(gModuleId_Msan, kLogDebug, "msan combo snmp register ok! \n\r");
}

void msan_combo_cli_install() { callAll(install); }

void msan_combo_showrun(Vty* vty) {
  vty_out(vty, "!msan combo config ---------------- %s", "\r\n");
  callAll(showrun, vty);
}

void msan_combo_hotplug(u16 slot) { callAll(hotplug, slot); }
