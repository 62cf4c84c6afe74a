// Where the feed values are stored: a row of 64 bytes for each port, its object id ahead of its record.

#include <cstring>

#include "common/store.h"
#include "platform/module_registry.h"
#include "platform/tables.h"
#include "ppda/volt_current.h"

namespace {
// The field `fixed`, which holds the row's key.
struct Fixed {
  u32 objectId = 0;
  PotsFeed record;
};
}  // namespace
static_assert(sizeof(Fixed) == 64);

static constexpr const char* kTable = "DB_VOLTCURRENT_CFG";
static constexpr int kNullRecord = -24;
static constexpr int kBeyondRecord = -9;

static int checkAccess(const void* record, u32 offset, u32 length) {
  if (record == nullptr) return kNullRecord;
  return u64{offset} + length > sizeof(PotsFeed) ? kBeyondRecord : 0;
}

int set_post_voltcurrent_db_api(u32 objectId, const void* record, u32 offset, u32 length) {
  if (hss_IsSmuMaster() != 1) return 0;
  if (const int code = checkAccess(record, offset, length)) return code;
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  DB_VOLTCURRENT_CFG row;
  int code = DB_VOLTCURRENT_CFG_objTree_find(transaction, objectId, &row);
  if (code == DB_NOT_FOUND) {
    code = DB_VOLTCURRENT_CFG_new(transaction, &row);
    if (code != 0) logNew(Where::here(), kTable, code);
  } else if (code != 0) {
    logFind(Where::here(), kTable, "objTree", code);
  }
  if (code != 0) return kStoreFailed;
  // The whole record is written, whatever part was named.
  Fixed fixed{objectId, *static_cast<const PotsFeed*>(record)};
  DB_VOLTCURRENT_CFG_fixed_put(&row, &fixed, sizeof fixed);
  return transaction.commit();
}

int get_post_voltcurrent_db_api(u32 objectId, void* record, u32 offset, u32 length) {
  if (const int code = checkAccess(record, offset, length)) return code;
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  DB_VOLTCURRENT_CFG row;
  if (const int code = DB_VOLTCURRENT_CFG_objTree_find(transaction, objectId, &row)) {
    logRead(Where::here(), code);
    return kStoreFailed;
  }
  Fixed fixed;
  DB_VOLTCURRENT_CFG_fixed_get(&row, &fixed, sizeof fixed);
  if (const int code = transaction.commit()) return code;
  auto* out = static_cast<PotsFeed*>(record);
  out->slot = fixed.record.slot;
  out->port = fixed.record.port;
  out->voltage = fixed.record.voltage;
  out->current = fixed.record.current;
  return 0;
}

int del_post_voltcurrent_db_api(u32 objectId) {
  if (hss_IsSmuMaster() != 1) return 0;
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  DB_VOLTCURRENT_CFG row;
  if (const int code = DB_VOLTCURRENT_CFG_objTree_find(transaction, objectId, &row)) {
    logFind(Where::here(), kTable, "objTree", code);
    return kStoreFailed;
  }
  DB_VOLTCURRENT_CFG_delete(&row);
  return transaction.commit();
}
