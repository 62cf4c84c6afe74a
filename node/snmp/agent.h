#pragma once
// The manager's door: a master agent in this process, on a thread of its own.

#include <memory>
#include <string>
#include <string_view>

#include "module.h"
#include "settings.h"

namespace msand {

class Agent {
 public:
  // Listens, and serves from now on; the module stays. `folder` is for what the library wants to
  // write. There is one agent per process. Throws std::runtime_error if an address can't be had.
  Agent(const SnmpSettings& settings, const std::string& folder, const node::Module& module);
  // Lets the module's request under way end; those that wait are dropped.
  ~Agent();
  // Tells the configured managers, as a notification; from any thread.
  void notify(std::string_view text);

  Agent(const Agent&) = delete;
  Agent& operator=(const Agent&) = delete;

 private:
  struct Running;
  std::unique_ptr<Running> running_;
};

}  // namespace msand
