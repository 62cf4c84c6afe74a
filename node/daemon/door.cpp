#include "door.h"

#include <utility>

namespace msand {

Door::Door() : thread_(&Door::serve, this) {}

Door::~Door() { stop(); }

void Door::post(std::function<void()> request) {
  {
    const std::lock_guard lock(mutex_);
    if (stopped_) return;
    requests_.push_back(std::move(request));
  }
  changed_.notify_one();
}

void Door::stop() {
  std::deque<std::function<void()>> dropped;  // their destructors run outside the lock
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    dropped.swap(requests_);
  }
  changed_.notify_one();
  if (thread_.joinable()) thread_.join();
}

void Door::serve() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return stopped_ || !requests_.empty(); });
    if (stopped_) return;
    std::function<void()> request = std::move(requests_.front());
    requests_.pop_front();
    lock.unlock();
    request();
    request = nullptr;  // what it holds is let go outside the lock
    lock.lock();
  }
}

}  // namespace msand
