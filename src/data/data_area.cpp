// The layer-2 area's lists.

#include "common/areas.h"
#include "common/msan_init.h"
#include "data/common/cards.h"
#include "data/loop/loop_detect.h"
#include "data/mac/line_mac_table.h"
#include "data/mac/port_mac_limit.h"
#include "data/policy/port_attach_policy.h"
#include "data/policy/pvc_attach_policy.h"
#include "data/queue/eth_schedule.h"
#include "data/rate/port_rate_bind.h"
#include "data/rate/port_rate_profile.h"
#include "data/raw/card_work_mode.h"
#include "data/raw/ces_service.h"
#include "data/raw/dsl_mpair.h"
#include "data/slot/port_isolate.h"
#include "data/slot/storm_suppression.h"
#include "data/vlan/port_vlan.h"
#include "data/vlan/vlan_profile.h"
#include "platform/command_line.h"
#include "platform/log.h"
#include "platform/objects.h"

// clang-format off
static constexpr Step init[] = {
    init_port_rate_profile_type,
    init_port_rate_default_prf,
    init_pvc_attach_plc,
    init_port_vlan_cfg_module,
};
static constexpr Step snmpRegister[] = {
    registerOf<portIsolation>,
    registerOf<portRateBind>,
    register_port_rate_profile_set_snmp,
    register_port_rate_profile_del_snmp,
    registerOf<ethSchedule>,
    registerOf<macLimit>,
    registerOf<stormSuppression>,
    register_linemactbl_msg_snmp,
    registerOf<portVlan>,
    registerOf<pvcPolicy>,
    registerOf<portPolicy>,
    registerOf<loopDetect>,
    snmp_reg_mpair,
    snmp_reg_card_work_mode,
    snmp_reg_ces_service,
};
static constexpr Step install[] = {
    installOf<ethSchedule>,
    installOf<macLimit>,
    install_gepon_msan_port_mactable_element,
    installOf<stormSuppression>,
    installOf<portIsolation>,
    installOf<portRateBind>,
    install_element_port_rate_profile,
    install_port_vlan_cfg_cli_element,
    installOf<pvcPolicy>,
    installOf<portPolicy>,
    installOf<loopDetect>,
    install_mpair,
    install_card_work_mode,
    install_ces_service,
};
static constexpr SlotStep hotplug[] = {
    recover_ethschedule_cfg,
    recover_macnum_limit_cfg,
    recover_storm_suppression_cfg,
    hotplug_port_isolation,
    recover_port_rate_limit_attach_cfg,
    recover_port_vlan_cfg,
    res_pvc_plc_attach_cfg,
    res_port_plc_attach_cfg,
    loop_detect_cfg_recover,
    hotplug_mpair,
    hotplug_card_work_mode,
    hotplug_ces_service,
};
static constexpr SlotStep cardAuthorised[] = {
    delete_ethschedule_cfg,
    delete_macnum_limit_cfg,
    delete_storm_suppression_cfg,
};
static constexpr PrintStep showrun[] = {
    port_rate_profile_showrun,
    showrun_pvc_plc_attach,
    showrun_port_plc_attach,
    show_run_loopdetect,
    showrun_mpair,
    showrun_card_work_mode,
    showrun_ces_service,
};
// Of each slot with a card of the module's, all items of one slot ahead of the next slot.
static constexpr void (*slotShowrun[])(Vty* vty, u16 slot) = {
    showrunOf<ethSchedule>,
    showrunOf<macLimit>,
    showrunOf<stormSuppression>,
    showrunOf<portIsolation>,
    showrunOf<portRateBind>,
    showrunOf<portVlan>,
};
// clang-format on

void msan_data_init() {
  callAll(init);
  ulogPrintf(gModuleId_Msan, kLogDebug, "msan data init ok! \n\r");
}

void msan_data_snmp_register() {
  callAll(snmpRegister);
  ulogPrintf(gModuleId_Msan, kLogDebug, "msan data snmp register ok! \n\r");
}

void msan_data_cli_install() { callAll(install); }

// The banner of this area stands behind its lines.
void msan_data_showrun(Vty* vty) {
  callAll(showrun, vty);
  u32 slots[100];
  u32 count = 0;
  if (ddGetServeSlotList(slots, 100, &count) != 0) count = 0;
  for (u32 i = 0; i < count; ++i) {
    const auto slot = static_cast<u16>(slots[i]);
    if (isMsanCard(slot)) callAll(slotShowrun, vty, slot);
  }
  vty_out(vty, "!msan data config ---------------- %s", "\r\n");
}

void msan_data_hotplug(u16 slot) { callAll(hotplug, slot); }

void msan_data_clear_before_cardauth_db(u16 slot) { callAll(cardAuthorised, slot); }
