#include "module.h"

#include <dlfcn.h>

#include <atomic>
#include <stdexcept>

#include "host/jobs.h"
#include "host/log.h"
#include "host/pool.h"
#include "host/registry.h"

// There only in a build with leak checks.
extern "C" int __lsan_do_recoverable_leak_check() __attribute__((weak));

namespace node {

namespace {

std::atomic<int> leaks{0};
std::atomic<bool> checks{true};

LoadError loaderError() {
  const char* words = dlerror();
  return LoadError(words != nullptr ? words : "the library can't be loaded");
}

template <class Entry>
void find(void* library, const char* name, Entry& entry) {
  entry = reinterpret_cast<Entry>(dlsym(library, name));
  if (entry == nullptr) throw loaderError();
}

}  // namespace

Module::Module(const std::string& path) : path_(path), handle_(nullptr) {
  if (isLoaded(path_)) throw LoadError(path_ + ": is loaded already");
  handle_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) throw loaderError();
  try {
    findEntries();
  } catch (...) {
    dlclose(handle_);
    throw;
  }
}

void Module::findEntries() {
  find(handle_, "msan_Module_Init", Module_Init);
  find(handle_, "msan_slot_hotplug", slot_hotplug);
  find(handle_, "msan_card_auth_init_db", card_auth_init_db);
  find(handle_, "msan_card_unauth_init_db", card_unauth_init_db);
  find(handle_, "msan_init_after_cfgexecute", init_after_cfgexecute);
  find(handle_, "msan_register_events", register_events);
  find(handle_, "msan_unregister_events", unregister_events);
  find(handle_, "msan_slave_flush", slave_flush);
  find(handle_, "msan_get_attribute", get_attribute);
  port_test_command = static_cast<const CommandElement*>(dlsym(handle_, "msan_port_test_command"));
}

void* Module::exported(const char* name) const { return dlsym(handle_, name); }

// The leak check comes while the library is mapped, so that its frames have names. The pools go last: destructors of
// the module's statics still give blocks back.
Module::~Module() {
  host::forgetModules();
  if (checks && findsLeaks()) {
    ++leaks;
    host::platformError("%s: leaked memory", path_.c_str());
  }
  dlclose(handle_);
  host::dropPools();
  if (isLoaded(path_)) host::platformError("%s: stays in the process behind its unloading", path_.c_str());
}

bool Module::isLoaded(const std::string& path) {
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (library != nullptr) dlclose(library);
  return library != nullptr;
}

bool Module::findsLeaks() {
  return __lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0;
}

void Module::checkAtUnloading(bool check) { checks = check; }

int Module::leaksFound() { return leaks; }

}  // namespace node
