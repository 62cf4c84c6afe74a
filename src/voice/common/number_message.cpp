#include "voice/common/number_message.h"

#include <cstring>

static constexpr u32 kArea = 32, kReplyArea = 36;
static constexpr u16 kMostNumber = 2;

int answerCode(const SnmpCall& call, u16 error, int code, Where where) {
  SnmpErrInfo err;
  vSetErrorInfo(error, &code, sizeof code, &err);
  return answerError(call, err, "configuration of message 0x%04X failed", where);
}

int acceptNumber(u16 id, const SnmpCall& call, u16* number, Where where) {
  if (beginRequest(id, call, Asks::orders, where) != 0) return -1;
  SnmpErrInfo err;
  if (call.length < static_cast<i32>(kArea + sizeof *number)) {
    vSetErrorInfo(kTooShort, &call.length, sizeof call.length, &err);
    return answerError(call, err, "invalid SNMP command para", where);
  }
  *number = static_cast<u16>(getNumber(call.data + kArea, 2));
  if (*number <= kMostNumber) return 0;
  vSetErrorInfo(65435, number, sizeof *number, &err);
  return answerError(call, err, "check configuration failed", where);
}

int snmpGetNumber(u16 id, const SnmpCall& call, int (*load)(u16*), Where where) {
  if (beginRequest(id, call, Asks::nothing, where) != 0) return -1;
  u16 number = 0;
  if (const int code = load(&number)) return answerCode(call, kNotRead, code, where);
  std::memset(call.reply + kReplyArea, 0, kNumberReply);
  putNumber(call.reply + kReplyArea, 2, number);
  return answerSuccess(call, kReplyArea + kNumberReply - 4);
}
