#include "voice/common/port_units.h"

#include "voice/common/voice_packets.h"
#include "voice/common/voice_snmp.h"

static constexpr u32 kArea = 32;  // of a request

int checkPortsFrame(const PortUnits& units, const u8* data, i32 length, WireIn& area, SnmpErrInfo* err, Where where) {
  const i32 rest = length - static_cast<i32>(kArea);
  if (nCheckSnmpItemsLength(data + kArea, rest, units.unit(), 4, 1, kMostPorts, err, where) != 0) return -1;
  area = WireIn(data + kArea, static_cast<u32>(rest));
  return 0;
}

int parsePorts(const PortUnits& units, WireIn area, LIST* list) {
  Reader in(area);
  const u32 count = in.number(4);
  const u32 unit = units.unit();
  if (in.failed() || in.rest().size() / unit < count) return -1;
  if (vCreateDataNode(list, static_cast<i32>(count), units.bytes) != 0) return -1;
  const u8* wire = in.rest().data();
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at), wire += unit) {
    auto* node = static_cast<DataNode*>(at);
    node->slot = static_cast<u16>(getNumber(wire, 2));
    node->port = static_cast<u16>(getNumber(wire + 2, 2));
    if (units.shape != nullptr) parseRecord(units.shape->fields, wire + units.location, node->data);
  }
  return 0;
}

int checkPorts(const PortUnits& units, LIST* list, SnmpErrInfo* err) {
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    if (units.valid(units.id, kPotsCardKind, node->slot, node->port, err) != 1) return -1;
    if (units.shape == nullptr) continue;
    if ((units.check != nullptr ? units.check(node->data, err) : checkRecord(units.shape->fields, node->data, err)) !=
        0)
      return -1;
  }
  return units.checkList != nullptr ? units.checkList(list, err) : 0;
}

int encodePorts(const PortUnits& units, LIST* list, Writer& out) {
  out.number(4, static_cast<u32>(lstCount(list)));
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    u8* unit = out.skip(kLocation + units.body());
    if (unit == nullptr) return -1;
    putNumber(unit, 2, node->slot);
    putNumber(unit + 2, 2, node->port);
    if (units.shape != nullptr) encodeRecord(units.shape->fields, node->data, unit + kLocation);
  }
  return 0;
}
