#include "line_states.h"

#include <shared_mutex>

#include "host/chassis.h"

namespace msand {

static constexpr std::chrono::seconds kGood{5};

LineStates::LineStates(int (*ask)(u16 slot, u16 port)) : ask_(ask), thread_(&LineStates::work, this) {}

LineStates::~LineStates() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

std::optional<bool> LineStates::isUp(u16 slot, u16 port) {
  const std::lock_guard lock(mutex_);
  State& state = states_[{slot, port}];
  if (!state.asked && Clock::now() >= state.until) {
    state.asked = true;
    waiting_.emplace_back(slot, port);
    changed_.notify_one();
  }
  return state.up;
}

void LineStates::work() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return stopped_ || !waiting_.empty(); });
    if (stopped_) return;
    const Port port = waiting_.front();
    waiting_.pop_front();
    lock.unlock();
    int told = -1;
    {
      const std::shared_lock gate(host::requestGate());
      told = ask_(port.first, port.second);
    }
    lock.lock();
    State& state = states_[port];
    state.asked = false;
    state.up = told < 0 ? std::nullopt : std::optional(told == 1);
    state.until = Clock::now() + kGood;
  }
}

}  // namespace msand
