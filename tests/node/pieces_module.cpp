// A module whose answers come in pieces: message 1 in those that a datagram holds, message 2 in the largest that there
// are. A piece is filled with its number. The first byte of the first piece is that of the GET's frame, if it has one.

#include <algorithm>

#include "msan/entries.h"
#include "platform/module_registry.h"
#include "platform/snmp_agent.h"

namespace {

struct Answer {
  u32 sizes[3];
  u8 given;  // pieces
};
Answer answers[] = {{{60000, 60000, 7}, 0}, {{400000, 400000, 1}, 0}};

int write(u16, u8, u8*, i32, u8*, u32*, void*, void*) { return 0; }

int read(u16 id, u8* lastFlagOut, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  if (id != 1 && id != 2) return 0;
  Answer& answer = answers[id - 1];
  *replyLen = answer.sizes[answer.given];
  std::fill_n(reply, *replyLen, ++answer.given);
  if (answer.given == 1 && length > 0) reply[0] = data[0];
  *lastFlagOut = answer.given == 3 ? 1 : 0;
  if (answer.given == 3) answer.given = 0;
  return 1;
}

}  // namespace

extern "C" {

int msan_Module_Init() {
  const i32 id = modInitRegister("pieces", 0, nullptr, nullptr, 0, 0, 0);
  installSnmpCommand(1, "Pieces of a datagram", 1, 1, id);
  installSnmpCommand(2, "Largest pieces", 1, 1, id);
  return RegisterHookFunc(write, read, id) == 1 ? 0 : -1;
}

int msan_slot_hotplug(u16) { return 0; }
int msan_card_auth_init_db(u16) { return 0; }
int msan_card_unauth_init_db(u16) { return 0; }
int msan_init_after_cfgexecute() { return 0; }
int msan_register_events(DbConnectionData*) { return 0; }
int msan_unregister_events(DbConnectionData*) { return 0; }
int msan_slave_flush() { return 0; }
int msan_get_attribute(u16, u16, u32, void*, u32) { return -54; }

}  // extern "C"
