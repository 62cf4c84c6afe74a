#pragma once
// The road of the call simulation: an order or a question for a list of POTS ports goes to the voice side, whose answer
// is shown or handed to a manager at once. Nothing is stored. A message is a row.
//
// Requests are big-endian; the answers' numbers stand as the processor keeps them, also in what a manager gets.

#include "voice/common/ngn_view.h"
#include "voice/common/port_units.h"

struct Simulation {
  PortUnits ports;  // as they are asked for
  // The stems are the whole names of the manager's handler and of the command's operation, the words those of its last
  // line: "<words> successfully."
  ViewNames names;
  Asks asks = Asks::orders;
  u32 answerUnit;
  std::span<const ShownField> fields;

  constexpr u32 mostReply() const { return 4 + kMaxLocations * (answerUnit + kGap); }
  static constexpr u32 kGap = 480;  // behind each unit in a manager's answer
};

int snmpSimulate(const Simulation& simulation, const SnmpCall& call);
// From the list of ports on, with their records in it: checks, asks, shows.
int simulate(Vty* vty, const Simulation& simulation, LIST* ports);

// Spreads an answer in place: its count as it came, each unit with a gap of zeros behind it. 0, or -1 for null, a count
// that the length does not bear out, or a buffer that is too small.
int build_snmp_from_mgc(WireOut buffer, u32* length, u32 unit, u32 gap);

template <const Simulation& simulation>
int simulationGet(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpSimulate(simulation, {id, last, data, length, reply, replyLen});
}
template <const Simulation& simulation>
constexpr SnmpMsgReg simulationMessage() {
  return {simulation.ports.id,  {0, 0}, nullptr, simulationGet<simulation>, simulation.mostReply(),
          simulation.names.text};
}
