#pragma once
// What the rows of items say alike, whatever the road that takes them.

#include <type_traits>

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"

struct ItemMessage {
  SnmpSetHandler* set = nullptr;
  SnmpGetHandler* get = nullptr;
  u32 mostReply = 0;  // of the GET
  const char* text = nullptr;
};

// A step that takes the item's record, as the row holds it.
template <auto Function>
struct OnRecord;
template <class R, void (*Function)(Vty*, const R*)>
struct OnRecord<Function> {
  static void call(Vty* vty, const void* cfg) { Function(vty, static_cast<const R*>(cfg)); }
};
template <class R, class Result, Result (*Function)(const R*, Writer&)>
struct OnRecord<Function> {
  static Result call(const void* cfg, Writer& out) { return Function(static_cast<const R*>(cfg), out); }
};
template <class R, int (*Function)(const R*, SnmpErrInfo*)>
struct OnRecord<Function> {
  static int call(const void* cfg, SnmpErrInfo* err) { return Function(static_cast<const R*>(cfg), err); }
};
template <class R, int (*Function)(R*, SnmpErrInfo*)>
  requires(!std::is_const_v<R>)
struct OnRecord<Function> {
  static int call(void* cfg, SnmpErrInfo* err) { return Function(static_cast<R*>(cfg), err); }
};
template <class R, int (*Function)(Reader&, R*, SnmpErrInfo*)>
struct OnRecord<Function> {
  static int call(Reader& in, void* cfg, SnmpErrInfo* err) { return Function(in, static_cast<R*>(cfg), err); }
};
template <class R, int (*Function)(const R*)>
struct OnRecord<Function> {
  static int call(const void* cfg) { return Function(static_cast<const R*>(cfg)); }
};
template <auto Function>
inline constexpr auto onRecord = OnRecord<Function>::call;
