#pragma once
// A change that is taken back unless somebody confirms it.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace msand {

// What to go back to is in a file, "STARTUP.unconfirmed", as long as the change waits: whatever happens to the process.
class Pending {
 public:
  explicit Pending(const std::string& startup) : path_(startup + ".unconfirmed") {}

  // From now on `late` is called, on a thread of its own, with the configuration to go back to, when the time has come.
  // Throws FileError; std::invalid_argument if a change waits already.
  void begin(const std::string& configuration, std::chrono::seconds time, std::function<void()> late);
  // The change stays. False: none waits.
  bool confirm();
  // It is taken back: what to go back to. Empty: it was confirmed meanwhile. The file goes with done().
  std::string configuration();
  void done();

  // Nothing is called any more; the change still waits, for the next process.
  void stop() { timer_ = {}; }

  bool waits() const;

  // What a process that has ended was to go back to; empty: nothing. Throws FileError.
  std::string leftBehind() const;

 private:
  void removeFile();

  const std::string path_;
  mutable std::mutex mutex_;
  std::condition_variable_any changed_;
  std::chrono::steady_clock::time_point until_{};
  bool waits_ = false;
  std::string configuration_;
  std::jthread timer_;
};

}  // namespace msand
