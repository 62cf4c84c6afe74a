// The voice area's lists.

#include "voice/voice_area.h"

#include "common/areas.h"
#include "common/commands.h"
#include "common/debug_control.h"
#include "common/msan_init.h"
#include "platform/log.h"
#include "voice/globals/cidMode.h"
#include "voice/globals/mgc.h"
#include "voice/globals/phoneNumber.h"
#include "voice/globals/potsGeneral.h"
#include "voice/globals/rfc2833.h"
#include "voice/globals/rohTimeout.h"
#include "voice/globals/signalToneTimer.h"
#include "voice/globals/voiceMD5.h"
#include "voice/globals/voiceTimer.h"
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
// The gateway controllers and the POTS parameters stand apart from the others.
static constexpr const VoiceItem* ngnConfiguration[] = {&mgc, &potsGeneral};

// At the end of recovery the voice side is told all of it once more.
static constexpr Step afterConfiguration[] = {
    distributeOf<mgc>,       distributeOf<cidMode>,    distributeOf<potsNumber>,      distributeOf<iptNumber>,
    distributeOf<rfc2833>,   distributeOf<rohTimeout>, distributeOf<signalToneTimer>, distributeOf<voiceMD5>,
    distributeOf<voiceTimer>};

int msan_ngn_showrun(Vty* vty) { return showrunItems(ngnItems, vty); }

static int cli_msan_ngn_showrun(const CommandElement*, Vty* vty, int, char**) { return msan_ngn_showrun(vty); }
static constexpr Command commands[] = {
    command(CONFIG_NODE, "showrun msan ngn", cli_msan_ngn_showrun, "running configuration of the voice side"),
};

static int msanNGNDataInit() { return initItems(ngnItems); }
static int msanNGNSnmpMsgRegister() { return registerItems(ngnItems); }
static int msan_cmd_init() {
  installItems(ngnItems);
  installOnhookCommand();
  return installCommands(commands);
}

static int msan_ngn_cfg_init() { return initItems(ngnConfiguration); }
static int mgc_reg_cfg_regsnmpcmd_handle() { return registerItems(mgcRegisterItems); }
static int reg_snmp_cmd_data() {
  registerItems(ngnConfiguration);
  registerNodeViews();
  registerPortViews();
  return registerCallSimulation();
}
static int ninstall_mgc_register_cmdline() { return installItems(mgcRegisterItems); }
static int install_sim_cmd_line() {
  installItems(ngnConfiguration);
  installNodeViews();
  installPortViews();
  installCallSimulation();
  return installPotsGeneralCommands();
}
static int install_msan_ngncfg_showrun(Vty* vty) { return showrunItems(ngnConfiguration, vty); }

static constexpr SlotStep ngnDataDistribute[] = {distrib_pots_general_para};
static int ngn_data_distribute(u16 slot) { return callAll(ngnDataDistribute, slot); }

static constexpr Step init[] = {msanNGNDataInit, msan_ngn_cfg_init};
static constexpr Step snmpRegister[] = {msanNGNSnmpMsgRegister, mgc_reg_cfg_regsnmpcmd_handle, usereg_regsnmpcmd_handle,
                                        test112_regsnmp_cmdhandle, reg_snmp_cmd_data};
static constexpr Step install[] = {msan_cmd_init, ninstall_mgc_register_cmdline, ninstall_ngnuser_register_cmdline,
                                   install_msan_112test_defun, install_sim_cmd_line};
static constexpr PrintStep showrun[] = {msan_ngn_showrun, install_msan_ngncfg_showrun};

int msanVoice_Init() {
  callAll(init);
  ulogPrintf(gModuleId_Msan, 10, "msan voice init ok! \n\r");
  return 0;
}

int msanVoice_Init_Snmp() {
  callAll(snmpRegister);
  ulogPrintf(gModuleId_Msan, 10, "msan voice snmp register ok! \n\r");
  return 0;
}

int msanVoice_Init_Cmd() { return callAll(install); }

int msanVoice_Showrun(Vty* vty) {
  vty_out(vty, "!msan voice config ---------------- %s", "\r\n");
  callAll(showrun, vty);
  return 0;
}

int msan_voice_hotplug(u16 slot) {
  ngn_data_distribute(slot);
  if (debugOn(Area::voice)) ulogPrintf(gModuleId_Msan, 10, "%s: finished. \n\r", __func__);
  return 0;
}

int msan_voice_init_after_cfgexecute() { return callAll(afterConfiguration); }
