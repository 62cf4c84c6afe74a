#include "data/queue/eth_schedule.h"

#include <algorithm>
#include <span>

#include "common/obj_attributes.h"
#include "common/store.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "platform/tables.h"

enum ScheduleError : int {
  kQueueCount = -1,
  kNoPlace = -7,
  kRuleNum = -102,
  kQueueId = -103,
  kQueueType = -104,
  kQueueWeight = -105,
  kFirstIsWrr = -106,
  kLastIsStrict = -107,
  kWrrAmongStrict = -109,
  kStrictAmongWrr = -110,
  kStrictBehindWrr = -112,
};

static constexpr u16 kMostWeight = 127;
static constexpr u16 kDslPort = 621;  // whose slot is checked, too

// --- Wire ---
//
// A port, in both directions: u16 slot, u16 port, 16 zeros, u16 mode, u16 queues, and for each u16 id, u16 type, u16
// weight, 8 zeros.

static constexpr u32 kLocationReserved = 16;
static constexpr u32 kQueueReserved = 8;

static u16 readU16(Reader& in) { return static_cast<u16>(in.number(2)); }

// Where all are strict it is not read how they are.
static EthScheduleQueue readQueue(Reader& in, u16 mode) {
  EthScheduleQueue queue;
  queue.queueId = readU16(in);
  const u16 type = readU16(in);
  const u16 weight = readU16(in);
  in.skip(kQueueReserved);
  queue.type = mode == kStrictMode ? u16{kStrictQueue} : type;
  queue.weight = mode == kStrictMode ? kStrictWeight : weight;
  return queue;
}

static int parse(Reader& in, EthSchedule* record, SnmpErrInfo* err) {
  const u16 slot = readU16(in);
  const u16 port = readU16(in);
  in.skip(kLocationReserved);
  record->value.mode = readU16(in);
  const u16 count = record->value.ruleNum = readU16(in);
  if (in.failed()) return -1;
  if (count < 1 || count > kQueues) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "\r\n obj-usitem[%d] error %d", port, count);
    return reject(err, kQueueCount, {count});
  }
  for (u16 i = 0; i < count; ++i) record->value.queues[i] = readQueue(in, record->value.mode);
  placeObject(slot, port, &record->object);
  return 0;
}

static int encode(const EthSchedule* record, Writer& out) {
  out.number(2, record->object.addr[1]);
  out.number(2, record->object.addr[2]);
  out.zeros(kLocationReserved);
  out.number(2, record->value.mode);
  out.number(2, kQueues);
  for (const EthScheduleQueue& queue : record->value.queues) {
    out.number(2, queue.queueId);
    out.number(2, queue.type);
    out.number(2, queue.weight);
    out.zeros(kQueueReserved);
  }
  return 0;
}

// --- Check ---

static bool isStrict(const EthScheduleQueue& queue) { return queue.type == kStrictQueue; }

// Strict queues are above the others, one to six of them. 0 or a code.
static int checkMixed(std::span<const EthScheduleQueue, kQueues> queues) {
  if (!isStrict(queues[0])) return kFirstIsWrr;
  if (!std::ranges::is_partitioned(queues.first(kQueues - 2), isStrict)) return kStrictBehindWrr;
  if (std::ranges::any_of(queues.last(2), isStrict)) return kLastIsStrict;
  const auto isLight = [](const EthScheduleQueue& queue) { return isStrict(queue) && queue.weight != kStrictWeight; };
  return std::ranges::any_of(queues, isLight) ? int{kQueueWeight} : 0;
}

// The arrangement of the queues; a mode that there is not is not looked at. 0 or a code.
static int check_ethschedule_para_logic(const EthScheduleRecord& schedule) {
  switch (schedule.mode) {
    case kStrictMode:
      return std::ranges::all_of(schedule.queues, isStrict) ? 0 : int{kWrrAmongStrict};
    case kWrrMode:
      return std::ranges::any_of(schedule.queues, isStrict) ? int{kStrictAmongWrr} : 0;
    case kMixedMode:
      return checkMixed(schedule.queues);
    default:
      return 0;
  }
}

static int checkSlotOf(const ObjIndex& port, SnmpErrInfo* err) {
  if (port.type != kDslPort) return 0;
  ObjIndex slot;
  placeObject(port.addr[1], 0, &slot);
  return checkObject(ethSchedule, &slot, err);
}

static int check_ethschedule_para_error(EthSchedule* record, SnmpErrInfo* err) {
  const u16 slot = record->object.addr[1];
  const u16 port = record->object.addr[2];
  const EthScheduleRecord& schedule = record->value;
  if (!isDataCard(slot) || findObject(slot, port, &record->object) != 0) {
    return rejectAs(err, kNoSlot, {slot});
  }
  if (checkObject(ethSchedule, record, err) != 0 || checkSlotOf(record->object, err) != 0) return -1;
  if (schedule.ruleNum != kQueues) return rejectAs(err, kRuleNum, {slot, port, schedule.ruleNum});
  for (const EthScheduleQueue& queue : schedule.queues) {
    if (queue.queueId >= kQueues) return rejectAs(err, kQueueId, {slot, port, queue.queueId});
    if (queue.type > kStrictQueue) return rejectAs(err, kQueueType, {slot, port, queue.type});
    if (queue.weight == 0 || (queue.type == kWrrQueue && queue.weight > kMostWeight)) {
      return rejectAs(err, kQueueWeight, {slot, port, queue.weight});
    }
  }
  const int code = check_ethschedule_para_logic(schedule);
  return code == 0 ? 0 : rejectAs(err, code, {slot, port});
}

// --- Store ---

const EthScheduleRecord& defaultSchedule() {
  static constexpr u16 weights[kQueues] = {kStrictWeight, kStrictWeight, 32, 16, 8, 4, 2, 1};
  static constexpr EthScheduleRecord schedule = [] {
    EthScheduleRecord plain;
    plain.mode = kMixedMode;
    plain.ruleNum = kQueues;
    for (u16 i = 0; i < kQueues; ++i) {
      const QueueType type = weights[i] == kStrictWeight ? kStrictQueue : kWrrQueue;
      plain.queues[i] = {static_cast<u16>(kQueues - 1 - i), type, weights[i], {}};
    }
    return plain;
  }();
  return schedule;
}

static constexpr int kNullValue = -24, kPartOfValue = -33, kOtherQueues = -32;

static int checkAccess(const char* function, const void* value, u32 offset, u32 length) {
  if (value == nullptr) return kNullValue;
  if (offset == 0 && length >= sizeof(EthScheduleRecord)) return 0;
  ulogPrintf(gModuleId_Msan, kLogDebug, "%s(%d):input len  = %d is error.\r\n", function, __LINE__, length);
  return kPartOfValue;
}

static int putRow(mco_trans_h transaction, u32 objectId, const EthScheduleRecord& schedule) {
  QueueSchedule row;
  int code = QueueSchedule_treeidx_find(transaction, objectId, &row);
  if (code == DB_NOT_FOUND) code = QueueSchedule_new(transaction, &row);
  if (code == 0) code = QueueSchedule_objId_put(&row, objectId);
  if (code == 0) code = QueueSchedule_Mode_put(&row, schedule.mode);
  for (u16 i = 0; i < kQueues && code == 0; ++i) {
    const EthScheduleQueue& queue = schedule.queues[i];
    const QueueSch_fixed fields{queue.queueId, queue.type, queue.weight};
    QueueSch element;
    code = QueueSchedule_qs_put(&row, i, &element);
    if (code == 0) code = QueueSch_fixed_put(&element, &fields);
  }
  return code;
}

int set_eth_schedule_cfg_dbapi(u32 objectId, const void* value, u32 offset, u32 length) {
  if (const int code = checkAccess(__func__, value, offset, length)) return code;
  const auto& schedule = *static_cast<const EthScheduleRecord*>(value);
  if (schedule.ruleNum != kQueues) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s(%d):input item = %d is error.\r\n", __func__, __LINE__, schedule.ruleNum);
    return kOtherQueues;
  }
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  return putRow(transaction, objectId, schedule) == 0 ? transaction.commit() : -1;
}

static int getRow(QueueSchedule* row, EthScheduleRecord* schedule) {
  int code = QueueSchedule_Mode_get(row, &schedule->mode);
  for (u16 i = 0; i < kQueues && code == 0; ++i) {
    QueueSch element;
    QueueSch_fixed fields;
    code = QueueSchedule_qs_at(row, i, &element);
    if (code == 0) code = QueueSch_fixed_get(&element, &fields);
    if (code == 0) schedule->queues[i] = {fields.queueId, fields.type, fields.weight, {}};
  }
  return code;
}

int get_eth_schedule_cfg_dbapi(u32 objectId, void* value, u32 offset, u32 length) {
  if (const int code = checkAccess(__func__, value, offset, length)) return code;
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  EthScheduleRecord schedule = defaultSchedule();
  QueueSchedule row;
  int code = QueueSchedule_treeidx_find(transaction, objectId, &row);
  if (code == 0) code = getRow(&row, &schedule);
  if (code != 0 && code != DB_NOT_FOUND) return -1;
  *static_cast<EthScheduleRecord*>(value) = schedule;
  return 0;
}

int delete_eth_schedule_cfg_dbapi(u32 objectId) {
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  QueueSchedule row;
  int code = QueueSchedule_treeidx_find(transaction, objectId, &row);
  if (code == DB_NOT_FOUND) return 0;
  if (code == 0) code = QueueSchedule_delete(&row);
  return code == 0 ? transaction.commit() : -1;
}

// --- Steps ---

static int select(u16 slot, u16 port, ObjIndex* object, SnmpErrInfo* err) {
  static constexpr char function[] = "get_ethschedule_cfg_snmp";
  if (isSlotAuthed(slot) != 1) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "(FILE : %s, FUNC : %s, LINE : %d )The slot (%d) isn't authed.\r\n", __FILE__,
               function, __LINE__, slot);
    return reject(err, kNoSlot, {slot});
  }
  if (findObject(slot, port, object) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "(FILE : %s, FUNC : %s, LINE : %d )The slot (%d) port (%d) is invalid.\r\n",
               __FILE__, function, __LINE__, slot, port);
    return reject(err, kNoPlace, {slot, port});
  }
  return checkObject(ethSchedule, object, err);
}

static void countRefused(u32 count) { ulogPrintf(gModuleId_Msan, kLogDebug, "\r\n objItemNum error %d", count); }

static bool holds(const ObjIndex* object) {
  SnmpErrInfo err;
  return checkSlotOf(*object, &err) == 0;
}

void recover_ethschedule_cfg(u16 slot) {
  u32 served = 0;
  if (ddIsServeBoardSlot(slot, &served) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "file %s func %s slotOut %d invalid.\r\n", __FILE__, __func__, slot);
    return;
  }
  ObjIndex object;
  placeObject(slot, 0, &object);
  if (reachesRunningCard(&object)) recoverSlot(ethSchedule, slot);
}

void delete_ethschedule_cfg(u16 slot) {
  forEachDataPort(slot, [](const ObjIndex& port) {
    u32 id = 0;
    if (omOltport2ObjId(port.addr[1], port.addr[2], &id) == 0) delete_eth_schedule_cfg_dbapi(id);
  });
}

// --- Commands ---

static constexpr Word modeWords[] = {{"sp", kStrictMode}, {"wrr", kWrrMode}, {"sp+wrr", kMixedMode}};
static constexpr Word shownModes[] = {{" sp ", kStrictMode}, {" wrr ", kWrrMode}, {" sp+wrr ", kMixedMode}};

static int readAddresses(Vty* vty, const char* text, LIST* addresses) {
  if (CliInputConvertObjIndex(text, addresses) == 0 && lstFirst(addresses) != nullptr) return 0;
  return refuse(vty, "Interface is error.\r\n");
}

static CommandHandler cli_set_eth_schedule_func;
int cli_set_eth_schedule_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2 + kQueues) return refuse(vty, "Must input is not complete!\r\n");
  ObjList addresses, records;
  if (readAddresses(vty, argv[0], addresses) != 0) return -1;
  const auto mode = valueOf(modeWords, argv[1]);
  if (!mode) return refuse(vty, "Unknown command.\r\n");
  EthSchedule schedule;
  schedule.value.mode = static_cast<u16>(*mode);
  schedule.value.ruleNum = kQueues;
  for (u16 i = 0; i < kQueues; ++i) {
    const u16 weight = cutNumber(argv[2 + i]);
    const QueueType type = weight == kStrictWeight ? kStrictQueue : kWrrQueue;
    schedule.value.queues[i] = {static_cast<u16>(kQueues - 1 - i), type, weight, {}};
  }
  SnmpErrInfo err;
  int code = placeRecords(addresses, records, schedule);
  if (code == 0) code = setRecords(ethSchedule, records, &err);
  if (code != 0) return refuse(vty, "eth schedule is fail %d.\r\n", code);
  reportRecords(ethSchedule, records, kByOperator);
  return 0;
}

static CommandHandler cli_show_eth_schedule_func;
int cli_show_eth_schedule_func(const CommandElement*, Vty* vty, int, char** argv) {
  ObjList addresses;
  if (readAddresses(vty, argv[0], addresses) != 0) return -1;
  vty_out(vty, "\r\nInterface   mode       weight  \r\n");
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    const auto& address = *dataOf<const CliAddr>(cell);
    EthSchedule schedule;
    placeObject(address.slot, address.port, &schedule.object);
    if (readRecord(ethSchedule, &schedule) != 0) continue;
    vty_out(vty, "   %d/%d    ", address.slot, address.port);
    vty_out(vty, "%s", textOf(shownModes, schedule.value.mode, ""));
    for (const EthScheduleQueue& queue : schedule.value.queues) vty_out(vty, " %d %d ", queue.queueId, queue.weight);
    vty_out(vty, "\r\n");
  }
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE,
            "set queue schedule interface <interface> mode [sp|wrr|sp+wrr] <w7> <w6> <w5> <w4> <w3> <w2> <w1> <w0> ",
            cli_set_eth_schedule_func,
            "how the queues of ports share them: weight value, 1-127.If sp,the value must be default 65535."),
    command(CONFIG_NODE, "show queue schedule interface <interface>", cli_show_eth_schedule_func,
            "how the queues of ports share them"),
};

static bool sameQueue(const EthScheduleQueue& a, const EthScheduleQueue& b) {
  return a.queueId == b.queueId && a.type == b.type && a.weight == b.weight;
}

// A mode that no word says has no line.
static void showrun_ethschedule_item(Vty* vty, const EthSchedule* record) {
  const EthScheduleRecord& schedule = record->value;
  const char* mode = textOf(shownModes, schedule.mode, nullptr);
  const bool plain =
      schedule.mode == kMixedMode && std::ranges::equal(schedule.queues, defaultSchedule().queues, sameQueue);
  if (mode == nullptr || plain) return;
  vty_out(vty, "set queue schedule interface %d/%d mode ", record->object.addr[1], record->object.addr[2]);
  vty_out(vty, "%s", mode);
  for (const EthScheduleQueue& queue : schedule.queues) vty_out(vty, " %d ", queue.weight);
  vty_out(vty, " \r\n ");
}

// --- Row ---

static constexpr u16 types[] = {621, 116, 622, 699, 56, 817, 818};

constexpr DataItem ethSchedule = {
    .id = 2823,
    .stem = "ethschedule",
    .attribute = kQueueAttribute,
    .kept = kept<&EthSchedule::value>(),
    .objectTypes = types,
    .work = Work::array,
    .encodedBytes = sizeof(EthScheduleRecord),
    .parse = onRecord<parse>,
    .encode = onRecord<encode>,
    .check = onRecord<check_ethschedule_para_error>,
    .select = select,
    .holds = holds,
    .reaches = reachesRunningCard,
    .countRefused = countRefused,
    .sendFailed = untold,
    .showrun = onRecord<showrun_ethschedule_item>,
    .commands = commands,
    .message = setAndGet<ethSchedule>(139300, "SET Eth Schedule."),
};
