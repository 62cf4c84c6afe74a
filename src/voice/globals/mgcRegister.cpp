// Registration with a media gateway controller: checked and sent, never stored and never reported.

#include <cstring>

#include "common/commands.h"
#include "common/words.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_msc.h"
#include "voice/globals/mgc.h"

static constexpr u16 kRegister = 1, kUnregister = 2;

static constexpr u32 kAddressAt = 2;
static constexpr u32 kAddress = sizeof MGCRegister::address;
// What the road's steps need of a unit; it has no fields in a table.
static constexpr Record shape(130, Fields{});
static constexpr VoiceItem item{.id = 3093,
                                .setName = "",
                                .words = "MGC register",
                                .viewWords = "",
                                .shape = &shape,
                                .recordBytes = sizeof(MGCRegister),
                                .label = 20,
                                .parse = onRecord<nparse_register_mgc>,
                                .check = onRecord<ncheck_register_mgc>,
                                .encode = onRecord<nencode_register_mgc>,
                                .parseHandle = nparse_register_mgc_handle,
                                .checkHandle = ncheck_register_mgc_handle};

int nparse_register_mgc(WireIn unit, MGCRegister* order, u32* length) {
  if (parseUnit(shape, unit, order, length) != 0) return -1;
  order->option = static_cast<u16>(getNumber(unit.data(), 2));
  std::memcpy(order->address, unit.data() + kAddressAt, kAddress);
  return 0;
}

int nencode_register_mgc(const MGCRegister* order, WireOut unit, u32* length) {
  if (encodeUnit(shape, order, unit, length) != 0) return -1;
  putNumber(unit.data(), 2, order->option);
  std::memcpy(unit.data() + kAddressAt, order->address, kAddress);
  return 0;
}

int nparse_register_mgc_handle(WireIn area, u32* count, LIST* list) { return parseUnits(item, area, count, list); }
int ncheck_register_mgc_handle(LIST* list, SnmpErrInfo* err) { return checkUnits(item, list, err); }

int ncheck_register_mgc(const MGCRegister* order, SnmpErrInfo* err) {
  if (order == nullptr || err == nullptr) {
    trace("configuration para is NULL");
    return -1;
  }
  if (order->option != kRegister && order->option != kUnregister) {
    vSetErrorInfo(65416, &order->option, sizeof order->option, err);
    trace("invalid MGC register option: %d", order->option);
    return -1;
  }
  if (order->option == kRegister && order->address[0] == '\0') {
    vSetErrorInfo(65415, nullptr, 0, err);
    trace("MGC register address is NULL");
    return -1;
  }
  return 0;
}

int nsnmp_register_mgc(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpOrder(item, {id, nullptr, data, length, reply, replyLen});
}

int nregister_mgc(const MGCRegister* order, SnmpErrInfo* err) {
  if (ncheck_register_mgc(order, err) != 0) return -1;
  const u16 code = encodeAndSend(item, order, item.encode, shape.unit, Where::here());
  if (code != 0) vSetErrorInfo(code, nullptr, 0, err);
  return code == kEncodeFailed ? -1 : 0;
}

int cli_ctrl_mgc_register_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr Word options[] = {{"register", kRegister}, {"unregister", kUnregister}};
  if (argc != 2) return refuse(vty, "invalid parameter quantity");
  MGC cfg;
  if (get_mgc(&cfg) != 0) return refuse(vty, "get current MGC configuration failed");
  const bool primary = bep_StrCmp(argv[0], "primary") == 0;
  if (!primary && bep_StrCmp(argv[0], "secondary") != 0) return refuse(vty, "invalid mgc option");
  const char* address = primary ? cfg.primaryMGC : cfg.secondaryMGC;
  if (address[0] == '\0') {
    return refuse(vty, primary ? "the primary MGC address is NULL" : "the secondary MGC address is NULL");
  }
  const auto option = valueOf(options, argv[1]);
  if (!option) return refuse(vty, "invalid mgc register option");
  MGCRegister order{static_cast<u16>(*option), {}};
  std::memcpy(order.address, address, kAddress);
  SnmpErrInfo err;
  const int result = nregister_mgc(&order, &err);
  vty_out(vty, "\r\n %s %s MGC %s(%d). \r\n", argv[1], argv[0], result == 0 ? "successfully" : "failed",
          static_cast<i16>(err.errCode));
  return result;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set mgc [primary|secondary] [register|unregister]", cli_ctrl_mgc_register_func,
            "register with a gateway controller"),
};
static constexpr SnmpMsgReg message{3093, {0, 0}, nsnmp_register_mgc, nullptr, 0, "Control MGC registration"};

int ninstall_mgc_register_cmdline() { return installCommands(commands); }
int mgc_reg_cfg_regsnmpcmd_handle() { return registerMessage(message); }
