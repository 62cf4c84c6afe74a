#pragma once
// Where the lines of the log end: a descriptor that may refuse them.

#include <spdlog/sinks/base_sink.h>

#include <mutex>
#include <string>

#include "log_repeats.h"
#include "platform/types.h"

namespace host {

// Writes each line as a whole. A line that can't be written (a full disk, a pipe that nobody empties) is lost, and
// counted; the count stands ahead of the next line that can. Who logs waits for a second at most, and not again until
// a line could be written. Lines of one kind are bounded.
class LogSink final : public spdlog::sinks::base_sink<std::mutex> {
 public:
  // The descriptor stays the caller's.
  explicit LogSink(int descriptor) : descriptor_(descriptor) {}
  // Appends to a file, which is made if need be, with its folder. Throws std::system_error.
  explicit LogSink(const std::string& path);
  ~LogSink() override;

  // One more line is lost.
  void lose(const std::string& why);

 private:
  void sink_it_(const spdlog::details::log_msg& message) override;
  void flush_() override {}
  void writeOrCount(const spdlog::details::log_msg& message);
  bool writeLine(const spdlog::details::log_msg& message);
  bool tellLoss(const spdlog::details::log_msg& message);

  int descriptor_;
  LogRepeats repeats_;
  bool owned_ = false;
  u64 lost_ = 0;       // lines, since the last one that was written
  std::string why_;    // of the first of them
  bool torn_ = false;  // the last line was written in part
};

}  // namespace host
