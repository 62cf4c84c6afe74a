#pragma once
// The alarm profile of a DSL line: how many seconds of a kind there may be in 15 minutes before a card raises an alarm.
//
// The profiles are few, and are kept in a table of the database rather than in the profile store. A batch is worked out
// on a copy of the whole table in memory, which is written back at the end.

#include "combo/profile/profile_kind.h"

inline constexpr u16 kMostAlarmId = 20;
inline constexpr u16 kAlarmProfiles = kMostAlarmId + 1;
inline constexpr u32 kThresholds = 12;
inline constexpr u32 kMostThreshold = 900;

#pragma pack(push, 1)
// Seconds in 15 minutes at the near and the far end.
struct AlarmPrfItem {
  u32 NeLossThreshold15min;
  u32 NeLofsThreshold15min;
  u32 NeEsThreshold15min;
  u32 NeSesThreshold15min;
  u32 NeUasThreshold15min;
  u32 NeLolsThreshold15min;
  u32 FeLossThreshold15min;
  u32 FeLofsThreshold15min;
  u32 FeEsThreshold15min;
  u32 FeSesThreshold15min;
  u32 FeUasThreshold15min;
  u32 FeLprsThreshold15min;
  u8 zero[16];
};
#pragma pack(pop)
using AlarmPrfRecord = ProfileRecord<AlarmPrfItem>;
inline constexpr u32 kThresholdBytes = offsetof(AlarmPrfItem, zero);
static_assert(kThresholdBytes == 4 * kThresholds && sizeof(AlarmPrfRecord) == 94);

extern const ProfileKind alarmKind;
extern i16 alarmPrfConfId;

// What is known of a threshold, by its number from 1.
const ProfileField& thresholdOf(u32 number);

// All profiles in memory: the row of an id is at its index when loaded; rows that hold no profile have status 0.
class AlarmTable {
 public:
  AlarmTable();
  explicit operator bool() const { return memory_ != nullptr; }
  std::span<AlarmPrfRecord> rows();

 private:
  PoolBytes memory_;
};

// --- Operations. 0 or -1, and what failed in the error record ---

void fill_alarm_prf_dft_para(AlarmPrfRecord* record);
int check_alarm_prf_id_legal(SnmpErrInfo* err, u32 id);
int check_alarm_prf_id_legal_exp0(SnmpErrInfo* err, u32 id);
int check_alarm_prf_para(SnmpErrInfo* err, const ProfileHead* record);

int check_alarm_prf_exist(std::span<AlarmPrfRecord> table, u16 id);
int check_alarm_prf_name_same(SnmpErrInfo* err, std::span<AlarmPrfRecord> table, const AlarmPrfRecord& record);
int get_free_alarm_prf_id(SnmpErrInfo* err, std::span<AlarmPrfRecord> table, u16* id);  // the lowest
int add_alarm_prf(std::span<AlarmPrfRecord> table, AlarmPrfRecord& record);
int modify_alarm_prf(std::span<AlarmPrfRecord> table, const AlarmPrfRecord& record);

int get_alarm_prf(SnmpErrInfo* err, AlarmPrfRecord* record, u16 id);
int get_alarm_prf_id_by_name(SnmpErrInfo* err, u16* id, const char* name);
int get_alarm_prf_name_by_id(SnmpErrInfo* err, char* name, u16 id);  // to a field of 23 bytes
int is_alarm_prf_id_free(u16 id);                                    // -1: a profile has it
int set_alarm_prf_cfg_id(u16 id);                                    // selects a profile for editing
int check_alarm_prf_attached(SnmpErrInfo* err, u16 id);              // 1: a port uses it

// All or nothing up to the writing; what existed then goes to the ports that use it.
int set_alarm_prf(SnmpErrInfo* err, AlarmPrfRecord* records, u16 count);
// One after the other: what is ahead of a failure is gone.
int delete_spc_alarm_prf(SnmpErrInfo* err, const u16* ids, u16 count);
// Takes one threshold over from `values`, by its number from 1. Nothing is sent.
int modify_spc_alarm_prf_para(SnmpErrInfo* err, const AlarmPrfRecord* values, u32 selector);
void flush_alarm_prf(SnmpErrInfo* err, u16 id);

// --- The table in the database (alarm_store.cpp). 0; -1 for an id that can't be; kStoreFailed ---

int get_alarm_profile_attribute(u16 id, AlarmPrfRecord* record);
// Each record in its own transaction. Those with id 0 are passed over.
int set_alarm_profile_attribute(u32 count, const AlarmPrfRecord* records);
void store_default_alarm_profile(const AlarmPrfRecord& record);
int delete_alarm_profile_db(u16 id);
