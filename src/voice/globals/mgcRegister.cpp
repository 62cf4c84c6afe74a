// Registration with a media gateway controller: checked and sent, never stored and never reported.

#include <cstring>

#include "common/commands.h"
#include "common/words.h"
#include "voice/common/voice_item.h"
#include "voice/globals/mgc.h"

static constexpr u16 kRegister = 1, kUnregister = 2;

// clang-format off
static constexpr Field fields[] = {
    field<&MGCRegister::option>({.offset = 0}),
    field<&MGCRegister::address>({.offset = 2}),
};
// clang-format on
static constexpr Record shape(130, fields);

static int ncheck_register_mgc(const MGCRegister* order, SnmpErrInfo* err) {
  if (order->option != kRegister && order->option != kUnregister) {
    vSetErrorInfo(65416, &order->option, sizeof order->option, err);
    trace("invalid MGC register option: %d", order->option);
    return -1;
  }
  if (order->option == kRegister && order->address[0] == '\0') {
    vSetErrorInfo(65415, err);
    trace("MGC register address is NULL");
    return -1;
  }
  return 0;
}

static int nsnmp_register_mgc(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpOrder(mgcRegister, {id, nullptr, data, length, reply, replyLen});
}

static int nregister_mgc(const MGCRegister* order, SnmpErrInfo* err) {
  if (ncheck_register_mgc(order, err) != 0) return -1;
  const u16 code = encodeAndSend(mgcRegister, order, Where::here());
  if (code != 0) vSetErrorInfo(code, err);
  return code == kEncodeFailed ? -1 : 0;
}

static int cli_ctrl_mgc_register_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr Word options[] = {{"register", kRegister}, {"unregister", kUnregister}};
  if (argc != 2) return refuse(vty, "invalid parameter quantity");
  MGC cfg;
  if (loadItem(mgc, &cfg) != 0) return refuse(vty, "get current MGC configuration failed");
  const bool primary = bep_StrCmp(argv[0], "primary") == 0;
  if (!primary && bep_StrCmp(argv[0], "secondary") != 0) return refuse(vty, "invalid mgc option");
  const char* address = primary ? cfg.primaryMGC : cfg.secondaryMGC;
  if (address[0] == '\0') {
    return refuse(vty, primary ? "the primary MGC address is NULL" : "the secondary MGC address is NULL");
  }
  const auto option = valueOf(options, argv[1]);
  if (!option) return refuse(vty, "invalid mgc register option");
  MGCRegister order{static_cast<u16>(*option), {}};
  std::memcpy(order.address, address, sizeof order.address);
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

constexpr VoiceItem mgcRegister = {
    .id = 3093,
    .stem = "register_mgc",
    .words = "MGC register",
    .kept = unkept<MGCRegister>(shape),
    .label = 20,
    .check = onRecord<ncheck_register_mgc>,
    .commands = commands,
    .message = {nsnmp_register_mgc, nullptr, 0, "Control MGC registration"},
};
