#pragma once
// The road of a data item: configuration that is stored for each port as an attribute, and told to the card in the
// port's slot. A manager's SET and an operator's command make the same list of records, which the item's set checks,
// saves and sends; a card that returns is told what is stored.
//
// A record begins with its ObjIndex and comes from the pool. Lists are sorted by slot and port
// (insert_sort_list_by_index), so that the records of a slot are adjacent. A road goes through the item's row, in which
// the steps are functions of the item's own; where an item does something in its own way, it has a longer function
// there, or does not take the road. Items that work on arrays take what stands below the roads.

#include <initializer_list>
#include <new>
#include <span>

#include "common/interface_list.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "common/msan_snmp.h"
#include "common/wire.h"
#include "data/common/terminal.h"

struct DataItem {
  u16 id;                       // of the message, from and to managers and to cards
  u32 attribute;                // number
  u32 valueOffset, valueBytes;  // of the attribute's value in a record
  u32 recordBytes;
  std::span<const u16> types;  // of its objects
  u32 least, most;             // objects of a SET
  u32 mostSelected;            // selectors of a GET; none stand for the whole node
  u16 wholeSlot;               // the port of a selector that stands for all of its slot
  u32 leastAnswer;             // bytes of the smallest object of an answer
  u32 message;                 // room for a message to a card, its envelope included

  // An object of a SET into a record. 0, or -1 with `err` filled; a frame that has ended is the road's to tell.
  int (*parse)(Reader& in, ObjIndex* record, SnmpErrInfo* err);
  int (*set)(LIST* records, SnmpErrInfo* err);
  int (*check)(LIST* records, SnmpErrInfo* err);
  int (*save)(LIST* records);
  int (*send)(LIST* records);
  // For the card: a record; what is stored for an object. For a manager: what is stored. 0 or -1.
  int (*encode)(const ObjIndex* record, Writer& out);
  int (*recover)(const ObjIndex* object, Writer& out);
  int (*answer)(const ObjIndex* object, Writer& out, SnmpErrInfo* err);
  // Whether an object that a walk has found has the item at all.
  bool (*holds)(const ObjIndex* object);
  // What is logged of a message that could not be sent, and of a record that could not be built into it.
  void (*sendFailed)(u16 slot);
  void (*buildFailed)(u16 slot);
};

// --- Roads ---

// A frame's length is at least 0, as the gateway sees to. What the handlers give back: 0 or -1.
int snmpSet(const DataItem& item, const u8* data, i32 length, u8* reply, u32* replyLen);
int snmpGet(const DataItem& item, const u8* data, i32 length, u8* reply, u32* replyLen);

// Check (not while the startup configuration is executed, whose records are taken as they stand), save, send.
int setRecords(const DataItem& item, LIST* records, SnmpErrInfo* err);

// What the slot's objects hold, in one message. -1 when one can't be read or built: then nothing is sent.
int recoverSlot(const DataItem& item, u16 slot);

// --- Steps ---

// Stores record by record; the first failure ends it.
int saveRecords(const DataItem& item, LIST* records);
// A message for each slot. A record that can't be built is left out, a send that fails is dropped: what is stored
// stands, and the card is told when it returns. -1 without memory.
int sendRecords(const DataItem& item, LIST* records);

// --- Parts ---

enum DataError : int { kCountRange = -1, kNoSlot = -3, kShortFrame = -18, kNoMemory = -19 };

// The count of a request, which has to lie within its limits. 0 or -1.
int readCount(WireIn frame, u32 least, u32 most, u32* count, SnmpErrInfo* err);
inline constexpr u32 kObjects = 36;  // offset of what is counted

// The objects that the selectors of a GET name, sorted. 0 or -1.
int selectObjects(const DataItem& item, WireIn frame, LIST* objects, SnmpErrInfo* err);

// Reports to the platform that the configuration of slots has changed, once for each, up to 16 of them.
class ChangedSlots {
 public:
  void add(u16 slot);
  void report(u16 id, int origin) const;

 private:
  u16 slots_[16] = {};
  u32 count_ = 0;
};
void reportSlots(LIST* records, u16 id, int origin);
inline constexpr int kByManager = 1, kByOperator = 3;

// A record from the pool, as its members' defaults have it; null without memory. mpuFree gives it back.
template <class Record>
Record* newRecord() {
  void* memory = mpuAlloc_(g_MsanMemPoolId, sizeof(Record), __FILE__, __LINE__);
  return memory != nullptr ? new (memory) Record : nullptr;
}

// The record that begins with an object.
template <class Record>
Record* recordAt(ObjIndex* object) {
  return reinterpret_cast<Record*>(object);
}
template <class Record>
const Record* recordAt(const ObjIndex* object) {
  return reinterpret_cast<const Record*>(object);
}

// Where the making of an operator's records ended.
enum class Gathered { all, noMemory, badAddress, refused, notListed };

// A record for each entry of an interface string, changed by `change(address, record)`, which gives 0 or says why not.
template <class Record, class Change>
Gathered gatherRecords(Vty* vty, LIST* addresses, LIST* records, Change change) {
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    const auto& address = *dataOf<const CliAddr>(cell);
    Record* record = newRecord<Record>();
    if (record == nullptr) return Gathered::noMemory;
    Gathered result = Gathered::all;
    if (transCliAddr2ObjIndex(vty, &address, &record->object) != 0) {
      result = Gathered::badAddress;
    } else if (change(address, record) != 0) {
      result = Gathered::refused;
    } else if (insert_sort_list_by_index(&record->object, records) != 0) {
      result = Gathered::notListed;
    }
    if (result != Gathered::all) {
      mpuFree(record);
      return result;
    }
  }
  return Gathered::all;
}
