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

u64 storesDigest() {
  static u64 at = 0, rows = 0;
  if (const u64 now = host::databaseChanges(); now != at || rows == 0) {
    at = now;
    rows = rowsDigest();
  }
  u64 digest = rows;
  std::vector<host::StoredProfile> profiles;
  for (i16 kind = 0; host::listProfiles(kind, profiles); ++kind)
    for (const host::StoredProfile& profile : profiles) {
      mix(digest, profile.name);
      mix(digest, {reinterpret_cast<const char*>(profile.item.data()), profile.item.size()});
    }
  return digest;
}

}  // namespace fuzz
