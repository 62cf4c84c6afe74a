#include "voice/service/voice_self_switch.h"

#include <cstring>

#include "common/commands.h"
#include "common/msan_init.h"
#include "common/report.h"
#include "common/words.h"
#include "platform/ngn.h"
#include "voice/common/number_message.h"
#include "voice/service/ngndb.h"

static constexpr u16 kMessage = 3109;
static constexpr u16 kEnable = 1, kDisable = 2;
static constexpr Word shownWords[] = {{"enable", kEnable}, {"disable", kDisable}};

void ninit_voice_self_switch() { db_set_voice_self_switch(kDisable); }

// The number goes as the processor keeps it.
void ndistrib_voice_self_switch() {
  u16 value = 0;
  if (db_get_voice_self_switch(&value) != 0) return;
  u8 message[66] = {};
  std::memcpy(message, &value, sizeof value);
  writeNgnCmd(kMessage, 0, message, sizeof message, 0, 0, 0, 0);
}

static int cli_set_voice_self_switch_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  const u16 value = argc == 1 && bep_StrCmp(argv[0], "enable") == 0 ? kEnable : kDisable;
  if (const int code = db_set_voice_self_switch(value)) {
    vty_out(vty, "\r\ndb_set_voice_self_switch = %d \r\n", code);
    return -1;
  }
  ndistrib_voice_self_switch();
  reportChange(kNode, kMessage, 3);
  return 0;
}

static int cli_show_voice_self_switch_func(const CommandElement*, Vty* vty, int, char**) {
  u16 value = 0;
  if (const int code = db_get_voice_self_switch(&value)) {
    vty_out(vty, "\r\ndb_get_voice_self_switch = %d \r\n", code);
    return -1;
  }
  vty_out(vty, "\r\nvoice_self_switch: %s \r\n", textOf(shownWords, value, "error type"));
  return 0;
}

void nshowrun_voice_self_switch(Vty* vty) {
  u16 value = 0;
  if (db_get_voice_self_switch(&value) != 0) return;
  if (value == kEnable) vty_out(vty, "set voice_self_switch enable \r\n");
}

static int nsnmp_set_voice_self_switch(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, nullptr, data, length, reply, replyLen};
  const Where where = Where::here();
  u16 value = 0;
  if (acceptNumber(kMessage, call, &value, where) != 0) return -1;
  if (const int code = db_set_voice_self_switch(value)) return answerCode(call, kNotStored, code, where);
  answerSuccess(call, 0);
  ndistrib_voice_self_switch();
  reportChange(kNode, kMessage, 1);
  return 0;
}

static int nsnmp_get_voice_self_switch(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGetNumber(kMessage, {id, last, data, length, reply, replyLen}, db_get_voice_self_switch);
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set voice_self_switch [enable|disable] ", cli_set_voice_self_switch_func,
            "switching of calls between the node's own ports"),
    command(CONFIG_NODE, "show voice_self_switch ", cli_show_voice_self_switch_func,
            "switching of calls between the node's own ports"),
};
void installVoiceSelfSwitch() { installCommands(commands); }

static constexpr SnmpMsgReg message{
    kMessage, {0, 0}, nsnmp_set_voice_self_switch, nsnmp_get_voice_self_switch, kNumberReply, "voice self switch"};
void registerVoiceSelfSwitch() { registerMessage(message); }
