#include "common/msan_init.h"

#include <cstdio>

#include "combo/port/port_enable_config.h"
#include "common/areas.h"
#include "common/debug_control.h"
#include "common/msan_snmp.h"
#include "common/obj_attributes.h"
#include "data/loop/loop_detect.h"
#include "data/raw/card_work_mode.h"
#include "data/raw/ces_service.h"
#include "data/raw/dsl_mpair.h"
#include "platform/command_line.h"
#include "platform/database.h"
#include "platform/log.h"
#include "platform/module_registry.h"
#include "platform/ngn.h"
#include "platform/pool.h"
#include "platform/tables.h"
#include "ppda/volt_current.h"
#include "voice/port/voice_port_record.h"
#include "voice/service/ngn_protocol.h"

i32 gModuleId_Msan = 0;
i32 g_MsanMemPoolId = 0;
const u32 gModuleVer_Msan = 1;

// The areas at each of the platform's calls.
static constexpr Step init[] = {msan_combo_init, msan_ppda_init, msan_data_init, msan_mcast_init, msanVoice_Init};
static constexpr Step snmpRegister[] = {initAgentIfEnv,          msan_combo_snmp_register, msan_ppda_snmp_register,
                                        msan_data_snmp_register, msan_mcast_snmp_register, msanVoice_Init_Snmp};
static constexpr Step install[] = {msan_Common_Install_Cmd, msan_combo_cli_install, msan_ppda_cmd_install,
                                   msan_data_cli_install, msan_mcast_cmd_install};
static constexpr PrintStep showrun[] = {msan_combo_showrun, msan_ppda_showrun, msan_data_showrun, msan_mcast_showrun,
                                        msanVoice_Showrun};
static constexpr SlotStep hotplug[] = {msan_combo_hotplug, msan_ppda_hotplug, msan_data_hotplug, msan_mcast_hotplug,
                                       msan_voice_hotplug};

// The database side of a slot that is given a card type, and of one that loses it.
static constexpr SlotStep cardAuthorised[] = {data_port_enable_after_cardauth_db, msan_data_clear_before_cardauth_db,
                                              init_voiceport_cfg, loopdetect_callback_after_cardauth_db,
                                              volt_current_callback_after_cardauth_db};
static constexpr SlotStep cardUnauthorised[] = {card_unauth_mpair, card_unauth_card_work_mode, card_unauth_ces_service,
                                                delObjAttrBySlot};

int inRecoverConfProcess() { return is_cliFastMode(); }

int msan_Module_Init() {
  gModuleId_Msan = modInitRegister("msan", 0, nload_ngn_protocol_type, nullptr, 0, 0, 0);
  if (gModuleId_Msan < 0) {
    ulogPrintf(gModuleId_Msan, kLogStart, "%s: Failed to get module id, ret = %d.\r\n", __func__, gModuleId_Msan);
    return gModuleId_Msan;
  }
  g_MsanMemPoolId = mpuCreate("MsanPool", kMsanPoolSize, 1, 1);
  if (g_MsanMemPoolId < 0) {
    ulogPrintf(gModuleId_Msan, kLogError, "msan create mem pool failed!\r\n");
    return -1;
  }
  char version[21];
  std::snprintf(version, sizeof version, "%s %s", __DATE__, __TIME__);
  const i32 result = setModVersion(gModuleId_Msan, gModuleVer_Msan, version);
  if (result < 0) {
    ulogPrintf(gModuleId_Msan, kLogStart, "%s: Failed to set module version, ret = %d.\r\n", __func__, result);
    return result;
  }
  msan_Init_Config();
  msan_Init_Snmp();
  cl_install_module_by_mod_id(gModuleId_Msan, msan_Init_Cmd, msan_Init_Showrun);
  return 0;
}

int msan_Init_Config() {
  callAll(init);
  return 0;
}

int msan_Init_Snmp() {
  callAll(snmpRegister);
  return 0;
}

int msan_Init_Cmd() {
  callAll(install);
  return msanVoice_Init_Cmd();
}

int msan_Init_Showrun(Vty* vty) {
  vty_out(vty, "%s!msan module showrun begin----------------%s", "\r\n", "\r\n");
  callAll(showrun, vty);
  vty_out(vty, "%s!msan module showrun end----------------%s", "\r\n", "\r\n");
  return 0;
}

int msan_slot_hotplug(u16 slot) {
  callAll(hotplug, slot);
  return send_ngn_voice_rtp_ip_by_slot(slot);
}

int msan_card_auth_init(u16) { return 0; }
int msan_card_unauth_init(u16) { return 0; }

int msan_card_auth_init_db(u16 slot) {
  callAll(cardAuthorised, slot);
  return 0;
}

int msan_card_unauth_init_db(u16 slot) {
  callAll(cardUnauthorised, slot);
  return 0;
}

int msan_init_after_cfgexecute() {
  msan_voice_init_after_cfgexecute();
  return 0;
}

// Runs `change` in a transaction of its own on the platform's connection.
template <class Change>
static int changeEvents(DbConnection database, const char* function, Change change) {
  if (database == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "\r\nomRegister_events err! db = 0x%x", 0U);
    return -1;
  }
  mco_trans_h transaction = nullptr;
  if (const int code = mco_trans_start_(database, DB_READ_WRITE, 0, &transaction, __FILE__, __LINE__, function)) {
    return code;
  }
  change(transaction);
  return mco_trans_commit(transaction);
}

int msan_register_events(DbConnectionData* database) {
  return changeEvents(database, __func__,
                      [](mco_trans_h t) { mco_register_typeUpdate_handler(t, ngn_protocol_update, 0, 1); });
}

int msan_unregister_events(DbConnectionData* database) {
  return changeEvents(database, __func__,
                      [](mco_trans_h t) { mco_unregister_typeUpdate_handler(t, ngn_protocol_update); });
}

int msan_slave_flush() {
  ngn_protocol_flush();
  return 0;
}

int msan_get_attribute(u16 slot, u16 port, u32 attribute, void* data, u32 length) {
  const ObjIndex object{0, port == 0 ? kSlotLevel : kPortLevel, {1, slot, port}};
  return getObjAttrDataByCondition(&object, attribute, data, 0, static_cast<i32>(length));
}
