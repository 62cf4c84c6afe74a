#pragma once
// Messages that carry one number of the whole node: u16 at 32 of a request, without a count, and at 36 of a GET's
// reply.

#include "voice/common/voice_item.h"

inline constexpr u32 kNumberReply = 66;  // bytes of the unit in a reply

// A number from 0 to 2. 0, or the answered failure.
int acceptNumber(u16 id, const SnmpCall& call, u16* number, Where where);
int snmpGetNumber(u16 id, const SnmpCall& call, int (*load)(u16* number), Where where = Where::here());
// An error with a function's code in four bytes; -1.
int answerCode(const SnmpCall& call, u16 error, int code, Where where);
