// msan-scenario: plays scenario files against a fresh node in its own process.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>

#include "host/log.h"
#include "scenario/modes.h"
#include "standard_output.h"

namespace {

struct Options {
  std::vector<std::string> files;
  std::string module;
  bool record = false;
  bool rewrite = false;
  bool all = false;
  bool sweep = false;
  bool replay = false;
  bool explain = false;
  bool messages = false;
  std::string capture;
  std::string calls;
};

std::string installedModule() {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  return program.parent_path().parent_path() / "lib" / "libmsan.so";
}

void describe(CLI::App& app, Options& options) {
  app.set_version_flag("--version", "msan-scenario " MSAN_VERSION);
  app.add_option("FILE", options.files, "Scenario files; - is standard input")->required();
  app.add_option("--module", options.module,
                 "The module (else $MSAN_MODULE, else ../lib/libmsan.so beside the program)")
      ->envname("MSAN_MODULE");
  auto* record = app.add_flag("--record", options.record, "Print the whole record; expectations are ignored");
  auto* rewrite = app.add_flag("--rewrite", options.rewrite, "Write the record into the file as its expectations");
  auto* all = app.add_flag("--all", options.all,
                           "With --rewrite: of all directives, not only of those that have expectations;\n"
                           "with --sweep: every point, not only one of each site;\n"
                           "with --replay: also what the cards are told");
  auto* sweep = app.add_flag("--sweep", options.sweep, "Play again and again, each time with one more site failing");
  app.add_option("--calls", options.calls, "With --sweep: write where in the module the failing calls return to")
      ->type_name("FILE")
      ->needs(sweep);
  auto* replay =
      app.add_flag("--replay", options.replay, "Compare the running configuration ahead of and behind a restart");
  auto* explain =
      app.add_flag("--explain", options.explain, "Print the record with the fields of each message below its line");
  auto* messages = app.add_flag("--messages", options.messages, "Hold each message against its description");
  auto* capture =
      app.add_option("--capture", options.capture, "Write all messages into this file, for Wireshark (.pcapng)")
          ->type_name("FILE");
  CLI::Option* const modes[] = {record, rewrite, sweep, replay, explain, messages, capture};
  for (auto* const one : modes)
    if (one != rewrite && one != sweep && one != replay) all->excludes(one);
  for (auto* const one : modes)
    for (auto* const other : modes)
      if (one != other) one->excludes(other);
  app.footer(
      "Without an option the files are played and compared with the expectations in them.\n"
      "Exit codes: 0 good, 1 something differs, 2 a bad file or option, 3 the node can't be started, or\n"
      "output can't be written.");
}

int run(const Options& options) {
  bool bad = (options.record || options.explain) && options.files.size() != 1;
  if (bad) std::fputs("--record and --explain take one file\n", stderr);
  if (options.all && !options.rewrite && !options.sweep && !options.replay) {
    std::fputs("--all goes with --rewrite, --sweep or --replay\n", stderr);
    bad = true;
  }
  const auto scenarios = scenario::loadScenarios(options.files, bad);
  if (bad) return scenario::kBadFile;
  const std::string module = options.module.empty() ? installedModule() : options.module;
  host::openLog(host::LogTo::nowhere);
  if (options.record) return scenario::recordFile(module, scenarios.front());
  if (options.explain) return scenario::explainFile(module, scenarios.front());
  if (!options.capture.empty()) return scenario::captureFiles(module, scenarios, options.capture);
  if (options.messages) return scenario::holdFiles(module, scenarios);
  if (options.rewrite) return scenario::rewriteFiles(module, scenarios, options.all);
  if (options.sweep) return scenario::sweepFiles(module, scenarios, {options.all, options.calls});
  if (options.replay) return scenario::replayFiles(module, scenarios, options.all);
  return scenario::playFiles(module, scenarios);
}

int runProgram(int argc, char** argv) {
  CLI::App app("Plays scenario files against a fresh node and compares what it does with what they expect.",
               "msan-scenario");
  Options options;
  describe(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : scenario::kBadFile;
  }
  try {
    return run(options);
  } catch (const std::exception& error) {
    std::fflush(stdout);
    std::fprintf(stderr, "msan-scenario: %s\n", error.what());
    return scenario::kNoNode;
  }
}

}  // namespace

int main(int argc, char** argv) {
  return output::run("msan-scenario", scenario::kNoNode, scenario::kOutputLost, [&] { return runProgram(argc, argv); });
}
