#pragma once
// A node: the stand-in platform of this process with the module in it. There is one per process at a time.
//
// The functions take host::requestGate() themselves, as their work asks; a caller must not hold it. A door that calls
// the platform directly (agentSet, runLine, runJobs) holds it shared.

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "host/chassis.h"
#include "host/terminal.h"
#include "module.h"

namespace node {

// A line of the startup configuration that failed: its number, what it printed, and why.
struct FailedLine {
  u32 line = 0;
  std::string command;
  std::string printed;
  host::LineOutcome outcome;
};

class Node {
 public:
  // Empties the platform (database, chassis, flow store, queues, faults) and loads the module. Throws
  // std::runtime_error if it can't be loaded, or if msan_Module_Init fails.
  explicit Node(std::string modulePath);
  ~Node();
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  const Module& module() const { return *module_; }
  const std::string& modulePath() const { return modulePath_; }

  // A slot is given a type or loses it; the results are those of msan_card_auth_init_db and msan_card_unauth_init_db.
  int authorise(u16 slot, const host::CardType& type);
  int unauthorise(u16 slot);
  // A card has come up: msan_slot_hotplug.
  int cardUp(u16 slot);

  // What showrun prints.
  std::string runningConfiguration(int* result = nullptr);

  // Executes the lines of a startup configuration in fast mode, then the module's load callback, then
  // msan_init_after_cfgexecute. Lines end with LF or CR LF, or with CR if there is no LF at all; empty ones and those
  // that begin with '!' are passed over. A line that fails is told and does not stop the rest; one with a NUL or of
  // more than 64 KiB fails without being run. `stopped` is asked ahead of each line that does something; once it is
  // true nothing further is run, and the result is false.
  bool executeStartup(std::string_view text, const std::function<void(const FailedLine&)>& failed,
                      const std::function<bool()>& stopped = nullptr);

  // Unloads the library, loads it again with an empty database, authorises the slots' types again, and executes the
  // startup configuration. Cards stay as they are. Throws as the constructor does; then the node can only be destroyed.
  // `behind` is called at the end of it, while nobody else is let in.
  void restart(std::string_view startup, const std::function<void(const FailedLine&)>& failed,
               const std::function<void()>& behind = nullptr);
  // How often the module was loaded.
  u32 loads() const { return loads_; }

 private:
  void load();
  bool runStartup(std::string_view text, const std::function<void(const FailedLine&)>& failed,
                  const std::function<bool()>& stopped);
  std::string modulePath_;
  std::atomic<u32> loads_ = 0;
  std::optional<Module> module_;
};

}  // namespace node
