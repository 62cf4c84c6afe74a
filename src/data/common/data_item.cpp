#include "data/common/data_item.h"

#include <algorithm>

#include "common/obj_attributes.h"
#include "platform/database.h"
#include "voice/common/voice_msc.h"

static constexpr u32 kSelector = 20;  // bytes: slot, port, 16 reserved
static constexpr u32 kAnswer = 36;    // offset of the count in an answer
static constexpr u32 kEnvelope = sizeof(MscHeader);

// --- Parts ---

static int tooShort(SnmpErrInfo* err, WireIn frame) {
  return rejectLong(err, kShortFrame, static_cast<u32>(frame.size()));
}

int readCount(WireIn frame, u32 least, u32 most, u32* count, SnmpErrInfo* err) {
  if (frame.size() < kObjects) return tooShort(err, frame);
  *count = getNumber(frame.data() + kObjects - 4, 4);
  return *count >= least && *count <= most ? 0 : rejectLong(err, kCountRange, *count);
}

void ChangedSlots::add(u16 slot) {
  const std::span known(slots_, count_);
  if (count_ < std::size(slots_) && std::ranges::find(known, slot) == known.end()) slots_[count_++] = slot;
}

void ChangedSlots::report(u16 id, int origin) const {
  for (u32 i = 0; i < count_; ++i) trigger_obj_crc(slots_[i], 0, 0, id, origin);
}

void reportSlots(LIST* records, u16 id, int origin) {
  ChangedSlots slots;
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    slots.add(dataOf<const ObjIndex>(cell)->addr[1]);
  }
  slots.report(id, origin);
}

// --- Set ---

int saveRecords(const DataItem& item, LIST* records) {
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    const auto* object = dataOf<const ObjIndex>(cell);
    const void* value = dataOf<const u8>(cell) + item.valueOffset;
    if (setObjAttrDataByCondition(object, item.attribute, value, 0, static_cast<i32>(item.valueBytes)) != 0) return -1;
  }
  return 0;
}

// A message to the card of a slot, built object by object in a buffer that serves for the next slot too.
class CardMessage {
 public:
  explicit CardMessage(const DataItem& item)
      : item_(item), buffer_(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, item.message, __FILE__, __LINE__))) {
    clear();
  }

  explicit operator bool() const { return buffer_ != nullptr; }

  // Appends an object by a step of the item; one that can't be built, or for which there is no room, leaves no trace.
  int add(const ObjIndex* object, int (*encode)(const ObjIndex*, Writer&)) {
    Writer out(WireOut(buffer_.get() + length_, item_.message - length_));
    if (encode(object, out) != 0 || out.failed()) return -1;
    length_ += out.length();
    ++objects_;
    return 0;
  }

  void send(u16 slot) {
    buildMscHeader(buffer_.get(), item_.id, 0);
    putNumber(buffer_.get() + kEnvelope, 4, objects_);
    if (sendMscMsg(slot, buffer_.get(), length_) < 0) item_.sendFailed(slot);
    clear();
  }

 private:
  void clear() {
    length_ = kEnvelope + 4;
    objects_ = 0;
  }

  const DataItem& item_;
  PoolBytes buffer_;
  u32 length_ = 0;
  u32 objects_ = 0;
};

int sendRecords(const DataItem& item, LIST* records) {
  CardMessage message(item);
  if (!message) return -1;
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    const auto* record = dataOf<const ObjIndex>(cell);
    const u16 slot = record->addr[1];
    if (message.add(record, item.encode) != 0) item.buildFailed(slot);
    NODE* next = lstNext(cell);
    if (next == nullptr || dataOf<const ObjIndex>(next)->addr[1] != slot) message.send(slot);
  }
  return 0;
}

int setRecords(const DataItem& item, LIST* records, SnmpErrInfo* err) {
  if (inRecoverConfProcess() != 1 && item.check(records, err) != 0) return -1;
  return item.save(records) == 0 ? item.send(records) : -1;
}

static int parseRecords(const DataItem& item, WireIn frame, LIST* records, SnmpErrInfo* err) {
  u32 count = 0;
  if (readCount(frame, item.least, item.most, &count, err) != 0) return -1;
  Reader in(frame.subspan(kObjects));
  for (; count != 0; --count) {
    void* memory = mpuAlloc_(g_MsanMemPoolId, item.recordBytes, __FILE__, __LINE__);
    auto* record = static_cast<ObjIndex*>(memory);
    if (record == nullptr) return reject(err, kNoMemory);
    int result = item.parse(in, record, err);
    if (result == 0 && insert_sort_list_by_index(record, records) != 0) result = reject(err, kNoMemory);
    if (result == 0) continue;
    mpuFree(memory);
    return in.failed() ? tooShort(err, frame) : -1;
  }
  return 0;
}

static WireIn frameOf(const u8* data, i32 length) { return {data, static_cast<u32>(length)}; }

int snmpSet(const DataItem& item, const u8* data, i32 length, u8* reply, u32* replyLen) {
  SnmpErrInfo err;
  ObjList records;
  if (parseRecords(item, frameOf(data, length), records, &err) != 0 || item.set(records, &err) != 0) {
    return answerError(item.id, err, reply, replyLen);
  }
  reportSlots(records, item.id, kByManager);
  return answerSuccess(reply, replyLen);
}

// --- Walks ---

// The objects of the item under a slot, or with slot 0 under the system.
static int walk(const DataItem& item, u16 slot, LIST* objects) {
  // A target that matches goes into the list, so it comes from the pool.
  auto* target = newRecord<ObjIndex>();
  if (target == nullptr) return -1;
  int result = SlotNoPortConvertObjIndex(slot, 0, 0, target);
  if (result == 0)
    result = ForEachTargetTree(target, objects, 0, item.types.data(), static_cast<i32>(item.types.size()));
  NODE* first = lstFirst(objects);
  if (first == nullptr || dataOf<ObjIndex>(first) != target) mpuFree(target);
  return result == 0 ? 0 : -1;
}

int recoverSlot(const DataItem& item, u16 slot) {
  ObjList objects;
  CardMessage message(item);
  if (!message || walk(item, slot, objects) != 0) return -1;
  for (NODE* cell = lstFirst(objects); cell != nullptr; cell = lstNext(cell)) {
    if (message.add(dataOf<const ObjIndex>(cell), item.recover) != 0) return -1;
  }
  message.send(slot);
  return 0;
}

// --- Get ---

// Refused as well: more objects than an answer holds.
static int addObject(const DataItem& item, ObjIndex* object, LIST* objects, SnmpErrInfo* err) {
  const bool fits = static_cast<u32>(lstCount(objects)) < kMaxPacket / item.leastAnswer;
  if (fits && insert_sort_list_by_index(object, objects) == 0) return 0;
  mpuFree(object);
  return reject(err, kNoMemory);
}

// What a walk finds and the item is kept for.
static int selectAll(const DataItem& item, u16 slot, LIST* objects, SnmpErrInfo* err) {
  ObjList found;
  if (walk(item, slot, found) != 0) return reject(err, kNoMemory);
  for (NODE* cell = lstFirst(found); cell != nullptr; cell = lstNext(cell)) {
    auto* object = dataOf<ObjIndex>(cell);
    if (!item.holds(object)) continue;
    static_cast<ObjListCell*>(cell)->data = nullptr;
    if (addObject(item, object, objects, err) != 0) return -1;
  }
  return 0;
}

static int selectOne(const DataItem& item, u16 slot, u16 port, LIST* objects, SnmpErrInfo* err) {
  auto* object = newRecord<ObjIndex>();
  if (object == nullptr) return reject(err, kNoMemory);
  if (const int code = SlotNoPortConvertObjIndex(slot, port, 0, object)) {
    mpuFree(object);
    return reject(err, code);
  }
  return addObject(item, object, objects, err);
}

int selectObjects(const DataItem& item, WireIn frame, LIST* objects, SnmpErrInfo* err) {
  u32 count = 0;
  if (readCount(frame, 0, item.mostSelected, &count, err) != 0) return -1;
  if (count == 0) return selectAll(item, 0, objects, err);
  Reader in(frame.subspan(kObjects));
  if (in.rest().size() / kSelector < count) return tooShort(err, frame);
  for (; count != 0; --count) {
    const auto slot = static_cast<u16>(in.number(2));
    const auto port = static_cast<u16>(in.number(2));
    in.skip(kSelector - 4);
    if (isSlotAuthed(slot) != 1) return reject(err, kNoSlot, {slot});
    const bool whole = port == item.wholeSlot;
    if ((whole ? selectAll(item, slot, objects, err) : selectOne(item, slot, port, objects, err)) != 0) return -1;
  }
  return 0;
}

static int answerObjects(const DataItem& item, LIST* objects, Writer& out, SnmpErrInfo* err) {
  for (NODE* cell = lstFirst(objects); cell != nullptr; cell = lstNext(cell)) {
    if (item.answer(dataOf<const ObjIndex>(cell), out, err) != 0) return -1;
    if (out.failed()) return reject(err, kNoMemory);
  }
  return 0;
}

int snmpGet(const DataItem& item, const u8* data, i32 length, u8* reply, u32* replyLen) {
  SnmpErrInfo err;
  ObjList objects;
  Writer out(WireOut(reply + kAnswer + 4, kMaxPacket - kAnswer - 4));
  if (selectObjects(item, frameOf(data, length), objects, &err) != 0 || answerObjects(item, objects, out, &err) != 0) {
    return answerError(item.id, err, reply, replyLen);
  }
  putNumber(reply, 4, 1);
  putNumber(reply + kAnswer, 4, static_cast<u32>(lstCount(objects)));
  *replyLen = kAnswer + 4 + out.length();
  return 0;
}
