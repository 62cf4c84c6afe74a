// Profiles as such: ids, the store, batches, the wire.

#include <cstdio>
#include <cstring>

#include "combo/profile_kind.h"
#include "common/msan_init.h"
#include "platform/command_line.h"
#include "platform/log.h"

static i16 storeId(u16 id) { return static_cast<i16>(id); }

int registerKind(const ProfileKind& kind) {
  const i16 handle = prfRegNewType(kind.type, static_cast<u16>(kind.count()), 1, kind.shape.itemSize);
  if (handle < 0) return -1;
  kind.type = handle;
  return 0;
}

void fillDefaults(const ProfileKind& kind, ProfileHead* record) {
  std::memset(static_cast<void*>(record), 0, sizeof *record);
  record->status = 1;
  std::strncpy(record->name, kind.defaultName, sizeof record->name - 1);
  resetItem(kind.shape, itemOf(record));
  if (kind.setDefaults != nullptr) kind.setDefaults(itemOf(record));
}

int createDefault(const ProfileKind& kind) {
  const PoolBytes memory(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, kind.recordSize(), __FILE__, __LINE__)));
  if (memory == nullptr) return -1;
  auto* record = reinterpret_cast<ProfileHead*>(memory.get());
  fillDefaults(kind, record);
  record->requestId = kAllocateId;
  SnmpErrInfo err;
  return kind.write(kind, &err, record, 1);
}

int checkIdLegal(const ProfileKind& kind, SnmpErrInfo* err, u32 id) {
  if (id <= kind.mostId) return 0;
  err->errCode = kIllegalProfileId;
  return -1;
}

int checkIdLegalExp0(const ProfileKind& kind, SnmpErrInfo* err, u32 id) {
  if (checkIdLegal(kind, err, id) != 0) return -1;
  if (id != kDefaultProfile) return 0;
  err->errCode = kDefaultNotAllowed;
  return -1;
}

bool profileExists(const ProfileKind& kind, u16 id) { return prfIsIdUsed(kind.type, storeId(id)) == 1; }

// Copies the name into a field that holds 23 bytes.
static int readName(const ProfileKind& kind, char* name, u16 id) {
  std::memset(name, 0, sizeof ProfileHead::name);
  u8 capacity = kProfileNameBytes;
  return prfGetNameByPrfId(name, &capacity, kind.type, storeId(id)) == 0 ? 0 : -1;
}

int readProfile(const ProfileKind& kind, ProfileHead* record, u16 id) {
  std::memset(static_cast<void*>(record), 0, sizeof *record);
  if (readName(kind, record->name, id) != 0) return -1;
  record->requestId = record->prfId = id;
  u16 size = kind.shape.itemSize;
  return prfGetItem(itemOf(record), &size, kind.type, storeId(id), 0) == 0 ? 0 : -1;
}

int getProfile(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record, u16 id) {
  return checkIdLegal(kind, err, id) == 0 ? readProfile(kind, record, id) : -1;
}

int idByName(const ProfileKind& kind, const char* name, u16* id) {
  if (name == nullptr || id == nullptr) return -1;
  const i16 found = prfGetPrfIdByName(kind.type, name);
  if (found < 0) return -1;
  *id = static_cast<u16>(found);
  return 0;
}

int storeProfile(const ProfileKind& kind, const ProfileHead* record) {
  return prfModifyItem(kind.type, storeId(record->prfId), 0, itemOf(record), kind.shape.itemSize) == 0 ? 0 : -1;
}

int selectProfile(const ProfileKind& kind, u16 id) {
  if (!profileExists(kind, id)) return -1;
  kind.selected = storeId(id);
  return 0;
}

int readSelected(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record) {
  if (kind.selected <= 0) {
    std::printf("\r\nThere's no profile can be modified!\r");
    return -1;
  }
  return getProfile(kind, err, record, static_cast<u16>(kind.selected));
}

void setProfileDetail(SnmpErrInfo* err, u16 id, const char* name) {
  putNumber(err->errData, 2, id);
  std::memcpy(err->errData + 2, name, kProfileNameBytes);
  err->errDataLen = 2 + kProfileNameBytes;
}

// --- Write ---

static ProfileHead* recordAt(const ProfileKind& kind, ProfileHead* records, u32 i) {
  return reinterpret_cast<ProfileHead*>(reinterpret_cast<u8*>(records) + i * kind.recordSize());
}

// The check of the values, which is left out while the startup configuration runs.
static int checkValues(const ProfileKind& kind, SnmpErrInfo* err, const ProfileHead* record) {
  if (inRecoverConfProcess() == 1 || kind.check(err, record) == 0) return 0;
  if (err->errDataLen == 0) setProfileDetail(err, record->requestId, record->name);
  return -1;
}

static int checkRecord(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record) {
  if (checkValues(kind, err, record) != 0) return -1;
  if (record->requestId == kAllocateId) return prfIsNameExist(kind.type, record->name) == 0 ? 0 : -1;
  if (record->requestId == kDefaultProfile) {
    ulogPrintf(gModuleId_Msan, 10, "default prf cann't to be delete or modified!\r\n");
    return 0;
  }
  if (checkIdLegalExp0(kind, err, record->requestId) != 0) return -1;
  if (!profileExists(kind, record->requestId) && prfIsNameExist(kind.type, record->name) != 0) return -1;
  record->prfId = record->requestId;
  record->status = 1;
  return 0;
}

static int addProfile(const ProfileKind& kind, const ProfileHead* record) {
  if (prfCreate(kind.type, record->name, storeId(record->prfId)) < 0) return -1;
  return prfAddItem(kind.type, storeId(record->prfId), 0, itemOf(record), kind.shape.itemSize) < 0 ? -1 : 0;
}

// Stores one record; `modified` is set to its id if there was such a profile.
static int storeRecord(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record, u16& modified) {
  if (record->requestId == kAllocateId) {
    const i16 id = prfGetFreeId(kind.type);
    if (id < 0) {
      err->errCode = kNoFreeProfileId;
      return -1;
    }
    record->prfId = static_cast<u16>(id);
    record->status = 1;
  }
  if (!profileExists(kind, record->prfId)) return addProfile(kind, record);
  char name[sizeof record->name];
  if (readName(kind, name, record->prfId) == 0 && std::memcmp(name, record->name, kProfileNameBytes) != 0) {
    prfNameModify(kind.type, record->name, storeId(record->prfId));
  }
  if (storeProfile(kind, record) != 0) return -1;
  modified = record->prfId;
  return 0;
}

static constexpr u32 kMostRecords = 1025;
using ModifiedIds = u16[kMostRecords];  // 0: none

// What was stored goes to the ports also when something behind it failed.
static void flushModified(const ProfileKind& kind, SnmpErrInfo* err, const ModifiedIds& ids, u32 count) {
  for (u32 i = 0; i < count; ++i) {
    if (ids[i] != 0) flushProfile(kind, err, ids[i]);
  }
}

int writeBatch(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* records, u16 count) {
  if (err == nullptr || records == nullptr) return -1;
  if (count == kNoCount) return 0;
  if (count > kMostRecords) return -1;
  for (u32 i = 0; i < count; ++i) {
    if (checkRecord(kind, err, recordAt(kind, records, i)) != 0) return -1;
  }
  ModifiedIds modified = {};
  int result = 0;
  for (u32 i = 0; i < count && result == 0; ++i) {
    ProfileHead* record = recordAt(kind, records, i);
    if (record->requestId != kDefaultProfile) result = storeRecord(kind, err, record, modified[i]);
  }
  flushModified(kind, err, modified, count);
  return result;
}

static int writeOne(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record, u16& modified) {
  if (checkValues(kind, err, record) != 0) return -1;
  if (record->requestId == kDefaultProfile) return 0;
  if (record->requestId != kAllocateId) {
    if (checkIdLegalExp0(kind, err, record->requestId) != 0) return -1;
    record->prfId = record->requestId;
    record->status = 1;
  }
  return storeRecord(kind, err, record, modified);
}

int writeEach(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* records, u16 count) {
  if (err == nullptr || records == nullptr) return -1;
  if (count == kNoCount) return 0;
  if (count > kMostRecords) return -1;
  ModifiedIds modified = {};
  int result = 0;
  for (u32 i = 0; i < count && result == 0; ++i) {
    result = writeOne(kind, err, recordAt(kind, records, i), modified[i]);
  }
  flushModified(kind, err, modified, count);
  return result;
}

// --- Delete ---

static int checkDelete(const ProfileKind& kind, SnmpErrInfo* err, u16 id) {
  if (checkIdLegalExp0(kind, err, id) != 0) return -1;
  if (!profileExists(kind, id)) {
    err->errCode = kNoSuchProfile;
    putNumber(err->errData, 2, id);
    err->errDataLen = 2;
    return -1;
  }
  char name[sizeof ProfileHead::name];
  if (readName(kind, name, id) != 0) return -1;
  if (isAttached(kind, err, id) == 1) {
    err->errCode = kProfileInUse;
    setProfileDetail(err, id, name);
    return -1;
  }
  return 0;
}

int deleteBatch(const ProfileKind& kind, SnmpErrInfo* err, const u16* ids, u16 count) {
  if (count == kNoCount) return 0;
  if (err == nullptr || ids == nullptr) return -1;
  for (u32 i = 0; i < count; ++i) {
    if (checkDelete(kind, err, ids[i]) != 0) return -1;
  }
  for (u32 i = 0; i < count; ++i) {
    if (prfDel(kind.type, storeId(ids[i])) != 0) return -1;
  }
  return 0;
}

// --- Wire ---

void encodeProfile(const ProfileKind& kind, const ProfileHead* record, Writer& to) {
  to.number(2, record->prfId);
  to.bytes({reinterpret_cast<const u8*>(record->name), kProfileNameBytes});
  to.zeros(kind.shape.headGap);
  encodeBody(kind.shape, itemOf(record), to);
}

int decodeProfile(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record, u32* length, WireIn wire) {
  std::memset(static_cast<void*>(record), 0, sizeof *record);
  Reader from(wire);
  record->requestId = static_cast<u16>(from.number(2));
  if (record->requestId != kAllocateId && checkIdLegal(kind, err, record->requestId) != 0) return -1;
  from.bytes(record->name, kProfileNameBytes);
  from.skip(kind.shape.headGap);
  if (decodeBody(kind.shape, from, itemOf(record), err) != 0) {
    setProfileDetail(err, record->requestId, record->name);
    return -1;
  }
  if (from.failed()) {
    err->errCode = kRequestTooShort;
    return -1;
  }
  *length = from.length();
  return 0;
}

int encodeAll(const ProfileKind& kind, Writer& to) {
  u8 count[2];
  u32 profiles = 0;
  Writer number = to;  // the count's place
  to.zeros(sizeof count);
  AnyProfile record;
  for (u32 id = 0; id <= kind.mostId; ++id) {
    if (readProfile(kind, &record, static_cast<u16>(id)) != 0) continue;
    encodeProfile(kind, &record, to);
    ++profiles;
  }
  number.number(sizeof count, profiles);
  return to.failed() ? -1 : 0;
}

int printProfiles(const ProfileKind& kind, Vty* vty) {
  AnyProfile record;
  for (u32 id = 1; id <= kind.mostId; ++id) {
    if (readProfile(kind, &record, static_cast<u16>(id)) != 0) continue;
    vty_out(vty, "add %s profile %s id %d%s", kind.word, record.name, static_cast<int>(id), "\r\n");
    vty_out(vty, "set %s profile id %d%s", kind.word, static_cast<int>(id), "\r\n");
    kind.printLines(vty, itemOf(&record));
  }
  return 0;
}
