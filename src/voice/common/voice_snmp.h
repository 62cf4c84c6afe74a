#pragma once
// The frames of SNMP requests and replies as handlers read and write them. Numbers are big-endian.
//
// Request: 32 bytes of envelope, u32 number of items at 32, items from 36 on. A global item has one item: a label of 22
// bytes, the last four of which are overwritten before the frame is forwarded from there, then its configuration area.
// Reply of a GET: 00 00 00 01, the envelope, and the request's layout from 32 on.

#include "common/msan_snmp.h"
#include "common/record.h"
#include "common/trace.h"
#include "common/wire.h"
#include "platform/lists.h"
#include "platform/types.h"

// Error codes of voice items, printed as signed 16-bit numbers.
enum VoiceError : u16 {
  kBadCount = 65535,      // item count outside its limits
  kTooShort = 65518,      // request shorter than its fields require
  kEncodeFailed = 65436,  // no buffer, or encoding failed
  kBuildFailed = 65433,   // the message could not be built
  kSendFailed = 65432,
  kParseFailed = 65430,  // of a confirm
  kNotStored = 65429,
  kNotRead = 65428,
  kStepFailed = 65426,  // a step of the handler failed
};

// 1 if one is null, else 0.
int nIsSnmpSetParaNull(const u8* data, const u8* reply, const u32* replyLen);
int nIsSnmpGetParaNull(const u8* lastFlagOut, const u8* reply, const u32* replyLen);
int nIsSnmpGetParaNullEx(const u8* lastFlagOut, const u8* data, const u8* reply, const u32* replyLen);
// The same with -1 and 0.
int vCheckSnmpSetCmdPara(const u8* data, const u8* reply, const u32* replyLen);
int vCheckSnmpOutPara(const u8* lastFlagOut, const u8* reply, const u32* replyLen);
int vCheckSnmpPara(const u8* lastFlagOut, const u8* data, const u8* reply, const u32* replyLen);

// The frame holds its head and one item of `itemSize` bytes, and counts one item.
int nCheckSnmpItemsLengthPre(const u8* data, i32 length, u32 itemSize, SnmpErrInfo* err);

// A configuration area: a count of `countWidth` bytes (0: none, one unit) within the limits, and that many units.
int nCheckSnmpItemsLength(const u8* data, i32 length, u32 unit, u8 countWidth, u32 minimum, u32 maximum,
                          SnmpErrInfo* err);
// The same with a 4-byte count when `counted`; without it one unit.
int vCheckSnmpParaItemsLength(const u8* data, i32 length, u32 unit, bool counted, u32 minimum, u32 maximum,
                              SnmpErrInfo* err);

// The frame of a list: behind the envelope a u32 count of 1 to `maximum`, and that many units. `area` begins at the
// count. 0 or -1; the length that is told is the one behind the envelope.
int checkListFrame(const u8* data, i32 length, u32 unit, u32 maximum, WireIn& area, SnmpErrInfo* err);

// 00 00 00 01 and the reply's length: the payload's with these four bytes.
void nBuildSuccessInfo(u32 payloadLength, u8* reply, u32* replyLen);
void vBuildSuccessInfo(u8* reply, u32* replyLen);
void vBuildErrorInfo(u16 id, const SnmpErrInfo* err, u8* reply, u32* replyLen);

// Fills the record: a value of 1, 2 or 4 bytes becomes big-endian, any other size goes as it is; size 0 is no detail.
// More than the record's 50 bytes are cut, while their number stays; a null value leaves the detail as it was.
void vSetErrorInfo(u32 code, const void* value, u16 size, SnmpErrInfo* err);
inline void vSetErrorInfo(u32 code, SnmpErrInfo* err) { vSetErrorInfo(code, nullptr, 0, err); }

// Range check of a record: the first field outside its ranges fills `err` with its code and value, and is traced. 0 or
// -1.
int checkRecord(Fields fields, const void* record, SnmpErrInfo* err, Where where = Where::here());

// Confirms from cards, each with an envelope of 32 bytes ahead: a count of `countWidth` bytes (0: none) and the units
// are there in each of the list.
int nCheckMSCCfmLength(const LIST* confirms, u8 countWidth, u16 unit);
// Reply from the first confirm: 00 00 00 01, a gap, the payload.
int nBuildSnmpCfmPacket(const LIST* confirms, u32 gap, u8* reply, u32* replyLen);
// Reply from the first confirm: its u32 count, then each unit with a gap behind it.
int nBuildSnmpCfmPacketEx(const LIST* confirms, u32 unit, u32 gap, u8* reply, u32* replyLen);
// Reply from the first confirm: its payload; with a count, the 2-byte count as 4 bytes and the rest.
int vBuildSnmpCfmPacketS(const LIST* confirms, u8 countWidth, u8* reply, u32* replyLen);
