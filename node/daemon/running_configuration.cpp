#include "running_configuration.h"

#include <fmt/format.h>

#include <cerrno>
#include <optional>
#include <stdexcept>

#include "files.h"
#include "note.h"

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

void writeStartup(node::Node& node, const std::string& path) {
  int result = 0;
  const std::string printed = node.runningConfiguration(&result);
  if (result != 0) throw std::runtime_error(fmt::format("the running configuration can't be had: {}", result));
  replaceFile(path, asFile(printed));
}

static std::optional<std::string> readStartup(const std::string& path) {
  try {
    return readFile(path, kMaxStartup);
  } catch (const FileError& error) {
    if (error.code == ENOENT)
      note(fmt::format("there is no startup configuration {}", path));
    else
      complain(fmt::format("startup configuration not executed: {}", error.what()));
    return std::nullopt;
  }
}

static std::string why(const node::FailedLine& line) {
  if (line.outcome.result != host::LineResult::ran) return std::string(host::wordsOf(line.outcome.result));
  const std::string printed = printable(std::string_view(line.printed).substr(0, kMaxShown));
  return fmt::format("gave {}{}{}", line.outcome.returned, printed.empty() ? "" : ": ", printed);
}

void executeStartup(node::Node& node, const std::string& path) {
  const auto text = readStartup(path);
  u32 failures = 0;
  node.executeStartup(text ? std::string_view(*text) : std::string_view(), [&](const node::FailedLine& line) {
    if (++failures > kMaxTold) return;
    const std::string command = printable(std::string_view(line.command).substr(0, kMaxShown));
    complain(fmt::format("{}:{}: {}: {}", path, line.line, command, why(line)));
  });
  if (failures > kMaxTold) complain(fmt::format("{}: {} more lines failed", path, failures - kMaxTold));
  if (text) note(fmt::format("startup configuration {} executed, {} lines failed", path, failures));
}

}  // namespace msand
