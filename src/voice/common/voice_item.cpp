#include "voice/common/voice_item.h"

#include "common/memory.h"
#include "common/msan_init.h"
#include "common/report.h"
#include "platform/log.h"
#include "platform/wrappers.h"
#include "voice/common/voice_msc.h"

// Where a global item's frame has what: the object label stands at 36, its last four bytes are overwritten and
// forwarded ahead of the configuration area.
static constexpr u32 kLabelAt = 36;
static constexpr u32 kReplyArea = 36;  // of a GET's reply: what stood at 32 in a request
static constexpr u16 kSendSlot = 18;   // for the trace lines of a message to the NGN side
namespace {
enum Origin { kSnmp = 1, kCommand = 3 };
}  // namespace

namespace {
// A zeroed record of any item.
struct AnyRecord {
  alignas(u32) u8 bytes[kLargestRecord] = {};
  operator void*() { return bytes; }
};
}  // namespace

// --- Steps ---

int checkFields(const VoiceItem& item, const void* cfg, SnmpErrInfo* err) {
  return checkRecord(item.kept.shape->fields, cfg, err, item.at(item.names->check));
}

int checkItem(const VoiceItem& item, const void* cfg, SnmpErrInfo* err) {
  return item.check != nullptr ? item.check(cfg, err) : checkFields(item, cfg, err);
}

int storeItem(const VoiceItem& item, const void* cfg, u32 key) {
  return item.kept.store(item.kept.table, item.kept.stored, cfg, key, item.at(item.names->store));
}

int loadItem(const VoiceItem& item, void* cfg, u32 key) {
  return item.kept.load(item.kept.table, item.kept.stored, cfg, key, item.at(item.names->load));
}

int parseUnits(const VoiceItem& item, WireIn area, LIST* list) {
  const u32 unit = item.kept.shape->unit;
  Reader in(area);
  const u32 count = item.countWidth != 0 ? in.number(item.countWidth) : 1;
  if (in.failed() || count > item.maximum || in.rest().size() / unit < count) return -1;
  if (count == 0) return 0;
  if (vCreateDataNode(list, static_cast<i32>(count), item.kept.bytes) != 0) return -1;
  const u8* wire = in.rest().data();
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at), wire += unit) {
    parseRecord(item.kept.shape->fields, wire, recordOf<void>(at));
  }
  return 0;
}

int checkUnits(const VoiceItem& item, LIST* list, SnmpErrInfo* err) {
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    if (checkItem(item, recordOf<void>(at), err) != 0) return -1;
  }
  return item.checkHandle != nullptr ? item.checkHandle(list, err) : 0;
}

int setUnits(const VoiceItem& item, LIST* list) {
  if (item.setHandle != nullptr) return item.setHandle(list);
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    if (storeItem(item, recordOf<void>(at)) != 0) return -1;
  }
  return 0;
}

int getUnits(const VoiceItem& item, LIST* list) {
  if (item.getHandle != nullptr) return item.getHandle(list);
  if (vCreateDataNode(list, 1, item.kept.bytes) != 0) return -1;
  return loadItem(item, recordOf<void>(lstLast(list))) == 0 ? 0 : -1;
}

// A unit; its reserved bytes are left as they are.
static void encodeUnit(const VoiceItem& item, const void* cfg, Writer& out) {
  if (u8* unit = out.skip(item.kept.shape->unit)) encodeRecord(item.kept.shape->fields, cfg, unit);
}

int encodeArea(const VoiceItem& item, LIST* list, Writer& out) {
  if (item.countWidth != 0) out.number(item.countWidth, static_cast<u32>(lstCount(list)));
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) encodeUnit(item, recordOf<void>(at), out);
  return out.failed() ? -1 : 0;
}

// --- SNMP ---

static void dump(const u8* packet, u32 length) { ulogTypePkt(gModuleId_Msan, kLogDebug, packet, length); }

int answerError(const SnmpCall& call, const SnmpErrInfo& err, const char* why, Where where) {
  buildSnmpErrRetPkt(call.reply, call.replyLen, call.id, &err);
  dump(call.reply, 32);
  printTrace(where, why, call.id);
  return -1;
}

int answerFailed(const SnmpCall& call, const char* why, Where where) {
  SnmpErrInfo err;
  vSetErrorInfo(kStepFailed, &err);
  return answerError(call, err, why, where);
}

int answerSuccess(const SnmpCall& call, u32 payload) {
  nBuildSuccessInfo(payload, call.reply, call.replyLen);
  dump(call.reply, *call.replyLen);
  return 0;
}

int beginRequest(u16 id, const SnmpCall& call, Asks asks, Where where) {
  if (call.id != id) {
    printTrace(where, "invalid SNMP command ID: 0x%04X", call.id);
    return -1;
  }
  const int null = asks == Asks::nothing ? nIsSnmpGetParaNull(call.lastFlagOut, call.reply, call.replyLen)
                   : asks == Asks::orders
                       ? nIsSnmpSetParaNull(call.data, call.reply, call.replyLen)
                       : nIsSnmpGetParaNullEx(call.lastFlagOut, call.data, call.reply, call.replyLen);
  if (null != 0) {
    printTrace(where, "SNMP para is NULL");
    return -1;
  }
  if (asks != Asks::nothing && call.length > 0) dump(call.data, static_cast<u32>(call.length));
  return 0;
}

// Frame, parse and check of a SET's configuration area. 0, or the answered failure.
static int acceptSet(const VoiceItem& item, const SnmpCall& call, LIST* list, Where where) {
  SnmpErrInfo err;
  const u32 at = kLabelAt + item.label;
  const i32 rest = call.length - static_cast<i32>(at);
  if (nCheckSnmpItemsLengthPre(call.data, call.length, item.label, &err) != 0 ||
      nCheckSnmpItemsLength(call.data + at, rest, item.kept.shape->unit, static_cast<u8>(item.countWidth), item.minimum,
                            item.maximum, &err) != 0) {
    return answerError(call, err, "invalid SNMP command para", where);
  }
  if (parseUnits(item, WireIn(call.data + at, static_cast<u32>(rest)), list) != 0) {
    return answerFailed(call, "parse configuration failed", where);
  }
  if (checkUnits(item, list, &err) != 0) return answerError(call, err, "check configuration failed", where);
  return 0;
}

// Sends the request's own bytes from the end of its label on, reserved ones included: no copy of it is encoded again.
// The last four of the label become 00 00 00 01. 0, or -1 if the message could not be built.
static int forwardSet(const VoiceItem& item, const SnmpCall& call, const LIST* list) {
  u8* forward = call.data + kLabelAt + item.label - 4;
  putNumber(forward, 4, 1);
  DataList sends;
  const u32 length = 4 + item.countWidth + static_cast<u32>(lstCount(list)) * item.kept.shape->unit;
  if (vBuildMscPacketI(kSendSlot, item.id, 0, forward, length, sends) != 0) return -1;
  vSendMscPacketI(sends);
  return 0;
}

int snmpSet(const VoiceItem& item, const SnmpCall& call) {
  const Where where = item.at(item.names->snmpSet);
  if (beginRequest(item.id, call, Asks::orders, where) != 0) return -1;
  DataList list;
  if (acceptSet(item, call, list, where) != 0) return -1;
  if (setUnits(item, list) != 0) return answerFailed(call, "set configuration failed", where);
  if (item.reportsFirst) reportChange(kNode, item.id, kSnmp);
  u16 code = 0;
  if (item.forward != Forward::asItCame) {
    code = encodeAndSend(item, static_cast<LIST*>(list), where);
    if (code == kEncodeFailed && item.forward == Forward::encodedOrRefused)
      return answerFailed(call, "encode configuration failed", where);
  } else {
    if (forwardSet(item, call, list) != 0) code = kBuildFailed;
  }
  if (code != 0)
    printTrace(where, "build MSC msg 0x%04X failed", item.id);
  else if (!item.reportsFirst)
    reportChange(kNode, item.id, kSnmp);
  return answerSuccess(call, 0);
}

int snmpOrder(const VoiceItem& item, const SnmpCall& call, Where where) {
  if (beginRequest(item.id, call, Asks::orders, where) != 0) return -1;
  DataList list;
  if (acceptSet(item, call, list, where) != 0) return -1;
  if (forwardSet(item, call, list) != 0) return answerFailed(call, "build MSC msg 0x%04X failed", where);
  return answerSuccess(call, 0);
}

int snmpGet(const VoiceItem& item, const SnmpCall& call) {
  const Where where = item.at(item.names->snmpGet);
  if (beginRequest(item.id, call, Asks::nothing, where) != 0) return -1;
  DataList list;
  if (getUnits(item, list) != 0) return answerFailed(call, "get configuration failed", where);
  Writer out(WireOut(call.reply, kMaxPacket).subspan(kReplyArea));
  out.number(4, 1);
  out.skip(item.label);
  if (encodeArea(item, list, out) != 0) return answerFailed(call, "SNMP confirm encode failed", where);
  return answerSuccess(call, out.length() + 32);
}

// --- Store and send ---

// Lets `encode` write so many bytes behind 00 00 00 01, and sends them.
template <class Encode>
static u16 sendEncoded(const VoiceItem& item, u32 bytes, Encode encode, Where where) {
  u8* memory = nullptr;
  if (vMemAlloc(&memory, static_cast<i32>(4 + bytes)) != 0) {
    printTrace(where, "malloc for %s configuration encode buffer failed", item.words);
    return kEncodeFailed;
  }
  const PoolBytes owner(memory);
  Writer out(WireOut(memory, 4 + bytes));
  out.number(4, 1);
  encode(out);
  DataList sends;
  if (vBuildMscPacketI(kSendSlot, item.id, 0, memory, out.length(), sends) != 0) {
    printTrace(where, "build MSC message 0x%04X failed", item.id);
    return kBuildFailed;
  }
  vSendMscPacketI(sends);
  return 0;
}

u16 encodeAndSend(const VoiceItem& item, const void* cfg, Where where) {
  if (item.encode != nullptr)
    return sendEncoded(
        item, item.encodedBytes, [&](Writer& out) { item.encode(cfg, out); }, where);
  return sendEncoded(
      item, item.kept.shape->unit, [&](Writer& out) { encodeUnit(item, cfg, out); }, where);
}

u16 encodeAndSend(const VoiceItem& item, LIST* list, Where where) {
  if (item.encode != nullptr) return encodeAndSend(item, recordOf<const void>(lstFirst(list)), where);
  const u32 bytes = item.countWidth + item.kept.shape->unit * static_cast<u32>(lstCount(list));
  return sendEncoded(
      item, bytes, [&](Writer& out) { encodeArea(item, list, out); }, where);
}

int storeAndSend(const VoiceItem& item, const void* cfg, SnmpErrInfo* err) {
  const Where where = item.at(item.names->distributeX);
  if (inRecoverConfProcess() != 1 && checkItem(item, cfg, err) != 0) return -1;
  if (storeItem(item, cfg) != 0) {
    vSetErrorInfo(kNotStored, err);
    printTrace(where, "set %s configuration failed", item.words);
    return -1;
  }
  if (item.reportsFirst) reportChange(kNode, item.id, kCommand);
  if (const u16 code = encodeAndSend(item, cfg, where)) vSetErrorInfo(code, err);
  return 0;
}

int distributeItem(const VoiceItem& item) {
  if (item.distribute != nullptr) return item.distribute();
  const Where where = item.at(item.names->distribute);
  AnyRecord cfg;
  if (loadItem(item, cfg) != 0) {
    printTrace(where, "get %s configuration failed", item.words);
    return -1;
  }
  return encodeAndSend(item, static_cast<const void*>(cfg), where) == 0 ? 0 : -1;
}

int initItem(const VoiceItem& item) {
  if (item.init != nullptr) return item.init();
  AnyRecord cfg;
  resetRecord(item.kept.shape->fields, cfg);
  if (storeItem(item, cfg) == 0) return 0;
  const FunctionName set(item.at(item.setName));
  printTrace(item.at(item.names->init), "%s error iRet = -1", set.text);
  return -1;
}

int eraseItem(const VoiceItem& item) {
  if (initItem(item) != 0) return -1;
  if (distributeItem(item) == 0) return 0;
  printTrace(item.at(item.names->erase), "distribute %s configuration failed", item.words);
  return -1;
}

// --- Commands ---

int finishSet(Vty* vty, const VoiceItem& item, int result, const SnmpErrInfo& err, const char* done) {
  const int code = static_cast<i16>(err.errCode);
  const char* how = result == -1 ? "failed" : "successfully";
  if (done != nullptr)
    vty_out(vty, "\r\n %s %s(%d). \r\n", done, how, code);
  else
    vty_out(vty, "\r\n set %s configuration %s(%d). \r\n", item.words, how, code);
  if (result == -1) return -1;
  if (!item.reportsFirst) reportChange(kNode, item.id, kCommand);
  return 0;
}

int configure(Vty* vty, const VoiceItem& item, const void* cfg, const char* done) {
  SnmpErrInfo err;
  const int result = storeAndSend(item, cfg, &err);
  return finishSet(vty, item, result, err, done);
}

int distributeErase(Vty* vty, const VoiceItem& item, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  const bool erases = bep_StrCmp(argv[0], "erase") == 0;
  if (!erases && bep_StrCmp(argv[0], "distribute") != 0) return refuse(vty, "invalid configuration operation");
  const int result = erases ? eraseItem(item) : distributeItem(item);
  if (result != 0) {
    vty_out(vty, "\r\n %s %s configuration failed. \r\n", argv[0], item.viewWords);
    return -1;
  }
  const auto report = [&] { reportChange(kNode, item.id, kCommand); };
  if (item.reportsFirst && erases) report();
  vty_out(vty, "\r\n %s %s configuration successfully. \r\n", argv[0], item.viewWords);
  if (!item.reportsFirst) report();
  return 0;
}

int showItem(Vty* vty, const VoiceItem& item) {
  AnyRecord cfg;
  const int result = loadItem(item, cfg);
  if (result == 0) item.show(vty, cfg);
  return finishShow(vty, item, result);
}

int finishShow(Vty* vty, const VoiceItem& item, int result) {
  if (result == 0)
    vty_out(vty, "\r\n get %s configuration successfully. \r\n", item.shownWords);
  else
    vty_out(vty, "\r\n get %s configuration failed. \r\n", item.notShownWords);
  return result == 0 ? 0 : -1;
}

int refuse(Vty* vty, const char* why) {
  vty_out(vty, "\r\n %s. \r\n", why);
  return -1;
}

void registerMessage(const SnmpMsgReg& message, Where where) {
  if (SnmpMsgRegister(&message) == 0) return;
  ulogPrintf(gModuleId_Msan, kLogError, "\r\n %s, %s %d, register SNMP command 0x%04X failed. \r\n",
             FunctionName(where).text, fileName(where), where.line, message.msgType);
}

// --- Lists of items: one that fails does not hold up the others ---

void initItems(VoiceItems items) {
  for (const VoiceItem* item : items) initItem(*item);
}

void registerItems(VoiceItems items) {
  for (const VoiceItem* item : items) {
    const ItemMessage& m = item->message;
    registerMessage({item->id, {0, 0}, m.set, m.get, m.mostReply, m.text}, item->at(item->names->registrar));
  }
}

void installItems(VoiceItems items) {
  for (const VoiceItem* item : items) installCommands(item->commands);
}

static void showrunItem(const VoiceItem& item, Vty* vty) {
  if (item.showrunHandle != nullptr) return item.showrunHandle(vty);
  // Of a record that can't be read the line of a zeroed one is printed.
  AnyRecord cfg;
  loadItem(item, cfg);
  item.showrun(vty, cfg);
}

void showrunItems(VoiceItems items, Vty* vty) {
  for (const VoiceItem* item : items) showrunItem(*item, vty);
}
