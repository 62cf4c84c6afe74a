// The hooks. A SET of several fragments is collected, a large GET reply is handed out in pieces; what is held
// between two requests stands in the message's row. The agent delivers the fragments of one message one after the
// other.

#include "common/msan_snmp.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "common/debug_control.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "common/wire.h"
#include "platform/log.h"
#include "platform/pool.h"

void buildSnmpErrRetPkt(u8* reply, u32* replyLen, u16 id, const SnmpErrInfo* err) {
  if (reply == nullptr || replyLen == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: Invalid input para!\r\n", __func__);
    return;
  }
  putNumber(reply, 4, 0x41);
  *replyLen = 4;
  if (err == nullptr || err->errCode == 0) return;
  const u32 detail = err->errDataLen <= sizeof err->errData ? err->errDataLen : 0;
  putNumber(reply + 4, 2, 1);
  putNumber(reply + 6, 2, 8 + detail);
  putNumber(reply + 8, 2, id);
  putNumber(reply + 10, 2, err->errCode);
  std::memcpy(reply + 16, err->errData, detail);
  *replyLen = 16 + detail;
}

int answerSuccess(u8* reply, u32* replyLen) {
  putNumber(reply, 4, 1);
  *replyLen = 4;
  return 0;
}

int answerError(u16 id, const SnmpErrInfo& err, u8* reply, u32* replyLen) {
  buildSnmpErrRetPkt(reply, replyLen, id, &err);
  return -1;
}

int reject(SnmpErrInfo* err, int code, std::initializer_list<u16> details) {
  err->errCode = static_cast<u16>(code);
  err->errDataLen = 0;
  for (const u16 detail : details) {
    putNumber(err->errData + err->errDataLen, 2, detail);
    err->errDataLen += 2;
  }
  return -1;
}

int rejectLong(SnmpErrInfo* err, int code, u32 detail) {
  return reject(err, code, {static_cast<u16>(detail >> 16), static_cast<u16>(detail)});
}

namespace {

// A call of a hook: its parameters, and how it ends.
struct Call {
  const char* function;
  u16 id;
  u8* data;
  i32 length;
  u8* reply;
  u32* replyLen;
  void* p7;
  void* p8;
  u32 before = replyLen != nullptr ? *replyLen : 0;  // tells a reply that was written

  void log(const char* what) const { ulogPrintf(gModuleId_Msan, kLogError, "%s: %s\r\n", function, what); }
  void logId(const char* what) const { ulogPrintf(gModuleId_Msan, kLogError, "Snmp msg 0x%x %s\r\n", id, what); }
  void unregistered() const {
    if (debugOn(Area::common)) ulogPrintf(gModuleId_Msan, kLogDebug, "%s: Unregistered msg!\r\n", function);
  }
  void handled(int result) const {
    if (result != 0 && debugOn(Area::common, DebugWord::func, id)) {
      ulogPrintf(gModuleId_Msan, kLogDebug, "Snmp msg 0x%x process failed!\r\n", id);
    }
  }
  void dumpRequest() const {
    if (length > 0 && debugOn(Area::common, DebugWord::buf, id)) {
      ulogTypePkt(gModuleId_Msan, kLogDebug, data, static_cast<u32>(length));
    }
  }
  int end() const {
    if (reply != nullptr && replyLen != nullptr && *replyLen != before && *replyLen <= kMaxPacket &&
        debugOn(Area::common, DebugWord::buf, id)) {
      ulogTypePkt(gModuleId_Msan, kLogDebug, reply, *replyLen);
    }
    return 1;
  }
  // The agent gets a reply for a request that reached no handler.
  int error() const {
    if (reply != nullptr && replyLen != nullptr) buildSnmpErrRetPkt(reply, replyLen, id, nullptr);
    return end();
  }
  int refuse(const char* what) const {
    log(what);
    return error();
  }
  int refuseId(const char* what) const {
    logId(what);
    return error();
  }
};

// Counts one more fragment and appends it. False when there are too many; the fragments before it are dropped.
bool collect(const Call& call, SnmpMsgEntry& row, const char* tooMany) {
  if (++row.fragCount > kMaxFragments) {
    clearSnmpMsgFragInfo(call.id);
    call.log(tooMany);
    return false;
  }
  std::memcpy(row.fragBuf + row.fragLen, call.data, static_cast<u32>(call.length));
  row.fragLen += static_cast<u32>(call.length);
  return true;
}

int lastFragment(const Call& call, SnmpMsgEntry& row) {
  if (row.fragBuf == nullptr) {
    clearSnmpMsgFragInfo(call.id);
    return call.refuseId("buf is null!");
  }
  if (!collect(call, row, "Frag num exceed the limit!!")) return call.error();
  call.handled(row.msgSetMethod(call.id, 1, row.fragBuf, static_cast<i32>(row.fragLen), call.reply, call.replyLen,
                                call.p7, call.p8));
  clearSnmpMsgFragInfo(call.id);
  return call.end();
}

int furtherFragment(const Call& call, SnmpMsgEntry& row) {
  if (row.fragCount > 0 && row.fragBuf == nullptr) {
    clearSnmpMsgFragInfo(call.id);
    return call.refuseId("buf is null!");
  }
  if (row.fragCount == 0) {
    // A reply that was being handed out under this id ends here.
    if (row.fragBuf != nullptr) {
      clearSnmpMsgFragInfo(call.id);
      getSnmpMsgInfo(call.id, &row);
    }
    row.fragBuf = static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, kReassembly, __FILE__, __LINE__));
    if (row.fragBuf == nullptr) return call.refuse("Malloc failed!");
    setSnmpMsgFragInfo(call.id, &row);
  }
  if (!collect(call, row, "Frag num exceed the limit!")) return call.error();
  setSnmpMsgFragInfo(call.id, &row);
  return call.end();
}

// Calls the handler of a large reply and holds what it gave. The hook's result if the request has ended with that.
std::optional<int> beginReply(const Call& call, SnmpMsgEntry& row, u8* last) {
  const u32 capacity = replyRoom(row.maxReplyLen);
  PoolBytes buffer(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, capacity, __FILE__, __LINE__)));
  if (buffer == nullptr) return call.refuse("Malloc failed!");
  std::memset(buffer.get(), 0, capacity);
  u32 length = 0;
  const int failed = row.msgGetMethod(call.id, last, call.data, call.length, buffer.get(), &length, call.p7, call.p8);
  length = std::min(length, capacity);
  if (failed != 0) {
    length = std::min(length, kMaxPacket);
    std::memcpy(call.reply, buffer.get(), length);
    *call.replyLen = length;
    call.handled(failed);
    return call.end();
  }
  row.fragBuf = buffer.release();
  row.fragCursor = row.fragBuf;
  row.fragLen = length;
  row.fragLeft = length;
  setSnmpMsgFragInfo(call.id, &row);
  return std::nullopt;
}

int handOut(const Call& call, SnmpMsgEntry& row, u8* last) {
  if (row.fragBuf == nullptr) {
    if (const auto ended = beginReply(call, row, last)) return *ended;
  }
  if (row.fragCursor == nullptr || row.fragLeft == 0) {
    clearSnmpMsgFragInfo(call.id);
    return call.refuseId("left buf is null!");
  }
  const u32 piece = std::min(row.fragLeft, kMaxPacket);
  std::memcpy(call.reply, row.fragCursor, piece);
  *call.replyLen = piece;
  *last = row.fragLeft <= kMaxPacket ? 1 : 0;
  if (*last == 1) {
    clearSnmpMsgFragInfo(call.id);
  } else {
    row.fragCursor += piece;
    row.fragLeft -= piece;
    setSnmpMsgFragInfo(call.id, &row);
  }
  return call.end();
}

}  // namespace

int snmpSystemWrite(u16 id, u8 lastFlag, u8* data, i32 len, u8* reply, u32* replyLen, void* p7, void* p8) {
  const Call call{__func__, id, data, len, reply, replyLen, p7, p8};
  if (data == nullptr || reply == nullptr || replyLen == nullptr) return call.refuse("Invalid input para!");
  if (len < 0 || static_cast<u32>(len) > kMaxPacket) return call.refuse("Invalid input packet length!");
  if (debugOn(Area::common, DebugWord::func, id)) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: snmp msg 0x%x, lastflag %d. \n\r", __func__, id, lastFlag);
  }
  call.dumpRequest();
  SnmpMsgEntry row;
  if (getSnmpMsgInfo(id, &row) != 0) {
    call.unregistered();
    return 0;
  }
  if (row.msgSetMethod == nullptr) return call.refuseId("SetMethod is null!");
  if (lastFlag != 1) return furtherFragment(call, row);
  if (row.fragCount > 0) return lastFragment(call, row);
  call.handled(row.msgSetMethod(id, lastFlag, data, len, reply, replyLen, p7, p8));
  return call.end();
}

int snmpSystemRead(u16 id, u8* lastFlagOut, u8* data, i32 len, u8* reply, u32* replyLen, void* p7, void* p8) {
  const Call call{__func__, id, data, len, reply, replyLen, p7, p8};
  if (lastFlagOut == nullptr) return call.refuse("Invalid input para!");
  *lastFlagOut = 1;
  // A negative length is no frame: handlers subtract the envelope from it.
  if (data == nullptr || reply == nullptr || replyLen == nullptr || len < 0) return call.refuse("Invalid input para!");
  if (debugOn(Area::common, DebugWord::func, id)) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: get snmp msg 0x%x. \n\r", __func__, id);
  }
  call.dumpRequest();
  SnmpMsgEntry row;
  if (getSnmpMsgInfo(id, &row) != 0) {
    call.unregistered();
    return 0;
  }
  if (row.msgGetMethod == nullptr) return call.refuseId("msgGetMethod is null!");
  if (row.maxReplyLen > kMaxPacket) return handOut(call, row, lastFlagOut);
  call.handled(row.msgGetMethod(id, lastFlagOut, data, len, reply, replyLen, p7, p8));
  *lastFlagOut = 1;
  return call.end();
}
