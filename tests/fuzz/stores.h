#pragma once
// What the module has stored.

#include "platform/types.h"

namespace fuzz {

// Grow with what is written; while both stand, nothing has changed.
struct StoreChanges {
  u64 rows = 0;
  u64 profiles = 0;
  bool operator==(const StoreChanges&) const = default;
};
StoreChanges storeChanges();

// Of rows of all tables and profiles of all kinds; equal contents give equal numbers. What has not been written since
// the last call is not read again.
u64 storesDigest();

}  // namespace fuzz
