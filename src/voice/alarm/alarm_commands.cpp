// The messages and the commands of the alarm profiles.

#include "common/commands.h"
#include "common/obj_attributes.h"
#include "common/report.h"
#include "voice/alarm/alarm_area.h"
#include "voice/alarm/ngn_alarm_prof.h"

static constexpr int kOperator = 3;

// --- Messages ---

static int snmp_set_alarm_prf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpWriteProfiles(alarmKind, {id, nullptr, data, length, reply, replyLen});
}
static int snmp_del_alarm_prf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpDeleteProfiles(alarmKind, {id, nullptr, data, length, reply, replyLen});
}
static int snmp_get_alarm_prf(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpReadProfiles(alarmKind, {id, last, data, length, reply, replyLen});
}

void reg_ngn_alarm_prf_cmd_handle() {
  static constexpr ProfileMessage messages[] = {
      {"DSL_ALARM_PRF_CONFIG", "test", 34668, snmp_set_alarm_prf, snmp_get_alarm_prf, 2092},
      {"DSL_ALARM_PRF_DELETE", "test", 34669, snmp_del_alarm_prf, nullptr, 0},
  };
  registerProfileMessages(messages);
}

// --- Commands ---

PROFILE_HANDLER(add_alarm_prf_Func, cliAddProfile, alarmKind)
PROFILE_HANDLER(del_alarm_prf_Func, cliDeleteProfile, alarmKind)
PROFILE_HANDLER(show_alarm_prf_Func, cliShowProfile, alarmKind)

static int config_alarm_profile_node_Func(const CommandElement*, Vty* vty, int argc, char** argv) {
  const int result = cliSelectProfile(alarmKind, vty, argc, argv);
  vty_set_node(vty, CONFIG_NODE);
  return result;
}

static int setThreshold(u32 number, Vty* vty, int argc, char** argv) {
  if (argc != 1) return -1;
  const auto value = numberOf(argv[0]);
  if (!value) return complain(vty, "Please input legal numerals");
  const ProfileField& field = thresholdOf(number);
  if (*value > kMostThreshold) {
    vty_out(vty, "%s must between 0-900%s", field.label, "\r\n");
    return -1;
  }
  AlarmPrfRecord values{};
  setField(field, &values.item, *value);
  SnmpErrInfo err;
  if (modify_spc_alarm_prf_para(&err, &values, number) != 0) {
    return complain(vty, "modify_spc_alarm_prf_para failed,error code is ", err.errCode);
  }
  reportChange(kNode, alarmKind.writeId, kOperator);
  return 0;
}

#define THRESHOLD_HANDLER(name, number)                                     \
  static int name(const CommandElement*, Vty* vty, int argc, char** argv) { \
    return setThreshold(number, vty, argc, argv);                           \
  }
THRESHOLD_HANDLER(set_alarm_NeLossThreshold15min_func, 1)
THRESHOLD_HANDLER(set_alarm_NeLofsThreshold15min_func, 2)
THRESHOLD_HANDLER(set_alarm_NeEsThreshold15min_func, 3)
THRESHOLD_HANDLER(set_alarm_NeSesThreshold15min_func, 4)
THRESHOLD_HANDLER(set_alarm_NeUasThreshold15min_func, 5)
THRESHOLD_HANDLER(set_alarm_NeLolsThreshold15min_func, 6)
THRESHOLD_HANDLER(set_alarm_FeLossThreshold15min_func, 7)
THRESHOLD_HANDLER(set_alarm_FeLofsThreshold15min_func, 8)
THRESHOLD_HANDLER(set_alarm_FeEsThreshold15min_func, 9)
THRESHOLD_HANDLER(set_alarm_FeSesThreshold15min_func, 10)
THRESHOLD_HANDLER(set_alarm_FeUasThreshold15min_func, 11)
THRESHOLD_HANDLER(set_alarm_FeLprsThreshold15min_func, 12)

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "add alarm profile <name> {id <id>}*1", add_alarm_prf_Func, "add an alarm profile"),
    command(CONFIG_NODE, "delete alarm profile [id|name] <idOrName>", del_alarm_prf_Func, "delete an alarm profile"),
    command(CONFIG_NODE, "show alarm profile [id|name|all] {<idOrName>}*1", show_alarm_prf_Func, "alarm profiles"),
    command(CONFIG_NODE, "set alarm profile [id|name] <idOrName>", config_alarm_profile_node_Func, "choose the alarm profile that is edited"),
    command(CONFIG_NODE, "set alarm NeLossThreshold15min <value>", set_alarm_NeLossThreshold15min_func, "seconds without signal, near end"),
    command(CONFIG_NODE, "set alarm NeLofsThreshold15min <value>", set_alarm_NeLofsThreshold15min_func, "seconds without frame, near end"),
    command(CONFIG_NODE, "set alarm NeEsThreshold15min <value>", set_alarm_NeEsThreshold15min_func, "errored seconds, near end"),
    command(CONFIG_NODE, "set alarm NeSesThreshold15min <value>", set_alarm_NeSesThreshold15min_func, "severely errored seconds, near end"),
    command(CONFIG_NODE, "set alarm NeUasThreshold15min <value>", set_alarm_NeUasThreshold15min_func, "unavailable seconds, near end"),
    command(CONFIG_NODE, "set alarm NeLolsThreshold15min <value>", set_alarm_NeLolsThreshold15min_func, "seconds without link, near end"),
    command(CONFIG_NODE, "set alarm FeLossThreshold15min <value>", set_alarm_FeLossThreshold15min_func, "seconds without signal, far end"),
    command(CONFIG_NODE, "set alarm FeLofsThreshold15min <value>", set_alarm_FeLofsThreshold15min_func, "seconds without frame, far end"),
    command(CONFIG_NODE, "set alarm FeEsThreshold15min <value>", set_alarm_FeEsThreshold15min_func, "errored seconds, far end"),
    command(CONFIG_NODE, "set alarm FeSesThreshold15min <value>", set_alarm_FeSesThreshold15min_func, "severely errored seconds, far end"),
    command(CONFIG_NODE, "set alarm FeUasThreshold15min <value>", set_alarm_FeUasThreshold15min_func, "unavailable seconds, far end"),
    command(CONFIG_NODE, "set alarm FeLprsThreshold15min <value>", set_alarm_FeLprsThreshold15min_func, "seconds without power, far end"),
};
// clang-format on
void init_alram_prf_cmd() {
  install_offers(alarmKind.word, offerKind, &alarmKind);
  installCommands(commands);
}
