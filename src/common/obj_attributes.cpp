#include "common/obj_attributes.h"

#include <algorithm>
#include <cstdio>

#include "combo/port/port_enable_config.h"
#include "combo/profile/profile_relation.h"
#include "common/interface_list.h"
#include "common/msan_init.h"
#include "common/report.h"
#include "common/trace.h"
#include "data/loop/loop_detect.h"
#include "data/mac/port_mac_limit.h"
#include "data/policy/port_attach_policy.h"
#include "data/policy/pvc_attach_policy.h"
#include "data/queue/eth_schedule.h"
#include "data/rate/port_rate_bind.h"
#include "data/slot/port_isolate.h"
#include "data/slot/storm_suppression.h"
#include "data/vlan/port_vlan.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "ppda/volt_current.h"
#include "voice/alarm/alarm_attach.h"
#include "voice/common/voice_msc.h"
#include "voice/port/voice_port_record.h"
#include "voice/port/voice_self_port.h"

// How an attribute is stored; all take the object's id, the data, offset and length.
struct Attribute {
  u32 number;
  int (*set)(u32 objectId, const void* data, u32 offset, u32 length);
  int (*get)(u32 objectId, void* data, u32 offset, u32 length);
};

// Some take one argument more, which has no meaning for them.
template <int (*Get)(u32, void*, u32, u32, u32)>
static int getPlain(u32 objectId, void* data, u32 offset, u32 length) {
  return Get(objectId, data, offset, length, 0);
}

static constexpr Attribute attributes[] = {
    {kVoicePortAttribute, set_voiceportcfg_dbapi, get_voiceportcfg_dbapi},
    {kAlarmAttribute, set_alarm_prf_banding_db_api, get_alarm_prf_banding_db_api},
    {kStormAttribute, set_stormsupp_cfg_dbapi, get_stormsupp_cfg_dbapi},
    {kVlanAttribute, set_port_vlan_cfg_db_api, get_port_vlan_cfg_db_api},
    {kIsolationAttribute, set_port_isolation_dbapi, get_port_isolation_dbapi},
    {kRateAttribute, set_port_rate_limit_prf_attach_dbapi, get_port_rate_limit_prf_attach_dbapi},
    {kMacAttribute, set_mac_limit_cfg_dbapi, get_mac_limit_cfg_dbapi},
    {kQueueAttribute, set_eth_schedule_cfg_dbapi, get_eth_schedule_cfg_dbapi},
    {kPortEnableAttribute, set_data_port_enable_dbapi, get_data_port_enable_dbapi},
    {kAdslLineAttribute, set_adsl_prf_att_dbapi, getPlain<get_adsl_prf_att_dbapi>},
    {kPvcAttribute, set_pvc_prf_att_dbapi, getPlain<get_pvc_prf_att_dbapi>},
    {kPvcPolicyAttribute, set_plc_prf_att_dbapi, get_plc_prf_att_dbapi},
    {kPortPolicyAttribute, set_port_plc_prf_att_dbapi, get_port_plc_prf_att_dbapi},
    {kFeedAttribute, set_post_voltcurrent_db_api, get_post_voltcurrent_db_api},
    {kLoopAttribute, set_loopdetect_db_api, get_loopdetect_db_api},
    {kVdslCpsdAttribute, set_vdsl_cpsd_prf_att_dbapi, get_vdsl_cpsd_prf_att_dbapi},
    {kVdslExtraAttribute, set_vdsl_extra_prf_att_dbapi, get_vdsl_extra_prf_att_dbapi},
    {kVdslGinpAttribute, set_vdsl_ginp_prf_att_dbapi, get_vdsl_ginp_prf_att_dbapi},
    {kVdslVnAttribute, set_vdsl_vn_prf_att_dbapi, get_vdsl_vn_prf_att_dbapi},
    {kVdslLineAttribute, set_vdsl_line_prf_att_db_api, get_vdsl_line_prf_att_db_api},
    {kVdslServiceAttribute, set_vdsl_ser_prf_att_db_api, get_vdsl_ser_prf_att_db_api},
    {kVdslPboAttribute, set_vdsl_pbo_prf_att_db_api, get_vdsl_pbo_prf_att_db_api},
    {kSelfPortAttribute, set_voiceselfportcfg_dbapi, get_voiceselfportcfg_dbapi},
};

// What a port and a slot hold, in the order in which it is removed.
// clang-format off
static constexpr int (*portDeletes[])(u32 objectId) = {
    del_voiceportcfg_dbapi,
    del_port_vlan_cfg_db_api,
    del_port_rate_limit_prf_attach_dbapi,
    delete_eth_schedule_cfg_dbapi,
    del_data_port_enable_dbapi,
    del_alarm_prf_banding_db_api,
    del_loopdetect_db_api,
    del_post_voltcurrent_db_api,
    clr_pvc_plc_attach_cfg_dbapi,
    clr_port_plc_attach_cfg_dbapi,
    clr_adsl_prf_att_dbapi,
    clr_pvc_prf_att_dbapi,
    clr_vdsl_cpsd_prf_att_dbapi,
    clr_vdsl_extra_prf_att_dbapi,
    clr_vdsl_ginp_prf_att_dbapi,
    clr_vdsl_vn_prf_att_dbapi,
    clr_vdsl_line_prf_att_db_api,
    clr_vdsl_ser_prf_att_db_api,
    clr_vdsl_pbo_prf_att_db_api,
    del_voiceselfportcfg_dbapi,
};
static constexpr int (*slotDeletes[])(u32 objectId) = {delete_stormsupp_cfg_dbapi, del_port_isolation_dbapi};
// clang-format on

static const Attribute* findAttribute(u32 number) {
  const auto* row = std::ranges::find(attributes, number, &Attribute::number);
  return row != std::end(attributes) ? row : nullptr;
}

// The database's id of an object. 0, or a code after a line under the object model's debug flag.
static int objectIdOf(const ObjIndex& handle, u32* id, const char* function) {
  if (handle.level != kSlotLevel && handle.level != kPortLevel) return kBadLevel;
  const bool slot = handle.level == kSlotLevel;
  const int code = slot ? omSlot2ObjId(handle.addr[1], id) : omOltport2ObjId(handle.addr[1], handle.addr[2], id);
  if (code == 0 || giOmDebugPrint != 1) return code;
  if (slot) {
    std::printf("\r\n%s->omSlot2ObjId err! level = %d, handle->addr[1] = %d", function, handle.level, handle.addr[1]);
  } else {
    std::printf("\r\n%s->omOltport2ObjId err! level = %d, handle->addr[1] = %d, handle->addr[2] = %d", function,
                handle.level, handle.addr[1], handle.addr[2]);
  }
  return code;
}

static int told(int code, u32 attribute, const char* function) {
  if (code != 0 && giOmDebugPrint == 1) std::printf("\r\n%s err!, attr = %d", function, static_cast<int>(attribute));
  return code;
}

int setObjAttrDataByCondition(const ObjIndex* handle, u32 attribute, const void* data, i32 offset, i32 length) {
  if (handle == nullptr || data == nullptr) return kNullObject;
  if (giOmRunPrint == 1) {
    std::printf("\r\n%s : level %d, type %d, address %d %d ,attr %d, offset %d, len %d.", __func__, handle->level,
                handle->type, handle->addr[1], handle->addr[2], static_cast<int>(attribute), offset, length);
  }
  u32 id = 0;
  if (const int code = objectIdOf(*handle, &id, __func__)) return code;
  const Attribute* row = findAttribute(attribute);
  if (row == nullptr) return told(kNoSuchAttribute, attribute, __func__);
  return told(row->set(id, data, static_cast<u32>(offset), static_cast<u32>(length)), attribute, __func__);
}

int getObjAttrDataByCondition(const ObjIndex* handle, u32 attribute, void* data, u32 offset, i32 length, u32) {
  if (handle == nullptr || data == nullptr) return kNullObject;
  if (offset != 0) return kReadWithOffset;
  if (giOmRunPrint == 1) {
    std::printf("\r\n%s. level %d, type %d, address %d %d ,attr %d, offset %d, len %d.", __func__, handle->level,
                handle->type, handle->addr[1], handle->addr[2], static_cast<int>(attribute), static_cast<int>(offset),
                length);
  }
  u32 id = 0;
  if (const int code = objectIdOf(*handle, &id, __func__)) return code;
  const Attribute* row = findAttribute(attribute);
  if (row == nullptr) return told(kNoSuchAttribute, attribute, __func__);
  return told(row->get(id, data, offset, static_cast<u32>(length)), attribute, __func__);
}

void delObjAttrBySlot(u16 slot) {
  OmObject* tree = nullptr;
  if (omGetChildAddr(gpOmFrameObj, 2, slot, &tree) != 0 || tree == nullptr || tree->m_pChildObjList == nullptr ||
      tree->childCount == 0) {
    return;
  }
  u32 id = 0;
  for (u32 port = 1; port <= tree->childCount; ++port) {
    if (omOltport2ObjId(slot, static_cast<u16>(port), &id) != 0 || delPortAttrByObjId(id) != 0) return;
  }
  if (omSlot2ObjId(slot, &id) != 0 || delSlotAttrByObjId(id) != 0) return;
  delete_macnum_limit_cfg(slot);
}

int delPortAttrByObjId(u32 objectId) {
  for (const auto remove : portDeletes) remove(objectId);
  return 0;
}

int delSlotAttrByObjId(u32 objectId) {
  for (const auto remove : slotDeletes) remove(objectId);
  return 0;
}

int delSlotAttrDataByCondition(u16 slot, u32 attribute, i32) {
  u32 id = 0;
  if (const int code = omSlot2ObjId(slot, &id)) return code;
  return attribute == kVoicePortAttribute ? 0 : kNoSuchAttribute;
}

int delPortAttrDataByCondition(u16 slot, u16 port, u32 attribute, i32) {
  u32 id = 0;
  if (const int code = omOltport2ObjId(slot, port, &id)) return code;
  return attribute == kVoicePortAttribute ? 0 : kNoSuchAttribute;
}

static int badSync(int line, Where where, const char* what) {
  ulogPrintf(gModuleId_Msan, kLogError, "%s:%d:%s:%lu:\r\n%s\r\n", fileName(where), line, where.function, 0UL, what);
  return -1;
}

// The slot that a node stands for. 0 or -1 with a log line.
static int slotOf(NODE* node, int kind, u16& slot, Where where) {
  switch (kind) {
    case kObjectList: {
      const auto* object = dataOf<const ObjIndex>(node);
      if (object == nullptr) return badSync(where.line, where, "pNode->data is NULL!");
      u16 port = 0, type = 0;
      if (ObjIndexConvertSlotNoPort(&slot, &port, &type, object) == 0) return 0;
      return badSync(where.line, where, "ObjIndexConvertSlotNoPort error!");
    }
    case kDataNodeList:
      slot = static_cast<DataNode*>(node)->slot;
      return 0;
    default:
      return badSync(where.line, where, "listType error!");
  }
}

void msan_cfg_sync_trigger(const LIST* list, u16 id, int origin, int kind) {
  const Where where = Where::here(__func__);
  NODE* node = list != nullptr ? lstFirst(list) : nullptr;
  if (node == nullptr) {
    badSync(__LINE__, where, list == nullptr ? "input parameter error!" : "lstFirst error!");
    return;
  }
  u16 last = 0;
  for (; node != nullptr; node = lstNext(node)) {
    u16 slot = 0;
    if (slotOf(node, kind, slot, where) != 0) return;
    if (last != 0 && slot != last) reportChange(last, id, origin);
    last = slot;
  }
  reportChange(last, id, origin);
}
