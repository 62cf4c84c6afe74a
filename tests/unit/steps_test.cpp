// The steps of the areas' lists go on when one of them fails, so that nobody sees what one gives.

#include "common/areas.h"
#include "host/chassis.h"
#include "module_fixture.h"
#include "msan/entries.h"

// Of many headers, which don't go together.
int hotplug_alarm_prf_attach(u16), init_voiceport_cfg(u16), ndistrib_voiceport(u16), nerase_voiceport(u16),
    send_rtp_vlan_by_slot(u16), send_rtp_ip_by_slot(u16), distrib_pots_general_para(u16), hotplug_pvc_prf_attach(u16),
    hotplug_ad_prf_attach(u16), vdsl_hotplug(u16), hotplug_data_port_enable(u16),
    data_port_enable_after_cardauth_db(u16), recover_port_vlan_cfg(u16), recover_macnum_limit_cfg(u16),
    delete_macnum_limit_cfg(u16), recover_port_rate_limit_attach_cfg(u16), res_port_plc_attach_cfg(u16),
    res_pvc_plc_attach_cfg(u16), recover_ethschedule_cfg(u16), delete_ethschedule_cfg(u16), hotplug_ces_service(u16),
    card_unauth_ces_service(u16), del_ces_service_db(u16), hotplug_mpair(u16), card_unauth_mpair(u16),
    hotplug_card_work_mode(u16), recover_storm_suppression_cfg(u16), delete_storm_suppression_cfg(u16),
    hotplug_port_isolation(u16), loopdetect_callback_after_cardauth_db(u16), loop_detect_cfg_recover(u16),
    vdistrib_pots_voltcurrent(u16), verase_pots_voltcurrent(u16), volt_current_callback_after_cardauth_db(u16);
int show_run_dsp_profile(Vty*), nshowrun_sipcallprofile(Vty*), alarm_prf_showrun(Vty*), showrun_adsl_alarm_attach(Vty*),
    nshowrun_voice_self_port(Vty*), showrun_voiceport(Vty*), show_run_voice_vlan(Vty*),
    nshowrun_voice_self_switch(Vty*), show_run_voice_ip(Vty*), nshowrun_ngn_protocol_type(Vty*),
    showrun_pots_general_para(Vty*), pvc_prf_showrun(Vty*), pvc_prf_attach_showrun(Vty*), adsl_showrun_inf(Vty*),
    vdsl_showrun_info(Vty*), msan_data_port_enable_showrun(Vty*), port_rate_profile_showrun(Vty*),
    showrun_port_plc_attach(Vty*), showrun_pvc_plc_attach(Vty*), showrun_ces_service(Vty*), showrun_mpair(Vty*),
    showrun_card_work_mode(Vty*), show_run_loopdetect(Vty*), vshow_run_pots_voltcurrent(Vty*);

namespace {

// By what they give of an ADSL, a VDSL, a POTS and a CES card, and of a slot that is none: g for 0.
const std::pair<const char*, std::vector<SlotStep>> steps[] = {
    {"gggg-",
     {hotplug_alarm_prf_attach, init_voiceport_cfg, hotplug_pvc_prf_attach, hotplug_ad_prf_attach, vdsl_hotplug,
      recover_ethschedule_cfg, recover_storm_suppression_cfg, hotplug_port_isolation, loop_detect_cfg_recover,
      vdistrib_pots_voltcurrent, msan_combo_hotplug}},
    {"ggggg",
     {ndistrib_voiceport, send_rtp_vlan_by_slot, send_rtp_ip_by_slot, distrib_pots_general_para,
      delete_macnum_limit_cfg, recover_port_rate_limit_attach_cfg, delete_ethschedule_cfg, card_unauth_ces_service,
      del_ces_service_db, msan_ppda_hotplug, msan_voice_hotplug, msan_mcast_hotplug}},
    {"gg-g-",
     {data_port_enable_after_cardauth_db, recover_port_vlan_cfg, recover_macnum_limit_cfg, hotplug_mpair,
      card_unauth_mpair, delete_storm_suppression_cfg, loopdetect_callback_after_cardauth_db,
      msan_data_clear_before_cardauth_db}},
    {"gg---", {hotplug_data_port_enable}},
    {"-g---", {res_port_plc_attach_cfg, res_pvc_plc_attach_cfg}},
    {"--g--", {nerase_voiceport, verase_pots_voltcurrent, volt_current_callback_after_cardauth_db}},
    {"---g-", {hotplug_ces_service, hotplug_card_work_mode, msan_data_hotplug}},
};

// clang-format off
const PrintStep prints[] = {
    show_run_dsp_profile, nshowrun_sipcallprofile, alarm_prf_showrun, showrun_adsl_alarm_attach,
    nshowrun_voice_self_port, showrun_voiceport, show_run_voice_vlan, nshowrun_voice_self_switch,
    show_run_voice_ip, nshowrun_ngn_protocol_type, showrun_pots_general_para, pvc_prf_showrun,
    pvc_prf_attach_showrun, adsl_showrun_inf, vdsl_showrun_info, msan_data_port_enable_showrun,
    port_rate_profile_showrun, showrun_port_plc_attach, showrun_pvc_plc_attach, showrun_ces_service,
    showrun_mpair, showrun_card_work_mode, show_run_loopdetect, vshow_run_pots_voltcurrent, msan_combo_showrun,
    msan_ppda_showrun, msan_data_showrun, msan_mcast_showrun, msanVoice_Showrun};
// clang-format on

class Steps : public ModuleTest {
 protected:
  Steps() {
    host::clearChassis();
    for (const auto& [slot, type] :
         {std::pair<u16, const char*>{1, "adsl16"}, {2, "vdsl32"}, {3, "pots32"}, {5, "ces32"}}) {
      host::authorise(slot, *host::findCardType(type));
      msan_card_auth_init_db(slot);
      host::setCardState(slot, host::CardState::up);
    }
  }
  ~Steps() override { host::clearChassis(); }
};

TEST_F(Steps, TellWhatTheyGive) {
  for (const auto& [good, alike] : steps) {
    for (std::size_t i = 0; i < alike.size(); ++i) {
      std::string given;
      for (const int slot : {1, 2, 3, 5, 21}) given += alike[i](static_cast<u16>(slot)) == 0 ? 'g' : '-';
      EXPECT_EQ(given, good) << "step " << i;
    }
  }
}

TEST_F(Steps, PrintWithoutFailing) {
  Vty vty;
  for (const PrintStep& print : prints) EXPECT_EQ(print(&vty), 0) << "step " << &print - prints;
}

}  // namespace
