#include "data/mac/port_mac_limit.h"

#include "common/obj_attributes.h"
#include "common/store.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "platform/tables.h"

enum MacLimitError : int { kPvcIndex = -120 };

static constexpr u16 kMostAddresses = 16;  // of a command

// --- Wire ---
//
// A port, in both directions: u16 slot, u16 port, 16 zeros, u16 rows, and for each u16 PVC index, u8 on or off, u16
// number, 6 zeros. Row i is the record's row i, whatever its index says.

static constexpr u32 kLocationReserved = 16;
static constexpr u32 kRowReserved = 6;

static u16 readU16(Reader& in) { return static_cast<u16>(in.number(2)); }

static void init_mac_num_limit_item(MacLimitRow* row, u16 index) {
  *row = {};
  row->pvcIndex = index;
}

static int parse_pkt_set_macnum_limit(Reader& in, PortMacLimit* record, SnmpErrInfo* err) {
  const u16 slot = readU16(in);
  const u16 port = readU16(in);
  in.skip(kLocationReserved);
  const u16 rows = record->value.pvcNum = readU16(in);
  if (!isDataCard(slot)) return reject(err, kNoSlot, {slot});
  if (const int code = findObject(slot, port, &record->object)) return reject(err, code);
  if (rows > kPvcRows) return reject(err, kRowCount, {slot, port, rows});
  for (u16 i = 0; i < kPvcRows; ++i) {
    MacLimitRow& row = record->value.rows[i];
    init_mac_num_limit_item(&row, i);
    if (i >= rows) continue;
    row.pvcIndex = readU16(in);
    row.enable = static_cast<u8>(in.number(1));
    row.number = readU16(in);
    in.skip(kRowReserved);
    if (row.pvcIndex >= kPvcRows && row.pvcIndex != kNoPvc) return reject(err, kPvcIndex, {slot, port, row.pvcIndex});
  }
  return 0;
}

// As many rows as the port has; -1 if it has none.
static int build_macnum_limit_mscpkt(const PortMacLimit* record, Writer& out) {
  const u16 slot = record->object.addr[1];
  const u16 port = record->object.addr[2];
  u16 rows = 0;
  if (get_pvcnum(slot, port, &rows) != 0) return -1;
  out.number(2, slot);
  out.number(2, port);
  out.zeros(kLocationReserved);
  out.number(2, rows);
  for (u16 i = 0; i < rows; ++i) {
    const MacLimitRow& row = record->value.rows[i];
    out.number(2, wireIndex(rows, i));
    out.number(1, row.enable);
    out.number(2, row.number);
    out.zeros(kRowReserved);
  }
  return 0;
}

// --- Check ---

// The record's count stays as it came, and is what is stored.
static int check_macnum_limit(PortMacLimit* record, SnmpErrInfo* err) {
  if (checkObject(macLimit, record, err) != 0) return -1;
  u16 rows = record->value.pvcNum;
  bool multiPvc = false;
  return check_pvcnum(record->object.addr[1], record->object.addr[2], &rows, &multiPvc, err);
}

// --- Store ---

static constexpr int kNullValue = -24, kTooManyRows = -32, kPartOfValue = -33;

static int checkAccess(const void* value, u32 offset, u32 length) {
  if (value == nullptr) return kNullValue;
  return offset != 0 || length < sizeof(MacLimitRecord) ? kPartOfValue : 0;
}

static int putRow(mco_trans_h transaction, u32 objectId, u16 index, const MacLimitRow& item) {
  Maclimit row;
  int code = Maclimit_treeidx_find(transaction, objectId, index, &row);
  if (code == DB_NOT_FOUND) {
    code = Maclimit_new(transaction, &row);
    if (code == 0) code = Maclimit_objId_put(&row, objectId);
    if (code == 0) code = Maclimit_pvcIndex_put(&row, index);
  }
  if (code == 0) code = Maclimit_enable_put(&row, item.enable);
  return code == 0 ? Maclimit_num_put(&row, item.number) : code;
}

int set_mac_limit_cfg_dbapi(u32 objectId, const void* value, u32 offset, u32 length) {
  if (const int code = checkAccess(value, offset, length)) return code;
  const auto& record = *static_cast<const MacLimitRecord*>(value);
  if (record.pvcNum > kPvcRows) return kTooManyRows;
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  for (u16 index = 0; index < record.pvcNum; ++index) {
    if (putRow(transaction, objectId, index, record.rows[index]) != 0) return -1;
  }
  return transaction.commit();
}

int get_mac_limit_cfg_dbapi(u32 objectId, void* value, u32 offset, u32 length) {
  if (const int code = checkAccess(value, offset, length)) return code;
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  MacLimitRecord record;
  for (u16 index = 0; index < kPvcRows; ++index) {
    MacLimitRow& item = record.rows[index];
    init_mac_num_limit_item(&item, index);
    Maclimit row;
    int code = Maclimit_treeidx_find(transaction, objectId, index, &row);
    if (code == DB_NOT_FOUND) continue;
    if (code == 0) code = Maclimit_enable_get(&row, &item.enable);
    if (code == 0) code = Maclimit_num_get(&row, &item.number);
    if (code != 0) return -1;
  }
  *static_cast<MacLimitRecord*>(value) = record;
  return 0;
}

void delete_mac_limit_cfg_dbapi(u32 objectId, u16 index) {
  Transaction transaction(Access::write);
  if (!transaction) return;
  Maclimit row;
  int code = Maclimit_treeidx_find(transaction, objectId, index, &row);
  if (code == DB_NOT_FOUND) return;
  if (code == 0) code = Maclimit_delete(&row);
  if (code == 0) transaction.commit();
}

// --- Steps ---

static bool reaches(const ObjIndex* object) { return sysGetSlotSwAliveStatus(object->addr[1]) == 1; }

static void sendFailed(u16 slot) {
  ulogPrintf(gModuleId_Msan, kLogDebug, "file %s func %s send slotno %d mscmsg err\r\n", __FILE__, "send_macnum_limit",
             slot);
}

void recover_macnum_limit_cfg(u16 slot) {
  u32 served = 0;
  if (ddIsServeBoardSlot(slot, &served) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "file %s func %s slotOut %d invalid.\r\n", __FILE__, __func__, slot);
    return;
  }
  if (isDataCard(slot)) recoverSlot(macLimit, slot, hasRows);
}

void delete_macnum_limit_cfg(u16 slot) {
  forEachDataPort(slot, [](const ObjIndex& port) {
    u32 id = 0;
    if (omOltport2ObjId(port.addr[1], port.addr[2], &id) != 0) return;
    for (u16 row = 0; row < kPvcRows; ++row) delete_mac_limit_cfg_dbapi(id, row);
  });
}

// --- Commands ---

struct Limit {
  u8 enable = 0;
  u16 number = 0;
  u16 pvc = kNoPvc;
};

// A row as stored, with the limit in the place of the one that a command names.
static int changeRow(Vty* vty, PortMacLimit* record, const Limit& limit) {
  if (const int code = readRecord(macLimit, record)) return refuse(vty, "return %d :getObjAttrData err.\r\n", code);
  const bool first = limit.pvc == kNoPvc;
  record->value.pvcNum = first ? u16{1} : kPvcRows;
  record->value.rows[first ? 0 : limit.pvc] = {.pvcIndex = limit.pvc, .enable = limit.enable, .number = limit.number};
  return 0;
}

static int setLimit(Vty* vty, LIST* addresses, const Limit& limit) {
  ObjList records;
  SnmpErrInfo err;
  const auto change = [&](const CliAddr&, PortMacLimit* record) { return changeRow(vty, record, limit); };
  switch (gatherRecords<PortMacLimit>(macLimit, vty, addresses, records, change)) {
    case Gathered::all:
      break;
    case Gathered::noMemory:
    case Gathered::notListed:
      reject(&err, kNoMemory);
      vty_err_info(vty, err);
      return -1;
    default:
      return -1;
  }
  if (setRecords(macLimit, records, &err) != 0) {
    vty_err_info(vty, err);
    return -1;
  }
  reportRecords(macLimit, records, kByOperator);
  vty_out(vty, "set mac num limit success.\r\n");
  return 0;
}

// The words: "enable" or "disable", "number" and the number, the interfaces, the PVC; the second and the last may be
// missing.
static CommandHandler cli_set_mac_limit_func;
int cli_set_mac_limit_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  const bool numbered = argc > 1 && bep_StrCmp(argv[1], "number") == 0;
  const int at = numbered ? 3 : 1;  // of the interfaces
  const auto enable = argc == at + 1 || argc == at + 2 ? valueOf(kSwitchWords, argv[0]) : std::nullopt;
  if (!enable) return refuse(vty, "Unknown command.\r\n");
  if (*enable == 1 && !numbered) return refuse(vty, "Must input limit number.\r\n");
  Limit limit{static_cast<u8>(*enable), numbered ? cutNumber(argv[2]) : u16{0}, kNoPvc};
  ObjList addresses;
  if (readInterfaces(vty, argv[at], addresses) != 0) return -1;
  const bool inRange = limit.number >= 1 && limit.number <= kMostAddresses;
  if (limit.enable == 1 && !inRange && inRecoverConfProcess() != 1) {
    return refuse(vty, "Invalid limit number %d.\r\n", limit.number);
  }
  if (argc == at + 2) {
    limit.pvc = cutNumber(argv[at + 1]);
    if (limit.pvc >= kPvcRows) return refuse(vty, "Invalid pvc index %d.\r\n", limit.pvc);
  }
  return setLimit(vty, addresses, limit);
}

static const char* switchWord(const MacLimitRow& row) { return textOf(kSwitchWords, row.enable == 1, "disable"); }

static int showPort(Vty* vty, const PortMacLimit& record) {
  const u16 slot = record.object.addr[1];
  const u16 port = record.object.addr[2];
  u16 rows = record.value.pvcNum;
  bool multiPvc = false;
  SnmpErrInfo err;
  if (check_pvcnum(slot, port, &rows, &multiPvc, &err) != 0) {
    return refuse(vty, "slotOut %d portNo%d pvc num %d err.\r\n", slot, port, rows);
  }
  for (u16 i = 0; i < rows; ++i) {
    const MacLimitRow& row = record.value.rows[i];
    if (multiPvc) {
      vty_out(vty, "%-12d%-12d%-12d%-12s%-12d\r\n ", slot, port, i, switchWord(row), row.number);
    } else {
      vty_out(vty, "%-12d%-12d%-12s%-12s%-12d\r\n ", slot, port, "--", switchWord(row), row.number);
    }
  }
  return 0;
}

static int readPort(Vty* vty, PortMacLimit* record, SnmpErrInfo* err) {
  if (checkObject(macLimit, record, err) != 0) {
    vty_err_info(vty, *err);
    return -1;
  }
  const int code = readRecord(macLimit, record);
  return code == 0 ? 0 : refuse(vty, "getObjAttrData err: ret = %d.\r\n", code);
}

static CommandHandler cli_show_mac_limit_func;
int cli_show_mac_limit_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "Unknown command.\r\n");
  ObjList addresses, records;
  SnmpErrInfo err;
  if (readInterfaces(vty, argv[0], addresses) != 0) return -1;
  const auto read = [&](const CliAddr&, PortMacLimit* record) { return readPort(vty, record, &err); };
  if (gatherRecords<PortMacLimit>(macLimit, vty, addresses, records, read) != Gathered::all) return -1;
  vty_out(vty, "%-12s%-12s%-12s%-12s%-12s\r\n ", "slot", "port", "pvc", "flag", "number");
  int result = 0;
  for (NODE* cell = lstFirst(records); cell != nullptr && result == 0; cell = lstNext(cell)) {
    result = showPort(vty, *dataOf<const PortMacLimit>(cell));
  }
  return result;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE,
            "set mac limit [enable|disable] {[number] [<limitNum>]}*1 interface <ifStr> {pvc <pvc_value>}*1",
            cli_set_mac_limit_func, "how many addresses ports may learn"),
    command(CONFIG_NODE, "show mac limit interface <ifStr> ", cli_show_mac_limit_func,
            "how many addresses ports may learn"),
};

static void showrun_macnum_limit_item(Vty* vty, const PortMacLimit* record) {
  const u16 slot = record->object.addr[1];
  const u16 port = record->object.addr[2];
  u16 rows = record->value.pvcNum;
  bool multiPvc = false;
  SnmpErrInfo err;
  if (check_pvcnum(slot, port, &rows, &multiPvc, &err) != 0) return;
  for (u16 i = 0; i < rows; ++i) {
    const MacLimitRow& row = record->value.rows[i];
    if (row.enable != 1) continue;
    vty_out(vty, "set mac limit enable number %d interface %d/%d", row.number, slot, port);
    if (multiPvc) vty_out(vty, " pvc %d", i);
    vty_out(vty, "\r\n");
  }
}

// --- Row ---

constexpr DataItem macLimit = {
    .id = 2822,
    .stem = "macnum_limit",
    .attribute = kMacAttribute,
    .kept = kept<&PortMacLimit::value>(),
    .objectTypes = kRowPortTypes,
    .minimum = 0,
    .wholeSlot = kWholeSlot,
    .encodedBytes = 22 + kPvcRows * 11,
    .parse = onRecord<parse_pkt_set_macnum_limit>,
    .encode = onRecord<build_macnum_limit_mscpkt>,
    .check = onRecord<check_macnum_limit>,
    .get = checkedGet<macLimit>,
    .holds = hasRows,
    .reaches = reaches,
    .sendFailed = sendFailed,
    .buildFailed = untold,
    .showrun = onRecord<showrun_macnum_limit_item>,
    .commands = commands,
    .message = setAndGet<macLimit>(120000, "mac num limit msg."),
};
