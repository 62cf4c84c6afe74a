// Each file is played in child processes, so that a crash ends a child alone. A child tells by shared memory where it
// is; after a crash, and after a number of runs, a new one goes on with the next point. In a build that looks for leaks
// a child does so once at its end, since a look takes long; when it finds any its runs are done again with a look
// behind each.

#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "host/agent.h"
#include "host/database.h"
#include "host/faults.h"
#include "host/pool.h"
#include "host/semaphores.h"
#include "modes.h"

namespace scenario {

namespace {

constexpr unsigned kMostSeconds = 120;  // of one run; then it hangs
constexpr int kMostPieces = 1000;       // of an unfinished answer
constexpr u32 kMostFailures = 20;       // of one file; then it is given up
constexpr int kMostRuns = 64;           // of one child

// Exit codes of a child: a new one goes on with the next point; a new one does the same runs again with care.
constexpr int kGoOn = 77;
constexpr int kDoAgain = 78;

// clang-format off
constexpr std::string_view kKinds[host::kFaults] = {
    "alloc", "connect", "start", "find", "new", "commit", "card send", "card exchange", "NGN send", "NGN exchange",
};
// clang-format on

// Where a child is. Kind -1: the run in which nothing fails.
struct Progress {
  int kind = -1;
  u32 n = 0;
  u32 directive = 0;  // that is played, counted from 0
  bool reached = false;
  u32 reachedIn = 0;  // the directive in which the point was reached
  u32 runs = 0;
  u32 failures = 0;
  u32 points[host::kFaults] = {};
  bool careful = false;  // leaks are looked for behind each run
  bool finished = false;
};

std::string pointOf(const Scenario& scenario, const Progress& at) {
  const u32 index = at.reached ? at.reachedIn : at.directive;
  std::string place = fmt::format("{}: at the end", scenario.name);
  if (index < scenario.directives.size()) {
    const Directive& directive = scenario.directives[index];
    place = fmt::format("{}:{}: {}", scenario.name, directive.line, directive.text);
  }
  return at.kind < 0 ? fmt::format("{}: nothing failing", place)
                     : fmt::format("{}: {} {}", place, kKinds[at.kind], at.n);
}

void reportFailure(const Scenario& scenario, Progress& at, std::string_view why) {
  ++at.failures;
  fmt::print("{}: {}\n", pointOf(scenario, at), why);
  std::fflush(stdout);
}

// Pool blocks by owner and size.
using Blocks = std::map<std::pair<std::string, u32>, int>;

Blocks countBlocks() {
  Blocks blocks;
  for (const host::LiveBlock& block : host::liveBlocks())
    ++blocks[{fmt::format("{}:{}", block.file, block.line), block.size}];
  return blocks;
}

// The sender of a SET in pieces sends the last one, the reader of a GET in pieces reads them all: what then is still
// in the pool lives for good.
void finishPieces(Stage& stage) {
  std::vector<u8> frame(32);
  for (const u16 id : stage.setIds) host::agentSet(id, true, &frame);
  for (const u16 id : stage.getIds)
    for (int i = 0; i < kMostPieces && host::agentGet(id, &frame).last == 0; ++i) continue;
}

// The rules that hold behind each run. Empty: all are kept.
std::string brokenRule(Stage& stage, const Blocks& fresh) {
  host::clearFaults();
  if (const u32 open = host::openTransactions(); open != 0) return fmt::format("transactions open: {}", open);
  if (const u32 open = host::openConnections(); open != 0) return fmt::format("connections open: {}", open);
  if (const u32 held = host::semaphoresHeld(); held != 0) return fmt::format("semaphores held: {}", held);
  finishPieces(stage);
  for (const auto& [owner, count] : countBlocks()) {
    const auto before = fresh.find(owner);
    if (before == fresh.end() || before->second < count)
      return fmt::format("a pool block is left: {} bytes of {}", owner.second, owner.first);
  }
  int result = 0;
  if (stage.node.runningConfiguration(&result).empty() || result != 0)
    return fmt::format("the node does not answer: running-config gives {}", result);
  const auto messages = host::announcedMessages();
  std::vector<u8> frame(32);
  if (!messages.empty() && host::agentGet(messages.front().id, &frame).result != 1)
    return fmt::format("the node does not answer: a GET of message {} is not handled", messages.front().id);
  return {};
}

// One run with the progress' point failing, counted from the first directive on.
std::string playOnce(const std::string& module, const Scenario& scenario, Progress& at) {
  at.reached = false;
  at.directive = 0;
  Player player(module);
  Blocks fresh = countBlocks();
  const auto kind = static_cast<host::Fault>(std::max(at.kind, 0));
  const u32 begin = host::operationsCounted(kind);
  if (at.kind >= 0) host::failNth(kind, at.n);
  for (const Directive& directive : scenario.directives) {
    player.play(directive.action);
    if (at.kind >= 0 && !at.reached && host::operationsCounted(kind) - begin >= at.n) {
      at.reached = true;
      at.reachedIn = at.directive;
    }
    ++at.directive;
  }
  std::string broken;
  player.play([&](Stage& stage, Outcome&) { broken = brokenRule(stage, fresh); });
  return broken;
}

void lookForLeaks(const Progress& at) {
  if (!at.careful && node::Module::findsLeaks()) std::_Exit(kDoAgain);
}

[[noreturn]] void endChild(int code) {
  std::fflush(stdout);
  std::_Exit(code);
}

// One run. What a broken rule leaves behind would show in all further runs: a fresh process goes on.
void runOnce(const std::string& module, const Scenario& scenario, Progress& at) {
  alarm(kMostSeconds);
  const int leaksBefore = node::Module::leaksFound();
  std::string broken;
  try {
    broken = playOnce(module, scenario, at);
  } catch (const std::exception& error) {
    broken = error.what();
  }
  alarm(0);
  ++at.runs;
  if (broken.empty() && node::Module::leaksFound() != leaksBefore) broken = "memory has leaked";
  if (at.kind >= 0 && at.reached) at.points[at.kind] = at.n;
  if (broken.empty()) return;
  lookForLeaks(at);
  reportFailure(scenario, at, broken);
  endChild(kGoOn);
}

// On to the next point: the next of the kind if this one was reached, else the first of the next kind.
bool advance(Progress& at) {
  if (at.failures >= kMostFailures) return false;
  if (at.kind >= 0 && at.reached) {
    ++at.n;
    return true;
  }
  ++at.kind;
  at.n = 1;
  return at.kind < host::kFaults;
}

[[noreturn]] void runChild(const std::string& module, const Scenario& scenario, Progress& at) {
  node::Module::checkAtUnloading(at.careful);
  int runs = 0;
  do {
    runOnce(module, scenario, at);
    if (++runs < kMostRuns) continue;
    lookForLeaks(at);
    endChild(kGoOn);
  } while (advance(at));
  lookForLeaks(at);
  at.finished = true;
  endChild(0);
}

std::string describeEnd(int status) {
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) return fmt::format("hangs for {} s", kMostSeconds);
  if (WIFSIGNALED(status)) return fmt::format("crash: {}", strsignal(WTERMSIG(status)));
  return fmt::format("crash: the process ended with {}", WEXITSTATUS(status));
}

int runInChild(const std::string& module, const Scenario& scenario, Progress& at) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (child == 0) runChild(module, scenario, at);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  return status;
}

// Memory that a child shares.
class SharedProgress {
 public:
  SharedProgress()
      : memory_(mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "mmap");
    progress_ = new (memory_) Progress;
  }
  ~SharedProgress() { munmap(memory_, sizeof(Progress)); }
  SharedProgress(const SharedProgress&) = delete;
  SharedProgress& operator=(const SharedProgress&) = delete;
  Progress& operator*() { return *progress_; }

 private:
  void* memory_;
  Progress* progress_ = nullptr;
};

void printPoints(const Scenario& scenario, const Progress& at) {
  std::string kinds;
  u32 points = 0;
  for (int kind = 0; kind < host::kFaults; ++kind) {
    points += at.points[kind];
    if (at.points[kind] != 0)
      kinds += fmt::format("{}{} {}", kinds.empty() ? " (" : ", ", kKinds[kind], at.points[kind]);
  }
  fmt::print("{}: {} points reached{}{} in {} runs\n", scenario.name, points, kinds, kinds.empty() ? "" : ")", at.runs);
  std::fflush(stdout);
}

// Whether the point was reached is not known when the crash came within its directive; it is taken as reached.
void reportCrash(const Scenario& scenario, Progress& at, int status) {
  ++at.runs;
  if (at.kind >= 0 && !at.reached) at.reached = true, at.reachedIn = at.directive;
  reportFailure(scenario, at, describeEnd(status));
  if (at.kind >= 0) at.points[at.kind] = at.n;
}

bool sweepFile(const std::string& module, const Scenario& scenario) {
  SharedProgress shared;
  Progress& at = *shared;
  while (!at.finished) {
    const Progress before = at;
    const int status = runInChild(module, scenario, at);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    if (at.finished) break;
    if (code == kDoAgain) {
      at = before;
      at.careful = true;
      continue;
    }
    at.careful = false;
    if (code != kGoOn) reportCrash(scenario, at, status);
    if (at.kind < 0 && at.failures != 0) break;
    at.finished = !advance(at);
  }
  printPoints(scenario, at);
  if (at.failures >= kMostFailures) fmt::print("{}: given up\n", scenario.name);
  return at.failures == 0;
}

}  // namespace

int sweepFiles(const std::string& module, const std::vector<Scenario>& scenarios) {
  const auto passed = static_cast<std::size_t>(
      std::ranges::count_if(scenarios, [&](const Scenario& scenario) { return sweepFile(module, scenario); }));
  printCount(passed, scenarios.size() - passed);
  return passed == scenarios.size() ? kGood : kDiffers;
}

}  // namespace scenario
