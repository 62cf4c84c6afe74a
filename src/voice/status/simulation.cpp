#include "voice/status/simulation.h"

#include <cstdio>
#include <cstring>

#include "common/debug_control.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "voice/common/voice_packets.h"

static constexpr u32 kArea = 32;       // of a request
static constexpr u32 kReplyArea = 36;  // of a reply

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
  WireIn area;
  if (checkPortsFrame(simulation.ports, call.data, call.length, area, &err) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  DataList list;
  if (parsePorts(simulation.ports, area, list) != 0) return answerFailed(call, "parse configuration failed", where);
  if (checkPorts(simulation.ports, list, &err) != 0) return answerError(call, err, "check configuration failed", where);
  *ports = static_cast<u32>(lstCount(list));
  return 0;
}

int snmpSimulate(const Simulation& simulation, const SnmpCall& call) {
  const Where where = simulation.names.at("*");
  if (beginRequest(simulation.ports.id, call, simulation.asks, where) != 0) return -1;
  u32 ports = 0;
  if (acceptPorts(simulation, call, &ports, where) != 0) return -1;
  // The request goes on as it came, and its answer straight to where the manager's begins.
  const WireIn request(call.data + kArea, static_cast<u32>(call.length) - kArea);
  const WireOut reply(call.reply + kReplyArea, simulation.mostReply());
  const auto answered = askNgn(simulation.ports.id, request, reply.first(4 + ports * simulation.answerUnit));
  if (!answered) return answerFailed(call, "build SNMP command 0x%04X confirm packet failed", where);
  u32 length = *answered;
  if (build_snmp_from_mgc(reply, &length, simulation.answerUnit, Simulation::kGap) != 0)
    return answerFailed(call, "build_snmp_from_mgc failed", where);
  return answerSuccess(call, length + kArea);
}

// --- Commands ---

static int failed(u16 code, SnmpErrInfo* err) {
  vSetErrorInfo(code, err);
  return -1;
}

// Checks the ports, but not during recovery, and asks. 0, or -1 with the code of the failure.
static int askPorts(const Simulation& simulation, LIST* ports, WireOut answer, SnmpErrInfo* err) {
  if (inRecoverConfProcess() != 1 && checkPorts(simulation.ports, ports, err) != 0) return -1;
  const u32 bytes = 4 + simulation.ports.unit() * static_cast<u32>(lstCount(ports));
  u8* memory = nullptr;
  if (vMemAlloc(&memory, static_cast<i32>(bytes)) != 0) return failed(kEncodeFailed, err);
  const PoolBytes owner(memory);
  Writer out(WireOut(memory, bytes));
  if (encodePorts(simulation.ports, ports, out) != 0) return failed(kEncodeFailed, err);
  if (askNgn(simulation.ports.id, WireIn(memory, out.length()), answer)) return 0;
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
