#include "voice/status/simulation.h"

#include <cstdio>
#include <cstring>

#include "common/debug_control.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "voice/common/voice_obj.h"
#include "voice/common/voice_packets.h"

static_assert(Simulation::kLocation == kLocation);
static constexpr u32 kArea = 32;       // of a request
static constexpr u32 kReplyArea = 36;  // of a reply
static constexpr u32 kMostAsked = 960;

// --- Ports and their records ---

static int parsePorts(const Simulation& simulation, WireIn area, LIST* list) {
  Reader in(area);
  const u32 count = in.number(4);
  const u32 unit = simulation.unit();
  if (in.failed() || in.rest().size() / unit < count) return -1;
  if (vCreateDataNode(list, static_cast<i32>(count), simulation.bytes) != 0) return -1;
  WireIn rest = in.rest();
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at), rest = rest.subspan(unit)) {
    Location location;
    if (nParsePortLocation(rest, &location) != 0) return -1;
    auto* node = static_cast<DataNode*>(at);
    node->slot = location.slot;
    node->port = location.port;
    if (simulation.shape != nullptr) parseRecord(simulation.shape->fields, rest.data() + kLocation, node->data);
  }
  return 0;
}

static int checkPorts(const Simulation& simulation, LIST* list, SnmpErrInfo* err) {
  if (simulation.shape == nullptr) return nCheckPortLocationHandle(list, simulation.id, err);
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    if (nIsOBJMValid(simulation.id, kPotsCardKind, node->slot, node->port, err) != 1) return -1;
    const int bad = simulation.check != nullptr ? simulation.check(node->data, err)
                                                : checkRecord(simulation.shape->fields, node->data, err);
    if (bad != 0) return -1;
  }
  return simulation.checkList != nullptr ? simulation.checkList(list, err) : 0;
}

// The request for the ports; reserved bytes are left as they are.
static int encodePorts(const Simulation& simulation, LIST* list, Writer& out) {
  out.number(4, static_cast<u32>(lstCount(list)));
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    u8* unit = out.skip(simulation.unit());
    if (unit == nullptr) return -1;
    putNumber(unit, 2, node->slot);
    putNumber(unit + 2, 2, node->port);
    if (simulation.shape != nullptr) encodeRecord(simulation.shape->fields, node->data, unit + kLocation);
  }
  return 0;
}

// --- SNMP ---

static int spreadError(const char* words) {
  if (debugOn(Area::voice)) std::printf("\r\n build_snmp_from_mgc %s. \r\n", words);
  return -1;
}

int build_snmp_from_mgc(WireOut buffer, u32* length, u32 unit, u32 gap) {
  if (buffer.data() == nullptr || length == nullptr) return spreadError("input error1");
  const u64 count = numberIn(buffer, 0, 4, ByteOrder::host);
  if (*length < 4 || *length != count * unit + 4 || buffer.size() < count * (unit + gap) + 4)
    return spreadError("input error2");
  // From the last unit on: none is written over before it has been moved.
  for (u64 i = count; i-- > 0;) {
    u8* to = buffer.data() + 4 + i * (unit + gap);
    std::memmove(to, buffer.data() + 4 + i * unit, unit);
    std::memset(to + unit, 0, gap);
  }
  *length = static_cast<u32>(count * (unit + gap) + 4);
  return 0;
}

// Frame, parse and check. 0 with the number of ports, or the answered failure.
static int acceptPorts(const Simulation& simulation, const SnmpCall& call, u32* ports, Where where) {
  SnmpErrInfo err;
  const i32 length = call.length - static_cast<i32>(kArea);
  if (nCheckSnmpItemsLength(call.data + kArea, length, simulation.unit(), 4, 1, kMostAsked, &err, where) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  DataList list;
  if (parsePorts(simulation, WireIn(call.data + kArea, static_cast<u32>(length)), list) != 0)
    return answerFailed(call, "parse configuration failed", where);
  if (checkPorts(simulation, list, &err) != 0) return answerError(call, err, "check configuration failed", where);
  *ports = static_cast<u32>(lstCount(list));
  return 0;
}

int snmpSimulate(const Simulation& simulation, const SnmpCall& call) {
  const Where where = simulation.names.at("*");
  if (beginRequest(simulation.id, call, simulation.asks, where) != 0) return -1;
  u32 ports = 0;
  if (acceptPorts(simulation, call, &ports, where) != 0) return -1;
  // The request goes on as it came, and its answer straight to where the manager's begins.
  const WireIn request(call.data + kArea, static_cast<u32>(call.length) - kArea);
  const WireOut reply(call.reply + kReplyArea, simulation.mostReply());
  const auto answered = askNgn(simulation.id, request, reply.first(4 + ports * simulation.answerUnit));
  if (!answered) return answerFailed(call, "build SNMP command 0x%04X confirm packet failed", where);
  u32 length = *answered;
  if (build_snmp_from_mgc(reply, &length, simulation.answerUnit, Simulation::kGap) != 0)
    return answerFailed(call, "build_snmp_from_mgc failed", where);
  if (call.lastFlagOut != nullptr) *call.lastFlagOut = 1;
  return answerSuccess(call, length + kArea);
}

// --- Commands ---

static int failed(u16 code, SnmpErrInfo* err) {
  vSetErrorInfo(code, nullptr, 0, err);
  return -1;
}

// Checks the ports, but not during recovery, and asks. 0, or -1 with the code of the failure.
static int askPorts(const Simulation& simulation, LIST* ports, WireOut answer, SnmpErrInfo* err) {
  if (inRecoverConfProcess() != 1 && checkPorts(simulation, ports, err) != 0) return -1;
  const u32 bytes = 4 + simulation.unit() * static_cast<u32>(lstCount(ports));
  u8* memory = nullptr;
  if (vMemAlloc(&memory, static_cast<i32>(bytes)) != 0) return failed(kEncodeFailed, err);
  const PoolBytes owner(memory);
  Writer out(WireOut(memory, bytes));
  if (encodePorts(simulation, ports, out) != 0) return failed(kEncodeFailed, err);
  if (askNgn(simulation.id, WireIn(memory, out.length()), answer)) return 0;
  printTrace({"*", simulation.names.file, simulation.names.line, simulation.names.showStem}, "readNgnCmd failed");
  return failed(kStepFailed, err);
}

int simulate(Vty* vty, const Simulation& simulation, LIST* ports) {
  const u32 count = static_cast<u32>(lstCount(ports));
  const u32 bytes = 4 + simulation.answerUnit * count;
  u8* memory = nullptr;
  if (vMemAlloc(&memory, static_cast<i32>(bytes)) != 0) return refuse(vty, "MSAN_MALLOC pRecBuf failed");
  const PoolBytes owner(memory);
  SnmpErrInfo err;
  if (askPorts(simulation, ports, WireOut(memory, bytes), &err) != 0) {
    vty_out(vty, "\r\n %s failed(%d). \r\n", simulation.names.words, static_cast<i16>(err.errCode));
    return -1;
  }
  showHeading(vty, simulation.names);
  // As many units as were asked for; what the answer does not hold is zero.
  for (WireIn units(memory + 4, bytes - 4); !units.empty(); units = units.subspan(simulation.answerUnit))
    showFields(vty, simulation.fields, units.first(simulation.answerUnit), ByteOrder::host);
  vty_out(vty, "\r\n %s successfully. \r\n", simulation.names.words);
  return 0;
}
