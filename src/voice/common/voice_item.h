#pragma once
// The road of a global voice item: one record that holds for the whole node, with a table of one row, an SNMP SET and
// GET, a set, a show and a distribute/erase command, a line of the running configuration, a default and a replay.
//
// A step that an item does not have is null; no road of its takes it.
//
// An item is a row, VoiceItem, of which its source holds the data and the steps. The steps are functions of the item's
// own under the names of the pattern (nParseX, nCheckX ...), one-line calls of what stands here where the item does as
// all do. The roads below go through the row, so a step that an item does in its own way is taken everywhere.

#include "common/msan_snmp.h"
#include "common/record.h"
#include "common/store.h"
#include "common/trace.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/lists.h"
#include "voice/common/voice_snmp.h"

struct VoiceItem {
  u16 id;                 // message id, for SNMP and for the NGN side
  const char* setName;    // of the function that stores a record, for the trace of a default that could not be stored
  const char* words;      // "set <words> configuration ..." and the traces
  const char* viewWords;  // in the lines of show, distribute and erase
  const Record* shape;
  u32 recordBytes;  // of the record in memory
  u32 label = 22;   // bytes of the object label in a frame
  // Bytes of the count ahead of the units, 0 for an item that is one unit; and its limits.
  u32 countWidth = 0;
  u32 minimum = 1;
  u32 maximum = 1;
  int (*parse)(WireIn unit, void* cfg, u32* length) = nullptr;
  int (*check)(const void* cfg, SnmpErrInfo* err) = nullptr;
  int (*set)(const void* cfg) = nullptr;
  int (*get)(void* cfg) = nullptr;
  int (*encode)(const void* cfg, WireOut unit, u32* length) = nullptr;
  // Over lists.
  int (*parseHandle)(WireIn area, u32* count, LIST* list) = nullptr;
  int (*checkHandle)(LIST* list, SnmpErrInfo* err) = nullptr;
  int (*setHandle)(LIST* list) = nullptr;
  int (*getHandle)(LIST* list) = nullptr;
  int (*encodeHandle)(LIST* list, WireOut buffer, u32* length) = nullptr;
  int (*init)() = nullptr;
  int (*distribute)() = nullptr;
  int (*erase)() = nullptr;
};

// A step of an item, which takes the item's record, as the row holds it.
template <auto Function>
struct OnRecord;
template <class R, int (*Function)(R*)>
struct OnRecord<Function> {
  using Record = std::conditional_t<std::is_const_v<R>, const void, void>;
  static int call(Record* cfg) { return Function(static_cast<R*>(cfg)); }
};
template <class R, int (*Function)(const R*, SnmpErrInfo*)>
struct OnRecord<Function> {
  static int call(const void* cfg, SnmpErrInfo* err) { return Function(static_cast<const R*>(cfg), err); }
};
template <class R, int (*Function)(const R*, WireOut, u32*)>
struct OnRecord<Function> {
  static int call(const void* cfg, WireOut unit, u32* length) {
    return Function(static_cast<const R*>(cfg), unit, length);
  }
};
template <class R, int (*Function)(WireIn, R*, u32*)>
struct OnRecord<Function> {
  static int call(WireIn unit, void* cfg, u32* length) { return Function(unit, static_cast<R*>(cfg), length); }
};
template <auto Function>
inline constexpr auto onRecord = OnRecord<Function>::call;

// --- Steps ------------------------------------------------------------------------------------------------------
// 0 or -1. A null argument is traced and gives -1.

int parseUnit(const Record& shape, WireIn unit, void* cfg, u32* length, Where where = Where::here());
int encodeUnit(const Record& shape, const void* cfg, WireOut unit, u32* length, Where where = Where::here());
int checkFields(Fields fields, const void* cfg, SnmpErrInfo* err, Where where = Where::here());

// Over lists of the item's records.
int parseUnits(const VoiceItem& item, WireIn area, u32* count, LIST* list, Where where = Where::here());
int checkUnits(const VoiceItem& item, LIST* list, SnmpErrInfo* err, Where where = Where::here());
int setUnits(const VoiceItem& item, LIST* list, Where where = Where::here());
int getUnit(const VoiceItem& item, LIST* list, Where where = Where::here());
// The configuration area: the count if the item has one, and the units.
int encodeArea(const VoiceItem& item, LIST* list, WireOut buffer, u32* length, Where where = Where::here());
// 00 00 00 01, a label that is left as it is, and the configuration area.
int encodeUnits(const VoiceItem& item, LIST* list, WireOut buffer, u32* length, Where where = Where::here());

// --- Roads ------------------------------------------------------------------------------------------------------

// An SNMP request as its handler got it.
// A SET: frame, parse, check all, store all, forward from the label's end on, reply, report. 0 or -1.
int snmpSet(const VoiceItem& item, const SnmpCall& call, Where where = Where::here());
// A SET that is an order: checked and forwarded, nothing is stored or reported, and a message that can't be built is a
// failure.
int snmpOrder(const VoiceItem& item, const SnmpCall& call, Where where = Where::here());
// A GET: read, encode, reply. 0 or -1.
int snmpGet(const VoiceItem& item, const SnmpCall& call, Where where = Where::here());

// The ends of a request: the packet with what `err` holds, or with the code of a step that has none of its own, -1; or
// 00 00 00 01 ahead of `payload` bytes, 0.
int answerError(const SnmpCall& call, const SnmpErrInfo& err, const char* why, Where where);
int answerFailed(const SnmpCall& call, const char* why, Where where);
int answerSuccess(const SnmpCall& call, u32 payload);

// Check (but not during recovery), store and send. -1 while nothing is stored; behind the store 0, and a failure
// shows in `err` alone.
int storeAndSend(const VoiceItem& item, const void* cfg, SnmpErrInfo* err, Where where = Where::here());
// Reads what is stored into a zeroed record and sends it; every failure gives -1.
int sendRecord(const VoiceItem& item, void* cfg, Where where);
template <class R>
int sendStored(const VoiceItem& item, R zeroed, Where where = Where::here()) {
  return sendRecord(item, &zeroed, where);
}
// Encodes `from` into a buffer of so many bytes, behind 00 00 00 01, and sends it to the NGN side. 0, or the code of
// the step that failed.
using EncodeStep = int (*)(const void* from, WireOut wire, u32* length);
u16 encodeAndSend(const VoiceItem& item, const void* from, EncodeStep encode, u32 bytes, Where where);
// Stores the default and sends it.
int eraseItem(const VoiceItem& item, Where where = Where::here());
// Makes the record the default and stores it.
int initRecord(const VoiceItem& item, void* cfg, Where where);
template <class R>
int initItem(const VoiceItem& item, R zeroed, Where where = Where::here()) {
  return initRecord(item, &zeroed, where);
}

// The end of a set command: prints how it went, with "set <words> configuration" or with what was done, and reports.
int finishSet(Vty* vty, const VoiceItem& item, int result, const SnmpErrInfo& err);
int finishSet(Vty* vty, const VoiceItem& item, const char* done, int result, const SnmpErrInfo& err);
// The command "[distribute|erase] ...".
int cliDistributeErase(const VoiceItem& item, Vty* vty, int argc, char** argv);
// The last line of a show command.
int finishShow(Vty* vty, const VoiceItem& item, int result);
// Prints "\r\n <why>. \r\n" for a command that can't be carried out; -1.
int refuse(Vty* vty, const char* why);

// Registers the item's message; logs a failure. 0 or -1.
int registerMessage(const SnmpMsgReg& message, Where where = Where::here());
