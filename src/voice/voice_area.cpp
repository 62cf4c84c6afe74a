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

// The node's global items: what they do at load, at registration, in the running configuration and at the end of
// recovery.
static constexpr Step ngnDataInit[] = {nInitCIDMode,    nInitPOTSNumber,   nInitIPTNumber, nInitRFC2833,
                                       nInitROHTimeout, nInitSGNToneTimer, nInitVoiceMD5,  nInitVoiceTimer};
static constexpr Step ngnSnmpRegister[] = {
    SnmpMsgRegisterCIDMode,      SnmpMsgRegisterPhoneNumber, SnmpMsgRegisterRFC2833,   SnmpMsgRegisterROHTimeout,
    SnmpMsgRegisterSGNToneTimer, SnmpMsgRegisterVoiceMD5,    SnmpMsgRegisterVoiceTimer};
static constexpr PrintStep ngnShowrun[] = {nShowRunCIDMode,  nShowRunPOTSNumber, nShowRunIPTNumber,
                                           nShowRunRFC2833,  nShowRunROHTimeout, nShowRunSGNToneTimer,
                                           nShowRunVoiceMD5, nShowRunVoiceTimer};
static constexpr Step afterConfiguration[] = {distrib_mgc,          nDistribCIDMode,  nDistribPOTSNumber,
                                              nDistribIPTNumber,    nDistribRFC2833,  nDistribROHTimeout,
                                              nDistribSGNToneTimer, nDistribVoiceMD5, nDistribVoiceTimer};

static int installShowrun();
static constexpr Step ngnCommands[] = {
    installCidModeCommands,         installPhoneNumberCommands, installRfc2833Commands,    installRohTimeoutCommands,
    installSignalToneTimerCommands, installVoiceMD5Commands,    installVoiceTimerCommands, installShowrun};

static int msanNGNDataInit() { return callAll(ngnDataInit); }
static int msanNGNSnmpMsgRegister() { return callAll(ngnSnmpRegister); }
static int msan_cmd_init() { return callAll(ngnCommands); }
int msan_ngn_showrun(Vty* vty) { return callAll(ngnShowrun, vty); }

static int cli_msan_ngn_showrun(const CommandElement*, Vty* vty, int, char**) { return msan_ngn_showrun(vty); }
static constexpr Command commands[] = {
    command(CONFIG_NODE, "showrun msan ngn", cli_msan_ngn_showrun, "running configuration of the voice side"),
};
static int installShowrun() { return installCommands(commands); }

// The gateway controllers and the POTS parameters, which stand apart from the others.
static constexpr Step ngnConfigurationInit[] = {init_mgc, init_pots_gerneral_para};
static constexpr Step dataSnmpRegister[] = {registerMgcMessage, registerPotsGeneralMessage};
static constexpr Step simulationCommands[] = {installMgcCommands, installPotsGeneralCommands};
static constexpr PrintStep ngnConfigurationShowrun[] = {showrun_mgc, showrun_pots_general_para};
static constexpr SlotStep ngnDataDistribute[] = {distrib_pots_general_para};

static int msan_ngn_cfg_init() { return callAll(ngnConfigurationInit); }
static int reg_snmp_cmd_data() { return callAll(dataSnmpRegister); }
static int install_sim_cmd_line() { return callAll(simulationCommands); }
static int install_msan_ngncfg_showrun(Vty* vty) { return callAll(ngnConfigurationShowrun, vty); }
static int ngn_data_distribute(u16 slot) { return callAll(ngnDataDistribute, slot); }

static constexpr Step init[] = {msanNGNDataInit, msan_ngn_cfg_init};
static constexpr Step snmpRegister[] = {msanNGNSnmpMsgRegister, mgc_reg_cfg_regsnmpcmd_handle, reg_snmp_cmd_data};
static constexpr Step install[] = {msan_cmd_init, ninstall_mgc_register_cmdline, install_sim_cmd_line};
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
