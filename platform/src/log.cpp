#include "platform/log.h"

#include <spdlog/fmt/bin_to_hex.h>
#include <spdlog/logger.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>
#include <vector>

#include "host/log.h"
#include "host/observer.h"
#include "log_sink.h"

namespace {

constexpr i32 kDebug = 10;
constexpr i32 kSeverities = 16;  // those above are always on

std::array<std::atomic<bool>, kSeverities> ignored;  // the first of the two switches
std::array<std::atomic<bool>, kSeverities> output;   // the second

const bool severitiesReset = (host::resetSeverities(), true);

std::mutex mutex;
std::shared_ptr<spdlog::logger> logger;
std::atomic<bool> isOpen{false};

// Standard error as the process got it; the variable may be pointed elsewhere while output is captured.
std::FILE* const standardError = stderr;

std::shared_ptr<spdlog::logger> currentLog() {
  const std::lock_guard lock(mutex);
  return logger;
}

spdlog::level::level_enum levelOf(i32 severity) {
  if (severity <= kDebug) return spdlog::level::debug;
  if (severity < 13) return spdlog::level::info;
  return severity == 13 ? spdlog::level::err : spdlog::level::critical;
}

// Formats without a limit of length: on the stack when it fits, else in `longer`.
std::string_view format(char* text, std::size_t size, std::string& longer, const char* format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(text, size, format, arguments);
  std::string_view result;
  if (length >= 0 && static_cast<std::size_t>(length) < size) {
    result = {text, static_cast<std::size_t>(length)};
  } else if (length >= 0) {
    longer.resize(static_cast<std::size_t>(length));
    std::vsnprintf(longer.data(), longer.size() + 1, format, again);
    result = longer;
  }
  va_end(again);
  return result;
}

std::string_view withoutLineEnds(std::string_view text) {
  const auto first = text.find_first_not_of("\r\n");
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of("\r\n") - first + 1);
}

// Texts come from outside, too: what would forge a line or reach the reader's terminal is shown, not sent.
std::string printable(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char c : withoutLineEnds(text)) {
    if (c == '\r')
      result += "\\r";
    else if (c == '\n')
      result += "\\n";
    else if (static_cast<unsigned char>(c) < ' ' || c == 127)
      result += fmt::format("\\x{:02x}", static_cast<int>(c));
    else
      result += c;
  }
  return result;
}

void writeLog(i32 severity, std::string_view text) {
  if (const auto log = currentLog()) log->log(levelOf(severity), printable(text));
}

}  // namespace

void ulogPrintf(i32, i32 severity, const char* text, ...) {
  const bool logged = isOpen.load(std::memory_order_relaxed) && host::severityOn(severity);
  if (!logged && !host::observed()) return;
  char line[1024];
  std::string longer;
  va_list arguments;
  va_start(arguments, text);
  const std::string_view formatted = format(line, sizeof line, longer, text, arguments);
  va_end(arguments);
  host::told([&](host::Observer& observer) { observer.log(severity, formatted); });
  if (logged) writeLog(severity, formatted);
}

void ulogTypePkt(i32, i32 severity, const void* packet, u32 length) {
  if (packet == nullptr || !isOpen.load(std::memory_order_relaxed) || !host::severityOn(severity)) return;
  const auto log = currentLog();
  if (!log) return;
  const auto* bytes = static_cast<const u8*>(packet);
  log->log(levelOf(severity), "packet of {} bytes:{}", length, spdlog::to_hex(bytes, bytes + length));
}

void ulogSetModIgnore(i32, i32 severity, i32 flag) {
  if (severity >= 0 && severity < kSeverities) ignored[static_cast<std::size_t>(severity)] = flag == 0;
}

void ulogSetModOutput(i32, i32 severity, i32 flag) {
  if (severity >= 0 && severity < kSeverities) output[static_cast<std::size_t>(severity)] = flag != 0;
}

namespace host {

void openLog(LogTo where, const std::string& path) {
  std::shared_ptr<LogSink> sink;
  if (where == LogTo::standardError)
    sink = std::make_shared<LogSink>(STDERR_FILENO);
  else if (where == LogTo::file && !path.empty())
    sink = std::make_shared<LogSink>(path);
  std::shared_ptr<spdlog::logger> opened;
  if (sink) {
    opened = std::make_shared<spdlog::logger>("node", sink);
    // The library would print what went wrong, and what is printed may be on its way to this log.
    opened->set_error_handler([sink](const std::string& why) { sink->lose(why); });
    opened->set_pattern("%Y-%m-%d %H:%M:%S.%e %l %v");
    opened->set_level(spdlog::level::trace);
  }
  const std::lock_guard lock(mutex);
  isOpen = opened != nullptr;
  logger = std::move(opened);
}

bool severityOn(i32 severity) {
  if (severity < 0 || severity >= kSeverities) return severity > 0;
  const auto at = static_cast<std::size_t>(severity);
  return output[at].load(std::memory_order_relaxed) && !ignored[at].load(std::memory_order_relaxed);
}

void resetSeverities() {
  for (i32 severity = 0; severity < kSeverities; ++severity) {
    ulogSetModIgnore(0, severity, severity > kDebug);
    ulogSetModOutput(0, severity, severity > kDebug);
  }
}

static void complain(spdlog::level::level_enum level, const char* text, va_list arguments) {
  char line[1024];
  std::string longer;
  const std::string shown = printable(format(line, sizeof line, longer, text, arguments));
  if (const auto log = currentLog())
    log->log(level, shown);
  else
    std::fprintf(standardError, "platform: %s\n", shown.c_str());
}

void platformWarning(const char* text, ...) {
  va_list arguments;
  va_start(arguments, text);
  complain(spdlog::level::warn, text, arguments);
  va_end(arguments);
}

void platformError(const char* text, ...) {
  va_list arguments;
  va_start(arguments, text);
  complain(spdlog::level::err, text, arguments);
  va_end(arguments);
}

}  // namespace host
