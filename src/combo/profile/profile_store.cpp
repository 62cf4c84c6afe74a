// Profiles as such: ids, names, items, and how they stand on the wire and in the running configuration.

#include <cstdio>
#include <cstring>

#include "combo/profile/profile_kind.h"
#include "common/msan_init.h"
#include "platform/log.h"

void offerKind(const void* context, CommandOffers* to) {
  const auto& kind = *static_cast<const ProfileKind*>(context);
  AnyProfile record;
  for (u32 id = 0; id < kind.count(); ++id) {
    const auto one = static_cast<u16>(id);
    if (profileExists(kind, one) && readProfile(kind, &record, one) == 0)
      offer_to_cli(to, one, record.name, static_cast<u32>(strnlen(record.name, kProfileNameBytes)));
  }
}

int registerKind(const ProfileKind& kind) {
  const i16 handle = prfRegNewType(kind.type, static_cast<u16>(kind.count()), 1, kind.shape.itemSize);
  if (handle < 0) return -1;
  kind.type = handle;
  install_offers(kind.word, offerKind, &kind);
  return 0;
}

int checkIdLegal(const ProfileKind& kind, SnmpErrInfo* err, u32 id) {
  if (id <= kind.mostId) return 0;
  if (kind.loggedIds != 0)
    ulogPrintf(gModuleId_Msan, kLogDebug, "prfId = %d,prfId should less than %d!\r\n", static_cast<int>(id),
               kind.loggedIds);
  err->errCode = kIllegalProfileId;
  return -1;
}

int checkIdLegalExp0(const ProfileKind& kind, SnmpErrInfo* err, u32 id) {
  if (checkIdLegal(kind, err, id) != 0) return -1;
  if (id != kDefaultProfile) return 0;
  err->errCode = kDefaultNotAllowed;
  return -1;
}

bool profileExists(const ProfileKind& kind, u16 id) {
  return kind.table != nullptr ? kind.table->exists(id) : prfIsIdUsed(kind.type, storeId(id)) == 1;
}

int readProfileName(const ProfileKind& kind, char* name, u16 id) {
  std::memset(name, 0, sizeof ProfileHead::name);
  u8 capacity = kProfileNameBytes;
  return prfGetNameByPrfId(name, &capacity, kind.type, storeId(id)) == 0 ? 0 : -1;
}

int readProfile(const ProfileKind& kind, ProfileHead* record, u16 id) {
  if (kind.table != nullptr) {
    SnmpErrInfo err;
    return kind.table->read(&err, record, id);
  }
  std::memset(static_cast<void*>(record), 0, sizeof *record);
  if (readProfileName(kind, record->name, id) != 0) return -1;
  record->requestId = record->prfId = id;
  u16 size = kind.shape.itemSize;
  return prfGetItem(itemOf(record), &size, kind.type, storeId(id), 0) == 0 ? 0 : -1;
}

int getProfile(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record, u16 id) {
  if (checkIdLegal(kind, err, id) != 0) return -1;
  return kind.table != nullptr ? kind.table->read(err, record, id) : readProfile(kind, record, id);
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

int checkProfile(const ProfileKind& kind, SnmpErrInfo* err, const ProfileHead* record) {
  if (kind.check != nullptr) return kind.check(err, record);
  return checkFields(kind.shape.fields, itemOf(record), err);
}

void setProfileDetail(SnmpErrInfo* err, u16 id, const char* name) {
  putNumber(err->errData, 2, id);
  std::memcpy(err->errData + 2, name, kProfileNameBytes);
  err->errDataLen = 2 + kProfileNameBytes;
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
  const bool idChecked = !kind.checksIdLast && record->requestId != kAllocateId;
  if (idChecked && checkIdLegal(kind, err, record->requestId) != 0) return -1;
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

static void printItem(const ProfileKind& kind, Vty* vty, const void* item) {
  if (kind.printLines != nullptr) return kind.printLines(vty, item);
  for (const ProfileLine& line : kind.lines) printLine(line, vty, item);
}

int printProfiles(const ProfileKind& kind, Vty* vty) {
  if (kind.texts.printTitle != nullptr) vty_out(vty, "%s", kind.texts.printTitle);
  AnyProfile record;
  for (u32 id = 1; id <= kind.mostId; ++id) {
    if (readProfile(kind, &record, static_cast<u16>(id)) != 0) continue;
    vty_out(vty, "add %s profile %s id %d%s", kind.word, record.name, static_cast<int>(id), "\r\n");
    vty_out(vty, "set %s profile id %d%s", kind.word, static_cast<int>(id), "\r\n");
    printItem(kind, vty, itemOf(&record));
  }
  return 0;
}
