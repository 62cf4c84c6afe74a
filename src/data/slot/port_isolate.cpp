#include "data/slot/port_isolate.h"

#include "common/obj_attributes.h"
#include "common/store.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "platform/tables.h"

enum IsolationError : int { kNotASlot = -5, kTooManySlots = -8, kSwitch = -113 };

static constexpr u32 kMostSlots = 16;  // of a request

// --- Wire ---
//
// A slot, in both directions: u16 slot, u16 port, 16 zeros, u8 on or off, 16 zeros.

static constexpr u32 kReserved = 16;
static constexpr u32 kSlotBytes = 37;

static int parse_set_port_isolation(Reader& in, PortIsolateRecord* record, SnmpErrInfo* err) {
  const auto slot = static_cast<u16>(in.number(2));
  in.skip(2 + kReserved);
  record->isolation_enable = static_cast<u8>(in.number(1));
  in.skip(kReserved);
  if (isSlotAuthed(slot) != 1) return reject(err, kNoSlot, {slot});
  const int code = findObject(slot, 0, &record->object);
  return code == 0 ? 0 : reject(err, code);
}

static int encode(const PortIsolateRecord* record, Writer& out) {
  out.number(2, record->object.addr[1]);
  out.zeros(2 + kReserved);
  out.number(1, record->isolation_enable);
  out.zeros(kReserved);
  return 0;
}

// --- Check ---

// An address with a port would be stored where nothing finds it.
static int checkPlace(const PortIsolateRecord* record, SnmpErrInfo* err) {
  const u16 slot = record->object.addr[1];
  const u16 port = record->object.addr[2];
  return port == 0 ? checkObject(portIsolation, record, err) : reject(err, kNotASlot, {slot, port});
}

static int check(PortIsolateRecord* record, SnmpErrInfo* err) {
  const u16 slot = record->object.addr[1];
  if (checkPlace(record, err) != 0) return -1;
  if (!isDataCard(slot)) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "Function:%s, Line:%d:  slot %d is not msan:%d.\r\n", "set_port_isolation",
               __LINE__, slot, get_config_card_type(slot));
    return -1;
  }
  return record->isolation_enable <= 1 ? 0 : rejectAs(err, kSwitch, {slot}, 1, record->isolation_enable);
}

// --- Store ---

static constexpr int kNullValue = -24, kPartOfValue = -9;

static int checkAccess(const void* value, u32 offset, u32 length) {
  if (value == nullptr) return kNullValue;
  return offset == 0 && length == sizeof(PortIsolateRecord::isolation_enable) ? 0 : kPartOfValue;
}

int set_port_isolation_dbapi(u32 objectId, const void* value, u32 offset, u32 length) {
  if (const int code = checkAccess(value, offset, length)) return code;
  const u8 enable = *static_cast<const u8*>(value);
  if (enable > 1) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s(%d): isolation_enable err. isolation_enable=%d. \r\n", __func__, __LINE__,
               enable);
    return -1;
  }
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  PortISolation row;
  int code = PortISolation_treeidx_find(transaction, objectId, &row);
  if (code == DB_NOT_FOUND) code = PortISolation_new(transaction, &row);
  const PortISolation_fixed fields{objectId, enable};
  if (code == 0) code = PortISolation_fixed_put(&row, &fields);
  return code == 0 ? transaction.commit() : -1;
}

int get_port_isolation_dbapi(u32 objectId, void* value, u32 offset, u32 length) {
  if (const int code = checkAccess(value, offset, length)) return code;
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  PortISolation row;
  PortISolation_fixed fields{objectId, 1};
  int code = PortISolation_treeidx_find(transaction, objectId, &row);
  if (code == 0) code = PortISolation_fixed_get(&row, &fields);
  if (code != 0 && code != DB_NOT_FOUND) return -1;
  *static_cast<u8*>(value) = fields.isolation_enable;
  return 0;
}

int del_port_isolation_dbapi(u32 objectId) {
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  PortISolation row;
  if (PortISolation_treeidx_find(transaction, objectId, &row) != 0) return kStoreFailed;
  return PortISolation_delete(&row) == 0 ? transaction.commit() : kStoreFailed;
}

// --- Steps ---

static int get_port_isolation(PortIsolateRecord* record, SnmpErrInfo* err) {
  const u16 slot = record->object.addr[1];
  if (isSlotAuthed(slot) != 1) return reject(err, kNoSlot, {slot});
  if (!isDataCard(slot) || checkPlace(record, err) != 0) return -1;
  return readRecord(portIsolation, record) == 0 ? 0 : -1;
}

void hotplug_port_isolation(u16 slot) { recoverWholeSlot(portIsolation, slot); }

// --- Commands ---

static CommandHandler cl_set_slot_isolation_func;
int cl_set_slot_isolation_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2) return refuse(vty, "para num = %d error!\r\n", argc);
  const auto enable = valueOf(kSwitchWords, argv[0]);
  if (!enable) return refuse(vty, "Invalid para!\r\n");
  ObjList addresses, records;
  if (readInterfaces(vty, argv[1], addresses) != 0) return -1;
  const auto change = [&](const CliAddr&, PortIsolateRecord* record) {
    record->isolation_enable = static_cast<u8>(*enable);
    return 0;
  };
  switch (gatherRecords<PortIsolateRecord>(portIsolation, vty, addresses, records, change)) {
    case Gathered::all:
      break;
    case Gathered::badAddress:
      return refuse(vty, "interface error.\r\n");
    default:
      return refuse(vty, "file %s func %s MSAN_MALLOC fail.\r\n", __FILE__, __func__);
  }
  SnmpErrInfo err;
  if (setRecords(portIsolation, records, &err) != 0) return refuse(vty, "set port isolate config error.\r\n");
  reportRecords(portIsolation, records, kByOperator);
  vty_out(vty, "set port isolate config ok.\r\n");
  return 0;
}

static CommandHandler cl_show_slot_isolation_func;
int cl_show_slot_isolation_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "para num = %d error!\r\n", argc);
  ObjList addresses, records;
  if (readInterfaces(vty, argv[0], addresses) != 0) return -1;
  const auto nothing = [](const CliAddr&, PortIsolateRecord*) { return 0; };
  switch (gatherRecords<PortIsolateRecord>(portIsolation, vty, addresses, records, nothing)) {
    case Gathered::all:
      break;
    case Gathered::badAddress:
      return refuse(vty, "transCliAddr2ObjIndex err.\r\n");
    default:
      return refuse(vty, "file %s func %s msan_malloc fail.\r\n", __FILE__, __func__);
  }
  if (getRecords(portIsolation, records) != 0) return refuse(vty, "get port isolate config error.\r\n");
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    const auto& record = *dataOf<const PortIsolateRecord>(cell);
    vty_out(vty, "slot: %d\r\n", record.object.addr[1]);
    vty_out(vty, "switch: %-12s\r\n", textOf(kSwitchWords, record.isolation_enable == 1, ""));
    vty_out(vty, "\r\n");
  }
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set isolation [enable|disable] interface <ifStr> ", cl_set_slot_isolation_func,
            "please input slot no."),
    command(CONFIG_NODE, "show isolation interface <ifStr> ", cl_show_slot_isolation_func, "slotNo."),
};

static void show_run_port_isolation(Vty* vty, const PortIsolateRecord* record) {
  if (record->isolation_enable != 0) return;
  vty_out(vty, "\r\nset isolation disable ");
  vty_out(vty, "interface %d\r\n", record->object.addr[1]);
}

// --- Row ---

static constexpr u16 types[] = {579, 580, 583, 584, 585};

constexpr DataItem portIsolation = {
    .id = 2819,
    .stem = "port_isolation",
    .attribute = kIsolationAttribute,
    .kept = kept<&PortIsolateRecord::isolation_enable>(),
    .objectTypes = types,
    .minimum = 0,
    .maximum = kMostSlots,
    .mostSelected = kMostSlots,
    .tooManySelected = kTooManySlots,
    .encodedBytes = kSlotBytes,
    .ofSlots = true,
    .checksReplay = true,
    .parse = onRecord<parse_set_port_isolation>,
    .encode = onRecord<encode>,
    .check = onRecord<check>,
    .get = onRecord<get_port_isolation>,
    .sendFailed = untold,
    .showrun = onRecord<show_run_port_isolation>,
    .commands = commands,
    .message = setAndGet<portIsolation>(628, "Set port isolate"),
};
