#include "voice/port/port_test.h"

#include "combo/port/port_enable_config.h"
#include "combo/profile/profile_kind.h"
#include "common/interface_list.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "common/msan_snmp.h"
#include "msan/entries.h"
#include "platform/cards.h"
#include "platform/command_line.h"
#include "platform/log.h"
#include "platform/wrappers.h"

static constexpr u32 kArea = 32, kItems = 36;  // of a request: where its count and its ports stand
static constexpr u32 kMostPorts = 64;          // of a request
static constexpr u32 kCardWanted = 0xe0000000;
static constexpr u32 kHead = 20, kFlags = 2;  // of an order: slot, port and 16 zeros; type and switch

enum PortTestError : int { kNotAlive = -4, kInService = -101 };

// A kind of orders.
struct PortOrders {
  u16 id;
  u32 operation;  // label of a check
  u32 gap;        // bytes behind the flags, in a request and to the card
  u32 flags;      // bytes of them in a request
  void (*read)(const u8* flags, PortOrder* order);
  void (*write)(const PortOrder& order, u8* flags);
  int (*set)(SnmpErrInfo* err, std::span<const PortOrder> orders);
};

// --- Checks ---

static int checkOutOfService(SnmpErrInfo* err, const ObjIndex& port) {
  return is_data_port_enable(port) != 1 ? 0 : reject(err, kInService, {port.addr[1], port.addr[2]});
}

static int checkHardware(SnmpErrInfo* err, const ObjIndex& port) {
  return sysGetSlotHwAliveStatus(port.addr[1]) == 1 ? 0 : reject(err, kNotAlive, {port.addr[1]});
}

// What a kind holds for bad is looked at in its own order.
static int checkTest(const PortOrders& kind, SnmpErrInfo* err, const PortOrder& order) {
  if (checkOutOfService(err, order.port) != 0) return -1;
  if (order.type > 1 || order.on > 1) return -1;
  if (checkObjErr(kind.id, kind.operation, &order.port, kCardWanted, err) != 0) return -1;
  return checkHardware(err, order.port);
}

static int checkLoopback(const PortOrders& kind, SnmpErrInfo* err, const PortOrder& order) {
  if (order.on > 1 || order.type < 3 || order.type > 5) return -1;
  if (checkObjErr(kind.id, 0, &order.port, kCardWanted, err) != 0) return -1;
  if (checkOutOfService(err, order.port) != 0) return -1;
  return checkHardware(err, order.port);
}

// --- Send ---

static void sendOrder(const PortOrders& kind, const PortOrder& order) {
  u8 message[4 + kHead + kFlags + 32] = {};
  putNumber(message, 4, 1);
  putNumber(message + 4, 2, order.port.addr[1]);
  putNumber(message + 6, 2, order.port.addr[2]);
  kind.write(order, message + 4 + kHead);
  dm_MakeCmdPkt_GEPON(order.port.addr[1], kind.id, message, 4 + kHead + kFlags + kind.gap);
}

static int setOrders(const PortOrders& kind, SnmpErrInfo* err, std::span<const PortOrder> orders,
                     int (*check)(const PortOrders& kind, SnmpErrInfo* err, const PortOrder& order)) {
  if (err == nullptr) return -1;
  for (const PortOrder& order : orders) {
    if (check(kind, err, order) != 0) return -1;
  }
  for (const PortOrder& order : orders) sendOrder(kind, order);
  return 0;
}

// --- Kinds ---

static constexpr PortOrders testOrders{
    .id = 2829,
    .operation = 0x2000010,
    .gap = 32,
    .flags = 2,
    .read =
        [](const u8* flags, PortOrder* order) {
          order->type = flags[0];
          order->on = flags[1];
        },
    .write =
        [](const PortOrder& order, u8* flags) {
          flags[0] = static_cast<u8>(order.type);
          flags[1] = order.on;
        },
    .set = set_port_test,
};

static constexpr PortOrders loopbackOrders{
    .id = 2852,
    .operation = 0x2000011,
    .gap = 16,
    .flags = 3,
    .read =
        [](const u8* flags, PortOrder* order) {
          order->on = flags[0];
          order->type = static_cast<u16>(flags[1] | flags[2] << 8);  // the low byte first, unlike all else
        },
    .write =
        [](const PortOrder& order, u8* flags) {
          flags[0] = order.on;
          flags[1] = static_cast<u8>(order.type);
        },
    .set = set_port_loopback,
};

int set_port_test(SnmpErrInfo* err, std::span<const PortOrder> orders) {
  return setOrders(testOrders, err, orders, checkTest);
}

int set_port_loopback(SnmpErrInfo* err, std::span<const PortOrder> orders) {
  return setOrders(loopbackOrders, err, orders, checkLoopback);
}

// --- Messages ---

// Room for so many orders; null without memory.
static PoolBytes makeOrders(u32 count) {
  return PoolBytes(
      static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, static_cast<u32>(sizeof(PortOrder)) * count, __FILE__, __LINE__)));
}

// What is there of a cut item is checked ahead of its length.
static int readOrder(const PortOrders& kind, SnmpErrInfo* err, Reader& from, PortOrder* order) {
  if (get_adsl_obj_lable(err, &order->port, from.rest()) != 0) return -1;
  if (checkObjErr(kind.id, kind.operation, &order->port, kCardUp, err) != 0) return -1;
  from.skip(kHead);
  u8 flags[3] = {};
  from.bytes(flags, kind.flags);
  from.skip(kind.gap);
  kind.read(flags, order);
  if (!from.failed()) return 0;
  err->errCode = kRequestTooShort;
  return -1;
}

static int readOrders(const PortOrders& kind, const SnmpCall& call, SnmpErrInfo* err) {
  Reader from(call.length >= static_cast<i32>(kItems) ? WireIn(call.data, static_cast<u32>(call.length)) : WireIn());
  from.skip(kArea);
  const u32 count = from.number(4);
  if (from.failed()) return reject(err, static_cast<i16>(kRequestTooShort));
  if (count == 0) return 0;
  if (count > kMostPorts) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "[ERROR]:item = %d,max item is %d!\r\n", static_cast<int>(count),
               static_cast<int>(kMostPorts));
    return rejectLong(err, static_cast<i16>(kTooManyItems), count);
  }
  const PoolBytes memory = makeOrders(count);
  if (memory == nullptr) return reject(err, static_cast<i16>(kNoMemory));
  const std::span<PortOrder> orders(reinterpret_cast<PortOrder*>(memory.get()), count);
  for (PortOrder& order : orders) {
    order = {};
    if (readOrder(kind, err, from, &order) != 0) return -1;
  }
  return kind.set(err, orders);
}

template <const PortOrders& kind>
static int ordersSet(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  if (data == nullptr || reply == nullptr || replyLen == nullptr) return -1;
  SnmpErrInfo err;
  return readOrders(kind, {id, nullptr, data, length, reply, replyLen}, &err) == 0
             ? answerSuccess(reply, replyLen)
             : answerError(id, err, reply, replyLen);
}

static constexpr SnmpMsgReg messages[] = {
    {testOrders.id, {0, 0}, ordersSet<testOrders>, nullptr, 0, "Port test"},
    {loopbackOrders.id, {0, 0}, ordersSet<loopbackOrders>, nullptr, 0, "Port Loop Back test"},
};

void snmp_msg_register_port_test() {
  for (const SnmpMsgReg& message : messages) {
    if (SnmpMsgRegister(&message) != 0)
      ulogPrintf(gModuleId_Msan, kLogDebug, "register %s failed!\r\n", message.description);
  }
}

// --- Command ---

static int set_port_test_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 3) return -1;
  const u16 type = bep_StrCmp(argv[1], "selt") == 0 ? 0 : 1;
  const u8 on = bep_StrCmp(argv[2], "start") == 0 ? 1 : 0;
  ObjList addresses;
  if (CliInputConvertObjIndex(argv[0], addresses) != 0) {
    vty_out(vty, "Please input correct ifStr%s", "\r\n");
    return -1;
  }
  const u32 count = static_cast<u32>(lstCount(addresses));
  const PoolBytes memory = makeOrders(count);
  if (memory == nullptr) {
    vty_out(vty, "osal_malloc failed!");
    return -1;
  }
  const std::span<PortOrder> orders(reinterpret_cast<PortOrder*>(memory.get()), count);
  NODE* cell = lstFirst(addresses);
  for (PortOrder& order : orders) {
    order = {{}, type, on};
    if (trans_cli_addr_2objlabel(vty, dataOf<const CliAddr>(cell), &order.port) != 0) return -1;
    cell = lstNext(cell);
  }
  SnmpErrInfo err;
  if (set_port_test(&err, orders) == 0) return 0;
  vty_out(vty, "set_port_test failed,errInfo.code is %d", static_cast<i16>(err.errCode));
  return -1;
}

// None of the module's installers installs it: it is the platform's to do.
extern "C" const CommandElement msan_port_test_command = {"set adsl interface <ifStr> [selt|delt] test [start|stop]",
                                                          set_port_test_func, "start or stop a test of DSL lines"};
