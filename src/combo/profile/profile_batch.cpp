// Profiles in batches: written, deleted.

#include <cstring>

#include "combo/profile/profile_kind.h"
#include "common/msan_init.h"
#include "platform/log.h"

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

// --- Write ---

static ProfileHead* recordAt(const ProfileKind& kind, ProfileHead* records, u32 i) {
  return reinterpret_cast<ProfileHead*>(reinterpret_cast<u8*>(records) + i * kind.recordSize());
}

// The check of the values, which is left out while the startup configuration runs.
static int checkValues(const ProfileKind& kind, SnmpErrInfo* err, const ProfileHead* record) {
  if (inRecoverConfProcess() == 1 || checkProfile(kind, err, record) == 0) return 0;
  if (err->errDataLen == 0) setProfileDetail(err, record->requestId, record->name);
  return -1;
}

static int checkRecord(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record) {
  if (checkValues(kind, err, record) != 0) return -1;
  if (record->requestId == kAllocateId) return prfIsNameExist(kind.type, record->name) == 0 ? 0 : -1;
  if (record->requestId == kDefaultProfile) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "default prf cann't to be delete or modified!\r\n");
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
  if (readProfileName(kind, name, record->prfId) == 0 && std::memcmp(name, record->name, kProfileNameBytes) != 0) {
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

static int checkOne(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record) {
  if (checkValues(kind, err, record) != 0) return -1;
  if (record->requestId == kDefaultProfile || record->requestId == kAllocateId) return 0;
  if (checkIdLegalExp0(kind, err, record->requestId) != 0) return -1;
  record->prfId = record->requestId;
  record->status = 1;
  return 0;
}

int writeEach(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* records, u16 count) {
  if (err == nullptr || records == nullptr) return -1;
  if (count == kNoCount) return 0;
  if (count > kMostRecords) return -1;
  ModifiedIds modified = {};
  int result = 0;
  for (u32 i = 0; i < count && result == 0; ++i) {
    ProfileHead* record = recordAt(kind, records, i);
    if (checkOne(kind, err, record) != 0) return -1;  // what is stored ahead of it reaches no card yet
    if (record->requestId != kDefaultProfile) result = storeRecord(kind, err, record, modified[i]);
  }
  flushModified(kind, err, modified, count);
  return result;
}

// --- Delete ---

static int checkDelete(const ProfileKind& kind, SnmpErrInfo* err, u16 id) {
  if (checkIdLegalExp0(kind, err, id) != 0) return -1;
  if (!profileExists(kind, id)) return reject(err, kNoSuchProfile, {id});
  char name[sizeof ProfileHead::name];
  if (readProfileName(kind, name, id) != 0) return -1;
  if (isAttached(kind, err, id) == 1) {
    err->errCode = kProfileInUse;
    setProfileDetail(err, id, name);
    return -1;
  }
  return 0;
}

int deleteBatch(const ProfileKind& kind, SnmpErrInfo* err, const u16* ids, u16 count) {
  if (kind.table != nullptr) return kind.table->remove(err, ids, count);
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
