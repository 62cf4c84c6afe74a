#include "facts.h"

#include <algorithm>
#include <utility>

#include "host/chassis.h"
#include "session_record.h"

namespace msand {

void Facts::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    for (auto& [slot, lane] : lanes_) lane.changed.notify_one();
  }
  for (auto& [slot, lane] : lanes_)
    if (lane.thread.joinable()) lane.thread.join();
}

// With the lock held.
bool Facts::settled(const Key& key) {
  const auto now = Clock::now();
  if (const auto state = states_.find(key); state != states_.end() && now < state->second.until) return true;
  const auto lane = lanes_.find(key.slot);
  return stopped_ || (lane != lanes_.end() && lane->second.since && now - *lane->second.since > kPatience);
}

bool Facts::isSettled(const Key& key) {
  const std::lock_guard lock(mutex_);
  return settled(key);
}

Facts::Told Facts::told(const Key& key) {
  const std::lock_guard lock(mutex_);
  if (noting_ && !settled(key)) {
    noted_.push_back(key);
    hasNoted_ = true;
  }
  const auto state = states_.find(key);
  return state != states_.end() && Clock::now() < state->second.until ? state->second.told : nullptr;
}

void Facts::beginNoting() {
  noting_ = true;
  hasNoted_ = false;
}

std::vector<Facts::Key> Facts::endNoting() {
  noting_ = hasNoted_ = false;
  std::ranges::sort(noted_);
  noted_.erase(std::ranges::unique(noted_).begin(), noted_.end());
  return std::exchange(noted_, {});
}

void Facts::ask(const std::vector<Key>& keys) {
  const std::lock_guard lock(mutex_);
  for (const Key& key : keys) {
    State& state = states_[key];
    if (state.asked || settled(key)) continue;
    state.asked = true;
    Lane& lane = lanes_[key.slot];
    lane.waiting.push_back(key);
    if (!lane.thread.joinable()) lane.thread = std::thread([this, &lane] { work(lane); });
    lane.changed.notify_one();
  }
}

void Facts::forget(Fact fact) {
  const std::lock_guard lock(mutex_);
  ++kinds_[index(fact)].version;
  for (auto& [key, state] : states_)
    if (key.fact == fact) state.until = {};
}

void Facts::settle(const Key& key, std::optional<Bytes> bytes, u32 version) {
  const Kind& kind = kinds_[index(key.fact)];
  State& state = states_[key];
  state.asked = false;
  if (version != kind.version) return;
  state.told = bytes ? std::make_shared<const Bytes>(std::move(*bytes)) : nullptr;
  state.until = Clock::now() + kind.good;
}

void Facts::work(Lane& lane) {
  std::unique_lock lock(mutex_);
  while (true) {
    lane.changed.wait(lock, [&] { return stopped_ || !lane.waiting.empty(); });
    if (stopped_) return;
    const Key key = lane.waiting.front();
    lane.waiting.pop_front();
    const Kind& kind = kinds_[index(key.fact)];
    const u32 version = kind.version;
    const auto began = Clock::now();
    lane.since = began;
    lock.unlock();
    std::optional<Bytes> bytes;
    {
      const Turn turn;
      bytes = kind.ask(key.slot, key.port);
    }
    lock.lock();
    lane.since.reset();
    settle(key, std::move(bytes), version);
    // The others have been given up by all who asked, and would take as long.
    if (Clock::now() - began > kPatience)
      for (; !lane.waiting.empty(); lane.waiting.pop_front())
        settle(lane.waiting.front(), std::nullopt, kinds_[index(lane.waiting.front().fact)].version);
    lock.unlock();
    wake_();
    lock.lock();
  }
}

}  // namespace msand
