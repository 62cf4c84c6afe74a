#include "modes.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

#include "compare.h"
#include "host/faults.h"
#include "host/links.h"
#include "host/registry.h"
#include "host/terminal.h"
#include "text.h"
#include "told.h"

namespace scenario {

namespace {

bool readFile(const std::string& file, std::string& text) {
  if (file == "-") {
    text.assign(std::istreambuf_iterator<char>(std::cin), {});
    return !std::cin.bad();
  }
  std::ifstream stream(file, std::ios::binary);
  if (!stream || std::filesystem::is_directory(file)) return false;
  text.assign(std::istreambuf_iterator<char>(stream), {});
  return !stream.bad();
}

std::string counted(std::size_t count, std::string_view one) {
  return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

struct Tally {
  std::size_t passed = 0;
  std::size_t failed = 0;
  std::size_t notCompared = 0;  // directives
};

// Prints how a directive's record differs; false if it does.
bool compareDirective(const std::string& file, const Directive& directive, const Played& played) {
  const auto pairs = align(directive.expectations, played.record);
  if (played.available && (directive.expectations.empty() || matches(pairs))) return true;
  fmt::print("{}:{}: {}\n", file, directive.line, directive.text);
  if (directive.expectations.empty() || matches(pairs))
    for (const std::string& line : played.record) fmt::print(" {}\n", line);
  else
    for (const std::string& line : diff(pairs, directive.expectations, played.record)) fmt::print("{}\n", line);
  for (const std::string& line : fieldDifferences(directive, pairs, played.record)) fmt::print("{}\n", line);
  return false;
}

void playFile(const std::string& module, const Scenario& scenario, Tally& tally) {
  const std::vector<Played> played = playAll(module, scenario);
  bool good = true;
  for (std::size_t i = 0; i < played.size(); ++i) {
    if (scenario.directives[i].expectations.empty()) ++tally.notCompared;
    good = compareDirective(scenario.name, scenario.directives[i], played[i]) && good;
  }
  ++(good ? tally.passed : tally.failed);
}

// What a file leaves behind would show in the comparison: faults, the other ends' answers, roles.
void putInOrder() {
  host::clearFaults();
  host::clearLinks();
  host::setFastMode(false);
  host::setMaster(true);
}

// The running configuration behind a file and, when all is to be compared, what its cards are told when they come up;
// and the same behind a restart.
struct Replay {
  std::vector<std::string> before, after;
  std::vector<std::string> failures;  // lines of the startup configuration
};

std::vector<std::string> configurationOf(Stage& stage, bool all, std::string& text) {
  text = stage.node.runningConfiguration();
  std::vector<std::string> lines = terminalLines(text);
  for (u16 slot = 1; all && slot <= 18; ++slot) {
    if (slot == 9 || slot == 10) continue;
    stage.recorder.take();
    stage.node.cardUp(slot);
    for (const std::string& line : stage.recorder.take())
      if (line.starts_with("g")) lines.push_back(line);
  }
  return lines;
}

Replay replay(const std::string& module, const Scenario& scenario, bool all) {
  Replay seen;
  Player player(module);
  for (const Directive& directive : scenario.directives) player.play(directive.action);
  putInOrder();
  player.play([&](Stage& stage, Outcome&) {
    std::string startup, restarted;
    seen.before = configurationOf(stage, all, startup);
    stage.node.restart(startup, [&](const node::FailedLine& failed) {
      seen.failures.push_back(fmt::format("startup line {} failed: {}", failed.line, failed.command));
    });
    seen.after = configurationOf(stage, all, restarted);
  });
  return seen;
}

bool replayFile(const std::string& module, const Scenario& scenario, bool all) {
  const Replay seen = replay(module, scenario, all);
  const auto lines = diffLines(seen.before, seen.after);
  if (lines.empty()) return true;
  fmt::print("{}: the running configuration{} is another one behind a restart\n", scenario.name,
             all ? ", or what the cards are told," : "");
  for (const std::string& line : seen.failures) fmt::print("{}\n", line);
  for (const std::string& line : lines) fmt::print("{}\n", line);
  return false;
}

}  // namespace

std::vector<Scenario> loadScenarios(const std::vector<std::string>& files, bool& bad) {
  std::vector<Scenario> scenarios;
  for (const std::string& file : files) {
    std::string text;
    if (!readFile(file, text)) {
      bad = true;
      fmt::print(stderr, "{}: the file can't be read\n", file);
      continue;
    }
    std::vector<Problem> problems;
    scenarios.push_back(readScenario(file, text, problems));
    for (const Problem& problem : problems) fmt::print(stderr, "{}:{}: {}\n", file, problem.line, problem.why);
    bad = bad || !problems.empty();
  }
  return scenarios;
}

std::vector<Played> playAll(const std::string& module, const Scenario& scenario) {
  Player player(module);
  std::vector<Played> played;
  for (const Directive& directive : scenario.directives) {
    try {
      played.push_back(player.play(directive.action));
    } catch (const std::exception& error) {
      throw std::runtime_error(fmt::format("{}:{}: {}", scenario.name, directive.line, error.what()));
    }
  }
  return played;
}

void printCount(std::size_t passed, std::size_t failed) { fmt::print("{} passed, {} failed\n", passed, failed); }

int playFiles(const std::string& module, const std::vector<Scenario>& scenarios) {
  Tally tally;
  for (const Scenario& scenario : scenarios) playFile(module, scenario, tally);
  fmt::print("{} not compared\n", counted(tally.notCompared, "directive"));
  printCount(tally.passed, tally.failed);
  return tally.failed == 0 ? kGood : kDiffers;
}

int recordFile(const std::string& module, const Scenario& scenario) {
  const std::vector<Played> played = playAll(module, scenario);
  for (std::size_t i = 0; i < played.size(); ++i) {
    fmt::print("> {}\n", scenario.directives[i].text);
    for (const std::string& line : played[i].record) fmt::print("{}\n", line);
  }
  return kGood;
}

int replayFiles(const std::string& module, const std::vector<Scenario>& scenarios, bool all) {
  const auto passed = static_cast<std::size_t>(
      std::ranges::count_if(scenarios, [&](const Scenario& scenario) { return replayFile(module, scenario, all); }));
  printCount(passed, scenarios.size() - passed);
  return passed == scenarios.size() ? kGood : kDiffers;
}

}  // namespace scenario
