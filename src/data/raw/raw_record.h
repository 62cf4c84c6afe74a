#pragma once
// Records that travel and are told to cards as they lie in a little-endian memory, their reserved bytes as they came.
// Around them, counts and what selects them are big-endian.
//
// An item says what it checks of a record and what it does with one; a SET checks all ahead of the first that is done,
// and ends at the first that fails. Such items use no attributes.

#include <concepts>
#include <cstring>
#include <span>

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/cards.h"
#include "platform/objects.h"

// Numbers without alignment, so that a record is what is on the wire.
template <std::unsigned_integral T>
class LittleEndian {
 public:
  LittleEndian() = default;
  LittleEndian(T value) {
    for (u32 i = 0; i < sizeof(T); ++i) bytes_[i] = static_cast<u8>(u32{value} >> 8 * i);
  }
  operator T() const {
    u32 value = 0;
    for (u32 i = 0; i < sizeof(T); ++i) value |= u32{bytes_[i]} << 8 * i;
    return static_cast<T>(value);
  }

 private:
  u8 bytes_[sizeof(T)] = {};
};
using Le16 = LittleEndian<u16>;
using Le32 = LittleEndian<u32>;

enum RawError : int {
  kRawCount = -1,
  kRawNoCard = -3,
  kRawOtherCard = -5,
  kRawTooShort = -18,
  kRawNotStored = -102,
};

// What a SET of records of so many bytes is. `check` (null: nothing) gives 0 or a code; `apply` stores and tells, and
// gives 0 or -1; `done` (null: nothing) is called once behind the last.
struct RawSet {
  u16 id;
  u32 countBytes;  // of the count, which stands at 32
  u32 recordBytes;
  u32 most;
  int (*check)(const u8* record);
  int (*apply)(const u8* record);
  void (*done)() = nullptr;
};
int setRawRecords(const RawSet& item, const u8* data, i32 length, u8* reply, u32* replyLen);

template <class Record>
Record rawRecord(const u8* at) {
  static_assert(alignof(Record) == 1);
  Record record;
  std::memcpy(&record, at, sizeof record);
  return record;
}
template <class Record>
WireIn rawBytes(const Record& record) {
  return {reinterpret_cast<const u8*>(&record), sizeof record};
}

// An answer: 00000001, 32 bytes that are left alone, the count, the records.
class RawAnswer {
 public:
  RawAnswer(u8* reply, u32 countBytes) : reply_(reply), countBytes_(countBytes), length_(kCount + countBytes) {}

  template <class Record>
  void add(const Record& record) {
    std::memcpy(reply_ + length_, &record, sizeof record);
    length_ += static_cast<u32>(sizeof record);
    ++count_;
  }
  // 0
  int end(u32* replyLen) {
    putNumber(reply_, 4, 1);
    putNumber(reply_ + kCount, countBytes_, count_);
    *replyLen = length_;
    return 0;
  }

 private:
  static constexpr u32 kCount = 36;
  u8* reply_;
  u32 countBytes_;
  u32 length_;
  u32 count_ = 0;
};
int rejectRaw(u16 id, int code, u8* reply, u32* replyLen);  // -1

// To the card of a slot: a count of one, and the record. Nobody looks at how it went.
template <class Count, class Record>
void tellRawRecord(u16 slot, u16 id, const Record& record) {
  struct {
    Count one = 1;
    Record record;
  } message{1, record};
  static_assert(sizeof message == sizeof(Count) + sizeof(Record));
  dm_MakeCmdPkt_GEPON(slot, id, &message, sizeof message);
}

// The cards that know local, remote and CES mode.
inline constexpr u16 kCesCard = 587;
inline bool isCesCard(u16 slot) { return get_config_card_type(slot) == kCesCard; }

// Each slot that is authorised for one.
template <class Visit>
void forEachCesSlot(Visit visit) {
  if (gpOmFrameObj == nullptr) return;
  for (const OmObject* slot : std::span(gpOmFrameObj->m_pChildObjList, gpOmFrameObj->childCount)) {
    if (slot != nullptr && slot->type == kCesCard) visit(slot->number);
  }
}
