// Lists of ports: from interface strings and from the wire, extended and checked.

#include <cstring>

#include "common/interface_list.h"
#include "platform/objects.h"
#include "voice/common/voice_msc.h"
#include "voice/common/voice_obj.h"

int nSetPortObjList(LIST* addresses, u32 attribute, u32 size, LIST* out) {
  if (addresses == nullptr) {
    trace("address list para is NULL");
    return -1;
  }
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    if (vCreateDataNode(out, 1, size) != 0) return -1;
    const auto* address = dataOf<const CliAddr>(cell);
    auto* node = static_cast<DataNode*>(lstLast(out));
    node->slot = address->slot;
    node->port = address->port;
    node->msgId = attribute;
  }
  return 0;
}

int vSetPortObjList(LIST* addresses, u32 attribute, u32 size, LIST* out) {
  return nSetPortObjList(addresses, attribute, size, out);
}

int vSetSlotObjList(LIST* addresses, u32 attribute, LIST* out) {
  NODE* first = addresses != nullptr ? lstFirst(addresses) : nullptr;
  if (first == nullptr || dataOf<const CliAddr>(first)->port != 0) {
    trace("invalid slot location list");
    return -1;
  }
  if (nSetPortObjList(addresses, attribute, kLocation, out) != 0) return -1;
  for (NODE* at = lstFirst(out); at != nullptr; at = lstNext(at)) {
    auto* node = static_cast<DataNode*>(at);
    node->port = kAllPorts;
    const Location location{node->slot, kAllPorts};
    std::memcpy(node->data, &location, sizeof location);
  }
  return 0;
}

int nSetPortObjDataList(const void* record, LIST* list) {
  if (record == nullptr || list == nullptr) {
    trace("OBJM data list para is NULL");
    return -1;
  }
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    auto* node = static_cast<DataNode*>(at);
    std::memcpy(node->data, record, node->dataLen);
  }
  return 0;
}

int nCreatePortDataNode(LIST* list, u16 slot, u16 count, u32 attribute, u32 size) {
  for (u32 port = 1; port <= count; ++port) {
    if (vCreateDataNode(list, 1, size) != 0) return -1;
    auto* node = static_cast<DataNode*>(lstLast(list));
    node->slot = slot;
    node->port = static_cast<u16>(port);
    node->msgId = attribute;
  }
  return 0;
}

// Replaces each node that means all ports by what `extend` appends for it: single ports, which the walk passes by.
template <class PortOf, class Extend>
static int extendAll(LIST* list, PortOf portOf, Extend extend, Where where) {
  if (list == nullptr) {
    printTrace(where, "location list para is NULL");
    return -1;
  }
  for (NODE* at = lstFirst(list); at != nullptr;) {
    auto* node = static_cast<DataNode*>(at);
    at = lstNext(at);
    if (portOf(*node) != kAllPorts) continue;
    if (extend(*node) != 0) return -1;
    vFreeDataNode(list, node);
  }
  return 0;
}

static Location locationIn(const DataNode& node) {
  Location location;
  if (node.dataLen >= sizeof location) std::memcpy(&location, node.data, sizeof location);
  return location;
}

int vExtendPOTSPortList(LIST* list, u16 portType) {
  const Where where = Where::here();
  const auto extend = [&](const DataNode& node) {
    const u16 slot = locationIn(node).slot;
    u16 card = 0, subtype = 0, amount = 0;
    if (sysGetSlotAuthedType(slot, &card, &subtype) != 0) {
      printTrace(where, "get card type & subtype of slot %d failed", slot);
      return -1;
    }
    const u16 type = card == kAdslPotsCard ? kAdslPotsPort : card == kVdslPotsCard ? kVdslPotsPort : portType;
    if (getSlotPortNumberByType(card, subtype, type, &amount) != 0) {
      printTrace(where, "get port quantity of slot %d failed", slot);
      return -1;
    }
    return vCreatePortDataNode(list, 0, slot, amount, kLocation);
  };
  return extendAll(
      list, [](const DataNode& node) { return locationIn(node).port; }, extend, where);
}

int nExtendPortObjList(LIST* list) {
  const Where where = Where::here();
  const auto extend = [&](const DataNode& node) {
    u16 card = 0, subtype = 0, portType = 0, amount = 0;
    if (vGetSlotPortObjType(node.slot, &card, &subtype, &portType) != 0 ||
        getSlotPortNumberByType(card, subtype, portType, &amount) != 0) {
      printTrace(where, "get port quantity of slot %d failed", node.slot);
      return -1;
    }
    return nCreatePortDataNode(list, node.slot, amount, node.msgId, node.dataLen);
  };
  return extendAll(
      list, [](const DataNode& node) { return node.port; }, extend, where);
}

int nParsePortLocation(WireIn location, Location* out) {
  if (location.size() < kLocation || out == nullptr) {
    trace("invalid location para");
    return -1;
  }
  out->slot = static_cast<u16>(getNumber(location.data(), 2));
  out->port = static_cast<u16>(getNumber(location.data() + 2, 2));
  return 0;
}

int vParsePOTSPortLocationCode(WireIn location, Location* record) { return nParsePortLocation(location, record); }

// Makes a node for each location behind the count, and lets `take` have both. 0 or -1.
template <class Take>
static int parseLocations(WireIn area, u32 size, u32* count, LIST* list, bool& all, Take take,
                          Where where = Where::here()) {
  if (area.size() < 4 || count == nullptr || list == nullptr) {
    printTrace(where, "invalid location para");
    return -1;
  }
  *count = getNumber(area.data(), 4);
  const u16 nodes = static_cast<u16>(*count);
  if (area.size() - 4 < std::size_t{nodes} * kLocation || vCreateDataNode(list, nodes, size) != 0) return -1;
  WireIn rest = area.subspan(4);
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    Location location;
    nParsePortLocation(rest, &location);
    take(*static_cast<DataNode*>(at), location);
    all = all || location.port == kAllPorts;
    rest = rest.subspan(kLocation);
  }
  return 0;
}

int vParsePOTSPortLocation(WireIn area, u16 portType, u32* count, LIST* list) {
  bool all = false;
  const auto take = [](DataNode& node, Location location) { std::memcpy(node.data, &location, sizeof location); };
  if (parseLocations(area, kLocation, count, list, all, take) != 0) return -1;
  return all ? vExtendPOTSPortList(list, portType) : 0;
}

int nParsePortLocationHandle(WireIn area, u32 attribute, u32 size, u32* count, LIST* list) {
  bool all = false;
  const auto take = [attribute](DataNode& node, Location location) {
    node.slot = location.slot;
    node.port = location.port;
    node.msgId = attribute;
  };
  if (parseLocations(area, size, count, list, all, take) != 0) return -1;
  if (!all) return 0;
  if (nExtendPortObjList(list) != 0) return -1;
  *count = static_cast<u32>(lstCount(list));
  return 0;
}

int nEncodePortLocation(const Location* location, WireOut wire, u32* length) {
  if (location == nullptr || length == nullptr || wire.size() < kLocation) {
    trace("invalid location para");
    return -1;
  }
  putNumber(wire.data(), 2, location->slot);
  putNumber(wire.data() + 2, 2, location->port);
  *length = kLocation;
  return 0;
}

int nEncodePortLocationHandle(LIST* list, WireOut wire, u32* length) {
  if (list == nullptr || length == nullptr || wire.size() < 4) {
    trace("invalid location para");
    return -1;
  }
  putNumber(wire.data(), 4, static_cast<u32>(lstCount(list)));
  u32 at = 4;
  for (NODE* cell = lstFirst(list); cell != nullptr; cell = lstNext(cell)) {
    const auto* node = static_cast<const DataNode*>(cell);
    const Location location{node->slot, node->port};
    u32 bytes = 0;
    if (nEncodePortLocation(&location, wire.subspan(at), &bytes) != 0) return -1;
    at += bytes;
  }
  *length = at;
  return 0;
}

int vCheckPOTSPortLocation(u16 id, u16 kind, const Location* record, SnmpErrInfo* err) {
  if (record == nullptr) {
    trace("location para is NULL");
    return -1;
  }
  return vIsOBJMValid(id, kind, record->slot, record->port, err) == 1 ? 0 : -1;
}

int vCheckPOTSPortLocationHandle(u16 id, u16 kind, LIST* list, SnmpErrInfo* err) {
  if (list == nullptr) {
    trace("location list para is NULL");
    return -1;
  }
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    auto* node = static_cast<DataNode*>(at);
    const Location location = locationIn(*node);
    if (vCheckPOTSPortLocation(id, kind, &location, err) != 0) return -1;
    node->slot = location.slot;
    node->port = location.port;
  }
  return 0;
}

int nCheckPortLocationHandle(LIST* list, u16 id, SnmpErrInfo* err) {
  if (list == nullptr) {
    trace("location list para is NULL");
    return -1;
  }
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    if (nIsOBJMValid(id, kPotsCardKind, node->slot, node->port, err) != 1) return -1;
  }
  return 0;
}

int nGetCurrentVoiceSlotNo(u16 id, u16* slots, u16* count) {
  if (slots == nullptr || count == nullptr) {
    trace("slot para is NULL");
    return -1;
  }
  *count = 0;
  for (u16 slot = 1; slot <= kVoiceSlots; ++slot) {
    SnmpErrInfo err;
    if (nIsOBJMValid(id, kPotsCardKind, slot, kAllPorts, &err) == 1) slots[(*count)++] = slot;
  }
  if (*count != 0) return 0;
  trace("there is no any voice card present");
  return -1;
}

int nGetCurrentVoicePortList(u16 id, u32 attribute, u32 size, LIST* list) {
  u16 slots[kVoiceSlots];
  u16 count = 0;
  if (nGetCurrentVoiceSlotNo(id, slots, &count) != 0) return -1;
  for (u16 i = 0; i < count; ++i) {
    if (vCreateDataNode(list, 1, size) != 0) return -1;
    auto* node = static_cast<DataNode*>(lstLast(list));
    node->slot = slots[i];
    node->port = kAllPorts;
    node->msgId = attribute;
  }
  return nExtendPortObjList(list);
}
