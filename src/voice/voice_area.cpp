// The voice area's lists.

#include "voice/voice_area.h"

#include "common/areas.h"
#include "common/commands.h"
#include "common/debug_control.h"
#include "common/msan_init.h"
#include "platform/log.h"
#include "voice/alarm/alarm_area.h"
#include "voice/globals/cidMode.h"
#include "voice/globals/mgc.h"
#include "voice/globals/phoneNumber.h"
#include "voice/globals/potsGeneral.h"
#include "voice/globals/rfc2833.h"
#include "voice/globals/rohTimeout.h"
#include "voice/globals/signalToneTimer.h"
#include "voice/globals/voiceMD5.h"
#include "voice/globals/voiceTimer.h"
#include "voice/port/msan_voice_port_cfg.h"
#include "voice/port/msan_vportenable_cfg.h"
#include "voice/port/port_test.h"
#include "voice/port/voice_self_port.h"
#include "voice/profiles/dsp_channels.h"
#include "voice/profiles/ngn_dsp.h"
#include "voice/profiles/sip_call_profile.h"
#include "voice/service/msan_fax_para_cfg.h"
#include "voice/service/msan_rtp_prf_cfg.h"
#include "voice/service/msan_sip_cfg.h"
#include "voice/service/ngn_protocol.h"
#include "voice/service/ngn_vo_basis.h"
#include "voice/service/ngn_vo_ip.h"
#include "voice/service/ngn_vo_vlan.h"
#include "voice/service/voice_self_switch.h"
#include "voice/status/callSimulation.h"
#include "voice/status/msan_112test.h"
#include "voice/status/msan_ngn_user_register.h"
#include "voice/status/node_views.h"
#include "voice/status/onhook.h"
#include "voice/status/port_views.h"

// The node's global items, in the order in which they store their defaults, register, install their commands and print
// their lines of the running configuration.
static constexpr const VoiceItem* ngnItems[] = {&cidMode,    &potsNumber,      &iptNumber, &rfc2833,
                                                &rohTimeout, &signalToneTimer, &voiceMD5,  &voiceTimer};
static constexpr const VoiceItem* mgcRegisterItems[] = {&mgcRegister};
static constexpr const VoiceItem* faxItems[] = {&faxParameter};
static constexpr const VoiceItem* basisItems[] = {&voiceBasis};
static constexpr const VoiceItem* rtpItems[] = {&rtpResource};
static constexpr const VoiceItem* sipItems[] = {&sipServer, &sipDigitMap, &sipAdvanced};
// The gateway controllers and the POTS parameters stand apart from the others.
static constexpr const VoiceItem* ngnConfiguration[] = {&mgc, &potsGeneral};

// At the end of recovery the voice side is told all of it once more.
static constexpr Step afterConfiguration[] = {
    distributeOf<mgc>,         distributeOf<cidMode>,        distributeOf<potsNumber>,      distributeOf<iptNumber>,
    distributeOf<rfc2833>,     distributeOf<rohTimeout>,     distributeOf<signalToneTimer>, distributeOf<voiceMD5>,
    distributeOf<voiceTimer>,  ndistrib_sipcallprofile,      voice_port_enable_hotplug,     distrib_dsp_profile,
    distrib_voiceport,         [] { distrib_voice_vlan(); }, [] { distrib_voice_ip(); },    distributeOf<voiceBasis>,
    distributeOf<rtpResource>, distributeOf<faxParameter>,   distributeOf<sipServer>,       distributeOf<sipDigitMap>,
    distributeOf<sipAdvanced>, ndistrib_voice_self_switch,   distrib_voice_self_port};

void msan_ngn_showrun(Vty* vty) { showrunItems(ngnItems, vty); }

static int cli_msan_ngn_showrun(const CommandElement*, Vty* vty, int, char**) {
  msan_ngn_showrun(vty);
  return 0;
}
static constexpr Command commands[] = {
    command(CONFIG_NODE, "showrun msan ngn", cli_msan_ngn_showrun, "running configuration of the voice side"),
};

static void msanNGNDataInit() { initItems(ngnItems); }
static void msanNGNSnmpMsgRegister() {
  registerItems(ngnItems);
  snmp_msg_register_port_test();
}
static void msan_cmd_init() {
  installItems(ngnItems);
  install_offers("telephone", offerNumbers, nullptr);
  installOnhookCommand();
  installCommands(commands);
}

// One area of the voice service's running configuration by itself.
static int cli_showrun_faxpara_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr struct {
    const char* word;
    VoiceItems items;
  } kAreas[] = {{"faxshowrun", faxItems}, {"rtpshowrun", rtpItems}, {"sipshowrun", sipItems}};
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  const bool sip = bep_StrCmp(argv[0], "sipshowrun") == 0;
  for (const auto& area : kAreas)
    if (bep_StrCmp(argv[0], area.word) == 0) {
      showrunItems(area.items, vty);
      return sip ? nshowrun_sipcallprofile(vty) : 0;
    }
  return bep_StrCmp(argv[0], "voiceportshowrun") == 0 ? showrun_voiceport(vty) : -1;
}
static constexpr Command areaCommands[] = {
    command(CONFIG_NODE, "ngn cfg showrun [faxshowrun|rtpshowrun|sipshowrun|voiceportshowrun]",
            cli_showrun_faxpara_config_func, "running configuration of a part of the voice service"),
};

// The first failure ends it.
static void ngn_voice_cfg_init() {
  if (init_dsp() == 0 && init_voice_ip() == 0 && init_voice_vlan(0) == 0 && init_voice_vlan(1) == 0)
    initItems(basisItems);
}
static void ninit_faxparameter() { initItems(faxItems); }
static void ninit_rtp_profile() { initItems(rtpItems); }
static void ninit_sip() { initItems(sipItems); }
static void reg_ngn_voice_snmp_cmd_handle() {
  registerDspProfiles();
  registerDspChannels();
  registerVoiceIp();
  registerVoiceVlan();
  registerItems(basisItems);
}
static void install_ngn_voice_cmd_line() {
  install_dsp_cmd_line();
  installDspChannels();
  installVoiceIp();
  installVoiceVlan();
  installItems(basisItems);
}
static void show_run_ngn_voice(Vty* vty) {
  show_run_dsp_profile(vty);
  show_run_voice_vlan(vty);
  show_run_voice_ip(vty);
  showrunItems(basisItems, vty);
}
static void faxparacfg_regsnmpcmd_handle() { registerItems(faxItems); }
static void sipcfg_regsnmpcmdhandle() {
  registerItems(sipItems);
  registerSipCallProfiles();
  registerNgnProtocol();
  registerVoiceSelfSwitch();
  registerVoiceSelfPort();
}
static void rtp_prf_cfg_regsnmpcmd_handle() { registerItems(rtpItems); }
static void ninstall_faxcmdline() {
  installItems(faxItems);
  installCommands(areaCommands);
}
static void install_msan_sip_cfg_defun() {
  installItems(sipItems);
  ninstall_sipcallprf_cfgline();
  installNgnProtocol();
  installVoiceSelfSwitch();
  installVoiceSelfPort();
}
static void ninstall_rtp_cmdline() { installItems(rtpItems); }
static void nshowrun_faxparameter(Vty* vty) { showrunItems(faxItems, vty); }
static void showrun_msan_sip_cfg(Vty* vty) {
  showrunItems(sipItems, vty);
  nshowrun_sipcallprofile(vty);
  nshowrun_voice_self_switch(vty);
  nshowrun_voice_self_port(vty);
}
static void nshowrun_rtp_profile(Vty* vty) { showrunItems(rtpItems, vty); }

static void msan_ngn_cfg_init() { initItems(ngnConfiguration); }
static void mgc_reg_cfg_regsnmpcmd_handle() { registerItems(mgcRegisterItems); }
static void reg_snmp_cmd_data() {
  registerItems(ngnConfiguration);
  registerNodeViews();
  registerPortViews();
  registerAlarmAttachment();
  registerCallSimulation();
}
static void ninstall_mgc_register_cmdline() { installItems(mgcRegisterItems); }
static void install_sim_cmd_line() {
  installItems(ngnConfiguration);
  installNodeViews();
  installPortViews();
  installAlarmAttachment();
  installCallSimulation();
  installPotsGeneralCommands();
}
static void install_msan_ngncfg_showrun(Vty* vty) {
  showrunItems(ngnConfiguration, vty);
  showrun_adsl_alarm_attach(vty);
}

static void ngn_data_distribute(u16 slot) {
  distrib_pots_general_para(slot);
  hotplug_alarm_prf_attach(slot);
}

static constexpr Step init[] = {
    msanNGNDataInit,     ngn_voice_cfg_init, ninit_faxparameter, ninit_rtp_profile,       ninit_sip,
    init_sipcallprofile, init_alarm_prf,     msan_ngn_cfg_init,  ninit_ngn_protocol_type, ninit_voice_self_switch};
static constexpr Step snmpRegister[] = {
    msanNGNSnmpMsgRegister,        reg_ngn_voice_snmp_cmd_handle, voiceportcfg_regsnmpcmdhandle,
    faxparacfg_regsnmpcmd_handle,  sipcfg_regsnmpcmdhandle,       rtp_prf_cfg_regsnmpcmd_handle,
    mgc_reg_cfg_regsnmpcmd_handle, usereg_regsnmpcmd_handle,      test112_regsnmp_cmdhandle,
    reg_ngn_alarm_prf_cmd_handle,  msan_reg_vportenable_snmp,     reg_snmp_cmd_data};
static constexpr Step install[] = {msan_cmd_init,
                                   install_ngn_voice_cmd_line,
                                   ninstall_voiceportcfg_cmdline,
                                   ninstall_faxcmdline,
                                   install_msan_sip_cfg_defun,
                                   ninstall_rtp_cmdline,
                                   ninstall_mgc_register_cmdline,
                                   ninstall_ngnuser_register_cmdline,
                                   install_msan_112test_defun,
                                   init_alram_prf_cmd,
                                   install_sim_cmd_line};
static constexpr PrintStep showrun[] = {
    nshowrun_ngn_protocol_type, msan_ngn_showrun,     show_run_ngn_voice,   alarm_prf_showrun,
    nshowrun_faxparameter,      showrun_msan_sip_cfg, nshowrun_rtp_profile, [](Vty* vty) { showrun_voiceport(vty); },
    install_msan_ngncfg_showrun};

void msanVoice_Init() {
  callAll(init);
  ulogPrintf(gModuleId_Msan, kLogDebug, "msan voice init ok! \n\r");
}

void msanVoice_Init_Snmp() {
  callAll(snmpRegister);
  ulogPrintf(gModuleId_Msan, kLogDebug, "msan voice snmp register ok! \n\r");
}

int msanVoice_Init_Cmd() {
  callAll(install);
  return msan_init_vportenable_cmd();
}

void msanVoice_Showrun(Vty* vty) {
  vty_out(vty, "!msan voice config ---------------- %s", "\r\n");
  callAll(showrun, vty);
}

void msan_voice_hotplug(u16 slot) {
  ngn_data_distribute(slot);
  send_rtp_vlan_by_slot(slot);
  send_rtp_ip_by_slot(slot);
  if (debugOn(Area::voice)) ulogPrintf(gModuleId_Msan, kLogDebug, "%s: finished. \n\r", __func__);
}

void msan_voice_init_after_cfgexecute() { callAll(afterConfiguration); }
