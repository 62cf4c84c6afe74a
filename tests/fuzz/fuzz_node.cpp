#include "fuzz_node.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "host/database.h"
#include "host/flow_store.h"
#include "host/jobs.h"
#include "host/log.h"
#include "host/observer.h"
#include "host/pool.h"
#include "requests.h"

namespace fuzz {

namespace {

// What leaves the module is as it is described.
struct Held : host::Observer {
  void send(host::Link link, u16, u16 id, host::Bytes bytes) override {
    using messages::Road;
    constexpr Road kSent[] = {Road::gpon, Road::gepon, Road::epon, Road::ngn};
    holdMessage(kSent[static_cast<int>(link)], id, bytes, messages::Fault::word);
  }
  void ask(host::Link link, u16, u16 id, host::Bytes bytes) override {
    using messages::Road;
    constexpr Road kAsked[] = {Road::gponAsk, Road::geponAsk, Road::epon, Road::ngnAsk};
    holdMessage(kAsked[static_cast<int>(link)], id, bytes, messages::Fault::word);
  }
};

struct Fixture {
  Held held;
  host::CaptureOutput captured;
  node::Node node;
  u64 poolInUse;

  explicit Fixture(const std::string& module) : node((host::observe(&held), module)) {
    for (const auto& card : kCards) {
      node.authorise(card.slot, *host::findCardType(card.type));
      node.cardUp(card.slot);
    }
    FlowRule rule = host::plainFlowRule("r");
    rule.count = kFlowEntries;
    host::setFlowRule(1, "r", rule);
    host::runJobs();
    poolInUse = host::poolInUse();
  }
};

// It lives as long as the process.
Fixture& fixture() {
  static Fixture* const one = [] {
    host::openLog(host::LogTo::nowhere);
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    return new Fixture(program.parent_path().parent_path() / "lib" / "libmsan.so");
  }();
  return *one;
}

}  // namespace

node::Node& theNode() { return fixture().node; }

void holdMessage(messages::Road road, u16 id, messages::Bytes bytes, messages::Fault worst) {
  const auto wrong = messages::check(messages::book(), road, id, bytes, worst);
  if (!wrong.empty()) fail(fmt::format("{} {} is not as described: {}", roadName(road), id, fmt::join(wrong, "\n")));
}

bool isAtRest() {
  return host::poolInUse() == fixture().poolInUse && host::openTransactions() == 0 && host::openConnections() == 0;
}

void checkAtRest() {
  host::runJobs();
  if (isAtRest()) return;
  std::string why =
      fmt::format("left: {} transactions, {} connections, {} bytes of the pool; all blocks:", host::openTransactions(),
                  host::openConnections(), static_cast<i64>(host::poolInUse() - fixture().poolInUse));
  for (const auto& block : host::liveBlocks())
    why += fmt::format("\n  {}:{} {} bytes", block.file, block.line, block.size);
  fail(why);
}

std::string setUp() {
  std::string text;
  for (const auto& [slot, type] : kCards) text += fmt::format("card {0} auth {1}\ncard {0} up\n", slot, type);
  return text + "flow-rule 1 r\n";
}

std::string restartNode(const std::string& startup, const std::function<void(const node::FailedLine&)>& failed) {
  forgetPieces();
  theNode().restart(startup, failed);
  host::runJobs();
  return theNode().runningConfiguration();
}

void (*onFailure)(const std::string& why) = nullptr;

void fail(const std::string& why) {
  if (onFailure != nullptr) onFailure(why);
  dprintf(STDERR_FILENO, "%s\n", why.c_str());
  std::abort();
}

Folder::Folder() {
  path = std::filesystem::temp_directory_path() / "msan-fuzz-XXXXXX";
  if (mkdtemp(path.data()) == nullptr) fail(path + ": can't be made");
}

bool comesTrue(const std::function<bool()>& what) {
  constexpr int kTries = 5000;
  for (int i = 0; i < kTries; ++i) {
    if (what()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return what();
}

}  // namespace fuzz
