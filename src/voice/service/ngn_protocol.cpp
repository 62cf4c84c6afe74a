#include "voice/service/ngn_protocol.h"

#include "common/commands.h"
#include "common/msan_init.h"
#include "common/words.h"
#include "platform/module_registry.h"
#include "platform/tables.h"
#include "platform/voice_mode.h"
#include "voice/common/number_message.h"
#include "voice/common/voice_item.h"
#include "voice/service/ngndb.h"

static constexpr u16 kMessage = 30720;
static constexpr Word typeWords[] = {{"none", kNoProtocol}, {"sip", kSip}, {"h248", kH248}};

// Between a command and the operator's answer. Both come through the terminals' door, one at a time.
static u16 gus_ngn_type_old = kNoProtocol;
static u16 gus_ngn_type = kNoProtocol;

void ninit_ngn_protocol_type() { db_set_ngn_protocol_type(kNoProtocol); }

// --- The platform's mode ---

static int queueMode(u16 type) { return job_add(6, set_voice_module_mode, 0, type, 0, 0, 0, 0, 0, 0); }

int nload_ngn_protocol_type() {
  u16 type = kNoProtocol;
  if (hss_IsSmuMaster() == 0) return 0;
  if (db_get_ngn_protocol_type(&type) != 0) {
    trace("get NGN protocol type failed");
    return -1;
  }
  return set_voice_module_mode(kNoProtocol, type, 0);
}

int ngn_protocol_update(mco_trans_h, NgnProtocolType* row) {
  u16 type = kNoProtocol;
  NgnProtocolType_type_get(row, &type);
  return queueMode(type);
}

void ngn_protocol_flush() {
  u16 type = kNoProtocol;
  if (db_get_ngn_protocol_type(&type) == 0) queueMode(type);
}

// --- Command ---

static int say(Vty* vty, const char* what, int code) {
  vty_out(vty, "\r\n%s = %d \r\n", what, code);
  return -1;
}

static int writeType(Vty* vty, u16 type) {
  const int code = db_set_ngn_protocol_type(type);
  return code == 0 ? 0 : say(vty, "db_set_ngn_protocol_type", code);
}

static int cl_do_change_ngn_protocol(Vty* vty) {
  if (writeType(vty, gus_ngn_type) != 0) return -1;
  const int result = set_voice_module_mode(gus_ngn_type_old, gus_ngn_type, 0);
  if (result >= 0) return 0;
  vty_out(vty, "\r\nset_voice_module_mode = %d error\r\n", result);
  writeType(vty, gus_ngn_type_old);
  return -1;
}

static int do_load_ngn_protocol(Vty* vty) {
  vty_direct_out(vty, "\r\nThe operation will load the voice module, make sure whether or not to continue?[Y/N]. ");
  vty_confirm(vty, cl_do_change_ngn_protocol);
  return 0;
}

static int do_change_ngn_protocol(Vty* vty) {
  vty_direct_out(vty,
                 "\r\nThe operation will automatically save the configuration and reboot system. make sure whether or "
                 "not to continue?[Y/N]. ");
  vty_confirm(vty, cl_do_change_ngn_protocol);
  return 0;
}

static int cli_set_ngn_protocol_type_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  const auto type = argc == 1 ? valueOf(typeWords, argv[0]) : std::nullopt;
  if (!type) {
    vty_out(vty, "\r\nerror type\r\n");
    return -1;
  }
  u16 old = kNoProtocol;
  if (const int code = db_get_ngn_protocol_type(&old)) return say(vty, "db_get_ngn_protocol_type", code);
  if (old == *type) {
    vty_out(vty, "\r\nngn_protocol_type no change! \r\n");
    return 0;
  }
  if (is_cliFastMode() == 1) return writeType(vty, static_cast<u16>(*type));
  gus_ngn_type_old = old;
  gus_ngn_type = static_cast<u16>(*type);
  return old == kNoProtocol ? do_load_ngn_protocol(vty) : do_change_ngn_protocol(vty);
}

static int cli_show_ngn_protocol_type_func(const CommandElement*, Vty* vty, int, char**) {
  u16 type = kNoProtocol;
  if (const int code = db_get_ngn_protocol_type(&type)) return say(vty, "db_get_ngn_protocol_type", code);
  vty_out(vty, "\r\nngn_protocol_type: %s \r\n", textOf(typeWords, type, "error type"));
  return 0;
}

void nshowrun_ngn_protocol_type(Vty* vty) {
  u16 type = kNoProtocol;
  if (const int code = db_get_ngn_protocol_type(&type)) {
    vty_out(vty, "db_get_ngn_protocol_type = %d \r\n", code);
    return;
  }
  if (type == kSip || type == kH248) vty_out(vty, "set ngn_protocol_type %s \r\n", textOf(typeWords, type, "sip"));
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set ngn_protocol_type [none|sip|h248] ", cli_set_ngn_protocol_type_func,
            "protocol of the voice service; asks before it changes"),
    command(CONFIG_NODE, "show ngn_protocol_type ", cli_show_ngn_protocol_type_func, "protocol of the voice service"),
};
void installNgnProtocol() { installCommands(commands); }

// --- SNMP: the same type again runs the same steps ---

static int nsnmp_set_ngn_protocol_type(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, nullptr, data, length, reply, replyLen};
  const Where where = Where::here();
  u16 type = 0;
  if (acceptNumber(kMessage, call, &type, where) != 0) return -1;
  u16 old = kNoProtocol;
  if (const int code = db_get_ngn_protocol_type(&old)) return answerCode(call, kNotRead, code, where);
  if (const int code = db_set_ngn_protocol_type(type)) return answerCode(call, kNotStored, code, where);
  if (set_voice_module_mode(old, type, 1) < 0) {
    SnmpErrInfo err;
    vSetErrorInfo(kNotStored, &err);
    if (db_set_ngn_protocol_type(old) != 0) trace("take back NGN protocol type failed");
    return answerError(call, err, "set voice module mode failed", where);
  }
  return answerSuccess(call, 0);
}

static int nsnmp_get_ngn_protocol_type(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGetNumber(kMessage, {id, last, data, length, reply, replyLen}, db_get_ngn_protocol_type);
}

static constexpr SnmpMsgReg message{
    kMessage, {0, 0}, nsnmp_set_ngn_protocol_type, nsnmp_get_ngn_protocol_type, kNumberReply, "ngn protocol type"};
void registerNgnProtocol() { registerMessage(message); }
