#pragma once
// How much broadcast, multicast and unknown traffic a card lets through: kept for its slot, not for ports.

#include "common/msan_obj.h"
#include "data/common/data_item.h"

inline constexpr u16 kStormTypes = 3;

struct StormSuppEntry {
  u16 pktType = 0;  // 0 broadcast, 1 multicast, 2 unknown
  u8 enable = 0;
  u8 zero = 0;
  u32 speed = 0;  // kbit/s

  bool operator==(const StormSuppEntry&) const = default;
};

// The value of the attribute. The store and the card know an entry by its place, whatever its type says.
struct StormSuppValue {
  u16 serviceNum = 0;  // entries that count
  u16 zero = 0;
  StormSuppEntry entries[kStormTypes];

  bool operator==(const StormSuppValue&) const = default;
};
static_assert(sizeof(StormSuppValue) == 28);

// A record of a work list.
struct StormSuppRecord {
  ObjIndex object;
  StormSuppValue value;
};

extern const DataItem stormSuppression;

void recover_storm_suppression_cfg(u16 slot);
void delete_storm_suppression_cfg(u16 slot);  // of a data card; back to the default

// Attribute 271. A slot without rows has the default. 0; -24 for a null value, -9 for a part, -900 for a connection,
// start or commit that failed, -1 for any other failure.
int set_stormsupp_cfg_dbapi(u32 objectId, const void* value, u32 offset, u32 length);
int get_stormsupp_cfg_dbapi(u32 objectId, void* value, u32 offset, u32 length);
int delete_stormsupp_cfg_dbapi(u32 objectId);  // a slot without rows is fine
