#include "node.h"

#include <mutex>
#include <shared_mutex>
#include <stdexcept>

#include "host/database.h"
#include "host/faults.h"
#include "host/flow_store.h"
#include "host/jobs.h"
#include "host/links.h"
#include "host/log.h"
#include "host/registry.h"
#include "platform/command_line.h"

namespace node {

namespace {

constexpr std::size_t kLongestLine = 64 * 1024;

void emptyPlatform() {
  host::clearChassis();
  host::clearLinks();
  host::clearFaults();
  host::clearJobs();
  host::clearFlowStore();
  host::setMaster(true);
  giOmDebugPrint = 0;
  giOmRunPrint = 0;
}

// Fast mode, as long as it lives.
struct FastMode {
  FastMode() { host::setFastMode(true); }
  ~FastMode() { host::setFastMode(false); }
};

// A text without the mark that some editors put ahead of it.
std::string_view withoutMark(std::string_view text) {
  constexpr std::string_view kMark = "\xef\xbb\xbf";
  return text.starts_with(kMark) ? text.substr(kMark.size()) : text;
}

// Takes the next line off the text, without its line end.
std::string_view nextLine(std::string_view& text, char lineEnd) {
  const auto end = text.find(lineEnd);
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == text.npos ? text.size() : end + 1);
  while (line.ends_with('\r')) line.remove_suffix(1);
  while (line.starts_with('\r')) line.remove_prefix(1);
  return line;
}

bool runsNothing(std::string_view line) { return line.starts_with('!') || line.find_first_not_of(" \t") == line.npos; }

bool isText(std::string_view line) { return line.size() <= kLongestLine && line.find('\0') == line.npos; }

}  // namespace

Node::Node(std::string modulePath) : modulePath_(std::move(modulePath)) {
  const std::unique_lock alone(host::requestGate());
  emptyPlatform();
  load();
}

Node::~Node() {
  const std::unique_lock alone(host::requestGate());
  module_.reset();
}

void Node::load() {
  host::resetDatabase();
  host::resetSeverities();
  host::setFastMode(false);
  module_.emplace(modulePath_);
  ++loads_;
  const int result = module_->Module_Init();
  if (result == 0) {
    if (module_->port_test_command != nullptr) install_element(CONFIG_NODE, module_->port_test_command);
    return;
  }
  module_.reset();
  throw std::runtime_error(modulePath_ + ": msan_Module_Init gave " + std::to_string(result));
}

int Node::authorise(u16 slot, const host::CardType& type) {
  const std::unique_lock alone(host::requestGate());
  host::authorise(slot, type);
  return module_->card_auth_init_db(slot);
}

int Node::unauthorise(u16 slot) {
  const std::unique_lock alone(host::requestGate());
  const int result = module_->card_unauth_init_db(slot);
  host::unauthorise(slot);
  return result;
}

int Node::cardUp(u16 slot) {
  const std::shared_lock request(host::requestGate());
  host::setCardState(slot, host::CardState::up);
  return module_->slot_hotplug(slot);
}

std::string Node::runningConfiguration(int* result) {
  const std::shared_lock request(host::requestGate());
  Vty vty;
  const int code = host::runShowrun(vty);
  if (result != nullptr) *result = code;
  return std::move(vty.text);
}

bool Node::executeStartup(std::string_view text, const std::function<void(const FailedLine&)>& failed,
                          const std::function<bool()>& stopped) {
  const std::shared_lock request(host::requestGate());
  return runStartup(text, failed, stopped);
}

bool Node::runStartup(std::string_view text, const std::function<void(const FailedLine&)>& failed,
                      const std::function<bool()>& stopped) {
  {
    const FastMode fast;
    Vty vty;
    text = withoutMark(text);
    const char lineEnd = text.find('\n') == text.npos ? '\r' : '\n';
    for (u32 number = 1; !text.empty(); ++number) {
      const std::string_view line = nextLine(text, lineEnd);
      if (runsNothing(line)) continue;
      if (stopped && stopped()) return false;
      vty.text.clear();
      const bool readable = isText(line);
      const host::LineOutcome outcome =
          readable ? host::runLine(vty, CONFIG_NODE, line) : host::LineOutcome{host::LineResult::unknown, 0};
      if (failed && (outcome.result != host::LineResult::ran || outcome.returned != 0))
        failed({number, std::string(line.substr(0, kLongestLine)), vty.text, outcome});
    }
  }
  host::runLoadCallbacks();
  module_->init_after_cfgexecute();
  return true;
}

void Node::restart(std::string_view startup, const std::function<void(const FailedLine&)>& failed,
                   const std::function<void()>& behind) {
  const std::unique_lock alone(host::requestGate());
  module_.reset();
  load();
  for (u16 slot = 1; slot <= host::kSlots; ++slot)
    if (host::authorisedType(slot) != nullptr) module_->card_auth_init_db(slot);
  runStartup(startup, failed, nullptr);
  if (behind) behind();
}

}  // namespace node
