// A module that does nothing but note in the log what is asked of it.

#include <cstring>

#include "msan/entries.h"
#include "platform/command_line.h"
#include "platform/log.h"
#include "platform/module_registry.h"
#include "platform/objects.h"
#include "platform/pool.h"

namespace {

i32 pool = 0;
int starts = 0;  // above 1 in a library that was not loaded afresh
void* kept = nullptr;

// Gives a block back while the library is unloaded, as the module's statics may.
const struct AtUnload {
  ~AtUnload() { mpuFree(kept); }
} atUnload;

int note(const char* what, int number) {
  ulogPrintf(1, 13, "%s %d", what, number);
  return number;
}

int loadCallback() { return note("load callback, fast mode", is_cliFastMode()); }

int say(const CommandElement*, Vty* vty, int, char** argv) {
  ulogPrintf(1, 13, "say %s, fast mode %d", argv[0], is_cliFastMode());
  vty_out(vty, "said %s\r\n", argv[0]);
  if (std::strcmp(argv[0], "leak") == 0)
    for (int i = 0; i < 10; ++i) mpuAlloc_(pool, 1, __FILE__, __LINE__);
  return std::strcmp(argv[0], "no") == 0 ? -1 : 0;
}

const CommandElement sayCommand{"say <word>", say, "notes a word"};

int install() { return install_element(CONFIG_NODE, &sayCommand); }

int showrun(Vty* vty) {
  vty_out(vty, "!begin\r\nsay again\r\n");
  return 4;
}

}  // namespace

extern "C" {

int msan_Module_Init() {
  const i32 id = modInitRegister("fake", 0, loadCallback, nullptr, 0, 0, 0);
  pool = mpuCreate("FakePool", 100, 1, 1);
  kept = mpuAlloc_(pool, 10, __FILE__, __LINE__);
  if (kept == nullptr) return -5;
  cl_install_module_by_mod_id(id, install, showrun);
  note("start", ++starts);
  return 0;
}

int msan_slot_hotplug(u16 slot) { return note("hotplug", slot); }
int msan_card_auth_init_db(u16 slot) { return note("auth of type", get_config_card_type(slot)); }
int msan_card_unauth_init_db(u16 slot) { return note("unauth of type", get_config_card_type(slot)); }
int msan_init_after_cfgexecute() { return note("after startup, fast mode", is_cliFastMode()); }
int msan_register_events(DbConnectionData*) { return 0; }
int msan_unregister_events(DbConnectionData*) { return 0; }
int msan_slave_flush() { return 0; }
int msan_get_attribute(u16, u16, u32, void*, u32) { return -54; }

}  // extern "C"
