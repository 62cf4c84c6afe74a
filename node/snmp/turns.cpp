#include "turns.h"

namespace msand {

bool Turns::lead(int thread) {
  std::unique_lock lock(mutex_);
  while (!stopped_ && leader_ != thread) {
    watched_ = away_;
    if (!away_) {
      changed_.wait(lock);
    } else if (Clock::now() < due_) {
      changed_.wait_until(lock, due_);
    } else {
      leader_ = thread;
      away_ = false;
    }
  }
  return !stopped_;
}

// The other one is woken for the first of many; it looks at the clock again when its time has come.
void Turns::begin() {
  bool wake = false;
  {
    const std::lock_guard lock(mutex_);
    away_ = true;
    due_ = Clock::now() + patience_;
    wake = !watched_;
    watched_ = true;
  }
  if (wake) changed_.notify_one();
}

bool Turns::end(int thread) {
  const std::lock_guard lock(mutex_);
  if (leader_ != thread) return false;
  away_ = false;
  return true;
}

void Turns::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_all();
}

}  // namespace msand
