#include "platform/module_registry.h"

#include <atomic>
#include <mutex>

#include "constants.h"
#include "host/agent.h"
#include "host/flow_store.h"
#include "host/profile_store.h"
#include "host/registry.h"
#include "host/semaphores.h"
#include "host/terminal.h"

namespace {

std::mutex mutex;
std::vector<host::ModuleRecord>& records() {
  static std::vector<host::ModuleRecord> all;
  return all;
}
std::atomic<bool> isMaster{true};

}  // namespace

i32 modInitRegister(const char* name, i32 c0, LoadCallback load, const void* none, i32 c1, i32 c2, i32 c3) {
  if (name == nullptr || none != nullptr || host::constantsDiffer(__func__, 0, {c0, c1, c2, c3})) return -1;
  const std::lock_guard lock(mutex);
  const auto id = static_cast<i32>(records().size()) + 1;
  records().push_back({name, id, load, 0, {}});
  return id;
}

i32 setModVersion(i32 module, u32 version, const char* text) {
  const std::lock_guard lock(mutex);
  if (text == nullptr || module <= 0 || static_cast<std::size_t>(module) > records().size()) return -1;
  host::ModuleRecord& record = records()[static_cast<std::size_t>(module) - 1];
  record.version = version;
  record.versionText = text;
  return 0;
}

int hss_IsSmuMaster() { return isMaster ? 1 : 0; }

namespace host {

std::vector<ModuleRecord> modules() {
  const std::lock_guard lock(mutex);
  return records();
}

void runLoadCallbacks() {
  for (const ModuleRecord& record : modules())
    if (record.load != nullptr) record.load();
}

void setMaster(bool master) { isMaster = master; }

void forgetModules() {
  forgetAgent();
  forgetCommands();
  clearSemaphores();
  clearProfiles();
  forgetFlowChecks();
  const std::lock_guard lock(mutex);
  records().clear();
}

}  // namespace host
