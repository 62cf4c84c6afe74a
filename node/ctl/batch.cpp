#include "batch.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <deque>
#include <optional>

#include "display.h"

namespace ctl {

namespace {

constexpr const char* kClearLine = "\r\033[K";

// A line on standard error that tells how far a long file is, if a person is there to see it.
class Progress {
 public:
  Progress(const std::string& name, u64 size) : name_(name), size_(size), shows_(isatty(STDERR_FILENO) == 1) {}
  ~Progress() { clear(); }

  void tell(u64 lines, u64 bytes) {
    if (!shows_) return;
    const auto now = std::chrono::steady_clock::now();
    if (now < next_) return;
    next_ = now + std::chrono::milliseconds(100);
    const std::string part = size_ == 0 ? "" : ", " + std::to_string(bytes * 100 / size_) + " %";
    std::fprintf(stderr, "%s%s: %llu lines%s", kClearLine, name_.c_str(), static_cast<unsigned long long>(lines),
                 part.c_str());
    visible_ = true;
  }

  // Ahead of other output.
  void clear() {
    if (visible_) std::fputs(kClearLine, stderr);
    visible_ = false;
  }

 private:
  const std::string& name_;
  u64 size_;
  bool shows_;
  bool visible_ = false;
  std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now() + std::chrono::milliseconds(500);
};

// Lines are sent ahead of their results: a round trip for each would cost more than most of them.
class Batch {
 public:
  Batch(Connection& connection, std::string name, u64 size)
      : connection_(connection), name_(std::move(name)), terminal_(isatty(STDOUT_FILENO) == 1), progress_(name_, size) {
    connection_.tellScreen();
  }

  void add(u64 number, const std::string& line, bool tooLong) {
    if (line.find_first_not_of(" \t") == line.npos || line.front() == '!') return;
    ++outcome_.lines;
    if (!tooLong) connection_.post(wire::Kind::line, line);
    underWay_.push_back({number, line, tooLong});
    while (!underWay_.empty() && underWay_.front().tooLong) failFront("line too long");
  }
  void tellFailures(bool tell) { tellsFailures_ = tell; }
  bool full() const { return underWay_.size() >= wire::kAhead; }
  bool wantsLines() const { return underWay_.size() <= wire::kAhead / 2; }  // many are sent at once
  bool idle() const { return underWay_.empty(); }
  bool ended() const { return outcome_.ended; }

  // Takes frames up to the next result.
  void takeResult() {
    connection_.send();
    while (const auto frame = connection_.receive()) {
      if (frame->kind == wire::Kind::text)
        print(*frame);
      else if (frame->kind == wire::Kind::trace)
        print("trace: " + std::string(frame->payload) + "\n");
      else if (frame->kind == wire::Kind::result)
        return finish(*frame);
    }
    // The end of the session: after "exit" without a word, else with its reason.
    if (!connection_.farewell().empty())
      throw ConnectionError("the node has ended the session: " + connection_.farewell());
    outcome_.ended = true;
    underWay_.clear();
  }

  void tellProgress(u64 bytes) { progress_.tell(outcome_.lines - underWay_.size(), bytes); }
  void flush() { std::fflush(stdout); }
  BatchOutcome outcome() const { return outcome_; }

  // Nothing more comes: a question that is open stays without an answer.
  void close() {
    if (asked_) fail(*asked_, "asks, and got no answer");
    asked_.reset();
  }
  bool asks() const { return asked_.has_value(); }

 private:
  struct Line {
    u64 number;
    std::string text;
    bool tooLong;
  };

  void print(const wire::Frame& frame) { print(frame.payload); }
  void print(std::string_view text) {
    progress_.clear();
    const std::string shown = forDisplay(text, terminal_);
    std::fwrite(shown.data(), 1, shown.size(), stdout);
    if (!shown.empty()) lineOpen_ = shown.back() != '\n';
  }

  void finish(const wire::Frame& frame) {
    const auto result = wire::readResult(frame.payload);
    if (!result || underWay_.empty()) throw ConnectionError("what answers is no msand");
    if (lineOpen_) std::fputc('\n', stdout);
    lineOpen_ = false;
    asked_.reset();
    if (result->outcome == wire::kAsks) {
      print(connection_.prompt() + "\n");
      asked_ = std::move(underWay_.front());
      underWay_.pop_front();
    } else if (result->good())
      underWay_.pop_front();
    else
      failFront(*result);
    while (!underWay_.empty() && underWay_.front().tooLong) failFront("line too long");
  }

  void failFront(const wire::Result& result) {
    outcome_.returned = result.returned;
    if (!notUnderstood(result)) return failFront(reasonOf(result));
    const std::string expected = result.expected.empty() ? "" : ", " + forDisplay(result.expected, true) + " expected";
    failFront(reasonOf(result) + expected, result.at + 1);
  }
  void failFront(const std::string& why, u32 column = 0) {
    fail(underWay_.front(), why, column);
    underWay_.pop_front();
  }

  // `column`: of the line, from 1; 0: the line as a whole.
  void fail(const Line& line, const std::string& why, u32 column = 0) {
    ++outcome_.failed;
    if (!tellsFailures_) return;
    flush();
    progress_.clear();
    constexpr std::size_t kShown = 200;
    const std::string text = forDisplay(std::string_view(line.text).substr(0, kShown), true);
    const std::string place = column == 0 ? "" : ":" + std::to_string(column);
    std::fprintf(stderr, "%s:%llu%s: %s: %s\n", name_.c_str(), static_cast<unsigned long long>(line.number),
                 place.c_str(), why.c_str(), text.c_str());
  }

  Connection& connection_;
  const std::string name_;
  const bool terminal_;
  Progress progress_;
  std::deque<Line> underWay_;
  std::optional<Line> asked_;  // the line whose question is open
  bool lineOpen_ = false;
  bool tellsFailures_ = true;
  BatchOutcome outcome_;
};

}  // namespace

BatchOutcome runLines(Connection& connection, LineReader& reader, const std::string& name, u64 size) {
  Batch batch(connection, name, size);
  bool more = true;
  for (u64 number = 1; more || !batch.idle();) {
    // A partner that writes the next line when it has seen the answer to the last one must not be waited for.
    for (bool wanted = batch.wantsLines(); wanted && more && !batch.full();) {
      if (batch.idle()) batch.flush();
      const LineReader::Got got = reader.next(batch.idle());
      if (got == LineReader::Got::nothing) break;
      more = got == LineReader::Got::line;
      if (more) batch.add(number++, reader.line(), reader.tooLong());
    }
    if (!batch.idle()) batch.takeResult();
    if (batch.ended()) break;
    batch.tellProgress(reader.bytesRead());
  }
  batch.close();
  batch.flush();
  return batch.outcome();
}

BatchOutcome runCommand(Connection& connection, const std::string& line, u64 number, bool quiet) {
  Batch batch(connection, "command", 0);
  if (quiet) batch.tellFailures(false);
  batch.add(number, line, line.size() >= wire::kMaxRequest);
  while (!batch.idle() && !batch.ended()) batch.takeResult();
  batch.flush();
  BatchOutcome outcome = batch.outcome();
  outcome.asks = batch.asks();
  return outcome;
}

}  // namespace ctl
