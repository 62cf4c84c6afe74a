// The tables of the alarm profiles and of the ports that use them. Both are written on any control card.

#include <cstring>

#include "common/store.h"
#include "platform/tables.h"
#include "voice/alarm/alarm_attach.h"
#include "voice/alarm/ngn_alarm_prof.h"

// The field `fixed`: what is stored of a profile.
struct AlarmColumns {
  u16 id = 0;
  u16 flags = 0;
  char name[kProfileNameBytes] = {};
  u32 thresholds[kThresholds] = {};
};
static_assert(sizeof(AlarmColumns) == 72);

static constexpr WholeTable<AlarmPrfInfo, AlarmColumns> profiles{
    "AlarmPrfInfo",
    "idTreeIdx",
    [](mco_trans_h transaction, u32 id, AlarmPrfInfo* row) {
      return AlarmPrfInfo_idTreeIdx_find(transaction, static_cast<u16>(id), row);
    },
    AlarmPrfInfo_new,
    [](AlarmPrfInfo* row, const AlarmColumns* columns) {
      return AlarmPrfInfo_fixed_put(row, columns, sizeof *columns);
    },
    [](AlarmPrfInfo* row, AlarmColumns* columns) { return AlarmPrfInfo_fixed_get(row, columns, sizeof *columns); },
    AlarmPrfInfo_delete};

static int storeProfileRow(const AlarmPrfRecord& record, Where where = Where::here()) {
  AlarmColumns columns{.id = record.prfId};
  std::memcpy(&columns.flags, record.reserved, sizeof columns.flags);
  std::memcpy(columns.name, record.name, sizeof columns.name);
  std::memcpy(columns.thresholds, &record.item, sizeof columns.thresholds);
  return storeWhole(profiles, record.prfId, columns, where);
}

int get_alarm_profile_attribute(u16 id, AlarmPrfRecord* record) {
  if (record == nullptr || id > kAlarmProfiles) return -1;
  AlarmColumns columns;
  if (const int code = loadWhole(profiles, id, columns)) return code;
  std::memset(static_cast<void*>(record), 0, sizeof *record);
  record->status = 1;
  record->requestId = record->prfId = columns.id;
  std::memcpy(record->reserved, &columns.flags, sizeof columns.flags);
  std::memcpy(record->name, columns.name, sizeof columns.name);
  std::memcpy(&record->item, columns.thresholds, sizeof columns.thresholds);
  return 0;
}

int set_alarm_profile_attribute(u32 count, const AlarmPrfRecord* records) {
  if (records == nullptr) return -1;
  for (const AlarmPrfRecord& record : std::span(records, count)) {
    if (record.prfId == kDefaultProfile) continue;
    if (record.prfId > kAlarmProfiles) return -1;
    if (const int code = storeProfileRow(record)) return code;
  }
  return 0;
}

void store_default_alarm_profile(const AlarmPrfRecord& record) { storeProfileRow(record); }

int delete_alarm_profile_db(u16 id) { return removeWhole(profiles, id); }

// --- Ports ---

struct Banding {
  u16 id;
};
static constexpr Field bandingFields[] = {
    field<&Banding::id, AlarmPrfBanding_ProfileID_get, AlarmPrfBanding_ProfileID_put>({.offset = 0})};
static constexpr Table<AlarmPrfBanding> bandings{"AlarmPrfBanding", "objIdTree", AlarmPrfBanding_objIdTree_find,
                                                 AlarmPrfBanding_new, AlarmPrfBanding_objId_put};

int set_alarm_prf_banding_db_api(u32 objectId, const void* id, u32, u32) {
  return storeRow(bandings, bandingFields, id, objectId);
}

int get_alarm_prf_banding_db_api(u32 objectId, void* id, u32, u32) {
  if (id == nullptr) return -1;
  std::memset(id, 0, sizeof(u16));
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  AlarmPrfBanding row;
  if (const int code = bandings.find(transaction, objectId, &row)) return code == DB_NOT_FOUND ? code : kStoreFailed;
  return AlarmPrfBanding_ProfileID_get(&row, static_cast<u16*>(id)) == 0 ? 0 : kStoreFailed;
}

int del_alarm_prf_banding_db_api(u32 objectId) {
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  AlarmPrfBanding row;
  if (const int code = bandings.find(transaction, objectId, &row)) return code == DB_NOT_FOUND ? code : kStoreFailed;
  return AlarmPrfBanding_delete(&row) == 0 ? transaction.commit() : kStoreFailed;
}

int isAlarmProfileBound(u16 id) {
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  mco_cursor_t cursor;
  int code = AlarmPrfBanding_objIdTree_index_cursor(transaction, &cursor);
  for (; code == 0; code = mco_cursor_next(transaction, &cursor)) {
    AlarmPrfBanding row;
    u16 bound = 0;
    if ((code = AlarmPrfBanding_from_cursor(transaction, &cursor, &row)) != 0) break;
    if ((code = AlarmPrfBanding_ProfileID_get(&row, &bound)) != 0) break;
    if (bound == id) return 1;
  }
  return code == DB_END ? 0 : kStoreFailed;
}
