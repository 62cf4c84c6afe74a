// Where it is stored which data ports are in service.

#include "combo/port/port_enable_config.h"
#include "common/store.h"
#include "platform/module_registry.h"
#include "platform/tables.h"

#pragma pack(push, 1)
namespace {
// The field `fixed`, which holds the row's key.
struct Fixed {
  u32 objectId = 0;
  u8 enable = 0;
};
}  // namespace
#pragma pack(pop)
static_assert(sizeof(Fixed) == 5);

static constexpr int kNullData = -24, kBeyondByte = -9;

static int put(DataPortEnable* row, const Fixed* fixed) { return DataPortEnable_fixed_put(row, fixed, sizeof *fixed); }
static int get(DataPortEnable* row, Fixed* fixed) { return DataPortEnable_fixed_get(row, fixed, sizeof *fixed); }

static constexpr WholeTable<DataPortEnable, Fixed> table{
    "DataPortEnable", "objTree", DataPortEnable_objTree_find, DataPortEnable_new, put, get, DataPortEnable_delete};

static int checkAccess(const void* data, u32 offset, u32 length) {
  if (data == nullptr) return kNullData;
  return u64{offset} + length > 1 ? kBeyondByte : 0;
}

int set_data_port_enable_dbapi(u32 objectId, const void* data, u32 offset, u32 length) {
  if (const int code = checkAccess(data, offset, length)) return code;
  if (hss_IsSmuMaster() != 1) return 0;
  return storeWhole(table, objectId, {objectId, *static_cast<const u8*>(data)});
}

int get_data_port_enable_dbapi(u32 objectId, void* data, u32 offset, u32 length) {
  if (const int code = checkAccess(data, offset, length)) return code;
  Fixed fixed;
  if (const int code = loadWhole(table, objectId, fixed)) return code;
  *static_cast<u8*>(data) = fixed.enable;
  return 0;
}

int del_data_port_enable_dbapi(u32 objectId) { return hss_IsSmuMaster() == 1 ? removeWhole(table, objectId) : 0; }
