// The commands over the tables of ports.

#include "combo/port/dsl_port_mode.h"
#include "common/areas.h"
#include "common/commands.h"
#include "data/common/data_item.h"
#include "data/vlan/port_vlan.h"
#include "data/vlan/vlan_service_command.h"

// The PVC of a command, kNoPvc where it names none. 0, or -1 with a line.
static int readPvc(Vty* vty, const char* text, u16* pvc) {
  *pvc = kNoPvc;
  if (text == nullptr) return 0;
  *pvc = cutNumber(text);
  return *pvc < kPvcRows ? 0 : refuse(vty, "Invalid pvc index %d.\r\n", *pvc);
}

// --- Attach and detach ---

// Puts a row in the place of the one that a command names: that of the PVC, or the first one. The others stay as they
// are stored.
static int changeRow(Vty* vty, PortVlanRecord* record, u16 pvc, const VlanItem& row) {
  if (readRecord(portVlan, record) != 0) return refuse(vty, "getObjAttrData fail!\r\n");
  const bool first = pvc == kNoPvc;
  record->table.pvcNum = first ? u16{1} : kPvcRows;
  record->table.rows[first ? 0 : pvc] = row;
  return 0;
}

// The same row for all addresses, checked, stored and sent. 0, or -1 with a line.
static int setRow(Vty* vty, LIST* addresses, LIST* records, u16 pvc, const VlanItem& row) {
  const auto change = [&](const CliAddr&, PortVlanRecord* record) { return changeRow(vty, record, pvc, row); };
  switch (gatherRecords<PortVlanRecord>(portVlan, vty, addresses, records, change)) {
    case Gathered::all:
      return 0;
    case Gathered::noMemory:
    case Gathered::notListed:
      return refuse(vty, "malloc fail!\r\n");
    default:
      return -1;
  }
}

static int set(Vty* vty, LIST* records) {
  SnmpErrInfo err;
  if (setRecords(portVlan, records, &err) == 0) return 0;
  vty_err_info(vty, err);
  return -1;
}

// An attach ends the editing of a profile, whether or not it was taken; profile 0 begins anew.
static void endEditing(u16 id) {
  if (id == 0) {
    init_port_vlan_profile(0);
  } else {
    gCurrentVlanPrfId = 0;
  }
}

static CommandHandler cli_attach_vlan_profile_func;
int cli_attach_vlan_profile_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2 && argc != 3) return refuse(vty, "Unknown command.\r\n");
  u16 id = 0;
  u16 pvc = kNoPvc;
  ObjList addresses, records;
  if (tooLong(argv[0])) return refuse(vty, "Profile name %.20s is too long.\r\n", argv[0]);
  if (find_vlan_prf_id_by_name(argv[0], &id) != 0) return refuse(vty, "Profile %.20s is not exist.\r\n", argv[0]);
  if (readInterfaces(vty, argv[1], addresses) != 0 || readPvc(vty, argc > 2 ? argv[2] : nullptr, &pvc) != 0) return -1;
  VlanProfile& profile = gPortVlanPrf[id];
  profile.item.pvcIndex = pvc;
  if (setRow(vty, addresses, records, pvc, profile.item) != 0) return -1;
  const int result = set(vty, records);
  endEditing(id);
  if (result != 0) return -1;
  const auto& last = *dataOf<const CliAddr>(lstLast(addresses));
  vty_out(vty, "Attach vlan profile %.20s(id:%d) to slot %d port %d pvc %d success.\r\n", profile.name, id, last.slot,
          last.port, pvc);
  reportRecords(portVlan, records, kByOperator);
  return 0;
}

static CommandHandler cli_detach_vlan_profile_func;
int cli_detach_vlan_profile_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1 && argc != 2) return refuse(vty, "Unknown command.\r\n");
  u16 pvc = kNoPvc;
  ObjList addresses, records;
  if (readInterfaces(vty, argv[0], addresses) != 0 || readPvc(vty, argc > 1 ? argv[1] : nullptr, &pvc) != 0) return -1;
  VlanItem plain;
  init_vlan_item(&plain, pvc);
  if (setRow(vty, addresses, records, pvc, plain) != 0 || set(vty, records) != 0) return -1;
  vty_out(vty, "Detach vlan profile success.\r\n");
  reportRecords(portVlan, records, kByOperator);
  return 0;
}

// --- Clear ---

static int init_vlan_table(PortVlanRecord* record) {
  PortVlanTable& table = record->table;
  if (get_pvcnum(record->object.addr[1], record->object.addr[2], &table.pvcNum) != 0) return -1;
  for (u16 i = 0; i < kPvcRows; ++i) init_vlan_item(&table.rows[i], i);
  return 0;
}

static int gatherCleared(Vty* vty, const char* interfaces, LIST* records) {
  ObjList addresses;
  if (readInterfaces(vty, interfaces, addresses) != 0) return -1;
  const auto clear = [vty](const CliAddr&, PortVlanRecord* record) {
    return init_vlan_table(record) == 0 ? 0 : refuse(vty, "init_vlan_table err.\r\n");
  };
  switch (gatherRecords<PortVlanRecord>(portVlan, vty, addresses, records, clear)) {
    case Gathered::all:
      return 0;
    case Gathered::noMemory:
      return refuse(vty, "malloc fail!\r\n");
    case Gathered::badAddress:
      return refuse(vty, "transCliAddr2ObjIndex err.\r\n");
    case Gathered::notListed:
      return refuse(vty, "insert_sort_list_by_index err.\r\n");
    default:
      return -1;
  }
}

static CommandHandler cli_clear_port_vlan_func;
int cli_clear_port_vlan_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "unknown command.\r\n");
  ObjList records;
  if (gatherCleared(vty, argv[0], records) != 0) return refuse(vty, "clear vlan service fail.\r\n");
  if (set(vty, records) != 0) return -1;
  vty_out(vty, "clear vlan service successfully.\r\n");
  reportRecords(portVlan, records, kByOperator);
  return 0;
}

// --- Show ---

static void show_vlan_table_item(Vty* vty, const VlanItem& row) {
  showVlanHead(vty, row);
  for (u16 i = 0; i < kVlanServices; ++i) {
    if (isInUse(row.services[i])) show_vlan_profile_service(vty, row.services[i], static_cast<u16>(i + 1));
  }
}

// The rows that a VDSL port shows: all eight, or the first.
static int rowsOfVdsl(Vty* vty, const CliAddr& address, u16 pvc, u16* rows) {
  u16 mode = 0;
  if (get_dsl_port_mode(address.slot, address.port, &mode) != 0) {
    return refuse(vty, "Slot %d port %d get vdsl mode fail.\r\n", address.slot, address.port);
  }
  if (mode != kAtmMode && mode != kPtmMode) {
    return refuse(vty, "Slot %d port %d get invalid vdsl mode %d.\r\n", address.slot, address.port, mode);
  }
  if (mode == kPtmMode && pvc != kNoPvc) {
    return refuse(vty, "Slot %d port %d is at ptm mode, has no pvc.\r\n", address.slot, address.port);
  }
  *rows = mode == kAtmMode ? kPvcRows : u16{1};
  return 0;
}

static int rowsToShow(Vty* vty, const CliAddr& address, u16 pvc, u16* rows) {
  if (isVdslCard(address.slot)) return rowsOfVdsl(vty, address, pvc, rows);
  *rows = kPvcRows;
  return isAdslCard(address.slot) ? 0 : refuse(vty, "Slot %d is wrong card, has no pvc.\r\n", address.slot);
}

static int showPort(Vty* vty, const CliAddr& address, const char* pvcText) {
  if (isSlotAuthed(address.slot) != 1) return refuse(vty, "slot %d is not authed!\r\n", address.slot);
  u16 pvc = kNoPvc;
  u16 rows = 0;
  if (readPvc(vty, pvcText, &pvc) != 0 || rowsToShow(vty, address, pvc, &rows) != 0) return -1;
  PortVlanRecord record;
  if (transCliAddr2ObjIndex(vty, &address, &record.object) != 0) return -1;
  if (readRecord(portVlan, &record) != 0) return refuse(vty, "getObjAttrData fail!\r\n");
  vty_out(vty, "\r\n show vlan service of slot %-2d port %-2d\r\n", address.slot, address.port);
  for (u16 row = 0; row < rows; ++row) {
    if (pvc != kNoPvc && row != pvc) continue;
    vty_out(vty, "\r\n ****************pvc %-2d****************\r\n", row);
    show_vlan_table_item(vty, record.table.rows[row]);
  }
  return 0;
}

static CommandHandler cli_show_service_vlan_func;
int cli_show_service_vlan_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc < 1 || argc > 3) return refuse(vty, "Unknown command.\r\n");
  ObjList addresses;
  if (readInterfaces(vty, argv[0], addresses) != 0) return -1;
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    if (showPort(vty, *dataOf<const CliAddr>(cell), argc > 1 ? argv[1] : nullptr) != 0) return -1;
  }
  return 0;
}

// --- Installation ---

static constexpr Command commands[] = {
    command(CONFIG_NODE, "attach vlan profile <name> interface <ifStr> {pvc <pvcindex>}*1",
            cli_attach_vlan_profile_func, "copy a VLAN profile to ports"),
    command(CONFIG_NODE, "detach vlan profile interface <ifStr> {pvc <pvcindex>}*1", cli_detach_vlan_profile_func,
            "take the VLAN services of a PVC away"),
    command(CONFIG_NODE, "clear vlan service interface <ifStr>", cli_clear_port_vlan_func,
            "take all VLAN services of ports away"),
    command(CONFIG_NODE, "show service vlan interface <ifStr> {pvc <pvcindex>}*1", cli_show_service_vlan_func,
            "VLAN services of ports"),
};

static void installPortCommands() { installCommands(commands); }

void install_port_vlan_cfg_cli_element() {
  static constexpr Step install[] = {installVlanProfileCommands, installVlanServiceCommands, installVlanProfileShow,
                                     installPortCommands, installAddVlanService};
  callAll(install);
}
