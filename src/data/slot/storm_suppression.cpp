#include "data/slot/storm_suppression.h"

#include <algorithm>

#include "common/obj_attributes.h"
#include "common/store.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "platform/tables.h"

enum StormType : u16 { kBroadcast, kMulticast, kUnknown };

enum StormError : int {
  kNotASlot = -5,
  kTooManySlots = -8,
  kNoDataCard = -102,
  kEntryCount = -122,
  kPacketType = -123,
  kSwitch = -124,
  kRate = -125,
};

static constexpr u32 kMostSlots = 28;  // of a request
static constexpr u32 kMostRate = 16384;

static constexpr StormSuppValue kDefault{1, 0, {{kBroadcast, 1, 0, 640}, {}, {}}};

static StormSuppEntry* end(StormSuppValue& value) { return value.entries + value.serviceNum; }
static const StormSuppEntry* end(const StormSuppValue& value) { return value.entries + value.serviceNum; }

// --- Wire ---
//
// A slot, in both directions: u16 slot, u16 port, 16 zeros, u16 entries, and for each u16 type, u8 on or off, u32 rate,
// 16 zeros. A card knows a type by its place and gets zeros there.

static constexpr u32 kReserved = 16;
static constexpr u32 kHead = 22, kEntry = 23;  // bytes

static int parse_storm_suppression(Reader& in, StormSuppRecord* record, SnmpErrInfo* err) {
  const auto slot = static_cast<u16>(in.number(2));
  in.skip(2 + kReserved);
  const auto count = static_cast<u16>(in.number(2));
  if (isSlotAuthed(slot) != 1) return reject(err, kNoSlot, {slot});
  if (const int code = findObject(slot, 0, &record->object)) return reject(err, code);
  if (count > kStormTypes) return reject(err, kEntryCount, {slot, count});
  record->value.serviceNum = count;
  for (StormSuppEntry* entry = record->value.entries; entry != end(record->value); ++entry) {
    entry->pktType = static_cast<u16>(in.number(2));
    entry->enable = static_cast<u8>(in.number(1));
    entry->speed = in.number(4);
    in.skip(kReserved);
  }
  return 0;
}

static void build(const StormSuppRecord* record, Writer& out, bool typed) {
  out.number(2, record->object.addr[1]);
  out.zeros(2 + kReserved);
  out.number(2, record->value.serviceNum);
  for (const StormSuppEntry* entry = record->value.entries; entry != end(record->value); ++entry) {
    out.number(2, typed ? entry->pktType : 0);
    out.number(1, entry->enable);
    out.number(4, entry->speed);
    out.zeros(kReserved);
  }
}

static int build_storm_suppression_mscpkt(const StormSuppRecord* record, Writer& out) {
  build(record, out, false);
  return 0;
}

static int build_storm_suppression_snmppkt(const StormSuppRecord* record, Writer& out) {
  build(record, out, true);
  return 0;
}

// --- Check ---

static int checkEntry(u16 slot, u16 port, const StormSuppEntry& entry, SnmpErrInfo* err) {
  if (entry.pktType > kUnknown) return rejectAs(err, kPacketType, {slot, port, entry.pktType});
  if (entry.enable > 1) return rejectAs(err, kSwitch, {slot, port}, 1, entry.enable);
  return entry.speed <= kMostRate ? 0 : rejectAs(err, kRate, {slot, port}, 4, entry.speed);
}

static int check(StormSuppRecord* record, SnmpErrInfo* err) {
  const u16 slot = record->object.addr[1];
  const u16 port = record->object.addr[2];
  if (port != 0) return rejectAs(err, kNotASlot, {slot, port});
  if (!isDataCard(slot)) return rejectAs(err, kNoDataCard, {slot});
  if (checkObject(stormSuppression, record, err) != 0) return -1;
  for (const StormSuppEntry* entry = record->value.entries; entry != end(record->value); ++entry) {
    if (const int code = checkEntry(slot, port, *entry, err)) return code;
  }
  return 0;
}

// --- Store ---

static constexpr int kNullValue = -24, kPartOfValue = -9;

static int checkAccess(const void* value, u32 offset, u32 length) {
  if (value == nullptr) return kNullValue;
  return offset == 0 && length == sizeof(StormSuppValue) ? 0 : kPartOfValue;
}

static int putRow(mco_trans_h transaction, u32 objectId, u16 place, const StormSuppEntry& entry) {
  StormSupp row;
  int code = StormSupp_treeidx_find(transaction, objectId, place, &row);
  if (code == DB_NOT_FOUND) code = StormSupp_new(transaction, &row);
  const StormSupp_fixed fields{objectId, place, entry.enable, entry.speed};
  return code == 0 ? StormSupp_fixed_put(&row, &fields) : code;
}

// Rows above the count stay as they are.
int set_stormsupp_cfg_dbapi(u32 objectId, const void* data, u32 offset, u32 length) {
  if (const int code = checkAccess(data, offset, length)) return code;
  const auto& value = *static_cast<const StormSuppValue*>(data);
  if (value.serviceNum > kStormTypes) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s(%d): serviceNum err. serviceNum=%d. \r\n", __func__, __LINE__,
               value.serviceNum);
    return -1;
  }
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  for (u16 place = 0; place < value.serviceNum; ++place) {
    if (putRow(transaction, objectId, place, value.entries[place]) != 0) return -1;
  }
  return transaction.commit();
}

int get_stormsupp_cfg_dbapi(u32 objectId, void* data, u32 offset, u32 length) {
  if (const int code = checkAccess(data, offset, length)) return code;
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  StormSuppValue value;
  for (u16 place = 0; place < kStormTypes; ++place) {
    StormSupp row;
    StormSupp_fixed fields;
    int code = StormSupp_treeidx_find(transaction, objectId, place, &row);
    if (code == DB_NOT_FOUND) continue;
    if (code == 0) code = StormSupp_fixed_get(&row, &fields);
    if (code != 0) return -1;
    value.entries[value.serviceNum++] = {fields.sevid, fields.enable, 0, fields.speed};
  }
  *static_cast<StormSuppValue*>(data) = value.serviceNum != 0 ? value : kDefault;
  return 0;
}

int delete_stormsupp_cfg_dbapi(u32 objectId) {
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  for (u16 place = 0; place < kStormTypes; ++place) {
    StormSupp row;
    int code = StormSupp_treeidx_find(transaction, objectId, place, &row);
    if (code == DB_NOT_FOUND) continue;
    if (code == 0) code = StormSupp_delete(&row);
    if (code != 0) return -1;
  }
  return transaction.commit();
}

// --- Steps ---

static int save(const StormSuppRecord* record) {
  const int code =
      setObjAttrDataByCondition(&record->object, kStormAttribute, &record->value, 0, sizeof(StormSuppValue));
  if (code == 0) return 0;
  ulogPrintf(gModuleId_Msan, kLogDebug, "Function:%s, Line:%d:  setObjAttrData err %d. \r\n",
             "set_storm_suppression_base", __LINE__, code);
  return -1;
}

static int get_storm_suppression_base(StormSuppRecord* record, SnmpErrInfo* err) {
  const u16 slot = record->object.addr[1];
  const u16 port = record->object.addr[2];
  if (port != 0) return rejectAs(err, kNotASlot, {slot, port});
  if (isSlotAuthed(slot) != 1) return rejectAs(err, kNoSlot, {slot});
  if (!isDataCard(slot)) return rejectAs(err, kNoDataCard, {slot});
  return checkObject(stormSuppression, record, err) == 0 && readRecord(stormSuppression, record) == 0 ? 0 : -1;
}

void recover_storm_suppression_cfg(u16 slot) { recoverWholeSlot(stormSuppression, slot); }

void delete_storm_suppression_cfg(u16 slot) {
  u32 id = 0;
  if (!isDataCard(slot)) return;
  if (omSlot2ObjId(slot, &id) == 0) delete_stormsupp_cfg_dbapi(id);
}

// --- Commands ---

static constexpr Word typeWords[] = {{"broadcast", kBroadcast}, {"multicast", kMulticast}, {"unknown", kUnknown}};

// What the words of a command say of each type.
struct Change {
  bool named[kStormTypes] = {};
  StormSuppEntry entries[kStormTypes];
};

// Groups of a type, a switch and a rate; a type that is named twice has what was said last. 0, or -1 with a line.
static int readGroups(Vty* vty, int groups, char** argv, Change* change) {
  for (int i = 0; i < groups; ++i, argv += 3) {
    const auto type = valueOf(typeWords, argv[0]);
    if (!type) return refuse(vty, "Invalid para!\r\n");
    const auto enable = valueOf(kSwitchWords, argv[1]);
    if (!enable) return refuse(vty, "Invalid Parameter");
    change->named[*type] = true;
    change->entries[*type] = {.pktType = static_cast<u16>(*type),
                              .enable = static_cast<u8>(*enable),
                              .speed = static_cast<u32>(bep_atoiEx(argv[2]))};
  }
  return 0;
}

// A slot's value as stored, with the change laid over it. An entry that comes to stand below one that was named, and
// was not there, is off.
static int layOver(const Change& change, StormSuppRecord* record) {
  if (readRecord(stormSuppression, record) != 0) return -1;
  StormSuppValue& value = record->value;
  for (u16 type = 0; type < kStormTypes; ++type) {
    if (!change.named[type]) continue;
    for (; value.serviceNum <= type; ++value.serviceNum) *end(value) = {.pktType = value.serviceNum};
    value.entries[type] = change.entries[type];
  }
  return 0;
}

static CommandHandler cli_set_storm_suppression_func;
int cli_set_storm_suppression_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 4 && argc != 7 && argc != 10) return refuse(vty, "\r\n Parameter number incorrect \r\n");
  Change change;
  if (readGroups(vty, argc / 3, argv, &change) != 0) return -1;
  ObjList addresses, records;
  if (CliInputConvertObjIndex(argv[argc - 1], addresses) != 0) return 0;
  const auto lay = [&](const CliAddr&, StormSuppRecord* record) { return layOver(change, record); };
  switch (gatherRecords<StormSuppRecord>(stormSuppression, vty, addresses, records, lay)) {
    case Gathered::all:
      break;
    case Gathered::badAddress:  // those ahead of it are set
      vty_out(vty, "interface error.\r\n");
      break;
    default:
      return -1;
  }
  SnmpErrInfo err;
  if (const int code = setRecords(stormSuppression, records, &err)) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "set cfg error: ret = %d.\r\n", code);
    return code;
  }
  reportRecords(stormSuppression, records, kByOperator);
  return 0;
}

static void showSlot(Vty* vty, const StormSuppRecord& record) {
  vty_out(vty, "\r\nport: %d/%d\r\n", record.object.addr[1], record.object.addr[2]);
  for (const StormSuppEntry* entry = record.value.entries; entry != end(record.value); ++entry) {
    vty_out(vty, "type: %-12s\r\n", textOf(typeWords, entry->pktType, ""));
    vty_out(vty, "switch: %-12s\r\n", textOf(kSwitchWords, entry->enable, ""));
    vty_out(vty, "rate: %d\r\n", entry->speed);
    vty_out(vty, "\r\n");
  }
}

static CommandHandler cli_show_storm_suppression_func;
int cli_show_storm_suppression_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "para num = %d error!\r\n", argc);
  ObjList addresses, records;
  if (readInterfaces(vty, argv[0], addresses) != 0) return -1;
  const auto nothing = [](const CliAddr&, StormSuppRecord*) { return 0; };
  const Gathered gathered = gatherRecords<StormSuppRecord>(stormSuppression, vty, addresses, records, nothing);
  if (gathered == Gathered::badAddress) return refuse(vty, "interface error.\r\n");
  if (gathered != Gathered::all) return -1;
  if (const int code = getRecords(stormSuppression, records)) return code;
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    showSlot(vty, *dataOf<const StormSuppRecord>(cell));
  }
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE,
            "set storm-suppression {[broadcast|multicast|unknown] [enable|disable] rate <value>}*3 interface <ifStr>",
            cli_set_storm_suppression_func, "please input rate, unit for uplink port is pps, unit for slot is kbps"),
    command(CONFIG_NODE, "show storm-suppression <interface>", cli_show_storm_suppression_func,
            "how much broadcast, multicast and unknown traffic a card lets through"),
};

static void showrun_storm_suppression_cfg(Vty* vty, const StormSuppRecord* record) {
  const StormSuppValue& value = record->value;
  if (!isDataCard(record->object.addr[1]) || value == kDefault) return;
  vty_out(vty, "\r\nset storm-suppression ");
  for (const StormSuppEntry* entry = value.entries; entry != end(value); ++entry) {
    vty_out(vty, "%s ", textOf(typeWords, entry->pktType, ""));
    vty_out(vty, "%s ", textOf(kSwitchWords, entry->enable, ""));
    vty_out(vty, "rate %d ", entry->speed);
  }
  vty_out(vty, "interface %d", record->object.addr[1]);
  vty_out(vty, "\r\n");
}

// --- Row ---

static constexpr u16 types[] = {622, 699, 548, 542, 510, 556, 801, 569};

constexpr DataItem stormSuppression = {
    .id = 2821,
    .stem = "storm_suppression_base",
    .attribute = kStormAttribute,
    .kept = kept<&StormSuppRecord::value>(),
    .objectTypes = types,
    .minimum = 0,
    .maximum = kMostSlots,
    .mostSelected = kMostSlots,
    .tooManySelected = kTooManySlots,
    .encodedBytes = kHead + kStormTypes * kEntry,
    .ofSlots = true,
    .sentPlain = true,
    .checksReplay = true,
    .parse = onRecord<parse_storm_suppression>,
    .encode = onRecord<build_storm_suppression_mscpkt>,
    .answer = onRecord<build_storm_suppression_snmppkt>,
    .check = onRecord<check>,
    .save = onRecord<save>,
    .get = onRecord<get_storm_suppression_base>,
    .sendFailed = untold,
    .showrun = onRecord<showrun_storm_suppression_cfg>,
    .commands = commands,
    .message = setAndGet<stormSuppression>(3000, "storm suppression msg"),
};
