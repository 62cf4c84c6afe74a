#include "running_configuration.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <unordered_set>

#include "files.h"
#include "host/database.h"
#include "host/pool.h"
#include "note.h"
#include "session_record.h"

namespace msand {

constexpr std::size_t kMaxStartup = 16 << 20;
constexpr u32 kMaxTold = 100;           // failed lines
constexpr std::size_t kMaxShown = 200;  // bytes of a failed line, and of what it printed

// CR LF to LF; a last line without its end gets one.
static std::string asFile(std::string_view printed) {
  std::string text;
  text.reserve(printed.size());
  for (const char letter : printed)
    if (letter != '\r') text += letter;
  if (!text.empty() && text.back() != '\n') text += '\n';
  return text;
}

std::string printRunning(node::Node& node, std::string& missing) {
  const u32 database = host::databaseFailures();
  const u32 memory = host::poolRefusals();
  int result = 0;
  const Turn turn(Turn::Gate::ofCall);
  Doing doing([] { return "running-config"; });
  std::string printed = node.runningConfiguration(&result);
  doing.outcome([&](scenario::Outcome& told) {
    told.terminal = printed;
    told.result(result);
  });
  if (result != 0)
    missing = fmt::format("the module gave {}", result);
  else if (host::databaseFailures() != database)
    missing = "the database failed";
  else if (host::poolRefusals() != memory)
    missing = "there was no memory";
  return printed;
}

// A line that failed and is printed again, as those of profiles that can't be changed, is not lost.
static std::size_t countLost(const std::vector<std::string>& failed, std::string_view text) {
  if (failed.empty()) return 0;
  std::unordered_set<std::string_view> kept;
  for (std::size_t at = 0, end = 0; at < text.size(); at = end + 1) {
    end = std::min(text.find('\n', at), text.size());
    kept.insert(text.substr(at, end - at));
  }
  return static_cast<std::size_t>(
      std::ranges::count_if(failed, [&](const std::string& line) { return !kept.contains(line); }));
}

void Startup::checkLoss(std::string_view text) const {
  if (!unread_.empty())
    throw std::runtime_error(
        fmt::format("the file was not executed at start ({}); \"write force\" keeps it under another name", unread_));
  if (const std::size_t lost = countLost(failed_, text); lost != 0)
    throw std::runtime_error(fmt::format(
        "{}: {} lines failed at start and would be lost; \"write force\" writes nevertheless", path_, lost));
}

// What there is to tell of it.
std::string Startup::keepInHistory(std::string_view text, const History::Written& written) {
  try {
    history_.keep(text, written);
    return "";
  } catch (const std::exception& error) {
    complain(fmt::format("not kept in the history: {}", error.what()));
    return fmt::format("not kept in the history: {}", error.what());
  }
}

std::string Startup::write(node::Node& node, bool force, const std::string& comment, std::string& text) {
  if (pending_.waits()) throw std::runtime_error("a change waits to be confirmed: \"confirm\" or \"rollback\" first");
  std::string missing;
  text = asFile(printRunning(node, missing));
  if (!force) checkLoss(text);
  if (!missing.empty() && !force)
    throw std::runtime_error(fmt::format("{}: the running configuration is incomplete: {}", path_, missing));
  std::vector<std::string> told;
  try {
    const std::string old = readFile(path_, kMaxStartup);
    if (!history_.endsWith(old)) told.push_back(keepInHistory(old, {timeNow(), "another", "found at this write"}));
  } catch (const FileError&) {
    // There is none, or none that could be kept.
  }
  const std::string kept = unread_.empty() ? "" : keepAside(path_);
  replaceFile(path_, text);
  unread_.clear();
  failed_.clear();
  told.push_back(keepInHistory(text, {timeNow(), "a terminal", comment}));
  if (!kept.empty()) told.push_back(fmt::format("the old file is kept as {}", kept));
  std::erase(told, "");
  return fmt::format("{}", fmt::join(told, "\r\n"));
}

bool Startup::read(std::string& text) {
  try {
    text = readFile(path_, kMaxStartup);
    return true;
  } catch (const FileError& error) {
    if (error.code == ENOENT) {
      note(fmt::format("there is no startup configuration {}", path_));
    } else {
      unread_ = error.what();
      complain(fmt::format("startup configuration not executed: {}", unread_));
    }
    return false;
  }
}

static std::string why(const node::FailedLine& line) {
  const std::string printed = printable(std::string_view(line.printed).substr(0, kMaxShown));
  return fmt::format("gave {}{}{}", line.outcome.returned, printed.empty() ? "" : ": ", printed);
}

std::string failedText(const node::FailedLine& line) {
  const std::string command = printable(std::string_view(line.command).substr(0, kMaxShown));
  if (line.outcome.result == host::LineResult::ran) return fmt::format("{}: {}: {}", line.line, command, why(line));
  const host::Misunderstanding told = host::misunderstanding(CONFIG_NODE, line.command);
  const std::string expected = host::wordsOf(told);
  return fmt::format("{}:{}: {}: {}{}", line.line, told.at + 1, command, host::wordsOf(line.outcome.result),
                     expected.empty() ? "" : fmt::format(", {} expected", expected));
}

// A change that was to be confirmed when msand ended is taken back.
bool Startup::readBack(std::string& text) try {
  removeUnfinished(path_ + ".unconfirmed");
  text = pending_.leftBehind();
  if (text.empty()) return false;
  warn("a change was not confirmed when msand ended: the configuration ahead of it is executed");
  return true;
} catch (const FileError& error) {
  complain(fmt::format("a change was not confirmed when msand ended, but {}", error.what()));
  return false;
}

bool Startup::execute(node::Node& node, const std::function<bool()>& stopped) {
  removeUnfinished(path_);
  std::string text;
  const bool back = readBack(text);
  const bool there = back || read(text);
  const bool whole = node.executeStartup(
      text,
      [&](const node::FailedLine& line) {
        failed_.push_back(line.command);
        if (failed_.size() <= kMaxTold) complain(fmt::format("{}:{}", path_, failedText(line)));
      },
      stopped);
  if (failed_.size() > kMaxTold) complain(fmt::format("{}: {} more lines failed", path_, failed_.size() - kMaxTold));
  if (back && whole) {
    pending_.done();
    failed_.clear();  // none of the file's
  }
  if (!whole) {
    note(fmt::format("told to stop while the startup configuration {} was executed", path_));
  } else if (there) {
    const std::string told = fmt::format("startup configuration {} executed, {} lines failed", path_, failed_.size());
    failed_.empty() ? note(told) : warn(told);
  }
  return whole;
}

}  // namespace msand
