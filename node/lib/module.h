#pragma once
// libmsan.so, loaded.

#include <stdexcept>
#include <string>

#include "msan/entries.h"

namespace node {

// A file that is no library, one that is no module, or one that is in the process already: it would come with the state
// of its last life.
struct LoadError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class Module {
 public:
  // Loads the library and finds its entries. Throws LoadError, with the loader's words.
  explicit Module(const std::string& path);
  // Unloads it. Ahead of that: forgets what it registered and reports what it leaked. Behind it: drops its pools, and
  // complains if the library has stayed in the process.
  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  // True if a library of this path is in the process.
  static bool isLoaded(const std::string& path);

  // Looks for leaks now; false in a build without leak checks. A check takes the longer the more often libraries came
  // and went: a program that loads many times can leave out those at unloading and look once at its end.
  static bool findsLeaks();
  static void checkAtUnloading(bool check);

  // What the leak checks ahead of unloading found, since the process began. 0 in a build without leak checks.
  static int leaksFound();

  // A further function that the library exports; null if there is none of the name.
  void* exported(const char* name) const;

  decltype(&::msan_Module_Init) Module_Init;
  decltype(&::msan_slot_hotplug) slot_hotplug;
  decltype(&::msan_card_auth_init_db) card_auth_init_db;
  decltype(&::msan_card_unauth_init_db) card_unauth_init_db;
  decltype(&::msan_init_after_cfgexecute) init_after_cfgexecute;
  decltype(&::msan_register_events) register_events;
  decltype(&::msan_unregister_events) unregister_events;
  decltype(&::msan_slave_flush) slave_flush;
  decltype(&::msan_get_attribute) get_attribute;
  decltype(&::msan_port_test_command) port_test_command;  // null in a library without it

 private:
  void findEntries();

  std::string path_;
  void* handle_;
};

}  // namespace node
