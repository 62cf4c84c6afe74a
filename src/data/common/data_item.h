#pragma once
// The road of a data item: configuration that is stored for each port as an attribute, and told to the card in the
// port's slot. A manager's SET and an operator's command make the same list of records, which the item's set checks,
// saves and sends; a card that returns is told what is stored.
//
// An item is a row, DataItem. What an item does as all do is the road's own and stands here alone; where an item
// differs, its source has a function under the step's name and the row names it. A record begins with its ObjIndex, the
// attribute's value behind it, and comes from the pool.

#include <cstddef>
#include <initializer_list>
#include <new>
#include <span>

#include "common/commands.h"
#include "common/interface_list.h"
#include "common/item.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "common/msan_snmp.h"
#include "common/trace.h"
#include "common/wire.h"
#include "data/common/cards.h"
#include "data/common/terminal.h"

// A record in memory, and where in it the attribute's value stands.
struct KeptRecord {
  u32 bytes;
  u32 valueBytes;
  void* (*valueOf)(void* record);
  void (*make)(void* memory);  // as the members' defaults have it
};
inline constexpr u32 kLargestDataRecord = 4224;
template <auto Value>
struct ValueOf;
template <class R, class T, T R::*Value>
struct ValueOf<Value> {
  static_assert(sizeof(R) <= kLargestDataRecord && offsetof(R, object) == 0);
  static constexpr KeptRecord kept{sizeof(R), sizeof(T),
                                   [](void* record) -> void* { return &(static_cast<R*>(record)->*Value); },
                                   [](void* memory) { new (memory) R; }};
};
template <auto Value>
constexpr KeptRecord kept() {
  return ValueOf<Value>::kept;
}

// A list is in the order of slot and port, and has no other end than memory. An array is as it was asked for, and holds
// kMostRecords: a walk ends where it is full, and a SET without memory for it has no answer.
enum class Work : u8 { list, array };
inline constexpr u32 kMostRecords = 1024;

inline constexpr u32 kNoPort = 0x10000;
inline constexpr u32 kWholeSlot = 65535;
inline constexpr u32 kNoLimit = 0xFFFFFFFF;

struct DataItem {
  u16 id;            // of the message, from and to managers and to cards
  const char* stem;  // of the names of its steps
  u32 attribute;
  KeptRecord kept;
  std::span<const u16> objectTypes;
  Work work = Work::list;
  u32 minimum = 1;  // objects of a SET
  u32 maximum = kMostRecords;
  u32 mostSelected = kMostRecords;  // selectors of a GET; none stand for the whole node
  int tooManySelected = -1;         // what more of them are refused with
  u32 wholeSlot = kNoPort;          // the port of a selector that stands for all of its slot
  // Of a message to a card: bytes of its largest object, room for all of it, and the objects without which it is not
  // sent.
  u32 encodedBytes;
  u32 mostMessage = kNoLimit;
  u32 leastSent = 1;
  bool ofSlots = false;  // the objects are slots, each of which is told in a message of its own
  // A card is told what is read back once it is stored, each object in a message of its own. One that can't be read or
  // built ends that, and nobody is told.
  bool tellsStored = false;
  bool sentPlain = false;     // past sendMscMsg, which would log what fails
  bool checksReplay = false;  // what the startup configuration says is checked as well

  // An object of a SET into a record. 0, or -1 with `err` filled; a frame that has ended is the road's to tell.
  int (*parse)(Reader& in, void* record, SnmpErrInfo* err);
  // As the card wants it, and as a manager does (null: the same). 0 or -1.
  int (*encode)(const void* record, Writer& out);
  int (*answer)(const void* record, Writer& out) = nullptr;

  // Steps that the item does in its own way; null: the road's. 0, or what the set of a list then gives back.
  int (*check)(void* record, SnmpErrInfo* err) = nullptr;  // none
  int (*save)(const void* record) = nullptr;               // the value into the attribute
  int (*get)(void* record, SnmpErrInfo* err) = nullptr;    // and out of it
  // The object of a selector, with port 0 the slot for all of it. By the road: the slot is authorised (-3), and what
  // the object model then says.
  int (*select)(u16 slot, u16 port, ObjIndex* object, SnmpErrInfo* err) = nullptr;
  bool (*holds)(const ObjIndex* object) = nullptr;  // whether an object that a walk has found has the item at all: all
  bool (*reaches)(const ObjIndex* object) = nullptr;  // whether a message to the object's card is tried now: always
  void (*report)(LIST* records, u16 id, int origin) = nullptr;  // of slots that have changed: each of them, once
  // What is logged of a request's count out of its limits, of a message that could not be sent, and of a record that
  // could not be built into it.
  void (*countRefused)(u32 count) = nullptr;
  void (*sendFailed)(u16 slot) = nullptr;
  void (*buildFailed)(u16 slot) = nullptr;

  void (*showrun)(Vty* vty, const void* record) = nullptr;  // a port's lines of the running configuration

  std::span<const Command> commands = {};
  ItemMessage message = {};
  u8 option = 0;  // both bytes of its registration

  Where at(const char* step) const { return {step, file, line, stem}; }
  const char* file = __builtin_FILE();  // of the row
  int line = __builtin_LINE();
};

inline ObjIndex& objectOf(void* record) { return *static_cast<ObjIndex*>(record); }
inline const ObjIndex& objectOf(const void* record) { return *static_cast<const ObjIndex*>(record); }

// --- Roads ---

// A frame's length is at least 0, as the gateway sees to. What the handlers give back: 0 or -1.
int snmpSet(const DataItem& item, const u8* data, i32 length, u8* reply, u32* replyLen);
int snmpGet(const DataItem& item, const u8* data, i32 length, u8* reply, u32* replyLen);

// Check (unless the row says so, not while the startup configuration is executed, whose records are taken as they
// stand), save, send. 0, or what the step that failed gave; behind a check alone `err` is filled.
int setRecords(const DataItem& item, LIST* records, SnmpErrInfo* err);
void reportRecords(const DataItem& item, LIST* records, int origin);

// What the slot's objects hold, in one message; those alone that `which` takes. When one can't be read or built,
// nothing is sent.
void recoverSlot(const DataItem& item, u16 slot, bool (*which)(const ObjIndex* object) = nullptr);

// Tells a card that returns what is stored for its slot. A failed send is logged.
void recoverWholeSlot(const DataItem& item, u16 slot, Where where = Where::here());

// The lines of each port of a data card, in their order; or of the slot. What can't be read has none.
void showrunSlot(const DataItem& item, Vty* vty, u16 slot);

// --- Steps ---

// A message for each slot. A record that can't be built is left out, a send that fails is dropped: what is stored
// stands, and the card is told when it returns. -1 without memory.
int sendRecords(const DataItem& item, LIST* records);
// What is stored for each of the objects, as `tellsStored` has it.
void tellStored(const DataItem& item, LIST* objects);

// What is stored for the record's object, into it. 0, or the code of the attribute.
int readRecord(const DataItem& item, void* record);

// The values of an operator's records, as a GET reads them. 0, or what the first that failed gave.
int getRecords(const DataItem& item, LIST* records);

// The check of a record's object, the card's presence aside.
int checkObject(const DataItem& item, const void* record, SnmpErrInfo* err);

// A get that checks the object first.
template <const DataItem& item>
int checkedGet(void* record, SnmpErrInfo* err) {
  return checkObject(item, record, err) == 0 && readRecord(item, record) == 0 ? 0 : -1;
}

// Gates and ends for rows: a card that is there and up, and a startup configuration that has been executed; slots in
// whose records the slot changes, each change; nothing logged.
bool reachesRunningCard(const ObjIndex* object);
void reportRuns(LIST* records, u16 id, int origin);
void untold(u16 slot);

// --- Parts ---

enum DataError : int { kCountRange = -1, kNoSlot = -3, kShortFrame = -18, kNoMemory = -19 };

// As reject(), and gives the code itself. With a width: a last detail of so many bytes.
int rejectAs(SnmpErrInfo* err, int code, std::initializer_list<u16> details, u32 width = 0, u32 last = 0);

inline constexpr u32 kObjects = 36;  // offset of what is counted

// The objects that the selectors of a GET name. 0, -1, or kNoMemory where that has no answer.
int selectObjects(const DataItem& item, WireIn frame, LIST* objects, SnmpErrInfo* err);

// The objects of the item, or of some types, under a slot or with slot 0 under the system, sorted. 0 or -1.
int walkObjects(const DataItem& item, u16 slot, LIST* objects);
int walkObjects(std::span<const u16> types, u16 slot, LIST* objects);

// Put a record into a list, in the item's order or behind the others. 0 or -1.
int addRecord(const DataItem& item, ObjIndex* record, LIST* records);
int appendRecord(ObjIndex* record, LIST* records);

// Reports to the platform that the configuration of slots has changed, once for each, up to 16 of them.
class ChangedSlots {
 public:
  void add(u16 slot);
  void addChange(u16 slot);  // known or not, if it is another than the last one
  void report(u16 id, int origin) const;

 private:
  u16 slots_[16] = {};
  u32 count_ = 0;
};
void reportSlots(LIST* records, u16 id, int origin);
inline constexpr int kByNode = 0, kByManager = 1, kByOperator = 3;

// A record from the pool, as its members' defaults have it; null without memory. mpuFree gives it back.
template <class Record>
Record* newRecord() {
  void* memory = mpuAlloc_(g_MsanMemPoolId, sizeof(Record), __FILE__, __LINE__);
  return memory != nullptr ? new (memory) Record : nullptr;
}

// The object of a place; port 0 is the slot. 0, or what the object model says.
inline int findObject(u16 slot, u16 port, ObjIndex* object) { return SlotNoPortConvertObjIndex(slot, port, 0, object); }

// The same, whether or not there is one: the check of a record tells.
void placeObject(u16 slot, u16 port, ObjIndex* object);

// Each port of a data card, in their order.
template <class Visit>
void forEachDataPort(u16 slot, Visit visit) {
  const u16 ports = dataPorts(slot);
  for (u16 port = 1; port <= ports; ++port) {
    ObjIndex object;
    placeObject(slot, port, &object);
    visit(object);
  }
}

// A copy of a record for each entry of an interface string, in their order. 0, -1 for more than an array holds, or
// kNoMemory.
template <class Record>
int placeRecords(LIST* addresses, LIST* records, const Record& record) {
  if (static_cast<u32>(lstCount(addresses)) > kMostRecords) return -1;
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    const auto& address = *dataOf<const CliAddr>(cell);
    auto* placed = newRecord<Record>();
    if (placed == nullptr) return kNoMemory;
    *placed = record;
    placeObject(address.slot, address.port, &placed->object);
    if (appendRecord(&placed->object, records) == 0) continue;
    mpuFree(placed);
    return kNoMemory;
  }
  return 0;
}

// Where the making of an operator's records ended.
enum class Gathered { all, noMemory, badAddress, refused, notListed };

// A record for each entry of an interface string, changed by `change(address, record)`, which gives 0 or says why not.
template <class Record, class Change>
Gathered gatherRecords(const DataItem& item, Vty* vty, LIST* addresses, LIST* records, Change change) {
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    const auto& address = *dataOf<const CliAddr>(cell);
    Record* record = newRecord<Record>();
    if (record == nullptr) return Gathered::noMemory;
    Gathered result = Gathered::all;
    if (transCliAddr2ObjIndex(vty, &address, &record->object) != 0) {
      result = Gathered::badAddress;
    } else if (change(address, record) != 0) {
      result = Gathered::refused;
    } else if (addRecord(item, &record->object, records) != 0) {
      result = Gathered::notListed;
    }
    if (result != Gathered::all) {
      mpuFree(record);
      return result;
    }
  }
  return Gathered::all;
}

// --- Handlers of an item, for its row and the area's lists ---------------------------------------------------------

template <const DataItem& item>
int setOf(u16, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpSet(item, data, length, reply, replyLen);
}
template <const DataItem& item>
int getOf(u16, u8*, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGet(item, data, length, reply, replyLen);
}
template <const DataItem& item>
constexpr ItemMessage setAndGet(u32 mostReply, const char* text) {
  return {setOf<item>, getOf<item>, mostReply, text};
}
void registerItem(const DataItem& item);
template <const DataItem& item>
void registerOf() {
  registerItem(item);
}
template <const DataItem& item>
void installOf() {
  installCommands(item.commands);
}
template <const DataItem& item>
void showrunOf(Vty* vty, u16 slot) {
  showrunSlot(item, vty, slot);
}
