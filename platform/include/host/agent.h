#pragma once
// The agent's side of the hooks.

#include <optional>
#include <string>
#include <vector>

#include "platform/snmp_agent.h"

namespace host {

inline constexpr u32 kReplyCapacity = 400000;

struct Announced {
  u16 id = 0;
  std::string text;
};
// In the order in which they were announced.
std::vector<Announced> announcedMessages();
std::string messageName(u16 id);  // empty for an id that was not announced

// The module's hooks, for a caller with a reply buffer of its own. Null before they are registered.
struct Hooks {
  SnmpWrite* write = nullptr;
  SnmpRead* read = nullptr;
};
Hooks agentHooks();

// What a hook gave.
struct Answer {
  int result = 0;                        // of the hook
  std::optional<std::vector<u8>> reply;  // none when replyLen was not set
  u8 last = 0;                           // GET: lastFlagOut
};

// The hooks, with a zeroed reply buffer of the capacity. Null `frame`: no frame at all. The frame is written to.
Answer agentSet(u16 id, bool last, std::vector<u8>* frame);
Answer agentGet(u16 id, std::vector<u8>* frame);

// Zeroes the thread's reply buffer already now, while nobody waits.
void zeroReply();

void forgetAgent();

}  // namespace host
