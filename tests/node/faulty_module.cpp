// A module that breaks a rule of the node with each of its commands: some always, some when a step of theirs fails.

#include <cstdio>
#include <cstring>

#include "msan/entries.h"
#include "platform/cards.h"
#include "platform/command_line.h"
#include "platform/database.h"
#include "platform/log.h"
#include "platform/module_registry.h"
#include "platform/pool.h"
#include "platform/voice_mode.h"
#include "platform/wrappers.h"

namespace {

i32 pool = 0;
SemaphoreId semaphore = 0;
void* kept = nullptr;  // lives as long as the module
bool deaf = false;
bool changed = false;

void* take(u32 size, i32 line) { return mpuAlloc_(pool, size, "faulty", line); }

// The first block is left when the second can't be had.
int leak() {
  void* const first = take(8, 1);
  void* const second = take(16, 2);
  if (second == nullptr) return -1;
  mpuFree(first);
  mpuFree(second);
  return 0;
}

// Breaks nothing; gives the number of blocks that could be had.
int count() {
  void* const blocks[] = {take(8, 6), take(8, 7)};
  int had = 0;
  for (void* const block : blocks) had += block != nullptr ? 1 : 0;
  for (void* const block : blocks) mpuFree(block);
  return had;
}

int crash() {
  auto* const block = static_cast<volatile char*>(take(8, 3));
  block[0] = 1;
  mpuFree(const_cast<char*>(block));
  return 0;
}

int hold() {
  bep_semTakeEx(semaphore, -1);
  void* const block = take(8, 4);
  if (block == nullptr) return -1;
  mpuFree(block);
  return bep_semGiveEx(semaphore);
}

// The transaction stays open when its connection's twin can't be had.
int open() {
  const DbConnection connection = dbCommon_getConnectRes();
  const DbConnection other = dbCommon_getConnectRes();
  if (other == nullptr) return -1;
  dbCommon_freeConnectRes(other);
  dbCommon_freeConnectRes(connection);
  return 0;
}

// Says that all is well without a connection.
int keepQuiet() {
  const DbConnection connection = dbCommon_getConnectRes();
  if (connection != nullptr) dbCommon_freeConnectRes(connection);
  return 0;
}

int goDeaf() {
  const u8 payload[] = {1};
  deaf = dm_MakeCmdPkt_GPON(3, 7, payload, sizeof payload) != 0;
  return 0;
}

// Where nothing can be had a card is told; deaf if it can't be.
int undo() {
  void* const block = take(8, 8);
  mpuFree(block);
  return block == nullptr ? goDeaf() : 0;
}

int change() {
  changed = true;
  return 0;
}

int print(Vty* vty) {
  std::puts("first");
  ulogPrintf(1, 10, "a debug line parts nothing");
  std::printf("second\r\nthi");
  trigger_obj_crc(9, 0, 0, 3087, 3);
  std::fputs("rd", stderr);
  job_add(6, set_voice_module_mode, 1, 2, 0, 0, 0, 0, 0, 0);
  ulogPrintf(1, 13, "\r\n an error. \r\n");
  vty_out(vty, "\r\n text\n");
  return -3;
}

int run(const CommandElement*, Vty* vty, int, char** argv) {
  if (std::strcmp(argv[0], "leak") == 0) return leak();
  if (std::strcmp(argv[0], "count") == 0) return count();
  if (std::strcmp(argv[0], "crash") == 0) return crash();
  if (std::strcmp(argv[0], "hold") == 0) return hold();
  if (std::strcmp(argv[0], "open") == 0) return open();
  if (std::strcmp(argv[0], "quiet") == 0) return keepQuiet();
  if (std::strcmp(argv[0], "deaf") == 0) return goDeaf();
  if (std::strcmp(argv[0], "undo") == 0) return undo();
  if (std::strcmp(argv[0], "change") == 0) return change();
  if (std::strcmp(argv[0], "print") == 0) return print(vty);
  return 0;
}

const CommandElement doCommand{"do <what>", run, "breaks a rule"};

int install() { return install_element(CONFIG_NODE, &doCommand); }

// What `do change` changes is printed by a line that does not bring it back.
int showrun(Vty* vty) {
  vty_out(vty, "do nothing\r\n");
  if (changed) vty_out(vty, "do something\r\nno command\r\n");
  return deaf ? -1 : 0;
}

}  // namespace

extern "C" {

int msan_Module_Init() {
  pool = mpuCreate("FaultyPool", 1000, 1, 1);
  semaphore = bep_semBCreateEx(0, 1);
  kept = take(32, 5);
  cl_install_module_by_mod_id(modInitRegister("faulty", 0, nullptr, nullptr, 0, 0, 0), install, showrun);
  return 0;
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
