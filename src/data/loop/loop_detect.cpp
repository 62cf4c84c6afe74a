#include "data/loop/loop_detect.h"

#include "common/obj_attributes.h"
#include "common/store.h"
#include "data/port_rows.h"
#include "platform/log.h"
#include "platform/module_registry.h"
#include "platform/objects.h"
#include "platform/tables.h"

enum LoopError : int { kDetectSwitch = -122, kRecoverySwitch = -123 };

// --- Wire ---
//
// A port, in both directions: u16 slot, u16 port, 16 zeros, u8 detection, u8 recovery, 32 zeros.

static constexpr u32 kPortBytes = 54;
static constexpr u32 kLocationReserved = 16, kReserved = 32;

static int parse_set_loopdetect(Reader& in, LoopDetectRecord* record, SnmpErrInfo* err) {
  const auto slot = static_cast<u16>(in.number(2));
  const auto port = static_cast<u16>(in.number(2));
  in.skip(kLocationReserved);
  record->value.detectEnable = static_cast<u8>(in.number(1));
  record->value.recoveryEnable = static_cast<u8>(in.number(1));
  in.skip(kReserved);
  if (isSlotAuthed(slot) != 1) return reject(err, kNoSlot, {slot});
  placeObject(slot, port, &record->object);
  return 0;
}

static int encode(const LoopDetectRecord* record, Writer& out) {
  out.number(2, record->object.addr[1]);
  out.number(2, record->object.addr[2]);
  out.zeros(kLocationReserved);
  out.number(1, record->value.detectEnable);
  out.number(1, record->value.recoveryEnable);
  out.zeros(kReserved);
  return 0;
}

static int check_loopdetect(LoopDetectRecord* record, SnmpErrInfo* err) {
  const LoopDetectValue& value = record->value;
  if (value.detectEnable > 1) return rejectAs(err, kDetectSwitch, {}, 1, value.detectEnable);
  return value.recoveryEnable <= 1 ? 0 : rejectAs(err, kRecoverySwitch, {}, 1, value.recoveryEnable);
}

// --- Store ---

static constexpr int kNullValue = -1, kPartOfValue = -2;

static int checkAccess(const void* value, u32 offset, u32 length) {
  if (offset != 0 || length != sizeof(LoopDetectValue)) return kPartOfValue;
  return value != nullptr ? 0 : kNullValue;
}

int set_loopdetect_db_api(u32 objectId, const void* data, u32 offset, u32 length) {
  if (hss_IsSmuMaster() != 1) return 0;
  if (const int code = checkAccess(data, offset, length)) return code;
  const auto& value = *static_cast<const LoopDetectValue*>(data);
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  LOOP_DETECT_ENTRY_CFG row;
  int code = LOOP_DETECT_ENTRY_CFG_objTree_find(transaction, objectId, &row);
  if (code == DB_NOT_FOUND) code = LOOP_DETECT_ENTRY_CFG_new(transaction, &row);
  const LOOP_DETECT_ENTRY_CFG_fixed fields{objectId, value.detectEnable, value.recoveryEnable};
  if (code == 0) code = LOOP_DETECT_ENTRY_CFG_fixed_put(&row, &fields);
  return code == 0 ? transaction.commit() : kStoreFailed;
}

int get_loopdetect_db_api(u32 objectId, void* data, u32 offset, u32 length) {
  if (const int code = checkAccess(data, offset, length)) return code;
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  LOOP_DETECT_ENTRY_CFG row;
  LOOP_DETECT_ENTRY_CFG_fixed fields;
  int code = LOOP_DETECT_ENTRY_CFG_objTree_find(transaction, objectId, &row);
  if (code == 0) code = LOOP_DETECT_ENTRY_CFG_fixed_get(&row, &fields);
  if (code != 0) return kStoreFailed;
  *static_cast<LoopDetectValue*>(data) = {fields.detectEnable, fields.recoveryEnable};
  return 0;
}

int del_loopdetect_db_api(u32 objectId) {
  if (hss_IsSmuMaster() != 1) return 0;
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  LOOP_DETECT_ENTRY_CFG row;
  int code = LOOP_DETECT_ENTRY_CFG_objTree_find(transaction, objectId, &row);
  if (code == 0) code = LOOP_DETECT_ENTRY_CFG_delete(&row);
  return code == 0 ? transaction.commit() : kStoreFailed;
}

// --- Steps ---

static bool reaches(const ObjIndex* object) {
  const u16 slot = object->addr[1];
  if (sysGetSlotSwAliveStatus(slot) == 1) return true;
  ulogPrintf(gModuleId_Msan, kLogDebug, "%s: the software of slot %d does not run.\r\n", "send_loopdetect", slot);
  return false;
}

static void report(LIST* records, u16 id, int origin) { msan_cfg_sync_trigger(records, id, origin, kObjectList); }

void loopdetect_callback_after_cardauth_db(u16 slot) {
  if (!isDataCard(slot)) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: no data card in slot %d.\r\n", __func__, slot);
    return;
  }
  ObjList records;
  bool good = true;
  forEachDataPort(slot, [&](const ObjIndex& port) {
    auto* record = newRecord<LoopDetectRecord>();
    if (record != nullptr) record->object = port;
    if (record == nullptr || appendRecord(&record->object, records) != 0) {
      mpuFree(record);
      good = false;
    }
  });
  SnmpErrInfo err;
  if (!good || setRecords(loopDetect, records, &err) != 0) return;
  reportRecords(loopDetect, records, kByNode);
}

void loop_detect_cfg_recover(u16 slot) {
  u32 served = 0;
  if (ddIsServeBoardSlot(slot, &served) == 0)
    recoverSlot(loopDetect, slot);
  else
    ulogPrintf(gModuleId_Msan, kLogDebug, "file %s func %s slotNo %d invalid.\r\n", __FILE__, __func__, slot);
}

// --- Commands ---

struct Complaints {
  const char* badAddress;
  const char* notListed;
};

// Sets both switches of ports. 0, or -1 with a line.
static int setPorts(Vty* vty, const char* interfaces, const LoopDetectValue& value, const Complaints& complaints) {
  ObjList addresses, records;
  if (readInterfaces(vty, interfaces, addresses) != 0) return -1;
  const auto change = [&](const CliAddr&, LoopDetectRecord* record) {
    record->value = value;
    return 0;
  };
  switch (gatherRecords<LoopDetectRecord>(loopDetect, vty, addresses, records, change)) {
    case Gathered::all:
      break;
    case Gathered::badAddress:
      return refuse(vty, "%s", complaints.badAddress);
    case Gathered::noMemory:
      return refuse(vty, "malloc fail!\r\n");
    default:
      return refuse(vty, "%s", complaints.notListed);
  }
  SnmpErrInfo err;
  if (setRecords(loopDetect, records, &err) != 0) {
    vty_err_info(vty, err);
    return -1;
  }
  reportRecords(loopDetect, records, kByOperator);
  return 0;
}

static CommandHandler msan_cli_set_loop_detect_enable_func;
int msan_cli_set_loop_detect_enable_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  const auto recovery = argc == 2 ? valueOf(kSwitchWords, argv[0]) : std::nullopt;
  if (!recovery) return refuse(vty, "Unknown command.\r\n");
  constexpr Complaints complaints{"please input port interface string such as 1/1/1.\r\n", "getObjAttrData err.\r\n"};
  if (setPorts(vty, argv[1], {1, static_cast<u8>(*recovery)}, complaints) != 0) return -1;
  vty_out(vty, "set loop detect enable auto-recovery auto-recovery %s success.\r\n", argv[0]);
  return 0;
}

static CommandHandler msan_cli_set_loop_detect_disable_func;
int msan_cli_set_loop_detect_disable_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "Unknown command.\r\n");
  constexpr const char* kNoObject = "transCliAddr2ObjIndex err.\r\n";
  if (setPorts(vty, argv[0], {0, 0}, {kNoObject, kNoObject}) != 0) return -1;
  vty_out(vty, "set loop detect disable success.\r\n");
  return 0;
}

static const char* switchWord(u8 value) { return textOf(kSwitchWords, value == 1, ""); }

static CommandHandler msan_cli_show_loop_detect_func;
int msan_cli_show_loop_detect_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "Unknown command.\r\n");
  ObjList addresses, records;
  if (readInterfaces(vty, argv[0], addresses) != 0) return -1;
  const auto nothing = [](const CliAddr&, LoopDetectRecord*) { return 0; };
  switch (gatherRecords<LoopDetectRecord>(loopDetect, vty, addresses, records, nothing)) {
    case Gathered::all:
      break;
    case Gathered::badAddress:
      return refuse(vty, "transCliAddr2ObjIndex err.\r\n");
    default:
      return refuse(vty, "malloc fail!\r\n");
  }
  if (getRecords(loopDetect, records) != 0) return refuse(vty, "getLoopDetect err.\r\n");
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    const auto& record = *dataOf<const LoopDetectRecord>(cell);
    vty_out(vty, "\r\n%-8s%-8s%-12s%-16s\r\n", "slot", "port", "detect", "auto-recovery");
    vty_out(vty, "%-8d%-8d", record.object.addr[1], record.object.addr[2]);
    vty_out(vty, "%-12s", switchWord(record.value.detectEnable));
    vty_out(vty, "%-16s", switchWord(record.value.recoveryEnable));
    vty_out(vty, "\r\n");
  }
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set loop detect enable auto-recovery [enable|disable] interface <ifStr>",
            msan_cli_set_loop_detect_enable_func, "whether loops behind ports are looked for"),
    command(CONFIG_NODE, "set loop detect disable interface <ifStr>", msan_cli_set_loop_detect_disable_func,
            "whether loops behind ports are looked for"),
    command(CONFIG_NODE, "show loop detect interface <ifStr>", msan_cli_show_loop_detect_func,
            "whether loops behind ports are looked for"),
};

// A port's line, if it is not as at first. 0 or -1.
static int printPort(Vty* vty, u16 slot, u16 port) {
  LoopDetectRecord record;
  placeObject(slot, port, &record.object);
  if (readRecord(loopDetect, &record) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: port %d/%d can't be read.\r\n", "show_run_loopdetect", slot, port);
    return -1;
  }
  if (record.value == LoopDetectValue{}) return 0;
  if (record.value.detectEnable != 1) {
    vty_out(vty, "set loop detect disable interface %d/%d\r\n", slot, port);
  } else {
    vty_out(vty, "set loop detect enable auto-recovery disable interface %d/%d\r\n", slot, port);
  }
  return 0;
}

void show_run_loopdetect(Vty* vty) {
  u32 slots[100];
  u32 count = 0, most = 0;
  if (ddGetServeSlotList(slots, 100, &count) != 0 || ddGetMaxSlotNum(&most) != 0 || count > most) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: the slots are not known.\r\n", __func__);
    return;
  }
  for (u32 i = 0; i < count; ++i) {
    const auto slot = static_cast<u16>(slots[i]);
    const u16 ports = dataPorts(slot);
    for (u16 port = 1; port <= ports; ++port) {
      if (printPort(vty, slot, port) != 0) return;
    }
  }
}

// --- Row ---

constexpr DataItem loopDetect = {
    .id = 2845,
    .stem = "loopdetect",
    .attribute = kLoopAttribute,
    .kept = kept<&LoopDetectRecord::value>(),
    .objectTypes = kRowPortTypes,
    .encodedBytes = kPortBytes,
    .parse = onRecord<parse_set_loopdetect>,
    .encode = onRecord<encode>,
    .check = onRecord<check_loopdetect>,
    .get = checkedGet<loopDetect>,
    .reaches = reaches,
    .report = report,
    .commands = commands,
    .message = setAndGet<loopDetect>(52000, "loop detect msg."),
};
