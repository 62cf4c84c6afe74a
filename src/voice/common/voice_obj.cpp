// Checks of locations, and the way to the attribute store and back.

#include "voice/common/voice_obj.h"

#include <algorithm>
#include <cstring>

#include "common/interface_list.h"
#include "common/obj_attributes.h"
#include "platform/objects.h"
#include "voice/common/voice_msc.h"

static int unknownId(u16 id, Where where) {
  printTrace(where, "invalid SNMP command ID: 0x%04X", id);
  return -1;
}

int vSetObjCheckOption(u16 id, u32* option) {
  if (option == nullptr) return -1;
  switch (id) {
    case 2839:
    case 2841:
      *option = kAnyCard;
      return 0;
    case 2842:
    case 2843:
    case 2848:
      *option = kCardUp;
      return 0;
    default:
      return unknownId(id, Where::here());
  }
}

int nSetObjCheckOption(u16 id, u32* option) {
  if (option == nullptr) return -1;
  if (id >= 3073 && id <= 3092) {
    *option = kAnyCard;
  } else if (id == 2844 || id == 3093 || id == 3094 || (id >= 3096 && id <= 3108)) {
    *option = kCardUp;
  } else {
    return unknownId(id, Where::here());
  }
  return 0;
}

int vCheckSlotNo(u16 slot, u16) {
  // Without a card the type is 0, which is no POTS card's.
  return caCheckCardTypeIsMsanPotsCard(static_cast<u16>(get_config_card_type(slot))) == 0 ? 0 : -1;
}

int vCheckSlotNoX(u16 slot, u16 cardType) { return get_config_card_type(slot) == cardType ? 0 : -1; }

int vCheckPortNo(u16 slot, u16 port) {
  if (port == kAllPorts) return 0;
  u16 card = 0, subtype = 0;
  if (sysGetSlotAuthedType(slot, &card, &subtype) != 0) return -1;
  return IsPortNoValidForCardType(card, subtype, port) == 1 ? 0 : -1;
}

// The sets differ in the option that an id stands for, and in nothing else.
static bool isValid(int (*optionOf)(u16, u32*), u16 id, u16 kind, u16 slot, u16 port, SnmpErrInfo* err, Where where) {
  if (err == nullptr) {
    printTrace(where, "error info para is NULL");
    return false;
  }
  if (vCheckSlotNo(slot, kind) != 0) {
    vSetErrorInfo(65534, &slot, sizeof slot, err);
    return false;
  }
  if (vCheckPortNo(slot, port) != 0) {
    vSetErrorInfo(65529, &port, sizeof port, err);
    return false;
  }
  ObjIndex object;
  if (SlotNoPortConvertObjIndex(slot, port == kAllPorts ? u16{0} : port, 0, &object) != 0) {
    vSetErrorInfo(kStepFailed, err);
    return false;
  }
  u32 option = 0;
  optionOf(id, &option);
  return checkObjErr(id, 0, &object, option, err) == 0;
}

int vIsOBJMValid(u16 id, u16 kind, u16 slot, u16 port, SnmpErrInfo* err) {
  return isValid(vSetObjCheckOption, id, kind, slot, port, err, Where::here());
}

int nIsOBJMValid(u16 id, u16 kind, u16 slot, u16 port, SnmpErrInfo* err) {
  return isValid(nSetObjCheckOption, id, kind, slot, port, err, Where::here());
}

int vGetSlotPortObjType(u16 slot, u16* cardType, u16* subtype, u16* portType) {
  if (portType == nullptr || sysGetSlotAuthedType(slot, cardType, subtype) != 0) return -1;
  return ddGetPortTypeByBoardType(*cardType, 1, portType) == 0 ? 0 : -1;
}

// --- Store and read ---

// The handle of a location, with the type of the slot's ports. 0 or -1, traced.
static int objectOf(u16 slot, u16 port, ObjIndex* object, Where where) {
  u16 card = 0, subtype = 0, portType = 0;
  if (vGetSlotPortObjType(slot, &card, &subtype, &portType) != 0) {
    printTrace(where, "get card type and it's port object type of slot %d failed", slot);
    return -1;
  }
  if (SlotNoPortConvertObjIndex(slot, port, portType, object) != 0) {
    printTrace(where, "convert slot %d port %d into OBJM index failed", slot, port);
    return -1;
  }
  return 0;
}

static int readNode(DataNode& node, u32 offset, u8* data, Where where) {
  ObjIndex object;
  if (objectOf(node.slot, node.port, &object, where) != 0) return -1;
  if (getObjAttrDataByCondition(&object, node.msgId, data, offset, static_cast<i32>(node.dataLen)) != 0) {
    printTrace(where, "get slot %d port %d OBJM data failed", node.slot, node.port);
    return -1;
  }
  return 0;
}

static int writeNode(const DataNode& node, u32 offset, Where where) {
  ObjIndex object;
  if (objectOf(node.slot, node.port, &object, where) != 0) return -1;
  const auto length = static_cast<i32>(node.dataLen);
  if (setObjAttrDataByCondition(&object, node.msgId, node.data, static_cast<i32>(offset), length) != 0) {
    printTrace(where, "set slot %d port %d OBJM data failed", node.slot, node.port);
    return -1;
  }
  return 0;
}

// Calls `each` on every node up to the first failure.
template <class Each>
static int forEachNode(LIST* list, Where where, Each each) {
  if (list == nullptr) {
    printTrace(where, "OBJM data list para is NULL");
    return -1;
  }
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    if (each(*static_cast<DataNode*>(at)) != 0) return -1;
  }
  return 0;
}

int vSetObjManageData(u16, LIST* list) {
  const Where where = Where::here();
  return forEachNode(list, where, [&](const DataNode& node) { return writeNode(node, 0, where); });
}

int vGetObjManageData(u16, LIST* list) {
  const Where where = Where::here();
  return forEachNode(list, where, [&](DataNode& node) { return readNode(node, 0, node.data, where); });
}

int nGetObjManageData(u16, u32 offset, LIST* list) {
  const Where where = Where::here();
  return forEachNode(list, where, [&](DataNode& node) { return readNode(node, offset, node.data, where); });
}

int nSetObjManageData(u16, u32 offset, LIST* list) {
  const Where where = Where::here();
  return forEachNode(list, where, [&](DataNode& node) {
    u8 stored[228] = {};
    if (node.dataLen > sizeof stored || readNode(node, 0, stored, where) != 0) return -1;
    node.data[0] = stored[0];
    return writeNode(node, offset, where);
  });
}

int vGetObjManageDataUnit(u16 slot, u16 port, u16, u32 attribute, u32 offset, u32 length, u8* data) {
  if (data == nullptr) {
    trace("OBJM data para is NULL");
    return -1;
  }
  DataNode node{};
  node.slot = slot;
  node.port = port;
  node.msgId = attribute;
  node.dataLen = length;
  return readNode(node, offset, data, Where::here());
}

int vGetObjManageDataHandle(u16 type, u32 attribute, u32 size, LIST* locations, LIST* out) {
  const int made = forEachNode(locations, Where::here(), [&](const DataNode& location) {
    if (vCreateDataNode(out, 1, size) != 0) return -1;
    auto* node = static_cast<DataNode*>(lstLast(out));
    node->slot = location.slot;
    node->port = location.port == kAllPorts ? u16{0} : location.port;
    node->msgId = attribute;
    return 0;
  });
  return made == 0 ? vGetObjManageData(type, out) : -1;
}

int vEraseObjManageData(const ObjIndex* object, u32 attribute, u16, const void* initial, u32 length) {
  if (setObjAttrDataByCondition(object, attribute, initial, 0, static_cast<i32>(length)) == 0) return 0;
  trace("erase OBJM data failed");
  return -1;
}

// --- Objects of a slot ---

static int walkSlot(u16 slot, std::span<const u16> types, LIST* objects, Where where = Where::here()) {
  ObjIndex target;
  // The system, or a slot with the type of its card. Ports are what is walked for: a target of this kind matches none.
  if (SlotNoPortConvertObjIndex(slot, 0, 0, &target) != 0) {
    printTrace(where, "convert slot %d port 0 into OBJM index failed", slot);
    return -1;
  }
  return ForEachTargetTree(&target, objects, 0, types.data(), static_cast<i32>(types.size()));
}

int vGetSlotObjIndexEx(u16 slot, u16 type, LIST* objects) {
  const u16 types[] = {type};
  return walkSlot(slot, types, objects);
}

int vGetSlotObjIndex(u16 slot, LIST* objects) {
  if (slot == 0) {
    static constexpr u16 types[] = {kPotsPort, kAdslPotsPort, kVdslPotsPort};
    return walkSlot(slot, types, objects);
  }
  u16 card = 0, subtype = 0, portType = 0;
  if (vGetSlotPortObjType(slot, &card, &subtype, &portType) != 0) {
    trace("get card type and it's port object type of slot %d failed", slot);
    return -1;
  }
  return vGetSlotObjIndexEx(slot, portType, objects);
}

// A node of the list for each object, read from the store. `locate` sets the node's location.
template <class Locate>
static int readObjects(LIST* objects, u32 attribute, u32 offset, u32 size, LIST* list, Locate locate,
                       Where where = Where::here()) {
  if (list == nullptr || vCreateDataNode(list, lstCount(objects), size) != 0) return -1;
  NODE* at = lstFirst(list);
  for (NODE* cell = lstFirst(objects); cell != nullptr; cell = lstNext(cell), at = lstNext(at)) {
    const auto* object = dataOf<const ObjIndex>(cell);
    auto* node = static_cast<DataNode*>(at);
    if (getObjAttrDataByCondition(object, attribute, node->data, offset, static_cast<i32>(size)) != 0) {
      printTrace(where, "get slot %d port %d OBJM data failed", object->addr[1], object->addr[2]);
      return -1;
    }
    locate(*node, *object);
  }
  return 0;
}

// The v set takes the location from the record.
static int readByRecord(LIST* objects, u32 attribute, u32 size, LIST* list, Where where = Where::here()) {
  const auto locate = [](DataNode& node, const ObjIndex&) {
    Location location;
    std::memcpy(&location, node.data, std::min<std::size_t>(sizeof location, node.dataLen));
    node.slot = location.slot;
    node.port = location.port;
  };
  return readObjects(objects, attribute, 0, size, list, locate, where);
}

int vGetSlotObjManageDataHandle(u16 slot, u32 attribute, u32 size, LIST* list) {
  ObjList objects;
  return vGetSlotObjIndex(slot, objects) == 0 ? readByRecord(objects, attribute, size, list) : -1;
}

int vGetSlotObjManageDataHandleEx(u16 slot, u16 type, u32 attribute, u32 size, LIST* list) {
  ObjList objects;
  return vGetSlotObjIndexEx(slot, type, objects) == 0 ? readByRecord(objects, attribute, size, list) : -1;
}

int nGetSlotObjManageDataHandle(u16 slot, u32 attribute, u32 offset, u32 size, LIST* list) {
  ObjList objects;
  if (vGetSlotObjIndex(slot, objects) != 0) return -1;
  return readObjects(objects, attribute, offset, size, list, [attribute](DataNode& node, const ObjIndex& object) {
    node.slot = object.addr[1];
    node.port = object.addr[2];
    node.msgId = attribute;
  });
}
