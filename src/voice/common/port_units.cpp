#include "voice/common/port_units.h"

#include <string_view>
#include <unordered_map>

#include "common/memory.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_msc.h"
#include "voice/common/voice_snmp.h"

static constexpr u32 kArea = 32;      // of a request
static constexpr u16 kSendSlot = 18;  // for trace lines

int checkPortsFrame(const PortUnits& units, const u8* data, i32 length, WireIn& area, SnmpErrInfo* err) {
  const i32 rest = length - static_cast<i32>(kArea);
  if (nCheckSnmpItemsLength(data + kArea, rest, units.unit(), 4, 1, units.maximum, err) != 0) return -1;
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
    node->msgId = units.attribute;
    if (units.shape != nullptr) parseRecord(units.shape->fields, wire + units.location, node->data);
  }
  return 0;
}

int checkPorts(const PortUnits& units, LIST* list, SnmpErrInfo* err) {
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    if (units.valid(units.id, units.kind, node->slot, node->port, err) != 1) return -1;
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
    putNumber(unit, 2, node->slot);
    putNumber(unit + 2, 2, node->port);
    if (units.shape != nullptr) encodeRecord(units.shape->fields, node->data, unit + kLocation);
  }
  return 0;
}

u16 sendPortBytes(const PortUnits& units, const u8* payload, u32 length) {
  DataList sends;
  if (vBuildMscPacketI(kSendSlot, units.id, 0, payload, length, sends) != 0) return kBuildFailed;
  return vSendMscPacketI(sends) == 0 ? 0 : u16{kSendFailed};
}

u16 sendPorts(const PortUnits& units, LIST* list) {
  const u32 bytes = 4 + (kLocation + units.body() + units.slack) * static_cast<u32>(lstCount(list));
  u8* payload = nullptr;
  if (vMemAlloc(&payload, static_cast<i32>(bytes)) != 0) return kEncodeFailed;
  const PoolBytes owner(payload);
  Writer out(WireOut(payload, bytes));
  if (encodePorts(units, list, out) != 0) return kEncodeFailed;
  return sendPortBytes(units, payload, bytes);
}

const DataNode* firstTwice(LIST* list, UniqueText text) {
  struct First {
    int at;
    const DataNode* node;
  };
  std::unordered_map<std::string_view, First> seen;
  const First* first = nullptr;
  int i = 0;
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at), ++i) {
    const auto* node = static_cast<const DataNode*>(at);
    const std::string_view bytes(reinterpret_cast<const char*>(node->data) + text.at, text.width);
    if (!text.emptyCounts && bytes.front() == '\0') continue;
    const auto [known, fresh] = seen.try_emplace(bytes, First{i, node});
    if (!fresh && (first == nullptr || known->second.at < first->at)) first = &known->second;
  }
  return first != nullptr ? first->node : nullptr;
}

// The ports of a GET with their records; all ports' records begin as those of the item do.
static int gatherPorts(const PortUnits& units, const SnmpCall& call, u32 bytes, int (*read)(LIST* list), LIST* list,
                       Where where) {
  constexpr u32 kWholeRecord = 228;
  SnmpErrInfo err;
  const WireIn area(call.data + kArea, static_cast<u32>(call.length) - kArea);
  if (getNumber(area.data(), 4) == 0)
    return nGetSlotObjManageDataHandle(0, units.attribute, 0, kWholeRecord, list) == 0
               ? 0
               : answerFailed(call, "get configuration failed", where);
  u32 count = 0;
  if (nParsePortLocationHandle(area, units.attribute, bytes, &count, list) != 0)
    return answerFailed(call, "parse configuration failed", where);
  if (count > kMostAnswered) {
    vSetErrorInfo(kBadCount, &count, sizeof count, &err);
    return answerError(call, err, "invalid SNMP command para", where);
  }
  if (nCheckPortLocationHandle(list, units.id, &err) != 0)
    return answerError(call, err, "check configuration failed", where);
  return read(list) == 0 ? 0 : answerFailed(call, "get configuration failed", where);
}

int snmpGetPorts(const PortUnits& units, const SnmpCall& call, u32 bytes, int (*read)(LIST* list), Where where) {
  constexpr u32 kReplyArea = 36;
  if (beginRequest(units.id, call, Asks::something, where) != 0) return -1;
  SnmpErrInfo err;
  const i32 length = call.length - static_cast<i32>(kArea);
  if (nCheckSnmpItemsLength(call.data + kArea, length, kLocation, 4, 0, units.maximum, &err) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  DataList list;
  if (gatherPorts(units, call, bytes, read, list, where) != 0) return -1;
  Writer out(WireOut(call.reply, kMaxPacket).subspan(kReplyArea));
  if (encodePorts(units, list, out) != 0) return answerFailed(call, "SNMP confirm encode failed", where);
  return answerSuccess(call, out.length() + kReplyArea - 4);
}
