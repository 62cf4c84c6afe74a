// The commands of the data ports' state.

#include "combo/port/port_enable_config.h"
#include "combo/profile/profile_kind.h"
#include "common/commands.h"
#include "common/interface_list.h"
#include "common/obj_attributes.h"
#include "platform/wrappers.h"

static int badInterface(Vty* vty) {
  vty_out(vty, "Please input correct ifStr%s%s", "\r\n", "\r\n");
  return -1;
}

static int set_port_enable_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2) return -1;
  const u16 flag = bep_StrNCmp(argv[1], "enable", 6) == 0 ? 1 : 0;
  ObjList addresses, nodes;
  SnmpErrInfo err;
  if (CliInputConvertObjIndex(argv[0], addresses) != 0) return badInterface(vty);
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    ObjIndex port;
    if (trans_cli_addr_to_obj_label(vty, dataOf<const CliAddr>(cell), &port) != 0) return -1;
    if (addPortNode(nodes, &err, port, flag) != 0) return complain(vty, "MSAN_MALLOC failed!");
  }
  const SemaphoreHold hold(&port_en_config_mux);
  if (set_data_port_enable(&err, nodes, static_cast<u32>(lstCount(nodes))) != 0)
    return complain(vty, "set_data_port_enable failed,errInfo.code is ", err.errCode);
  msan_cfg_sync_trigger(nodes, kPortEnableMessage, 3, kObjectList);
  return 0;
}

static int showPort(Vty* vty, const CliAddr* address) {
  ObjIndex port;
  if (trans_cli_addr_to_obj_label(vty, address, &port) != 0) return -1;
  if (configuredDataCard(address->slot) == 0) {
    vty_out(vty, "slot %d error", address->slot);
    return -1;
  }
  SnmpErrInfo err;
  u8 flag = 0;
  if (checkObjErr(kPortEnableMessage, kPortEnableAttribute, &port, kAnyCard, &err) != 0)
    return complain(vty, "checkObjErr failed!");
  if (getObjAttrDataByCondition(&port, kPortEnableAttribute, &flag, 0, 1) != 0)
    return complain(vty, "getObjAttrDataByCondition failed!");
  static constexpr Word words[] = {{"disable", 0}, {"enable", 1}};
  vty_out(vty, "%-12d %-12d%-12s\r\n", address->slot, address->port, textOf(words, flag, "--"));
  return 0;
}

static int show_port_enable_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return -1;
  ObjList addresses;
  if (CliInputConvertObjIndex(argv[0], addresses) != 0) return badInterface(vty);
  vty_out(vty, "%-12s %-12s%-12s\r\n", "slotNo", "portNo", "enableConfig");
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    if (showPort(vty, dataOf<const CliAddr>(cell)) != 0) return -1;
  }
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show port enableConfig <ifStr>", show_port_enable_func, "data ports that are in service"),
    command(CONFIG_NODE, "set interface <ifStr> [enable|disable]", set_port_enable_func,
            "put data ports in or out of service"),
};

void msan_init_data_port_enable_cmd() { installCommands(commands); }
