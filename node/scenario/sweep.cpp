// Each file is played once to find its points, then with each chosen point failing. The runs are done in child
// processes, so that a crash ends a child alone. A child tells by shared memory where it is; after a crash, and after a
// number of runs, a new one goes on with the next point. In a build that looks for leaks a child does so once at its
// end, since a look takes long; when it finds any its runs are done again with a look behind each.
//
// What only comes once something has failed, undoing for instance, fails in a second round together with it.

#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <numeric>
#include <set>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "host/agent.h"
#include "host/database.h"
#include "host/faults.h"
#include "host/pool.h"
#include "host/semaphores.h"
#include "modes.h"
#include "sweep_points.h"

namespace scenario {

namespace {

constexpr unsigned kMostSeconds = 120;  // of one run; then it hangs
constexpr int kMostPieces = 1000;       // of an unfinished answer
constexpr u32 kMostFailures = 20;       // of one file; then it is given up
constexpr int kMostRuns = 64;           // of one child
constexpr u32 kMostDirectives = 4096;   // of one file whose records are held against each other
constexpr u32 kFollowing = 20;          // directives that are played behind a site's failure

// Exit codes of a child: a new one goes on with the next point; a new one does the same runs again with care.
constexpr int kGoOn = 77;
constexpr int kDoAgain = 78;

// clang-format off
constexpr std::string_view kKinds[host::kFaults] = {
    "alloc", "connect", "start", "find", "new", "commit", "card send", "card exchange", "NGN send", "NGN exchange",
};
// clang-format on

// Where a child is. Point 0 is the run in which nothing fails.
struct Progress {
  u32 point = 0;
  u32 directive = 0;  // that is played, counted from 0
  bool reached = false;
  u32 reachedIn = 0;  // the directive in which the point was reached
  u32 runs = 0;
  u32 failures = 0;
  u32 points[host::kFaults] = {};
  bool careful = false;  // leaks are looked for behind each run
  bool finished = false;
  u64 records[kMostDirectives] = {};  // of the run in which nothing fails; 0 where the file itself has ordered a fault
};

// What is swept: a file, and the points that fail in it one after the other.
struct Swept {
  const std::string& module;
  const Scenario& scenario;
  const std::vector<FailurePoint>& points;
  u32 number = 0;               // of the scenario
  bool whole = false;           // each run plays all of the file
  PointFile* behind = nullptr;  // takes what comes within a directive once its point has failed

  const FailurePoint* at(const Progress& progress) const {
    return progress.point == 0 ? nullptr : &points[progress.point - 1];
  }
};

std::string pointOf(const Swept& swept, const Progress& at) {
  const Scenario& scenario = swept.scenario;
  const u32 index = at.reached ? at.reachedIn : at.directive;
  std::string place = fmt::format("{}: at the end", scenario.name);
  if (index < scenario.directives.size()) {
    const Directive& directive = scenario.directives[index];
    place = fmt::format("{}:{}: {}", scenario.name, directive.line, directive.text);
  }
  const FailurePoint* point = swept.at(at);
  if (point == nullptr) return fmt::format("{}: nothing failing", place);
  const auto name = [](Order order) { return fmt::format("{} {}", kKinds[static_cast<int>(order.kind)], order.n); };
  const std::string first = point->first.n != 0 ? name(point->first) + ", " : "";
  return fmt::format("{}: {}{}", place, first, name(point->order));
}

void reportFailure(const Swept& swept, Progress& at, std::string_view why) {
  ++at.failures;
  fmt::print("{}: {}\n", pointOf(swept, at), why);
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

void arm(const Swept& swept, const FailurePoint& point, const u32 (&begin)[host::kFaults]) {
  if (point.first.n != 0) host::failNth(point.first.kind, point.first.n);
  host::failNth(point.order.kind, point.order.n);
  if (swept.behind != nullptr) watchPoints(swept.module, begin, point.order);
}

bool passed(Order order, const u32 (&begin)[host::kFaults]) {
  return host::operationsCounted(order.kind) - begin[static_cast<int>(order.kind)] >= order.n;
}

void keepWhatCameBehind(const Swept& swept, const FailurePoint& point) {
  if (swept.behind == nullptr) return;
  FoundPoints found = watchedPoints();
  for (FailurePoint& one : found.points) one.first = point.order;
  swept.behind->write(swept.number, found);
}

u64 summary(const Played& played) {
  u64 sum = 1;
  for (const std::string& line : played.record) sum = sum * 31 + std::hash<std::string>{}(line);
  return sum;
}

// What nobody but the store can notice: a request that could not be stored has to say so. What else fails may go
// unnoticed by design: an answer that a card does not give, a search that finds nothing.
bool showsByItself(host::Fault kind) {
  return kind == host::Fault::connect || kind == host::Fault::start || kind == host::Fault::create ||
         kind == host::Fault::commit;
}

bool ordered() {
  for (int kind = 0; kind < host::kFaults; ++kind)
    if (host::faultPending(static_cast<host::Fault>(kind))) return true;
  return false;
}

// The N-th directive with nothing failing, for comparison.
void keepRecord(Progress& at, bool withOrder, const Played& played) {
  if (at.directive < kMostDirectives) at.records[at.directive] = withOrder ? 0 : summary(played);
}

// One run with the progress' point failing, counted from the first directive on.
std::string playOnce(const Swept& swept, Progress& at) {
  at.reached = false;
  at.directive = 0;
  Player player(swept.module);
  Blocks fresh = countBlocks();
  const FailurePoint* point = swept.at(at);
  u32 begin[host::kFaults];
  for (int kind = 0; kind < host::kFaults; ++kind)
    begin[kind] = host::operationsCounted(static_cast<host::Fault>(kind));
  if (point != nullptr) arm(swept, *point, begin);
  std::string broken;
  for (const Directive& directive : swept.scenario.directives) {
    const bool withOrder = point == nullptr && ordered();
    const Played played = player.play(directive.action);
    if (point == nullptr) keepRecord(at, withOrder, played);
    if (point != nullptr && !at.reached && passed(point->order, begin)) {
      at.reached = true;
      at.reachedIn = at.directive;
      keepWhatCameBehind(swept, *point);
      if (showsByItself(point->order.kind) && at.directive < kMostDirectives &&
          summary(played) == at.records[at.directive])
        broken = "it failed, and what is told is what is told without";
    }
    ++at.directive;
    if (at.reached && !swept.whole && at.directive > at.reachedIn + kFollowing) break;
  }
  player.play([&](Stage& stage, Outcome&) {
    if (const std::string rule = brokenRule(stage, fresh); !rule.empty()) broken = rule;
  });
  if (broken.empty() && point != nullptr && !at.reached) broken = "a point of the first run is not reached again";
  return broken;
}

void count(const Swept& swept, Progress& at) {
  if (const FailurePoint* point = swept.at(at); point != nullptr && at.reached)
    ++at.points[static_cast<int>(point->order.kind)];
}

void lookForLeaks(const Progress& at) {
  if (!at.careful && node::Module::findsLeaks()) std::_Exit(kDoAgain);
}

[[noreturn]] void endChild(int code) {
  std::fflush(stdout);
  std::_Exit(code);
}

// One run. What a broken rule leaves behind would show in all further runs: a fresh process goes on.
void runOnce(const Swept& swept, Progress& at) {
  alarm(kMostSeconds);
  const int leaksBefore = node::Module::leaksFound();
  std::string broken;
  try {
    broken = playOnce(swept, at);
  } catch (const std::exception& error) {
    broken = error.what();
  }
  alarm(0);
  ++at.runs;
  if (broken.empty() && node::Module::leaksFound() != leaksBefore) broken = "memory has leaked";
  count(swept, at);
  if (broken.empty()) return;
  lookForLeaks(at);
  reportFailure(swept, at, broken);
  endChild(kGoOn);
}

bool advance(const Swept& swept, Progress& at) {
  return at.failures < kMostFailures && ++at.point <= swept.points.size();
}

[[noreturn]] void runChild(const Swept& swept, Progress& at) {
  node::Module::checkAtUnloading(at.careful);
  int runs = 0;
  do {
    runOnce(swept, at);
    if (++runs < kMostRuns) continue;
    lookForLeaks(at);
    endChild(kGoOn);
  } while (advance(swept, at));
  lookForLeaks(at);
  at.finished = true;
  endChild(0);
}

std::string describeEnd(int status) {
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) return fmt::format("hangs for {} s", kMostSeconds);
  if (WIFSIGNALED(status)) return fmt::format("crash: {}", strsignal(WTERMSIG(status)));
  return fmt::format("crash: the process ended with {}", WEXITSTATUS(status));
}

int runInChild(const Swept& swept, Progress& at) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (child == 0) runChild(swept, at);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  return status;
}

// Memory that children share.
template <class Value>
class SharedMemory {
 public:
  SharedMemory() : memory_(mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "mmap");
    value_ = new (memory_) Value;
  }
  ~SharedMemory() { munmap(memory_, sizeof(Value)); }
  SharedMemory(const SharedMemory&) = delete;
  SharedMemory& operator=(const SharedMemory&) = delete;
  Value& operator*() { return *value_; }

 private:
  void* memory_;
  Value* value_ = nullptr;
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
void reportCrash(const Swept& swept, Progress& at, int status) {
  ++at.runs;
  if (at.point != 0 && !at.reached) at.reached = true, at.reachedIn = at.directive;
  reportFailure(swept, at, describeEnd(status));
  count(swept, at);
}

bool sweepFile(const Swept& swept) {
  SharedMemory<Progress> shared;
  Progress& at = *shared;
  while (!at.finished) {
    const Progress before = at;
    const int status = runInChild(swept, at);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    if (at.finished) break;
    if (code == kDoAgain) {
      at = before;
      at.careful = true;
      continue;
    }
    at.careful = false;
    if (code != kGoOn) reportCrash(swept, at, status);
    if (at.point == 0 && at.failures != 0) break;
    at.finished = !advance(swept, at);
  }
  printPoints(swept.scenario, at);
  if (at.failures >= kMostFailures) fmt::print("{}: given up\n", swept.scenario.name);
  return at.failures == 0;
}

// Runs `work` with the numbers below `count` in processes, as many as there are processors; each takes the next number.
// How often it gave true.
template <class Work>
std::size_t inWorkers(std::size_t count, const Work& work) {
  struct Shared {
    std::atomic<std::size_t> next{0};
    std::atomic<std::size_t> good{0};
  };
  SharedMemory<Shared> shared;
  std::fflush(nullptr);
  std::vector<pid_t> workers;
  while (workers.size() < std::min<std::size_t>(std::thread::hardware_concurrency(), count)) {
    const pid_t worker = fork();
    if (worker < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (worker == 0) {
      for (std::size_t i; (i = (*shared).next++) < count;) (*shared).good += work(i) ? 1 : 0;
      endChild(0);
    }
    workers.push_back(worker);
  }
  for (const pid_t worker : workers)
    while (waitpid(worker, nullptr, 0) < 0 && errno == EINTR) continue;
  return (*shared).good;
}

// A round over files, those with most points first: the points of each fail, those of the first round behind a run with
// nothing failing. What comes behind them goes to `behind`; without it each run plays its whole file. The number of
// files that pass.
std::size_t sweepRound(const std::string& module, const std::vector<Scenario>& scenarios,
                       const std::vector<FoundPoints>& found, PointFile* behind, bool first) {
  std::vector<std::size_t> order(scenarios.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::sort(order, std::greater{}, [&](std::size_t i) { return found[i].points.size(); });
  return inWorkers(order.size(), [&](std::size_t i) {
    const std::size_t file = order[i];
    const Swept swept{module, scenarios[file], found[file].points, static_cast<u32>(file), behind == nullptr, behind};
    return (found[file].points.empty() && !first) || sweepFile(swept);
  });
}

std::vector<FoundPoints> findAll(const std::string& module, const std::vector<Scenario>& scenarios) {
  PointFile file;
  inWorkers(scenarios.size(), [&](std::size_t i) {
    findPoints(module, scenarios[i], static_cast<u32>(i), file);
    return true;
  });
  return file.read(scenarios.size());
}

// What all files together know so far.
struct Known {
  std::set<u64> sites;
  std::set<u64> calls;
};

// The points of sites that are new, of each site the one with the least ahead of it, since every run plays that too;
// what is found is known from then on.
std::vector<FoundPoints> keepNew(const std::vector<FoundPoints>& found, Known& known) {
  struct Place {
    std::size_t ahead, file;
    auto operator<=>(const Place&) const = default;
  };
  std::map<u64, Place> earliest;  // by site
  for (std::size_t file = 0; file < found.size(); ++file) {
    for (std::size_t ahead = 0; ahead < found[file].points.size(); ++ahead) {
      const Place here{ahead, file};
      const auto [at, fresh] = earliest.try_emplace(found[file].points[ahead].site, here);
      if (!fresh) at->second = std::min(at->second, here);
    }
    known.calls.insert(found[file].calls.begin(), found[file].calls.end());
  }
  std::vector<FoundPoints> kept(found.size());
  for (const auto& [site, place] : earliest)
    if (known.sites.insert(site).second) kept[place.file].points.push_back(found[place.file].points[place.ahead]);
  return kept;
}

void writeCalls(const std::set<u64>& calls, const std::string& path) {
  std::ofstream file(path);
  for (const u64 call : calls) file << fmt::format("{:x}\n", call);
  if (!file.flush()) throw std::runtime_error("can't write " + path);
}

}  // namespace

int sweepFiles(const std::string& module, const std::vector<Scenario>& scenarios, const SweepOptions& options) {
  const std::vector<FoundPoints> found = findAll(module, scenarios);
  std::size_t points = 0;
  for (const FoundPoints& one : found) points += one.points.size();
  Known known;
  std::vector<FoundPoints> fresh = keepNew(found, known);
  fmt::print("{} sites, {} points in {} files\n", known.sites.size(), points, scenarios.size());
  std::fflush(stdout);
  PointFile behind;
  const bool goOn = !options.all;
  std::size_t passed = sweepRound(module, scenarios, options.all ? found : fresh, goOn ? &behind : nullptr, true);
  if (goOn && passed == scenarios.size()) {
    const std::size_t before = known.sites.size();
    fresh = keepNew(behind.read(scenarios.size()), known);
    fmt::print("{} sites more that come once something has failed\n", known.sites.size() - before);
    std::fflush(stdout);
    passed = sweepRound(module, scenarios, fresh, nullptr, false);
  }
  if (!options.calls.empty()) writeCalls(known.calls, options.calls);
  printCount(passed, scenarios.size() - passed);
  return passed == scenarios.size() ? kGood : kDiffers;
}

}  // namespace scenario
