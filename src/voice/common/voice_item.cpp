#include "voice/common/voice_item.h"

#include <cstdio>

#include "common/memory.h"
#include "common/msan_init.h"
#include "platform/database.h"
#include "platform/log.h"
#include "platform/wrappers.h"
#include "voice/common/voice_msc.h"

// Where a global item's frame has what: the object label stands at 36, its last four bytes are overwritten and
// forwarded ahead of the configuration area.
static constexpr u32 kLabelAt = 36;
static constexpr u32 kReplyArea = 36;  // of a GET's reply: what stood at 32 in a request
static constexpr u16 kNodeSlot = 9;    // reported for items of the whole node
static constexpr u16 kSendSlot = 18;   // for the trace lines of a message to the NGN side
enum Origin { kSnmp = 1, kCommand = 3 };

static int isNull(Where where) {
  printTrace(where, "configuration para is NULL");
  return -1;
}

// --- Steps ---

int parseUnit(const Record& shape, WireIn unit, void* cfg, u32* length, Where where) {
  if (unit.data() == nullptr || cfg == nullptr || length == nullptr) return isNull(where);
  if (unit.size() < shape.unit) {
    printTrace(where, "invalid item unit length");
    return -1;
  }
  parseRecord(shape.fields, unit.data(), cfg);
  *length = shape.unit;
  return 0;
}

int encodeUnit(const Record& shape, const void* cfg, WireOut unit, u32* length, Where where) {
  if (unit.data() == nullptr || cfg == nullptr || length == nullptr) return isNull(where);
  if (unit.size() < shape.unit) {
    printTrace(where, "invalid item unit length");
    return -1;
  }
  encodeRecord(shape.fields, cfg, unit.data());
  *length = shape.unit;
  return 0;
}

int checkFields(Fields fields, const void* cfg, SnmpErrInfo* err, Where where) {
  if (cfg == nullptr || err == nullptr) return isNull(where);
  return checkRecord(fields, cfg, err, where);
}

int parseUnits(const VoiceItem& item, WireIn area, u32* count, LIST* list, Where where) {
  if (area.data() == nullptr || count == nullptr || list == nullptr) return isNull(where);
  if (area.size() < item.countWidth) {
    printTrace(where, "invalid item unit length");
    return -1;
  }
  *count = item.countWidth != 0 ? getNumber(area.data(), item.countWidth) : 1;
  if (*count == 0) return 0;
  if (*count > item.maximum || vCreateDataNode(list, static_cast<i32>(*count), item.recordBytes) != 0) return -1;
  WireIn rest = area.subspan(item.countWidth);
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    u32 length = 0;
    if (item.parse(rest, recordOf<void>(at), &length) != 0) return -1;
    rest = rest.subspan(length);
  }
  return 0;
}

int checkUnits(const VoiceItem& item, LIST* list, SnmpErrInfo* err, Where where) {
  if (list == nullptr || err == nullptr) return isNull(where);
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    if (item.check(recordOf<void>(at), err) != 0) return -1;
  }
  return 0;
}

int setUnits(const VoiceItem& item, LIST* list, Where where) {
  if (list == nullptr) return isNull(where);
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    if (item.set(recordOf<void>(at)) != 0) return -1;
  }
  return 0;
}

int getUnit(const VoiceItem& item, LIST* list, Where where) {
  if (list == nullptr) return isNull(where);
  if (vCreateDataNode(list, 1, item.recordBytes) != 0) return -1;
  return item.get(recordOf<void>(lstLast(list))) == 0 ? 0 : -1;
}

int encodeArea(const VoiceItem& item, LIST* list, WireOut buffer, u32* length, Where where) {
  if (list == nullptr || buffer.data() == nullptr || length == nullptr) return isNull(where);
  Writer head(buffer);
  if (item.countWidth != 0) head.number(item.countWidth, static_cast<u32>(lstCount(list)));
  if (head.failed()) return -1;
  u32 at = head.length();
  for (NODE* node = lstFirst(list); node != nullptr; node = lstNext(node)) {
    u32 unit = 0;
    if (item.encode(recordOf<void>(node), buffer.subspan(at), &unit) != 0) return -1;
    at += unit;
  }
  *length = at;
  return 0;
}

int encodeUnits(const VoiceItem& item, LIST* list, WireOut buffer, u32* length, Where where) {
  if (buffer.data() == nullptr || length == nullptr) return isNull(where);
  Writer head(buffer);
  head.number(4, 1);
  head.skip(item.label);
  if (head.failed() || encodeArea(item, list, buffer.subspan(head.length()), length, where) != 0) return -1;
  *length += head.length();
  return 0;
}

// --- Roads ---

static void dump(const u8* packet, u32 length) { ulogTypePkt(gModuleId_Msan, 10, packet, length); }

int answerError(const SnmpCall& call, const SnmpErrInfo& err, const char* why, Where where) {
  buildSnmpErrRetPkt(call.reply, call.replyLen, call.id, &err);
  dump(call.reply, 32);
  printTrace(where, why);
  return -1;
}

int answerFailed(const SnmpCall& call, const char* why, Where where) {
  SnmpErrInfo err;
  vSetErrorInfo(kStepFailed, nullptr, 0, &err);
  return answerError(call, err, why, where);
}

int answerSuccess(const SnmpCall& call, u32 payload) {
  nBuildSuccessInfo(payload, call.reply, call.replyLen);
  dump(call.reply, *call.replyLen);
  return 0;
}

// The head of a SET: what every one of them is asked first. 0 or -1, without a reply.
static int beginSet(const VoiceItem& item, const SnmpCall& call, Where where) {
  if (call.id != item.id) {
    printTrace(where, "invalid SNMP command ID: 0x%04X", call.id);
    return -1;
  }
  if (nIsSnmpSetParaNull(call.data, call.reply, call.replyLen)) {
    printTrace(where, "SNMP para is NULL");
    return -1;
  }
  if (call.length > 0) dump(call.data, static_cast<u32>(call.length));
  return 0;
}

// Frame, parse and check of a SET's configuration area. 0, or the answered failure.
static int acceptSet(const VoiceItem& item, const SnmpCall& call, LIST* list, Where where) {
  SnmpErrInfo err;
  const u32 at = kLabelAt + item.label;
  const i32 rest = call.length - static_cast<i32>(at);
  if (nCheckSnmpItemsLengthPre(call.data, call.length, item.label, &err, where) != 0 ||
      nCheckSnmpItemsLength(call.data + at, rest, item.shape->unit, static_cast<u8>(item.countWidth), item.minimum,
                            item.maximum, &err, where) != 0) {
    return answerError(call, err, "invalid SNMP command para", where);
  }
  u32 units = 0;
  const WireIn area(call.data + at, static_cast<u32>(rest));
  if (item.parseHandle(area, &units, list) != 0) return answerFailed(call, "parse configuration failed", where);
  if (item.checkHandle(list, &err) != 0) return answerError(call, err, "check configuration failed", where);
  return 0;
}

// Sends the request's own bytes from the end of its label on, reserved ones included: no copy of it is encoded again.
// The last four of the label become 00 00 00 01. 0, or -1 if the message could not be built.
static int forwardSet(const VoiceItem& item, const SnmpCall& call, u32 units) {
  u8* forward = call.data + kLabelAt + item.label - 4;
  putNumber(forward, 4, 1);
  DataList sends;
  if (vBuildMscPacketI(kSendSlot, item.id, 0, forward, 4 + item.countWidth + units * item.shape->unit, sends) != 0) {
    return -1;
  }
  vSendMscPacketI(sends);
  return 0;
}

int snmpSet(const VoiceItem& item, const SnmpCall& call, Where where) {
  if (beginSet(item, call, where) != 0) return -1;
  u32 units = 0;
  {
    DataList list;
    if (acceptSet(item, call, list, where) != 0) return -1;
    if (item.setHandle(list) != 0) return answerFailed(call, "set configuration failed", where);
    units = static_cast<u32>(lstCount(list));
  }
  if (forwardSet(item, call, units) != 0) {
    answerSuccess(call, 0);
    printTrace(where, "build MSC msg 0x%04X failed", item.id);
    return 0;
  }
  answerSuccess(call, 0);
  trigger_obj_crc(kNodeSlot, 0, 0, item.id, kSnmp);
  return 0;
}

int snmpOrder(const VoiceItem& item, const SnmpCall& call, Where where) {
  if (beginSet(item, call, where) != 0) return -1;
  u32 units = 0;
  {
    DataList list;
    if (acceptSet(item, call, list, where) != 0) return -1;
    units = static_cast<u32>(lstCount(list));
  }
  if (forwardSet(item, call, units) != 0) return answerFailed(call, "build MSC msg failed", where);
  return answerSuccess(call, 0);
}

int snmpGet(const VoiceItem& item, const SnmpCall& call, Where where) {
  if (call.id != item.id) {
    printTrace(where, "invalid SNMP command ID: 0x%04X", call.id);
    return -1;
  }
  if (nIsSnmpGetParaNull(call.lastFlagOut, call.reply, call.replyLen)) {
    printTrace(where, "SNMP para is NULL");
    return -1;
  }
  DataList list;
  if (item.getHandle(list) != 0) return answerFailed(call, "get configuration failed", where);
  u32 length = 0;
  const WireOut buffer(call.reply + kReplyArea, kMaxPacket - kReplyArea);
  if (item.encodeHandle(list, buffer, &length) != 0) {
    return answerFailed(call, "SNMP confirm encode failed", where);
  }
  *call.lastFlagOut = 1;
  return answerSuccess(call, length + 32);
}

u16 encodeAndSend(const VoiceItem& item, const void* from, EncodeStep encode, u32 bytes, Where where) {
  u8* memory = nullptr;
  if (vMemAlloc(&memory, static_cast<i32>(4 + bytes)) != 0) {
    printTrace(where, "malloc for %s configuration encode buffer failed", item.words);
    return kEncodeFailed;
  }
  const PoolBytes owner(memory);
  u32 length = 0;
  if (encode(from, WireOut(memory, 4 + bytes).subspan(4), &length) != 0) {
    printTrace(where, "encode %s configuration failed", item.words);
    return kEncodeFailed;
  }
  putNumber(memory, 4, 1);
  DataList sends;
  if (vBuildMscPacketI(kSendSlot, item.id, 0, memory, length + 4, sends) != 0) {
    printTrace(where, "build MSC message 0x%04X failed", item.id);
    return kBuildFailed;
  }
  vSendMscPacketI(sends);
  return 0;
}

int storeAndSend(const VoiceItem& item, const void* cfg, SnmpErrInfo* err, Where where) {
  if (cfg == nullptr || err == nullptr) return isNull(where);
  if (inRecoverConfProcess() != 1 && item.check(cfg, err) != 0) return -1;
  if (item.set(cfg) != 0) {
    vSetErrorInfo(kNotStored, nullptr, 0, err);
    printTrace(where, "set %s configuration failed", item.words);
    return -1;
  }
  if (const u16 code = encodeAndSend(item, cfg, item.encode, item.shape->unit, where))
    vSetErrorInfo(code, nullptr, 0, err);
  return 0;
}

int sendRecord(const VoiceItem& item, void* cfg, Where where) {
  if (item.get(cfg) != 0) {
    printTrace(where, "get %s configuration failed", item.words);
    return -1;
  }
  return encodeAndSend(item, cfg, item.encode, item.shape->unit, where) == 0 ? 0 : -1;
}

int eraseItem(const VoiceItem& item, Where where) {
  if (item.init() != 0) return -1;
  if (item.distribute() == 0) return 0;
  printTrace(where, "distribute %s configuration failed", item.words);
  return -1;
}

int initRecord(const VoiceItem& item, void* cfg, Where where) {
  resetRecord(item.shape->fields, cfg);
  const int result = item.set(cfg);
  if (result == 0) return 0;
  printTrace(where, "%s error iRet = %d", item.setName, result);
  return -1;
}

int finishSet(Vty* vty, const VoiceItem& item, const char* done, int result, const SnmpErrInfo& err) {
  const int code = static_cast<i16>(err.errCode);
  vty_out(vty, "\r\n %s %s(%d). \r\n", done, result == -1 ? "failed" : "successfully", code);
  if (result == -1) return -1;
  trigger_obj_crc(kNodeSlot, 0, 0, item.id, kCommand);
  return 0;
}

int finishSet(Vty* vty, const VoiceItem& item, int result, const SnmpErrInfo& err) {
  char done[80];
  std::snprintf(done, sizeof done, "set %s configuration", item.words);
  return finishSet(vty, item, done, result, err);
}

int cliDistributeErase(const VoiceItem& item, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  int result = 0;
  if (bep_StrCmp(argv[0], "distribute") == 0) {
    result = item.distribute();
  } else if (bep_StrCmp(argv[0], "erase") == 0) {
    result = item.erase();
  } else {
    return refuse(vty, "invalid configuration operation");
  }
  if (result != 0) {
    vty_out(vty, "\r\n %s %s configuration failed. \r\n", argv[0], item.viewWords);
    return -1;
  }
  vty_out(vty, "\r\n %s %s configuration successfully. \r\n", argv[0], item.viewWords);
  trigger_obj_crc(kNodeSlot, 0, 0, item.id, kCommand);
  return 0;
}

int finishShow(Vty* vty, const VoiceItem& item, int result) {
  vty_out(vty, "\r\n get %s configuration %s. \r\n", item.viewWords, result == 0 ? "successfully" : "failed");
  return result == 0 ? 0 : -1;
}

int refuse(Vty* vty, const char* why) {
  vty_out(vty, "\r\n %s. \r\n", why);
  return -1;
}

int registerMessage(const SnmpMsgReg& message, Where where) {
  if (SnmpMsgRegister(&message) == 0) return 0;
  ulogPrintf(gModuleId_Msan, 13, "\r\n %s, %s %d, register SNMP command 0x%04X failed. \r\n", where.function,
             fileName(where), where.line, message.msgType);
  return -1;
}
