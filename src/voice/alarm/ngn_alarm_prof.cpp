#include "voice/alarm/ngn_alarm_prof.h"

#include <algorithm>
#include <cstring>

#include "combo/adsl/adsl_config_aux.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "platform/log.h"
#include "voice/alarm/alarm_area.h"
#include "voice/alarm/alarm_attach.h"

i16 alarmPrfConfId = -1;

static constexpr u16 code(int number) { return static_cast<u16>(number); }

// Two blanks stand ahead of all values but the first one.
// clang-format off
static constexpr ValueRange seconds{0, kMostThreshold};
static constexpr ProfileField fields[] = {
    {ITEM_FIELD(AlarmPrfItem, NeLossThreshold15min), .allowed = {seconds}, .code = code(-101), .label = "NeLossThreshold15min", .line = "set alarm NeLossThreshold15min"},
    {ITEM_FIELD(AlarmPrfItem, NeLofsThreshold15min), .allowed = {seconds}, .code = code(-102), .label = "NeLofsThreshold15min", .line = "set alarm NeLofsThreshold15min "},
    {ITEM_FIELD(AlarmPrfItem, NeEsThreshold15min), .allowed = {seconds}, .code = code(-103), .label = "NeEsThreshold15min", .line = "set alarm NeEsThreshold15min "},
    {ITEM_FIELD(AlarmPrfItem, NeSesThreshold15min), .allowed = {seconds}, .code = code(-104), .label = "NeSesThreshold15min", .line = "set alarm NeSesThreshold15min "},
    {ITEM_FIELD(AlarmPrfItem, NeUasThreshold15min), .allowed = {seconds}, .code = code(-105), .label = "NeUasThreshold15min", .line = "set alarm NeUasThreshold15min "},
    {ITEM_FIELD(AlarmPrfItem, NeLolsThreshold15min), .allowed = {seconds}, .code = code(-106), .label = "NeLolsThreshold15min", .line = "set alarm NeLolsThreshold15min "},
    {ITEM_FIELD(AlarmPrfItem, FeLossThreshold15min), .allowed = {seconds}, .code = code(-107), .label = "FeLossThreshold15min", .line = "set alarm FeLossThreshold15min "},
    {ITEM_FIELD(AlarmPrfItem, FeLofsThreshold15min), .allowed = {seconds}, .code = code(-108), .label = "FeLofsThreshold15min", .line = "set alarm FeLofsThreshold15min "},
    {ITEM_FIELD(AlarmPrfItem, FeEsThreshold15min), .allowed = {seconds}, .code = code(-109), .label = "FeEsThreshold15min", .line = "set alarm FeEsThreshold15min "},
    {ITEM_FIELD(AlarmPrfItem, FeSesThreshold15min), .allowed = {seconds}, .code = code(-110), .label = "FeSesThreshold15min", .line = "set alarm FeSesThreshold15min "},
    {ITEM_FIELD(AlarmPrfItem, FeUasThreshold15min), .allowed = {seconds}, .code = code(-111), .label = "FeUasThreshold15min", .line = "set alarm FeUasThreshold15min "},
    {ITEM_FIELD(AlarmPrfItem, FeLprsThreshold15min), .allowed = {seconds}, .code = code(-112), .label = "FeLprsThreshold15min", .line = "set alarm FeLprsThreshold15min "},
};
// clang-format on
static_assert(std::size(fields) == kThresholds);

static constexpr ProfileShape shape{
    .itemSize = sizeof(AlarmPrfItem), .headGap = 0, .tail = sizeof(AlarmPrfItem::zero), .fields = fields};
static_assert(shape.mostBody() == 64);

const ProfileField& thresholdOf(u32 number) { return fields[number - 1]; }

// --- The kind ---

static constexpr u16 portTypes[] = {kAdslPort, kAdslPotsPort, kVdslPort, kVdslPotsPort};

static constexpr ProfileTexts texts{
    .idRange = "Profile's id must between 1 and 20",
    .addFailed = "Add adsl alarm profine failed,and errcode is ",
    .deleteFailedById = "Delete adsl alarm profine failed,and errcode is ",
    .deleteFailedByName = "Delete adsl alarm profine failed,and errcode is ",
    .deleteDefault = "Default profile cant be deleted!",
    .readFailedById = "getAlarmPrf profine failed,and errcode is ",
    .readFailedByName = "getAlarmPrf profine failed,and errcode is ",
    .flushFailed = "",
    .flushName = "flush_alarm_prf",
    .writeName = "snmp_set_alarm_prf",
    .selectDefault = "Default profile cannt be modified!",
    .selectFailedById = "setAlarmPrfCfgId failed,error.code is ",
    .selectFailedByName = "setAlarmPrfCfgId failed,error.code is ",
    .attachFailed = "",
    .portColumn = "portNo",
};

static int sendFlushed(LIST* nodes, u32 count) {
  if (attach_alarm_prf_adapt(nodes, count) == 0) return 0;
  ulogPrintf(gModuleId_Msan, kLogDebug, "flushAlarmPrf attachAlarmPrfAdapt failed!\r\n");
  return -1;
}

static constexpr OwnTable ownTable{
    .exists = [](u16 id) { return is_alarm_prf_id_free(id) != 0; },
    .read = [](SnmpErrInfo* err, ProfileHead* record,
               u16 id) { return get_alarm_prf(err, static_cast<AlarmPrfRecord*>(record), id); },
    .idByName = get_alarm_prf_id_by_name,
    .remove = delete_spc_alarm_prf,
    .send = sendFlushed,
};

static i16 noHandle = -1;  // in the profile store

constexpr ProfileKind alarmKind{
    .writeId = 34668,
    .attachId = 2824,
    .mostId = kMostAlarmId,
    .loggedIds = 33,
    .attribute = kAlarmAttribute,
    .portTypes = portTypes,
    .shape = shape,
    .defaultName = "defaultAlarmPrf",
    .word = "alarm",
    .attachWord = "alarm",
    .attachTail = 16,
    .type = noHandle,
    .selected = alarmPrfConfId,
    .texts = texts,
    .write = [](const ProfileKind&, SnmpErrInfo* err, ProfileHead* records,
                u16 count) { return set_alarm_prf(err, static_cast<AlarmPrfRecord*>(records), count); },
    .check = check_alarm_prf_para,
    .printLines = [](Vty* vty, const void* item) { printFields(vty, fields, item); },
    .table = &ownTable,
    .reportsFailure = false,
    .checksIdLast = true,
};

int check_alarm_prf_id_legal(SnmpErrInfo* err, u32 id) { return checkIdLegal(alarmKind, err, id); }
int check_alarm_prf_id_legal_exp0(SnmpErrInfo* err, u32 id) { return checkIdLegalExp0(alarmKind, err, id); }
int check_alarm_prf_para(SnmpErrInfo* err, const ProfileHead* record) {
  return checkFields(fields, itemOf(record), err);
}
// Cards of all kinds have ports that alarm profiles are attached to.
int check_alarm_prf_attached(SnmpErrInfo* err, u16 id) {
  if (check_alarm_prf_id_legal_exp0(err, id) != 0) return -1;
  const int bound = isAlarmProfileBound(id);
  return bound < 0 ? -1 : bound;
}
int set_alarm_prf_cfg_id(u16 id) { return selectProfile(alarmKind, id); }
void flush_alarm_prf(SnmpErrInfo* err, u16 id) { flushProfile(alarmKind, err, id); }
void alarm_prf_showrun(Vty* vty) { printProfiles(alarmKind, vty); }

void fill_alarm_prf_dft_para(AlarmPrfRecord* record) {
  if (record == nullptr) return;
  fillDefaults(alarmKind, record);
}

void init_alarm_prf() {
  AlarmPrfRecord record{};
  record.status = 1;
  std::memcpy(record.name, "defaultName", sizeof "defaultName");
  store_default_alarm_profile(record);
}

// --- The table in memory ---

AlarmTable::AlarmTable()
    : memory_(static_cast<u8*>(
          mpuAlloc_(g_MsanMemPoolId, kAlarmProfiles * u32{sizeof(AlarmPrfRecord)}, __FILE__, __LINE__))) {
  if (memory_ == nullptr) return;
  std::memset(memory_.get(), 0, kAlarmProfiles * sizeof(AlarmPrfRecord));
  for (u16 id = 0; id < kAlarmProfiles; ++id) get_alarm_profile_attribute(id, &rows()[id]);
}

std::span<AlarmPrfRecord> AlarmTable::rows() {
  return {reinterpret_cast<AlarmPrfRecord*>(memory_.get()), kAlarmProfiles};
}

static AlarmPrfRecord* rowOf(std::span<AlarmPrfRecord> table, u16 id) {
  const auto row = std::ranges::find_if(table, [id](const auto& r) { return r.status == 1 && r.prfId == id; });
  return row != table.end() ? &*row : nullptr;
}

int check_alarm_prf_exist(std::span<AlarmPrfRecord> table, u16 id) { return rowOf(table, id) != nullptr ? 0 : -1; }

static bool sameName(const char* a, const char* b) { return std::strncmp(a, b, kProfileNameBytes) == 0; }

// Rows without a profile count, too: a name without a character is taken as long as there is one.
int check_alarm_prf_name_same(SnmpErrInfo* err, std::span<AlarmPrfRecord> table, const AlarmPrfRecord& record) {
  for (const AlarmPrfRecord& row : table) {
    if (!sameName(row.name, record.name)) continue;
    reject(err, code(-12), {row.prfId, row.prfId});
    std::memcpy(err->errData + err->errDataLen, row.name, kProfileNameBytes);
    err->errDataLen += kProfileNameBytes;
    return -1;
  }
  return 0;
}

int get_free_alarm_prf_id(SnmpErrInfo* err, std::span<AlarmPrfRecord> table, u16* id) {
  for (u16 free = 1; free < kAlarmProfiles; ++free) {
    if (rowOf(table, free) != nullptr) continue;
    *id = free;
    return 0;
  }
  return reject(err, kNoFreeProfileId);
}

int add_alarm_prf(std::span<AlarmPrfRecord> table, AlarmPrfRecord& record) {
  const auto row = std::ranges::find_if(table, [](const auto& r) { return r.status != 1; });
  if (row == table.end()) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "addAlarmPrf,there is no position for new prf!\r\n");
    return -1;
  }
  record.status = 1;
  *row = record;
  return 0;
}

int modify_alarm_prf(std::span<AlarmPrfRecord> table, const AlarmPrfRecord& record) {
  AlarmPrfRecord* row = rowOf(table, record.prfId);
  if (row == nullptr) return -1;
  *row = record;
  return 0;
}

// --- Reads ---

int get_alarm_prf(SnmpErrInfo* err, AlarmPrfRecord* record, u16 id) {
  return get_alarm_profile_attribute(id, record) == 0 ? 0 : reject(err, kNoSuchProfile, {id});
}

int get_alarm_prf_name_by_id(SnmpErrInfo* err, char* name, u16 id) {
  AlarmPrfRecord record;
  if (get_alarm_prf(err, &record, id) != 0) return -1;
  std::memcpy(name, record.name, sizeof record.name);
  return 0;
}

int get_alarm_prf_id_by_name(SnmpErrInfo* err, u16* id, const char* name) {
  if (id == nullptr || name == nullptr) return -1;
  AlarmTable all;
  if (!all) return reject(err, kNoMemory);
  const auto rows = all.rows();
  const auto row =
      std::ranges::find_if(rows, [name](const auto& r) { return r.status == 1 && sameName(r.name, name); });
  if (row == rows.end()) return reject(err, kNoSuchProfile);
  *id = row->prfId;
  return 0;
}

int is_alarm_prf_id_free(u16 id) {
  AlarmPrfRecord record;
  return get_alarm_profile_attribute(id, &record) == 0 ? -1 : 0;
}

// --- Batches ---

// Finds the record its id. 1: it is to be passed over.
static int resolveId(SnmpErrInfo* err, std::span<AlarmPrfRecord> rows, AlarmPrfRecord& record) {
  if (record.requestId == kDefaultProfile) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "default prf cann't to be delete or modified!\r\n");
    return 1;
  }
  if (record.requestId == kAllocateId) {
    u16 id = 0;
    if (get_free_alarm_prf_id(err, rows, &id) != 0) return -1;
    record.requestId = id;
  } else if (check_alarm_prf_id_legal_exp0(err, record.requestId) != 0) {
    return -1;
  }
  record.prfId = record.requestId;
  record.status = 1;
  return 0;
}

// Puts a record into the table in memory; `modified` is set to its id if there was such a profile.
static int placeRecord(SnmpErrInfo* err, std::span<AlarmPrfRecord> rows, AlarmPrfRecord& record, u16& modified) {
  if (inRecoverConfProcess() != 1 && check_alarm_prf_para(err, &record) != 0) {
    setProfileDetail(err, record.requestId, record.name);
    return -1;
  }
  if (const int passed = resolveId(err, rows, record)) return passed == 1 ? 0 : -1;
  if (check_alarm_prf_exist(rows, record.prfId) != 0) {
    return check_alarm_prf_name_same(err, rows, record) == 0 ? add_alarm_prf(rows, record) : -1;
  }
  modified = record.prfId;
  return modify_alarm_prf(rows, record);
}

int set_alarm_prf(SnmpErrInfo* err, AlarmPrfRecord* records, u16 count) {
  if (err == nullptr) return -1;
  if (records == nullptr) return count == kNoCount ? 0 : -1;
  if (count > kAlarmProfiles) return -1;
  AlarmTable all;
  if (!all) return reject(err, kNoMemory);
  u16 modified[kAlarmProfiles] = {};
  for (u32 i = 0; i < count; ++i) {
    if (placeRecord(err, all.rows(), records[i], modified[i]) != 0) return -1;
  }
  if (set_alarm_profile_attribute(kAlarmProfiles, all.rows().data()) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "set_alarm_prf,set_alarm_profile_attribute failed!\r\n");
    return -1;
  }
  for (const u16 id : modified) {
    if (id != kDefaultProfile) flush_alarm_prf(err, id);
  }
  return 0;
}

int delete_spc_alarm_prf(SnmpErrInfo* err, const u16* ids, u16 count) {
  if (err == nullptr || ids == nullptr) return -1;
  for (const u16 id : std::span(ids, count)) {
    char name[sizeof ProfileHead::name];
    if (get_alarm_prf_name_by_id(err, name, id) != 0) return -1;
    const int used = check_alarm_prf_attached(err, id);
    if (used == 1) {
      err->errCode = kProfileInUse;
      setProfileDetail(err, id, name);
    }
    // Where it can't be told whether a port uses the profile, it stays.
    if (used != 0 || delete_alarm_profile_db(id) != 0) return -1;
  }
  return 0;
}

int modify_spc_alarm_prf_para(SnmpErrInfo* err, const AlarmPrfRecord* values, u32 selector) {
  if (err == nullptr || values == nullptr || alarmPrfConfId < 0) return -1;
  AlarmPrfRecord record;
  if (get_alarm_prf(err, &record, static_cast<u16>(alarmPrfConfId)) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "\r\nThere's no profile can be modified!\r\n");
    return -1;
  }
  if (selector >= 1 && selector <= kThresholds) {
    const ProfileField& field = thresholdOf(selector);
    setField(field, &record.item, fieldOf(field, &values->item));
  } else {
    ulogPrintf(gModuleId_Msan, kLogDebug, "modify_spc_alarm_prf_para,paraType error!\r\n");
  }
  if (check_alarm_prf_para(err, &record) != 0) return -1;
  return set_alarm_profile_attribute(1, &record) == 0 ? 0 : -1;
}
