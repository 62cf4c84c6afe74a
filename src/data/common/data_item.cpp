#include "data/common/data_item.h"

#include <algorithm>
#include <bitset>

#include "common/obj_attributes.h"
#include "common/report.h"
#include "platform/cards.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "voice/common/voice_msc.h"

static constexpr u32 kSelector = 20;        // bytes: slot, port, 16 reserved
static constexpr u32 kSmallestObject = 22;  // of an answer: the same, and a count
static constexpr u32 kAnswer = 36;          // offset of the count in an answer

// --- Parts ---

static int tooShort(SnmpErrInfo* err, WireIn frame) {
  return rejectLong(err, kShortFrame, static_cast<u32>(frame.size()));
}

int rejectAs(SnmpErrInfo* err, int code, std::initializer_list<u16> details, u32 width, u32 last) {
  reject(err, code, details);
  putNumber(err->errData + err->errDataLen, width, last);
  err->errDataLen += width;
  return code;
}

// The count of a request, which has to lie within its limits; more are refused with `tooMany`. 0 or -1.
static int readCount(const DataItem& item, WireIn frame, u32 least, u32 most, int tooMany, u32* count,
                     SnmpErrInfo* err) {
  if (frame.size() < kObjects) return tooShort(err, frame);
  *count = getNumber(frame.data() + kObjects - 4, 4);
  if (*count >= least && *count <= most) return 0;
  if (item.countRefused != nullptr) item.countRefused(*count);
  return rejectLong(err, *count > most ? tooMany : kCountRange, *count);
}

void ChangedSlots::add(u16 slot) {
  const std::span known(slots_, count_);
  if (count_ < std::size(slots_) && std::ranges::find(known, slot) == known.end()) slots_[count_++] = slot;
}

void ChangedSlots::addChange(u16 slot) {
  if (count_ < std::size(slots_) && (count_ == 0 || slots_[count_ - 1] != slot)) slots_[count_++] = slot;
}

void ChangedSlots::report(u16 id, int origin) const {
  for (u32 i = 0; i < count_; ++i) reportChange(slots_[i], id, origin);
}

template <void (ChangedSlots::*Add)(u16 slot)>
static void report(LIST* records, u16 id, int origin) {
  ChangedSlots slots;
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    (slots.*Add)(dataOf<const ObjIndex>(cell)->addr[1]);
  }
  slots.report(id, origin);
}

void reportSlots(LIST* records, u16 id, int origin) { report<&ChangedSlots::add>(records, id, origin); }
void reportRuns(LIST* records, u16 id, int origin) { report<&ChangedSlots::addChange>(records, id, origin); }

void untold(u16) {}

bool reachesRunningCard(const ObjIndex* object) {
  SnmpErrInfo err;
  return inRecoverConfProcess() != 1 && checkObjErr(0, 0, object, kCardUp, &err) == 0;
}

void placeObject(u16 slot, u16 port, ObjIndex* object) {
  *object = {};
  object->addr[1] = slot;
  object->addr[2] = port;
  findObject(slot, port, object);
}

int appendRecord(ObjIndex* record, LIST* records) {
  auto* cell = static_cast<ObjListCell*>(mpuAlloc_(g_MsanMemPoolId, sizeof(ObjListCell), __FILE__, __LINE__));
  if (cell == nullptr) return -1;
  cell->next = cell->previous = nullptr;
  cell->data = record;
  lstInsert(records, lstLast(records), cell);
  return 0;
}

int addRecord(const DataItem& item, ObjIndex* record, LIST* records) {
  const int result =
      item.work == Work::array ? appendRecord(record, records) : insert_sort_list_by_index(record, records);
  return result == 0 ? 0 : -1;
}

// Without memory a list is refused; for an array there is no answer at all.
static int noMemory(const DataItem& item, SnmpErrInfo* err) {
  const int refused = reject(err, kNoMemory);
  return item.work == Work::array ? kNoMemory : refused;
}

int checkObject(const DataItem& item, const void* record, SnmpErrInfo* err) {
  return checkObjErr(item.id, item.attribute, &objectOf(record), kAnyCard, err);
}

int readRecord(const DataItem& item, void* record) {
  return getObjAttrDataByCondition(&objectOf(record), item.attribute, item.kept.valueOf(record), 0,
                                   static_cast<i32>(item.kept.valueBytes));
}

static int getRecord(const DataItem& item, void* record, SnmpErrInfo* err) {
  return item.get != nullptr ? item.get(record, err) : readRecord(item, record);
}

int getRecords(const DataItem& item, LIST* records) {
  SnmpErrInfo err;
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    if (const int code = getRecord(item, dataOf<void>(cell), &err)) return code;
  }
  return 0;
}

namespace {
// A record for one object after the other.
class AnyRecord {
 public:
  AnyRecord(const DataItem& item, const ObjIndex& object) {
    item.kept.make(bytes_);
    objectOf(bytes_) = object;
  }
  operator void*() { return bytes_; }

 private:
  alignas(u64) u8 bytes_[kLargestDataRecord];
};
}  // namespace

// --- Set ---

// A message to the card of a slot, built object by object in a buffer that serves for the next slot too.
class CardMessage {
 public:
  CardMessage(const DataItem& item, LIST* records)
      : CardMessage(item, item.ofSlots ? 1 : static_cast<u32>(lstCount(records))) {}
  CardMessage(const DataItem& item, u32 objects) : item_(item), room_(roomFor(item, objects)) { clear(); }

  // Has a buffer from now on. 0 or -1.
  int begin() {
    if (buffer_ == nullptr) buffer_.reset(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, room_, __FILE__, __LINE__)));
    return buffer_ != nullptr ? 0 : -1;
  }

  // Appends a record; one that can't be built, or for which there is no room, leaves no trace.
  int add(const void* record) {
    Writer out(WireOut(buffer_.get() + length_, room_ - length_));
    if (item_.encode(record, out) != 0 || out.failed()) return -1;
    length_ += out.length();
    ++objects_;
    return 0;
  }

  // 0, or what a send that failed gave.
  int send(u16 slot) {
    int result = 0;
    if (objects_ >= item_.leastSent) {
      buildMscHeader(buffer_.get(), item_.id, 0);
      putNumber(buffer_.get() + kHead - 4, 4, objects_);
      constexpr u32 kEnvelope = sizeof(MscHeader);
      result = item_.sentPlain ? dm_MakeCmdPkt_GPON(slot, item_.id, buffer_.get() + kEnvelope, length_ - kEnvelope)
                               : sendMscMsg(slot, buffer_.get(), length_);
      if (result < 0) tellSend(slot);
    }
    clear();
    return result;
  }

  void tellBuild(u16 slot) const {
    if (item_.buildFailed != nullptr) return item_.buildFailed(slot);
    log(FunctionName(item_.at("build_*_msc_pkt")).text, slot);
  }

 private:
  static constexpr u32 kHead = sizeof(MscHeader) + 4;

  static u32 roomFor(const DataItem& item, u64 records) {
    return static_cast<u32>(std::min<u64>(item.mostMessage, kHead + item.encodedBytes * records));
  }

  void tellSend(u16 slot) const {
    if (item_.sendFailed != nullptr) return item_.sendFailed(slot);
    log("send", slot);
  }

  void log(const char* step, u16 slot) const {
    ulogPrintf(gModuleId_Msan, kLogDebug, "F(%s)L(%d):  %s slotno %d mscmsg err\r\n",
               FunctionName(item_.at("send_*_cfg")).text, item_.line, step, slot);
  }

  void clear() {
    length_ = kHead;
    objects_ = 0;
  }

  const DataItem& item_;
  const u32 room_;
  PoolBytes buffer_;
  u32 length_ = 0;
  u32 objects_ = 0;
};

// A message for each record.
static int sendEach(const DataItem& item, LIST* records) {
  CardMessage message(item, records);
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    const auto* record = dataOf<const void>(cell);
    if (message.begin() != 0) {
      ulogPrintf(gModuleId_Msan, kLogDebug, "Function:%s, Line:%d:  MSAN_MALLOC err.\r\n",
                 FunctionName(item.at("set_*")).text, item.line);
      return -1;
    }
    if (message.add(record) == 0) message.send(objectOf(record).addr[1]);
  }
  return 0;
}

void tellStored(const DataItem& item, LIST* objects) {
  CardMessage message(item, objects);
  for (NODE* cell = lstFirst(objects); cell != nullptr; cell = lstNext(cell)) {
    const auto* object = dataOf<const ObjIndex>(cell);
    AnyRecord record(item, *object);
    SnmpErrInfo err;
    if (message.begin() != 0 || getRecord(item, record, &err) != 0 || message.add(record) != 0) return;
    message.send(object->addr[1]);
  }
}

int sendRecords(const DataItem& item, LIST* records) {
  if (item.ofSlots) return sendEach(item, records);
  CardMessage message(item, records);
  std::bitset<0x10000> sent;  // slots
  for (NODE* first = lstFirst(records); first != nullptr; first = lstNext(first)) {
    const auto* object = dataOf<const ObjIndex>(first);
    const u16 slot = object->addr[1];
    if (sent[slot]) continue;
    sent.set(slot);
    if (item.reaches != nullptr && !item.reaches(object)) continue;
    if (message.begin() != 0) return -1;
    for (NODE* cell = first; cell != nullptr; cell = lstNext(cell)) {
      const auto* record = dataOf<const void>(cell);
      if (objectOf(record).addr[1] == slot) {
        if (message.add(record) != 0) message.tellBuild(slot);
      } else if (item.work == Work::list) {
        break;  // the records of a slot are adjacent
      }
    }
    message.send(slot);
  }
  return 0;
}

static int saveRecord(const DataItem& item, void* record) {
  if (item.save != nullptr) return item.save(record);
  return setObjAttrDataByCondition(&objectOf(record), item.attribute, item.kept.valueOf(record), 0,
                                   static_cast<i32>(item.kept.valueBytes));
}

int setRecords(const DataItem& item, LIST* records, SnmpErrInfo* err) {
  const bool checks = item.check != nullptr && (item.checksReplay || inRecoverConfProcess() != 1);
  for (NODE* cell = lstFirst(records); checks && cell != nullptr; cell = lstNext(cell)) {
    if (const int code = item.check(dataOf<void>(cell), err)) return code;
  }
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    if (const int code = saveRecord(item, dataOf<void>(cell))) return code;
  }
  if (!item.tellsStored) return sendRecords(item, records);
  tellStored(item, records);
  return 0;
}

void reportRecords(const DataItem& item, LIST* records, int origin) {
  (item.report != nullptr ? item.report : reportSlots)(records, item.id, origin);
}

static int parseRecords(const DataItem& item, WireIn frame, LIST* records, SnmpErrInfo* err) {
  u32 count = 0;
  if (readCount(item, frame, item.minimum, item.maximum, kCountRange, &count, err) != 0) return -1;
  Reader in(frame.subspan(kObjects));
  for (; count != 0; --count) {
    void* record = mpuAlloc_(g_MsanMemPoolId, item.kept.bytes, __FILE__, __LINE__);
    if (record == nullptr) return noMemory(item, err);
    item.kept.make(record);
    int result = item.parse(in, record, err);
    if (result == 0 && in.failed()) result = -1;
    if (result == 0 && addRecord(item, &objectOf(record), records) != 0) result = noMemory(item, err);
    if (result == 0) continue;
    mpuFree(record);
    return in.failed() ? tooShort(err, frame) : result;
  }
  return 0;
}

static WireIn frameOf(const u8* data, i32 length) { return {data, static_cast<u32>(length)}; }

int snmpSet(const DataItem& item, const u8* data, i32 length, u8* reply, u32* replyLen) {
  SnmpErrInfo err;
  ObjList records;
  const int parsed = parseRecords(item, frameOf(data, length), records, &err);
  if (parsed == kNoMemory) return kNoMemory;
  if (parsed != 0 || setRecords(item, records, &err) != 0) return answerError(item.id, err, reply, replyLen);
  reportRecords(item, records, kByManager);
  return answerSuccess(reply, replyLen);
}

// --- Walks ---

int walkObjects(const DataItem& item, u16 slot, LIST* objects) { return walkObjects(item.objectTypes, slot, objects); }

int walkObjects(std::span<const u16> types, u16 slot, LIST* objects) {
  // A target that matches goes into the list, so it comes from the pool.
  auto* target = newRecord<ObjIndex>();
  if (target == nullptr) return -1;
  int result = findObject(slot, 0, target);
  if (result == 0) result = ForEachTargetTree(target, objects, 0, types.data(), static_cast<i32>(types.size()));
  NODE* first = lstFirst(objects);
  if (first == nullptr || dataOf<ObjIndex>(first) != target) mpuFree(target);
  return result == 0 ? 0 : -1;
}

void recoverSlot(const DataItem& item, u16 slot, bool (*which)(const ObjIndex* object)) {
  ObjList objects;
  if (walkObjects(item, slot, objects) != 0) return;
  CardMessage message(item, objects);
  if (message.begin() != 0) return;
  for (NODE* cell = lstFirst(objects); cell != nullptr; cell = lstNext(cell)) {
    const auto* object = dataOf<const ObjIndex>(cell);
    if (which != nullptr && !which(object)) continue;
    AnyRecord record(item, *object);
    if (readRecord(item, record) != 0 || message.add(record) != 0) return;
  }
  message.send(slot);
}

void recoverWholeSlot(const DataItem& item, u16 slot, Where where) {
  ObjIndex object;
  placeObject(slot, 0, &object);
  AnyRecord record(item, object);
  CardMessage message(item, 1);
  if (readRecord(item, record) != 0 || message.begin() != 0 || message.add(record) != 0) return;
  if (message.send(slot) < 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "Function:%s, Line:%d: send slotno %d mscmsg err. \r\n", where.function,
               where.line, slot);
  }
}

void showrunSlot(const DataItem& item, Vty* vty, u16 slot) {
  const auto print = [&](const ObjIndex& object) {
    AnyRecord record(item, object);
    if (readRecord(item, record) == 0) item.showrun(vty, record);
  };
  if (item.ofSlots) {
    ObjIndex object;
    placeObject(slot, 0, &object);
    print(object);
  } else {
    forEachDataPort(slot, print);
  }
}

// --- Get ---

// Objects of an answer at most: an array is full; what does not fit into an answer is refused.
static int addObject(const DataItem& item, ObjIndex* object, LIST* objects, SnmpErrInfo* err) {
  const auto count = static_cast<u32>(lstCount(objects));
  const bool full = item.work == Work::array && count == kMostRecords;
  if (!full && count < kMaxPacket / kSmallestObject && addRecord(item, object, objects) == 0) return 0;
  mpuFree(object);
  return full ? 0 : noMemory(item, err);
}

// What a walk finds and the item is kept for.
static int selectAll(const DataItem& item, u16 slot, LIST* objects, SnmpErrInfo* err) {
  ObjList found;
  if (walkObjects(item, slot, found) != 0) return noMemory(item, err);
  for (NODE* cell = lstFirst(found); cell != nullptr; cell = lstNext(cell)) {
    auto* object = dataOf<ObjIndex>(cell);
    // Ports are of types of their own, which cards may have, too.
    if (item.ofSlots && object->level != kSlotLevel) continue;
    if (item.holds != nullptr && !item.holds(object)) continue;
    static_cast<ObjListCell*>(cell)->data = nullptr;
    if (const int code = addObject(item, object, objects, err)) return code;
  }
  return 0;
}

static int selectPlace(u16 slot, u16 port, ObjIndex* object, SnmpErrInfo* err) {
  if (isSlotAuthed(slot) != 1) return reject(err, kNoSlot, {slot});
  const int code = findObject(slot, port, object);
  return code == 0 ? 0 : reject(err, code);
}

static int select(const DataItem& item, u16 slot, u16 port, ObjIndex* object, SnmpErrInfo* err) {
  if (item.ofSlots) return placeObject(slot, 0, object), 0;  // what is in the slot, the get tells
  return (item.select != nullptr ? item.select : selectPlace)(slot, port, object, err);
}

static int selectSlot(const DataItem& item, u16 slot, LIST* objects, SnmpErrInfo* err) {
  ObjIndex whole;
  return select(item, slot, 0, &whole, err) == 0 ? selectAll(item, slot, objects, err) : -1;
}

static int selectOne(const DataItem& item, u16 slot, u16 port, LIST* objects, SnmpErrInfo* err) {
  auto* object = newRecord<ObjIndex>();
  if (object == nullptr) return noMemory(item, err);
  if (select(item, slot, port, object, err) != 0) {
    mpuFree(object);
    return -1;
  }
  return addObject(item, object, objects, err);
}

int selectObjects(const DataItem& item, WireIn frame, LIST* objects, SnmpErrInfo* err) {
  u32 count = 0;
  if (readCount(item, frame, 0, item.mostSelected, item.tooManySelected, &count, err) != 0) return -1;
  if (count == 0) return selectAll(item, 0, objects, err);
  Reader in(frame.subspan(kObjects));
  if (in.rest().size() / kSelector < count) return tooShort(err, frame);
  for (; count != 0; --count) {
    const auto slot = static_cast<u16>(in.number(2));
    const auto port = static_cast<u16>(in.number(2));
    in.skip(kSelector - 4);
    const bool whole = port == item.wholeSlot;
    const int code = whole ? selectSlot(item, slot, objects, err) : selectOne(item, slot, port, objects, err);
    if (code != 0) return code;
  }
  return 0;
}

static int answerObjects(const DataItem& item, LIST* objects, Writer& out, SnmpErrInfo* err) {
  for (NODE* cell = lstFirst(objects); cell != nullptr; cell = lstNext(cell)) {
    AnyRecord record(item, *dataOf<const ObjIndex>(cell));
    if (getRecord(item, record, err) != 0) return -1;
    if ((item.answer != nullptr ? item.answer : item.encode)(record, out) != 0) return -1;
    if (out.failed()) return reject(err, kNoMemory);
  }
  return 0;
}

int snmpGet(const DataItem& item, const u8* data, i32 length, u8* reply, u32* replyLen) {
  SnmpErrInfo err;
  ObjList objects;
  Writer out(WireOut(reply, replyRoom(item.message.mostReply)).subspan(kAnswer + 4));
  const int selected = selectObjects(item, frameOf(data, length), objects, &err);
  if (selected == kNoMemory) return kNoMemory;
  if (selected != 0 || answerObjects(item, objects, out, &err) != 0) {
    return answerError(item.id, err, reply, replyLen);
  }
  putNumber(reply, 4, 1);
  putNumber(reply + kAnswer, 4, static_cast<u32>(lstCount(objects)));
  *replyLen = kAnswer + 4 + out.length();
  return 0;
}

void registerItem(const DataItem& item) {
  const ItemMessage& m = item.message;
  const SnmpMsgReg message{item.id, {item.option, item.option}, m.set, m.get, m.mostReply, m.text};
  SnmpMsgRegister(&message);
}
