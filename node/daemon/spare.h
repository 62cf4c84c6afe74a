#pragma once
// What many connections have taken at once goes back to the system when they have gone: the library keeps it else, for
// ever.

#include <malloc.h>

#include <chrono>

namespace msand {

class SpareMemory {
 public:
  // A connection has gone.
  void left() {
    ++left_;
    last_ = Clock::now();
  }

  // Now and then while waits() says so. It takes some milliseconds, so not while more of them come and go.
  void giveBack() {
    if (!waits() || Clock::now() - last_ < std::chrono::milliseconds(500)) return;
    left_ = 0;
    malloc_trim(0);
  }
  bool waits() const { return left_ >= kMany; }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr int kMany = 16;

  int left_ = 0;
  Clock::time_point last_;
};

}  // namespace msand
