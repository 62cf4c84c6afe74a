#include "stores.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "host/database.h"
#include "host/profile_store.h"

namespace fuzz {

static void mix(u64& digest, std::string_view text) {
  digest = (digest ^ std::hash<std::string_view>()(text)) * 0x9E3779B97F4A7C15u + 1;
}

static u64 rowsDigest() {
  u64 digest = 0;
  std::vector<std::string> rows;
  for (const std::string& table : host::tableNames()) {
    host::listRows(table, rows);
    std::ranges::sort(rows);
    mix(digest, table);
    for (const std::string& row : rows) mix(digest, row);
  }
  return digest;
}

static u64 profilesDigest() {
  u64 digest = 0;
  for (i16 kind = 0;; ++kind) {
    std::vector<host::StoredProfile> profiles;
    if (!host::listProfiles(kind, profiles)) return digest;
    for (const host::StoredProfile& profile : profiles) {
      mix(digest, profile.name);
      mix(digest, {reinterpret_cast<const char*>(profile.item.data()), profile.item.size()});
    }
  }
}

StoreChanges storeChanges() { return {host::databaseChanges(), host::profileChanges()}; }

u64 storesDigest() {
  static StoreChanges at;
  static u64 rows = rowsDigest(), profiles = profilesDigest();
  const StoreChanges now = storeChanges();
  if (now.rows != at.rows) rows = rowsDigest();
  if (now.profiles != at.profiles) profiles = profilesDigest();
  at = now;
  return rows ^ profiles;
}

}  // namespace fuzz
