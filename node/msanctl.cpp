// The operator's terminal.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "batch.h"
#include "connection.h"
#include "interactive.h"
#include "picture.h"
#include "standard_output.h"

namespace {

enum ExitCode { kDone = 0, kLineFailed = 1, kBadUse = 2, kNoNode = 3, kOutputLost = 3 };

struct Options {
  std::string socket = "/run/msan/msand.socket";
  std::vector<std::string> commands;
  std::string file;
  std::string picture;
  int wait = 0;
  bool yes = false;
  int confirm = 0;      // seconds
  std::string checked;  // check FILE
  bool messages = false;
  std::vector<std::string> sides;  // compare A B
  bool json = false;
};

void declare(CLI::App& app, Options& options) {
  app.set_version_flag("--version", "msanctl " MSAN_VERSION);
  app.add_option("--socket", options.socket, "msand's socket")->type_name("PATH")->capture_default_str();
  app.add_option("-c", options.commands, "run a command and end; may be given again")
      ->type_name("COMMAND")
      ->allow_extra_args(false);
  app.add_option("-f", options.file, "run the lines of a file and end; - is standard input")->type_name("FILE");
  app.add_option("--svg", options.picture, "make a picture of the curve that the one command plots (needs gnuplot)")
      ->type_name("FILE");
  app.add_option("--wait", options.wait, "wait for msand for so long")
      ->type_name("SECONDS")
      ->check(CLI::Range(0, 3600));
  app.add_flag("--yes", options.yes, "questions of commands are answered with yes");
  app.add_option("--confirm", options.confirm,
                 "ahead of the lines: what they change is taken back after so long\n"
                 "unless somebody runs \"confirm\"")
      ->type_name("SECONDS")
      ->check(CLI::Range(1, 86400));
  app.require_subcommand(0, 1);
  CLI::App* const check = app.add_subcommand("check", "tells what the lines of a file would do, and does nothing");
  check->add_option("FILE", options.checked, "the lines; - is standard input")->required();
  check->add_flag("--messages", options.messages, "also each message that would be sent");
  CLI::App* const compare = app.add_subcommand("compare", "shows how two configurations differ");
  compare->add_option("SIDE", options.sides, "two of running, startup, rollback NUMBER and files")
      ->required()
      ->expected(2, 4);
  compare->add_flag("--json", options.json, "as JSON, for programs");
  app.footer(
      "Without -c and -f: a terminal, or the lines of standard input if that is none.\n"
      "Exit codes: 0 all lines did well, 1 a line failed, 2 bad options or an unreadable file, 3 no msand, or\n"
      "output or a picture that can't be written. check: 1 a line would not be taken; compare: 0 they are the same,\n"
      "1 they differ, 2 that can't be told.");
}

// Runs a file's lines; the exit code.
int runFile(ctl::Connection& connection, const std::string& path) {
  const bool standardInput = path == "-";
  const Descriptor file(standardInput ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0) {
    std::fprintf(stderr, "msanctl: %s: can't be opened: %s\n", path.c_str(), std::strerror(errno));
    return kBadUse;
  }
  const u64 size = S_ISREG(status.st_mode) ? static_cast<u64>(status.st_size) : 0;
  ctl::LineReader reader(file.get(), wire::kMaxRequest - 1);
  const auto outcome = ctl::runLines(connection, reader, standardInput ? "stdin" : path, size);
  return outcome.failed == 0 ? kDone : kLineFailed;
}

int runPicture(const Options& options) {
  if (options.commands.size() != 1 || !options.file.empty()) {
    std::fputs("msanctl: --svg is for one -c, and no -f\n", stderr);
    return kBadUse;
  }
  ctl::Connection connection(options.socket, options.wait);
  try {
    return ctl::drawPicture(connection, options.commands.front(), options.picture) ? kDone : kLineFailed;
  } catch (const ctl::PictureError& error) {
    std::fprintf(stderr, "msanctl: %s\n", error.what());
    return kOutputLost;
  }
}

std::string readWhole(const std::string& path) {
  const bool standardInput = path == "-";
  const Descriptor file(standardInput ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC));
  std::string bytes;
  char piece[65536];
  ssize_t got = file ? 1 : -1;
  while (got > 0 && bytes.size() <= wire::kMaxFiles)
    if (got = read(file.get(), piece, sizeof piece); got > 0) bytes.append(piece, static_cast<std::size_t>(got));
  if (got < 0) throw std::runtime_error(path + ": can't be read: " + std::strerror(errno));
  if (bytes.size() + path.size() > wire::kMaxFiles) throw std::runtime_error(path + ": is longer than 16 MiB");
  return bytes;
}

// Hands over a file; the word by which a line means it.
std::string handOver(ctl::Connection& connection, const std::string& path) {
  std::string word = path == "-" ? "stdin" : path;
  const auto plain = [](unsigned char letter) {
    return letter > ' ' && letter < 127 && !std::strchr("[]{}<>|", letter);
  };
  if (word.size() > 200 || !std::all_of(word.begin(), word.end(), plain)) word = "file";
  connection.sendFile(word, readWhole(path));
  return word;
}

// A shadow of the node runs the lines.
int runCheck(const Options& options) {
  ctl::Connection connection(options.socket, options.wait);
  const std::string line = "check " + handOver(connection, options.checked);
  const auto outcome = ctl::runCommand(connection, line + (options.messages ? " messages" : ""), 0, true);
  return outcome.failed == 0 ? kDone : kLineFailed;
}

int runCompare(const Options& options) {
  ctl::Connection connection(options.socket, options.wait);
  std::string line = "compare";
  for (std::size_t i = 0; i < options.sides.size(); ++i) {
    const std::string& side = options.sides[i];
    const bool word =
        side == "running" || side == "startup" || side == "rollback" || (i > 0 && options.sides[i - 1] == "rollback");
    line += ' ' + (word ? side : handOver(connection, side));
  }
  const auto outcome = ctl::runCommand(connection, line + (options.json ? " json" : ""), 0, true);
  return outcome.failed == 0 ? kDone : outcome.returned == 1 ? kLineFailed : kBadUse;
}

int run(const Options& options) {
  if (!options.checked.empty()) return runCheck(options);
  if (!options.sides.empty()) return runCompare(options);
  if (!options.picture.empty()) return runPicture(options);
  ctl::Connection connection(options.socket, options.wait);
  int code = kDone;
  u64 number = 0;
  bool asks = false;
  if (options.yes) ctl::runCommand(connection, "answer yes", 0);
  if (options.confirm != 0) {
    const std::string line = "confirm within " + std::to_string(options.confirm) + " seconds";
    if (ctl::runCommand(connection, line, 0).failed != 0) return kLineFailed;
  }
  for (const std::string& command : options.commands) {
    const auto outcome = ctl::runCommand(connection, command, ++number);
    if (outcome.failed != 0) code = kLineFailed;
    if (outcome.ended) return code;
    asks = outcome.asks;
  }
  if (asks && options.file.empty()) {
    std::fprintf(stderr, "msanctl: command:%llu asks, and got no answer\n", static_cast<unsigned long long>(number));
    code = kLineFailed;
  }
  if (!options.file.empty()) return std::max(code, runFile(connection, options.file));
  if (!options.commands.empty()) return code;
  if (isatty(STDIN_FILENO) == 1) return ctl::runInteractive(connection) ? kDone : kNoNode;
  return runFile(connection, "-");
}

int runProgram(int argc, char** argv) {
  Options options;
  CLI::App app("The operator's terminal of a node.", "msanctl");
  declare(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kBadUse;
  }
  try {
    return run(options);
  } catch (const ctl::ConnectionError& error) {
    std::fprintf(stderr, "msanctl: %s\n", error.what());
    return kNoNode;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "msanctl: %s\n", error.what());
    return kBadUse;
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_CTYPE, "");
  return output::run("msanctl", kOutputLost, kOutputLost, [&] { return runProgram(argc, argv); });
}
