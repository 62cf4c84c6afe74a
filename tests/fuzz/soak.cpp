// Random steps at all doors of a node, for as long as it takes: soak FOLDER SECONDS SEED SCENARIO... Each batch of
// steps has a fresh node, in a process of its own. What breaks one is cut down to the steps that still do, as a
// scenario in FOLDER. At the end: how many requests there were, and what was held of them.

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>

#include "fuzz_node.h"
#include "host/jobs.h"
#include "host/terminal.h"
#include "replay.h"
#include "scenario/directives.h"
#include "steps.h"
#include "stores.h"

namespace {

using Clock = std::chrono::steady_clock;
using Steps = std::vector<fuzz::Step>;

constexpr u64 kStoresOneIn = 64, kReadBackOneIn = 4;

// What a batch's process tells, also when it breaks.
struct Told {
  u64 frames, lines, others, restarts, compared, unseen;
  u64 at;  // the step that is under way
  char why[400];
};
Told* const told =
    static_cast<Told*>(mmap(nullptr, sizeof(Told), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));

void count(const fuzz::Step& step) {
  using enum fuzz::Step::Kind;
  ++(step.kind == frame       ? told->frames
     : step.kind == restart   ? told->restarts
     : step.kind == directive ? told->others
                              : told->lines);
}

// --- in the batch's process

// What is not understood does nothing. A refused list is left out: what stands ahead of a bad place may stay.
void runLine(int level, const std::string& line) {
  Vty vty;
  const fuzz::StoreChanges changes = fuzz::storeChanges();
  const host::LineOutcome outcome = host::runLine(vty, level, line);
  if (outcome.result != host::LineResult::ran && changes != fuzz::storeChanges())
    fuzz::fail("is not understood, and something was written: " + line);
  if (vty.yes != nullptr) host::answerQuestion(vty, true);
}

void play(const fuzz::Step& step, scenario::Stage& stage) {
  const messages::Bytes bytes(reinterpret_cast<const u8*>(step.text.data()), step.text.size());
  const u64 turn = told->frames;
  switch (step.kind) {
    case fuzz::Step::frame:
      fuzz::request(step.verb, step.id, bytes,
                    {.stores = turn % kStoresOneIn == 0, .readBack = turn % kReadBackOneIn == 0});
      break;
    case fuzz::Step::line:
      return runLine(CONFIG_NODE, step.text);
    case fuzz::Step::debugLine:
      return runLine(DEBUG_NODE, step.text);
    case fuzz::Step::directive: {
      scenario::Outcome outcome;
      scenario::readDirective(step.text)(stage, outcome);
      break;
    }
    case fuzz::Step::restart:
      if (const std::string why = fuzz::replay(); !why.empty()) fuzz::fail(why);
  }
}

[[noreturn]] void playAll(const Steps& steps) {
  alarm(300);
  fuzz::onFailure = [](const std::string& why) { std::strncpy(told->why, why.c_str(), sizeof told->why - 1); };
  scenario::Recorder recorder;
  scenario::Stage stage{fuzz::theNode(), recorder, {}, {}, 0, {}, {}};
  for (const fuzz::Step& step : steps) {
    play(step, stage);
    host::runJobs();
    count(step);
    ++told->at;
    told->unseen = fuzz::unseenRefusals;
    told->compared = fuzz::comparedReplays;
    if (!fuzz::holdsPieces()) fuzz::checkAtRest();
  }
  if (const std::string why = fuzz::replay(); !why.empty()) fuzz::fail(why);
  told->compared = fuzz::comparedReplays;
  _exit(0);
}

// --- in the first process

// What breaks these steps; empty: nothing does.
std::string breaks(const Steps& steps, bool quiet) {
  *told = {};
  const pid_t child = fork();
  if (child == 0) {
    if (quiet) dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
    playAll(steps);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (told->why[0] != 0) return told->why;
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return "";
  return WIFSIGNALED(status) ? fmt::format("signal {}", WTERMSIG(status)) : fmt::format("exit {}", WEXITSTATUS(status));
}

// The same fault, though with other values.
std::string kindOf(const std::string& why) {
  std::string kind;
  std::size_t words = 0;
  for (const char letter : why.substr(0, why.find(": set "))) {
    if (letter == ' ' && ++words == 8) break;
    if (letter < '0' || letter > '9') kind += letter;
  }
  return kind;
}

// Those at the end, as few as it takes; of these, takes away what can be taken away, in ever smaller pieces.
Steps cutDown(Steps steps, const std::string& why, Clock::time_point until) {
  for (std::ptrdiff_t last = 1; last < std::ssize(steps); last *= 2) {
    Steps less(steps.end() - last, steps.end());
    if (kindOf(breaks(less, true)) != kindOf(why)) continue;
    steps = std::move(less);
    break;
  }
  for (std::size_t piece = steps.size() / 2; piece != 0; piece /= 2)
    for (std::size_t at = 0; at < steps.size() && Clock::now() < until;) {
      Steps less = steps;
      const auto from = less.begin() + static_cast<std::ptrdiff_t>(at);
      less.erase(from, from + static_cast<std::ptrdiff_t>(std::min(piece, steps.size() - at)));
      if (kindOf(breaks(less, true)) == kindOf(why))
        steps = std::move(less);
      else
        at += piece;
    }
  return steps;
}

void writeScenario(const std::string& file, const std::string& why, const Steps& steps) {
  std::ofstream out(file);
  out << "# " << why.substr(0, why.find('\n')) << '\n' << fuzz::setUp();
  for (const fuzz::Step& step : steps) out << fuzz::directiveOf(step) << '\n';
  if (why.starts_with("replay")) out << "running-config\nsave\nrestart\nrunning-config\n";
}

struct Totals {
  u64 frames = 0, lines = 0, others = 0, restarts = 0, compared = 0, unseen = 0;
  std::map<std::string, u64> found;

  void add() {
    frames += told->frames;
    lines += told->lines;
    others += told->others;
    restarts += told->restarts + 1;
    compared += told->compared;
    unseen += told->unseen;
  }
};

void tell(const Totals& all, Clock::duration time) {
  const double seconds = std::chrono::duration<double>(time).count();
  fmt::print(
      "{} requests ({} frames, {} lines), {:.0f} a second; {} other steps, {} restarts, {} of them compared; {} "
      "refusals that wrote were "
      "not looked into\n",
      all.frames + all.lines, all.frames, all.lines, static_cast<double>(all.frames + all.lines) / seconds, all.others,
      all.restarts, all.compared, all.unseen);
  for (const auto& [kind, times] : all.found) fmt::print("found {} times: {}\n", times, kind);
}

void findMore(const std::string& folder, Steps steps, Totals& all) {
  const std::string why = breaks(steps, true);
  all.add();
  if (why.empty() || all.found[kindOf(why)]++ != 0) return;
  steps.resize(std::min<std::size_t>(steps.size(), told->at + 1));
  steps = cutDown(std::move(steps), why, Clock::now() + std::chrono::seconds(120));
  const std::string file = fmt::format("{}/{}.scn", folder, all.found.size());
  writeScenario(file, why, steps);
  fmt::print("{}: {} steps: {}\n", file, steps.size(), why);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 6) return 2;
  const std::string folder = argv[1];
  const auto begin = Clock::now();
  const auto until = begin + std::chrono::seconds(std::atoi(argv[2]));
  u64 seed = std::strtoull(argv[3], nullptr, 10);
  const std::size_t steps = std::strtoull(argv[4], nullptr, 10);
  fuzz::Pool pool;
  for (int i = 5; i < argc; ++i) {
    if (fuzz::addScenario(pool, argv[i])) continue;
    std::cerr << argv[i] << ": is no scenario\n";
    return 1;
  }
  std::filesystem::create_directories(folder);
  Totals all;
  for (; Clock::now() < until; ++seed) findMore(folder, fuzz::drawSteps(pool, seed, steps), all);
  tell(all, Clock::now() - begin);
  return all.found.empty() ? 0 : 1;
}
