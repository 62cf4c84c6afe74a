#pragma once
// The road of a global voice item: one record that holds for the whole node, with a table of one row, an SNMP SET and
// GET, a set, a show and a distribute/erase command, a line of the running configuration, a default and a replay.
//
// An item is a row, VoiceItem. What an item does as all do is the road's own and stands here alone; where an item
// differs, its source has a function under the step's name and the row names it. Trace lines name each step by the
// item's stem: nCheckCIDMode is "nCheck*" of the CID mode, whether it has a function or not.

#include <span>

#include "common/commands.h"
#include "common/item.h"
#include "common/msan_snmp.h"
#include "common/record.h"
#include "common/store.h"
#include "common/trace.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"
#include "voice/common/voice_snmp.h"

// How a family of items spells its steps; the * is the item's stem.
struct StepNames {
  const char *check, *checkHandle, *set, *snmpSet, *snmpGet, *distributeX, *distribute, *erase, *init, *store, *load,
      *registrar;
};
// clang-format off
inline constexpr StepNames kNodeItem{  // nCheckCIDMode
    .check = "nCheck*", .checkHandle = "nCheck*Handle", .set = "nSet*", .snmpSet = "nSnmpSet*", .snmpGet = "nSnmpGet*",
    .distributeX = "nDistrib*X", .distribute = "nDistrib*", .erase = "nErase*", .init = "nInit*", .store = "ngnSet*db", .load = "ngnGet*db",
    .registrar = "SnmpMsgRegister*"};
inline constexpr StepNames kPlainItem{  // check_mgc
    .check = "check_*", .checkHandle = "check_*_handle", .set = "set_*", .snmpSet = "snmp_set_*", .snmpGet = "snmp_get_*",
    .distributeX = "distrib_*x", .distribute = "distrib_*", .erase = "erase_*", .init = "init_*", .store = "db_set_*_prf",
    .load = "db_get_*_prf", .registrar = "reg_snmp_cmd_data"};
inline constexpr StepNames kPlainDbItem = [] {  // set_dsp_profile_db
  StepNames names = kPlainItem;
  names.store = "set_*_db";
  names.load = "get_*_db";
  return names;
}();
inline constexpr StepNames kServiceItem{  // ncheck_sip_server
    .check = "ncheck_*", .checkHandle = "ncheck_*_handle", .set = "nset_*", .snmpSet = "nsnmp_set_*",
    .snmpGet = "nsnmp_get_*", .distributeX = "ndistrib_*x", .distribute = "ndistrib_*", .erase = "nerase_*", .init = "ninit_*",
    .store = "db_set_*_cfg", .load = "db_get_*_cfg", .registrar = "*_regsnmpcmdhandle"};
// clang-format on

inline constexpr u32 kLargestRecord = 2112;

// The spelling of a service item whose store and registrar have names of their own.
constexpr StepNames serviceItem(const char* store, const char* load, const char* registrar,
                                const char* init = "ninit_*") {
  StepNames names = kServiceItem;
  names.store = store;
  names.load = load;
  names.registrar = registrar;
  names.init = init;
  return names;
}

// A record in memory and how it is kept: on the wire, and as a row of a table.
struct Kept {
  const Record* shape;
  u32 bytes;           // of the record in memory
  Fields stored = {};  // the columns
  const void* table = nullptr;
  int (*store)(const void* table, Fields fields, const void* cfg, u32 key, Where where) = nullptr;
  int (*load)(const void* table, Fields fields, void* cfg, u32 key, Where where) = nullptr;
};
template <class R, class Row>
constexpr Kept kept(const Record& shape, const Table<Row>& table, Fields stored) {
  static_assert(sizeof(R) <= kLargestRecord && alignof(R) <= alignof(u32));
  return {&shape,
          sizeof(R),
          stored,
          &table,
          [](const void* t, Fields all, const void* cfg, u32 key, Where where) {
            return storeRow(*static_cast<const Table<Row>*>(t), all, cfg, key, where);
          },
          [](const void* t, Fields all, void* cfg, u32 key, Where where) {
            return loadRow(*static_cast<const Table<Row>*>(t), all, cfg, key, where);
          }};
}
// Of a record whose columns are what stands on the wire.
template <class R, class Row>
constexpr Kept kept(const Record& shape, const Table<Row>& table) {
  return kept<R>(shape, table, shape.fields);
}
// A record that is not stored.
template <class R>
constexpr Kept unkept(const Record& shape) {
  return {&shape, sizeof(R)};
}

// How a SET goes on to the NGN side: the request's own bytes, or its record encoded anew. Where no buffer is had for
// that, some SETs fail, others are done but for the message.
enum class Forward : u8 { asItCame, encoded, encodedOrRefused };

struct VoiceItem {
  u16 id;            // message id, for SNMP and for the NGN side
  const char* stem;  // of the names of its steps
  const StepNames* names = &kNodeItem;
  const char* words;                   // "set <words> configuration ..." and the traces
  const char* viewWords = words;       // in the lines of show, distribute and erase
  const char* shownWords = viewWords;  // in the last line of a show, and of one that failed
  const char* notShownWords = viewWords;
  const char* setName = names->set;  // of the step that a default that could not be stored is traced with
  Kept kept;
  u32 label = 22;  // bytes of the object label in a frame
  Forward forward = Forward::asItCame;
  bool reportsFirst = false;  // a change is reported ahead of its message, a distribution not at all
  // Bytes of the count ahead of the units, 0 for an item that is one unit; and its limits.
  u32 countWidth = 0;
  u32 minimum = 1;
  u32 maximum = 1;

  // Steps that the item does in its own way; null: the road's. 0 or -1.
  int (*check)(const void* cfg, SnmpErrInfo* err) = nullptr;
  int (*checkHandle)(LIST* list, SnmpErrInfo* err) = nullptr;  // behind the check of each record
  int (*setHandle)(LIST* list) = nullptr;
  int (*getHandle)(LIST* list) = nullptr;
  int (*init)() = nullptr;
  int (*distribute)() = nullptr;
  // A record as the NGN side gets it, where that is not the unit: at most so many bytes.
  void (*encode)(const void* cfg, Writer& out) = nullptr;
  u32 encodedBytes = 0;

  void (*show)(Vty* vty, const void* cfg) = nullptr;     // what a show command prints ahead of its last line
  void (*showrun)(Vty* vty, const void* cfg) = nullptr;  // lines of the running configuration
  void (*showrunHandle)(Vty* vty) = nullptr;             // the same for an item that is no single record

  std::span<const Command> commands = {};
  ItemMessage message = {};

  Where at(const char* step) const { return {step, file, line, stem}; }
  const char* file = __builtin_FILE();  // of the row
  int line = __builtin_LINE();
};

// --- Steps ------------------------------------------------------------------------------------------------------
// 0 or -1.

// The fields' ranges; what an item checks beside them is in its own check.
int checkFields(const VoiceItem& item, const void* cfg, SnmpErrInfo* err);
int checkItem(const VoiceItem& item, const void* cfg, SnmpErrInfo* err);
int storeItem(const VoiceItem& item, const void* cfg, u32 key = 0);  // or kStoreFailed
int loadItem(const VoiceItem& item, void* cfg, u32 key = 0);         // or kStoreFailed; then the record is as it was

// Over lists of the item's records.
int parseUnits(const VoiceItem& item, WireIn area, LIST* list);
int checkUnits(const VoiceItem& item, LIST* list, SnmpErrInfo* err);
int setUnits(const VoiceItem& item, LIST* list);
int getUnits(const VoiceItem& item, LIST* list);
// The configuration area: the count if the item has one, and the units.
int encodeArea(const VoiceItem& item, LIST* list, Writer& out);

// --- Roads ------------------------------------------------------------------------------------------------------

// A SET: frame, parse, check all, store all, forward from the label's end on, reply, report. 0 or -1.
int snmpSet(const VoiceItem& item, const SnmpCall& call);
// A SET that is an order: checked and forwarded, nothing is stored or reported, and a message that can't be built is a
// failure.
int snmpOrder(const VoiceItem& item, const SnmpCall& call, Where where = Where::here());
// A GET: read, encode, reply. 0 or -1.
int snmpGet(const VoiceItem& item, const SnmpCall& call);

// What every request is asked first: its id, and whether all it needs is there. A GET may read its frame or not; what
// orders something leaves the last flag alone. 0, or -1 without a reply.
enum class Asks : u8 { nothing, something, orders };
int beginRequest(u16 id, const SnmpCall& call, Asks asks, Where where);

// The ends of a request: the packet with what `err` holds, or with the code of a step that has none of its own, -1; or
// 00 00 00 01 ahead of `payload` bytes, 0. `why` is traced, and may show the id.
int answerError(const SnmpCall& call, const SnmpErrInfo& err, const char* why, Where where);
int answerFailed(const SnmpCall& call, const char* why, Where where);
int answerSuccess(const SnmpCall& call, u32 payload);

// Check (but not during recovery), store and send. -1 while nothing is stored; behind the store 0, and a failure
// shows in `err` alone.
int storeAndSend(const VoiceItem& item, const void* cfg, SnmpErrInfo* err);
// Sends what is stored; every failure gives -1.
int distributeItem(const VoiceItem& item);
// Stores the default; stores it and sends it.
int initItem(const VoiceItem& item);
int eraseItem(const VoiceItem& item);

// Encodes a record, or a list of them, behind 00 00 00 01 and sends it to the NGN side. 0, or the code of the step that
// failed.
u16 encodeAndSend(const VoiceItem& item, const void* cfg, Where where);
u16 encodeAndSend(const VoiceItem& item, LIST* list, Where where);

// The end of a set command: prints how it went, with "set <words> configuration" or with what was done, and reports.
int finishSet(Vty* vty, const VoiceItem& item, int result, const SnmpErrInfo& err, const char* done = nullptr);
// A set command from its record on.
int configure(Vty* vty, const VoiceItem& item, const void* cfg, const char* done = nullptr);
// The commands "[distribute|erase] ..." and "show ...".
int distributeErase(Vty* vty, const VoiceItem& item, int argc, char** argv);
int showItem(Vty* vty, const VoiceItem& item);
// The last line of a show command.
int finishShow(Vty* vty, const VoiceItem& item, int result);
// Prints "\r\n <why>. \r\n" for a command that can't be carried out; -1.
int refuse(Vty* vty, const char* why);

// Registers a message; logs a failure.
void registerMessage(const SnmpMsgReg& message, Where where = Where::here());

// --- Handlers of an item, for its row and its commands ------------------------------------------------------------

template <const VoiceItem& item>
int setOf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpSet(item, {id, nullptr, data, length, reply, replyLen});
}
template <const VoiceItem& item>
int getOf(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGet(item, {id, last, data, length, reply, replyLen});
}
template <const VoiceItem& item>
constexpr ItemMessage setAndGet(u32 mostReply, const char* text) {
  return {setOf<item>, getOf<item>, mostReply, text};
}
template <const VoiceItem& item>
int showOf(const CommandElement*, Vty* vty, int, char**) {
  return showItem(vty, item);
}
template <const VoiceItem& item>
int distributeEraseOf(const CommandElement*, Vty* vty, int argc, char** argv) {
  return distributeErase(vty, item, argc, argv);
}

// --- An area's lists of items -------------------------------------------------------------------------------------

using VoiceItems = std::span<const VoiceItem* const>;
void initItems(VoiceItems items);
void registerItems(VoiceItems items);
void installItems(VoiceItems items);
void showrunItems(VoiceItems items, Vty* vty);
template <const VoiceItem& item>
void distributeOf() {
  distributeItem(item);
}
