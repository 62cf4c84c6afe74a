#pragma once
// How the eight egress queues of a data port share it: strict priority, weighted round robin, or both. A port without a
// row has the default, which is not stored.

#include "common/msan_obj.h"
#include "data/common/data_item.h"

inline constexpr u16 kQueues = 8;
inline constexpr u16 kStrictWeight = 65535;

enum ScheduleMode : u16 { kStrictMode = 1, kWrrMode = 2, kMixedMode = 3 };
enum QueueType : u16 { kWrrQueue = 0, kStrictQueue = 1 };

struct EthScheduleQueue {
  u16 queueId = 0;
  u16 type = 0;
  u16 weight = 0;  // 1 to 127, or kStrictWeight
  u8 reserved[8] = {};
};

// The value of the attribute, of which mode and queues are stored.
struct EthScheduleRecord {
  u16 slot = 0;
  u16 port = 0;
  u8 reserved[16] = {};
  u16 mode = 0;
  u16 ruleNum = 0;                   // of the queues that count: all
  EthScheduleQueue queues[kQueues];  // highest priority first
};
static_assert(sizeof(EthScheduleRecord) == 136);

// A record of a work list.
struct EthSchedule {
  ObjIndex object;
  EthScheduleRecord value;
};

extern const DataItem ethSchedule;

const EthScheduleRecord& defaultSchedule();
void recover_ethschedule_cfg(u16 slot);
void delete_ethschedule_cfg(u16 slot);  // of a data card; back to the default

// Attribute 279. 0; -24 for a null value, -33 for a part, -32 for another number of queues, -900 for a connection,
// start or commit that failed, -1 for any other failure.
int set_eth_schedule_cfg_dbapi(u32 objectId, const void* value, u32 offset, u32 length);
int get_eth_schedule_cfg_dbapi(u32 objectId, void* value, u32 offset, u32 length);
int delete_eth_schedule_cfg_dbapi(u32 objectId);  // a port without a row is fine
