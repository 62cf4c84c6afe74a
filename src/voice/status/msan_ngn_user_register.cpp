#include "voice/status/msan_ngn_user_register.h"

#include "common/memory.h"
#include "common/msan_init.h"
#include "platform/log.h"
#include "voice/common/ngn_view.h"
#include "voice/common/port_units.h"

static constexpr u16 kRegisterMessage = 3094;
static constexpr u32 kItem = 82, kUnit = 86;  // of a manager, of the voice side
static constexpr u32 kShortLocation = 16;

static constexpr Field fields[] = {
    field<&UserRegister::option>(
        {.offset = 0, .allowed = {{1, 2}}, .code = 65416, .complaint = "invalid NGN use register option: %d"}),
};
static constexpr Record shape(66, fields);
static int ncheck_register_user(const UserRegister* record, SnmpErrInfo* err) {
  return checkRecord(fields, record, err);
}

static constexpr PortUnits ports = {.id = kRegisterMessage,
                                    .shape = &shape,
                                    .bytes = sizeof(UserRegister),
                                    .location = kShortLocation,
                                    .check = onRecord<ncheck_register_user>};
static_assert(ports.unit() == kItem && kLocation + shape.unit == kUnit);

// --- Message ---

int mspack_register_user(u32 count, WireIn area, WireOut buffer) {
  Writer out(buffer);
  out.number(4, count);
  WireIn item = area.subspan(4);
  for (u32 i = 0; i < count; ++i, item = item.subspan(kItem)) {
    out.bytes(item.first(kShortLocation));
    out.zeros(kLocation - kShortLocation);
    out.bytes(item.subspan(kShortLocation, kItem - kShortLocation));
  }
  return out.failed() ? -1 : 0;
}

static int nsnmp_register_user(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, nullptr, data, length, reply, replyLen};
  const Where where = Where::here();
  if (beginRequest(kRegisterMessage, call, Asks::orders, where) != 0) return -1;
  SnmpErrInfo err;
  WireIn area;
  u32 count = 0;
  {
    DataList list;
    if (checkPortsFrame(ports, data, length, area, &err) != 0)
      return answerError(call, err, "invalid SNMP command para", where);
    if (parsePorts(ports, area, list) != 0) return answerFailed(call, "parse configuration failed", where);
    if (checkPorts(ports, list, &err) != 0) return answerError(call, err, "check configuration failed", where);
    count = static_cast<u32>(lstCount(list));
  }
  const u32 bytes = 4 + kUnit * count;
  const PoolBytes units(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, bytes, __FILE__, __LINE__)));
  if (units == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "\r\n %s, %s %d, malloc error. \r\n", where.function, fileName(where),
               where.line);
    return -1;
  }
  if (mspack_register_user(count, area, WireOut(units.get(), bytes)) != 0 ||
      sendPortBytes(ports, units.get(), bytes) != 0)
    return answerFailed(call, "build MSC msg 0x%04X failed", where);
  return answerSuccess(call, 0);
}

int nregister_user(LIST* list, SnmpErrInfo* err) {
  if (inRecoverConfProcess() != 1 && checkPorts(ports, list, err) != 0) return -1;
  const u16 code = sendPorts(ports, list);
  if (code != 0) vSetErrorInfo(code, err);
  return 0;
}

// --- Command ---

static int cli_ctrl_ngn_user_register_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr Word options[] = {{"register", 1}, {"unregister", 2}};
  constexpr u32 kVoicePortAttribute = 267;
  if (argc != 2) return refuse(vty, "invalid parameter quantity");
  const auto option = valueOf(options, argv[0]);
  if (!option) return refuse(vty, "invalid NGN user register option");
  const UserRegister record{static_cast<u16>(*option)};
  DataList list;
  if (readPorts(vty, argv[1], kVoicePortAttribute, sizeof record, list) != 0) return -1;
  if (nSetPortObjDataList(&record, list) != 0) return refuse(vty, "set NGN user register configuration list failed");
  SnmpErrInfo err;
  const int result = nregister_user(list, &err);
  const int code = static_cast<i16>(err.errCode);
  if (result != 0)
    vty_out(vty, "\r\n set  NGN user register configuration failed(%d). \r\n", code);
  else
    vty_out(vty, "\r\n set NGN user register configuration successfully(%d). \r\n", code);
  return result;
}

// --- Lists ---

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set ngn user [register|unregister] interface <ifStr>", cli_ctrl_ngn_user_register_func,
            "register users of POTS ports, or end their registration"),
};
void ninstall_ngnuser_register_cmdline() { installCommands(commands); }

static constexpr SnmpMsgReg message{kRegisterMessage, {0, 0}, nsnmp_register_user,
                                    nullptr,          0,      "Control NGN user registration"};
void usereg_regsnmpcmd_handle() { registerMessage(message); }
