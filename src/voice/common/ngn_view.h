#pragma once
// Views of the running voice side, of the whole node and of POTS ports: a question to the voice side, its answer to a
// manager, and a command that shows it. Nothing is stored.
//
// A view is a row: what is asked, where the answer's fields stand and how they are shown, the form that a manager gets.
// Traces name the steps by the view's stem.

#include "voice/common/ngn_exchange.h"
#include "voice/common/voice_item.h"

// What a view is called, and how it is reached.
struct ViewNames {
  const char* stem;      // snmp_get_<stem>
  const char* showStem;  // cli_show_<showStem>_func
  const char* title;     // above a rule of so many dashes
  u32 dashes;
  const char* words;  // "get <words> successfully."
  const char* text;   // of the message
  const char* file = __builtin_FILE();
  int line = __builtin_LINE();

  Where at(const char* step) const { return {step, file, line, stem}; }
};

// The manager's form of an answer. 0, or -1 without one.
using BuildForm = int(WireIn answer, WireOut out, u32* length);

struct NodeView {
  u16 id;
  ViewNames names;
  u32 bytes;                   // of the record that is answered
  BuildForm* build = nullptr;  // null: the record as it came
  u32 mostReply;
  std::span<const ShownField> fields;
  bool showsSilence = false;  // without an answer: a record of zeros, and success
};

struct PortView {
  u16 id;
  ViewNames names;
  u32 unit;                    // bytes of an answered port, its location included
  u32 gap = 0;                 // behind each unit for a manager
  BuildForm* build = nullptr;  // in place of that
  u32 mostReply;
  std::span<const ShownField> fields;
};

// The title above its rule.
void showHeading(Vty* vty, const ViewNames& names);

int snmpGet(const NodeView& view, const SnmpCall& call);
int snmpGet(const PortView& view, const SnmpCall& call);
int showView(const NodeView& view, Vty* vty, int argc, char** argv);
int showView(const PortView& view, Vty* vty, int argc, char** argv);

// An interface string as a list of DataNodes; prints why not. 0 or -1.
int readPorts(Vty* vty, const char* ifStr, u32 attribute, u32 size, LIST* list);

// Widens a manager's list of locations: all ports of a slot become one location each, in their place. `out` holds a
// u32 count and kMaxLocations of them. 0 or -1.
inline constexpr u32 kMaxLocations = 1024;
int snmp_convert_msc(WireIn request, WireOut out, u32* count);
// Units with a gap behind each: the u32 count, then unit and gap in turns. The gaps are left as they are.
int build_snmp_cfm_packet(WireIn answer, u32 unit, u32 gap, WireOut out, u32* length);

template <const auto& view>
int viewGet(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGet(view, {id, last, data, length, reply, replyLen});
}
template <const auto& view>
int viewShow(const CommandElement*, Vty* vty, int argc, char** argv) {
  return showView(view, vty, argc, argv);
}
template <const auto& view>
constexpr SnmpMsgReg viewMessage() {
  return {view.id, {0, 0}, nullptr, viewGet<view>, view.mostReply, view.names.text};
}
