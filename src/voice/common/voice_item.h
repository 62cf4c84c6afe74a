#pragma once
// The road of a global voice item: one record that holds for the whole node, with a table of one row, an SNMP SET and
// GET, a set, a show and a distribute/erase command, a line of the running configuration, a default and a replay.
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
  const char* name;       // X of the pattern's names
  const char* words;      // "set <words> configuration ..." and the traces
  const char* viewWords;  // in the lines of show, distribute and erase
  const Record* shape;
  u32 recordBytes;  // of the record in memory
  int (*parse)(WireIn unit, void* cfg, u32* length);
  int (*check)(const void* cfg, SnmpErrInfo* err);
  int (*set)(const void* cfg);
  int (*get)(void* cfg);
  int (*encode)(const void* cfg, WireOut unit, u32* length);
  // Over lists.
  int (*parseHandle)(WireIn area, u32* count, LIST* list);
  int (*checkHandle)(LIST* list, SnmpErrInfo* err);
  int (*setHandle)(LIST* list);
  int (*getHandle)(LIST* list);
  int (*encodeHandle)(LIST* list, WireOut buffer, u32* length);
  int (*init)();
  int (*distribute)();
  int (*erase)();
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
// 00 00 00 01, a label of 22 bytes that is left as it is, and the units.
int encodeUnits(const VoiceItem& item, LIST* list, WireOut buffer, u32* length, Where where = Where::here());

// --- Roads ------------------------------------------------------------------------------------------------------

// An SNMP request as its handler got it.
struct SnmpCall {
  u16 id;
  u8* lastFlagOut;  // GET
  u8* data;
  i32 length;
  u8* reply;
  u32* replyLen;
};

// A SET: frame, parse, check all, store all, forward from the label's end on, reply, report. 0 or -1.
int snmpSet(const VoiceItem& item, const SnmpCall& call, Where where = Where::here());
// A GET: read, encode, reply. 0 or -1.
int snmpGet(const VoiceItem& item, const SnmpCall& call, Where where = Where::here());

// Check (but not during recovery), store and send. -1 while nothing is stored; behind the store 0, and a failure
// shows in `err` alone.
int storeAndSend(const VoiceItem& item, const void* cfg, SnmpErrInfo* err, Where where = Where::here());
// Reads what is stored into a zeroed record and sends it; every failure gives -1.
int sendRecord(const VoiceItem& item, void* cfg, Where where);
template <class R>
int sendStored(const VoiceItem& item, R zeroed, Where where = Where::here()) {
  return sendRecord(item, &zeroed, where);
}
// Stores the default and sends it.
int eraseItem(const VoiceItem& item, Where where = Where::here());
// Makes the record the default and stores it.
int initRecord(const VoiceItem& item, void* cfg, Where where);
template <class R>
int initItem(const VoiceItem& item, R zeroed, Where where = Where::here()) {
  return initRecord(item, &zeroed, where);
}

// The end of a set command: stores and sends by `distribute`, prints how it went, reports.
int finishSet(Vty* vty, const VoiceItem& item, int result, const SnmpErrInfo& err);
// The command "[distribute|erase] ...".
int cliDistributeErase(const VoiceItem& item, Vty* vty, int argc, char** argv);
// The last line of a show command.
int finishShow(Vty* vty, const VoiceItem& item, int result);
// Prints "\r\n <why>. \r\n" for a command that can't be carried out; -1.
int refuse(Vty* vty, const char* why);

// Registers the item's message; logs a failure. 0 or -1.
int registerMessage(const SnmpMsgReg& message, Where where = Where::here());
