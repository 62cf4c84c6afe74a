#pragma once
// What the loaded module has told the platform of itself.

#include <string>
#include <vector>

#include "platform/module_registry.h"
#include "platform/types.h"

struct Vty;

namespace host {

struct ModuleRecord {
  std::string name;
  i32 id = 0;
  LoadCallback load = nullptr;
  u32 version = 0;
  std::string versionText;
};
std::vector<ModuleRecord> modules();

// Calls the load callbacks that were given.
void runLoadCallbacks();

void setMaster(bool master);

// Forgets all that the module registered (registry, commands, announced messages, hooks), ahead of its unloading.
void forgetModules();

}  // namespace host
