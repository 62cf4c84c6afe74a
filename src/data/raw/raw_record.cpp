#include "data/raw/raw_record.h"

static constexpr u32 kHeader = 32;

int rejectRaw(u16 id, int code, u8* reply, u32* replyLen) {
  SnmpErrInfo err;
  reject(&err, code);
  return answerError(id, err, reply, replyLen);
}

// The records of a request. 0, or the code that `err` has, too.
static int findRecords(const RawSet& item, WireIn frame, WireIn* records, SnmpErrInfo* err) {
  const u32 count = getNumber(frame.data() + kHeader, item.countBytes);
  if (count > item.most) return reject(err, kRawCount, {static_cast<u16>(count)});
  const WireIn rest = frame.subspan(kHeader + item.countBytes);
  if (rest.size() / item.recordBytes < count) return reject(err, kRawTooShort);
  *records = rest.first(std::size_t{count} * item.recordBytes);
  return 0;
}

static int setAll(const RawSet& item, WireIn records, SnmpErrInfo* err) {
  const u8* const end = records.data() + records.size();
  for (const u8* at = records.data(); item.check != nullptr && at != end; at += item.recordBytes) {
    if (const int code = item.check(at)) return reject(err, code);
  }
  for (const u8* at = records.data(); at != end; at += item.recordBytes) {
    if (item.apply(at) != 0) return reject(err, kRawNotStored);
  }
  if (item.done != nullptr) item.done();
  return 0;
}

// Too short for a count there is no answer.
int setRawRecords(const RawSet& item, const u8* data, i32 length, u8* reply, u32* replyLen) {
  const WireIn frame(data, static_cast<u32>(length));
  if (frame.size() < kHeader + item.countBytes) return -1;
  SnmpErrInfo err;
  WireIn records;
  if (findRecords(item, frame, &records, &err) != 0 || setAll(item, records, &err) != 0) {
    return answerError(item.id, err, reply, replyLen);
  }
  return answerSuccess(reply, replyLen);
}
