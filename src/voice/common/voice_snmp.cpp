#include "voice/common/voice_snmp.h"

#include <algorithm>
#include <cstring>

#include "common/msan_init.h"
#include "platform/log.h"
#include "voice/common/voice_msc.h"

int nIsSnmpSetParaNull(const u8* data, const u8* reply, const u32* replyLen) {
  return data == nullptr || reply == nullptr || replyLen == nullptr;
}

int nIsSnmpGetParaNull(const u8* lastFlagOut, const u8* reply, const u32* replyLen) {
  return lastFlagOut == nullptr || reply == nullptr || replyLen == nullptr;
}

int nIsSnmpGetParaNullEx(const u8* lastFlagOut, const u8* data, const u8* reply, const u32* replyLen) {
  return data == nullptr || nIsSnmpGetParaNull(lastFlagOut, reply, replyLen);
}

int vCheckSnmpSetCmdPara(const u8* data, const u8* reply, const u32* replyLen) {
  return -nIsSnmpSetParaNull(data, reply, replyLen);
}

int vCheckSnmpOutPara(const u8* lastFlagOut, const u8* reply, const u32* replyLen) {
  return -nIsSnmpGetParaNull(lastFlagOut, reply, replyLen);
}

int vCheckSnmpPara(const u8* lastFlagOut, const u8* data, const u8* reply, const u32* replyLen) {
  return -nIsSnmpGetParaNullEx(lastFlagOut, data, reply, replyLen);
}

// Refuses a request by its length.
static int tooShort(i32 length, SnmpErrInfo* err) {
  vSetErrorInfo(kTooShort, &length, sizeof length, err);
  return -1;
}

// True if `length` bytes hold `head` bytes and `count` units.
static bool holds(i32 length, u32 head, u64 unit, u64 count) {
  return length >= 0 && static_cast<u64>(length) >= head + unit * count;
}

int nCheckSnmpItemsLengthPre(const u8* data, i32 length, u32 itemSize, SnmpErrInfo* err) {
  if (data == nullptr || err == nullptr) {
    trace("SNMP para is NULL");
    return -1;
  }
  if (!holds(length, 36, itemSize, 1)) return tooShort(length, err);
  const u32 count = getNumber(data + 32, 4);
  if (count == 1) return 0;
  vSetErrorInfo(kBadCount, &count, sizeof count, err);
  trace("SNMP items is Not equal to %d", 1);
  return -1;
}

// An area with a count of `width` bytes; 0 for none, which is one unit.
static int checkArea(const u8* data, i32 length, u32 unit, u32 width, u32 minimum, u32 maximum, SnmpErrInfo* err,
                     Where where = Where::here()) {
  if (data == nullptr || err == nullptr) {
    printTrace(where, "SNMP para is NULL");
    return -1;
  }
  u32 count = 1;
  if (width != 0) {
    if (!holds(length, width, 0, 0)) return tooShort(length, err);
    count = getNumber(data, width);
    if (count < minimum || count > maximum) {
      vSetErrorInfo(kBadCount, &count, sizeof count, err);
      printTrace(where, "invalid SNMP items: %d", count);
      return -1;
    }
  }
  return holds(length, width, unit, count) ? 0 : tooShort(length, err);
}

int nCheckSnmpItemsLength(const u8* data, i32 length, u32 unit, u8 countWidth, u32 minimum, u32 maximum,
                          SnmpErrInfo* err) {
  const u32 width = countWidth == 0 || countWidth == 4 ? countWidth : 2;
  return checkArea(data, length, unit, width, minimum, maximum, err);
}

int vCheckSnmpParaItemsLength(const u8* data, i32 length, u32 unit, bool counted, u32 minimum, u32 maximum,
                              SnmpErrInfo* err) {
  return checkArea(data, length, unit, counted ? 4 : 0, minimum, maximum, err);
}

int checkListFrame(const u8* data, i32 length, u32 unit, u32 maximum, WireIn& area, SnmpErrInfo* err) {
  constexpr i32 kEnvelope = 32;
  const i32 rest = std::max(length, 0) - kEnvelope;
  if (rest < 0) return tooShort(rest, err);
  if (vCheckSnmpParaItemsLength(data + kEnvelope, rest, unit, true, 1, maximum, err) != 0) return -1;
  area = WireIn(data + kEnvelope, static_cast<u32>(rest));
  return 0;
}

void nBuildSuccessInfo(u32 payloadLength, u8* reply, u32* replyLen) {
  putNumber(reply, 4, 1);
  *replyLen = payloadLength + 4;
}

void vBuildSuccessInfo(u8* reply, u32* replyLen) { nBuildSuccessInfo(0, reply, replyLen); }

void vBuildErrorInfo(u16 id, const SnmpErrInfo* err, u8* reply, u32* replyLen) {
  buildSnmpErrRetPkt(reply, replyLen, id, err);
}

void vSetErrorInfo(u32 code, const void* value, u16 size, SnmpErrInfo* err) {
  if (err == nullptr) return;
  err->errCode = static_cast<u16>(code);
  err->errDataLen = size;
  if (size == 0) {
    ulogTypePkt(gModuleId_Msan, kLogDebug, err, sizeof *err);
    return;
  }
  if (value == nullptr) return;
  if (size == 2) {
    u16 number;
    std::memcpy(&number, value, sizeof number);
    putNumber(err->errData, 2, number);
  } else if (size == 4) {
    u32 number;
    std::memcpy(&number, value, sizeof number);
    putNumber(err->errData, 4, number);
  } else {
    std::memcpy(err->errData, value, std::min<std::size_t>(size, sizeof err->errData));
  }
}

int checkRecord(Fields fields, const void* record, SnmpErrInfo* err, Where where) {
  u32 value = 0;
  const Field* bad = firstBadField(fields, record, value);
  if (bad == nullptr) return 0;
  vSetErrorInfo(bad->code, bad->at(record), static_cast<u16>(bad->width), err);
  printTrace(where, bad->complaint, value);
  return -1;
}

int nCheckMSCCfmLength(const LIST* confirms, u8 countWidth, u16 unit) {
  if (confirms == nullptr) {
    trace("MSC receive list para is NULL");
    return -1;
  }
  if (unit == 0) {
    trace("invalid item unit length");
    return -1;
  }
  for (const NODE* at = lstFirst(confirms); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    const u32 width = countWidth == 0 || countWidth == 4 ? countWidth : 2;
    const u32 head = sizeof(MscHeader) + width;
    if (node->dataLen < head) {
      trace("the MSC confirm length %d is less than the expected length %d", node->dataLen, head);
      return -1;
    }
    const u32 count = width == 0 ? 1 : getNumber(node->data + sizeof(MscHeader), width);
    if (count == 0) {
      trace("there is no any confirm items");
      return -1;
    }
    const u64 expected = head + u64{unit} * count;
    if (node->dataLen < expected) {
      trace("the MSC confirm length %d is Not equal to the expected length %d", node->dataLen,
            static_cast<u32>(expected));
      return -1;
    }
  }
  return 0;
}

// The payload of the first confirm, behind its envelope; false when there is none.
static bool firstPayload(const LIST* confirms, WireIn& payload) {
  const auto* node = static_cast<const DataNode*>(lstFirst(confirms));
  if (node == nullptr || node->dataLen < sizeof(MscHeader)) return false;
  payload = WireIn(node->data, node->dataLen).subspan(sizeof(MscHeader));
  return true;
}

// Sets the length of a reply that fitted.
static int finish(const Writer& writer, u32* replyLen, Where where = Where::here()) {
  if (writer.failed()) {
    printTrace(where, "the confirm does not fit the reply");
    return -1;
  }
  *replyLen = writer.length();
  return 0;
}

int nBuildSnmpCfmPacket(const LIST* confirms, u32 gap, u8* reply, u32* replyLen) {
  WireIn payload;
  if (!firstPayload(confirms, payload)) {
    trace("there is no confirm");
    return -1;
  }
  Writer writer(WireOut(reply, kMaxPacket));
  writer.number(4, 1);
  writer.skip(gap);
  writer.bytes(payload);
  return finish(writer, replyLen);
}

int nBuildSnmpCfmPacketEx(const LIST* confirms, u32 unit, u32 gap, u8* reply, u32* replyLen) {
  WireIn payload;
  if (!firstPayload(confirms, payload) || payload.size() < 4) {
    trace("there is no confirm");
    return -1;
  }
  const u32 count = getNumber(payload.data(), 4);
  if (unit == 0 || payload.size() - 4 < u64{unit} * count) {
    trace("the confirm holds less than its %d items", count);
    return -1;
  }
  Writer writer(WireOut(reply, kMaxPacket));
  writer.number(4, count);
  for (u32 i = 0; i < count; ++i) {
    writer.bytes(payload.subspan(4 + std::size_t{i} * unit, unit));
    writer.skip(gap);
  }
  return finish(writer, replyLen);
}

int vBuildSnmpCfmPacketS(const LIST* confirms, u8 countWidth, u8* reply, u32* replyLen) {
  WireIn payload;
  if (!firstPayload(confirms, payload) || (countWidth != 0 && payload.size() < 2)) {
    trace("there is no confirm");
    return -1;
  }
  Writer writer(WireOut(reply, kMaxPacket));
  if (countWidth != 0) {
    writer.number(4, getNumber(payload.data(), 2));
    payload = payload.subspan(2);
  }
  writer.bytes(payload);
  return finish(writer, replyLen);
}
