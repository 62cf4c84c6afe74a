#include "fuzz_node.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "host/database.h"
#include "host/flow_store.h"
#include "host/jobs.h"
#include "host/log.h"
#include "host/observer.h"
#include "host/pool.h"

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
  if (wrong.empty()) return;
  // Not through stderr, which is captured.
  for (const std::string& why : wrong)
    dprintf(STDERR_FILENO, "%s %u is not as described: %s\n", std::string(roadName(road)).c_str(), id, why.c_str());
  std::abort();
}

void checkAtRest() {
  host::runJobs();
  const u64 left = host::poolInUse() - fixture().poolInUse;
  const u32 transactions = host::openTransactions();
  const u32 connections = host::openConnections();
  if (left == 0 && transactions == 0 && connections == 0) return;

  // Not through stderr, which is captured.
  dprintf(STDERR_FILENO, "left: %u transactions, %u connections, %lld bytes of the pool; all blocks:\n", transactions,
          connections, static_cast<long long>(left));
  for (const auto& block : host::liveBlocks())
    dprintf(STDERR_FILENO, "  %s:%d %u bytes\n", block.file.c_str(), block.line, block.size);
  std::abort();
}

}  // namespace fuzz

// Ahead of all inputs, so that the fuzzer counts what they reach in the module, too.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::theNode();
  return 0;
}
