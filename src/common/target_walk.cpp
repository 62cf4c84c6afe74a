// The walk over the object tree.

#include <algorithm>
#include <cstdio>

#include "common/interface_list.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "platform/objects.h"
#include "platform/pool.h"

int IsMatchObjType(u16 type, const u16* types, i32 count) {
  if (count == 0) return 0;
  if (types == nullptr || count < 0) return -1;
  return std::find(types, types + count, type) != types + count ? 0 : -1;
}

static int failed(const char* what) {
  if (giOmDebugPrint == 1) std::printf("%s", what);
  return -1;
}

// A handle from the pool; null, told, when it can't be made.
static ObjIndex* makeObject(u16 slot, u16 port, u16 type) {
  auto* object = static_cast<ObjIndex*>(mpuAlloc_(g_MsanMemPoolId, sizeof(ObjIndex), __FILE__, __LINE__));
  if (object == nullptr) {
    failed("malloc OBJECTLABEL memory failed");
    return nullptr;
  }
  if (SlotNoPortConvertObjIndex(slot, port, type, object) == 0) return object;
  failed("SlotNoPortConvertObjIndex failed");
  mpuFree(object);
  return nullptr;
}

// True if the flags let the walk into the slot.
static bool passes(u16 slot, u32 flags) {
  switch (flags) {
    case 0:
      return true;
    case kCardPresent:
      return sysGetSlotHwAliveStatus(slot) == 1;
    case kCardUp:
      return sysGetSlotHwAliveStatus(slot) == 1 && sysGetSlotSwAliveStatus(slot) == 1;
    default:
      return false;
  }
}

// The ports of a slot, up to the first one of another type: all ports of a card are of one.
static int addPorts(u16 slot, LIST* list, const u16* types, i32 count) {
  OmObject* tree = nullptr;
  if (omGetChildAddr(gpOmFrameObj, 2, slot, &tree) != 0 || tree == nullptr) return 0;
  for (u32 i = 0; i < tree->childCount; ++i) {
    const OmObject* port = tree->m_pChildObjList[i];
    if (port == nullptr || IsMatchObjType(port->type, types, count) != 0) return 0;
    ObjIndex* object = makeObject(slot, port->number, port->type);
    if (object == nullptr) return -1;
    if (insert_sort_list_by_index(object, list) != 0) {
      mpuFree(object);
      return -1;
    }
  }
  return 0;
}

// As InForEachTargetTree; `taken` tells whether the target went into the list.
static int walk(ObjIndex* target, LIST* list, u32 flags, const u16* types, i32 count, bool& taken) {
  const bool matches = IsMatchObjType(target->type, types, count) == 0;
  const bool port = target->level == kPortLevel;
  if (!port && !passes(target->addr[1], flags)) return 0;
  if (matches) {
    if (insert_sort_list_by_index(target, list) != 0) return -1;
    taken = true;
  }
  return port ? 0 : addPorts(target->addr[1], list, types, count);
}

int InForEachTargetTree(ObjIndex* target, LIST* list, u32 flags, const u16* types, i32 count) {
  if (target == nullptr || list == nullptr || types == nullptr) return -1;
  bool taken = false;
  return walk(target, list, flags, types, count, taken);
}

int ForEachTargetTree(ObjIndex* target, LIST* list, u32 flags, const u16* types, i32 count) {
  if (target == nullptr || list == nullptr || types == nullptr) {
    return failed("ForEachTargetTree obj index param is NULL");
  }
  if (target->level == 0 || target->level > kPortLevel) return failed("level is out of range");
  if (target->level != kSystemLevel) {
    InForEachTargetTree(target, list, flags, types, count);
    return 0;
  }
  for (u32 i = 0; i < gpOmFrameObj->childCount; ++i) {
    const OmObject* slot = gpOmFrameObj->m_pChildObjList[i];
    if (slot == nullptr) return 0;
    ObjIndex* object = makeObject(slot->number, 0, slot->type);
    if (object == nullptr) return -1;
    bool taken = false;
    walk(object, list, flags, types, count, taken);
    if (!taken) mpuFree(object);
  }
  return 0;
}
