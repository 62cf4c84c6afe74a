#include "log_sink.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace host {

namespace {

constexpr int kPatience = 1000;  // milliseconds

// Writes what is taken without waiting for longer; 0, or the errno. `text` is left with what was not written.
int writeSome(int descriptor, std::string_view& text, int patience) {
  while (!text.empty()) {
    pollfd ready{descriptor, POLLOUT, 0};
    const int count = poll(&ready, 1, patience);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) return EAGAIN;
    // What is ready for a byte takes so many of them without blocking.
    const ssize_t written = write(descriptor, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
    if (written < 0 && errno != EINTR) return errno;
    if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

}  // namespace

LogSink::LogSink(const std::string& path) : descriptor_(-1), owned_(true) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  std::error_code ignored;  // it is the opening that fails
  if (!folder.empty()) std::filesystem::create_directories(folder, ignored);
  // Not blocking: a pipe without a reader is refused, not waited for.
  descriptor_ = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0644);
  if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), path + ": can't be opened");
}

LogSink::~LogSink() {
  repeats_.tellRest([this](const std::string& line) {
    writeOrCount({spdlog::log_clock::now(), {}, "node", spdlog::level::warn, line});
  });
  if (owned_) close(descriptor_);
}

void LogSink::lose(const std::string& why) {
  const std::lock_guard lock(mutex_);
  if (lost_++ == 0) why_ = why;
}

bool LogSink::writeLine(const spdlog::details::log_msg& message) {
  spdlog::memory_buf_t line;
  if (torn_) line.push_back('\n');
  formatter_->format(message, line);
  std::string_view text(line.data(), line.size());
  const int failed = writeSome(descriptor_, text, lost_ == 0 ? kPatience : 0);
  torn_ = failed == 0 ? false : torn_ || text.size() < line.size();
  if (failed == 0) return true;
  if (lost_++ == 0) why_ = std::generic_category().message(failed);
  return false;
}

bool LogSink::tellLoss(const spdlog::details::log_msg& message) {
  const std::string text = fmt::format("log: {} lines could not be written: {}", lost_, why_);
  const auto before = lost_;
  const spdlog::details::log_msg notice(message.time, {}, message.logger_name, spdlog::level::err, text);
  const bool told = writeLine(notice);
  lost_ = told ? 0 : before;
  return told;
}

void LogSink::sink_it_(const spdlog::details::log_msg& message) {
  const auto tell = [&](const std::string& line) {
    writeOrCount({message.time, {}, message.logger_name, spdlog::level::warn, line});
  };
  if (repeats_.passes({message.payload.data(), message.payload.size()}, message.time, tell)) writeOrCount(message);
}

void LogSink::writeOrCount(const spdlog::details::log_msg& message) {
  if (lost_ != 0 && !tellLoss(message))
    ++lost_;
  else
    writeLine(message);
}

}  // namespace host
