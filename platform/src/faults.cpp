#include "host/faults.h"

#include <array>
#include <atomic>
#include <mutex>
#include <vector>

namespace host {

namespace {

struct Orders {
  std::atomic<u32> counted{0};
  std::atomic<bool> any{false};  // most operations find no order and take no lock
  std::vector<u32> due;          // the counts of the operations that fail
};

std::mutex mutex;
std::atomic<FaultWatcher> watching{nullptr};
std::array<Orders, kFaults>& orders() {
  static std::array<Orders, kFaults> all;
  return all;
}
Orders& ordersOf(Fault kind) { return orders()[static_cast<std::size_t>(kind)]; }

void forget(Orders& kind) {
  const std::lock_guard lock(mutex);
  kind.due.clear();
  kind.any = false;
}

}  // namespace

void failNth(Fault kind, u32 n) {
  Orders& mine = ordersOf(kind);
  if (n == 0) return forget(mine);
  const std::lock_guard lock(mutex);
  mine.due.push_back(mine.counted + n);
  mine.any = true;
}

bool faultPending(Fault kind) { return ordersOf(kind).any; }

u32 operationsCounted(Fault kind) { return ordersOf(kind).counted; }

bool faultDue(Fault kind) {
  Orders& mine = ordersOf(kind);
  const u32 number = mine.counted.fetch_add(1, std::memory_order_relaxed) + 1;
  if (const FaultWatcher watcher = watching.load(std::memory_order_relaxed)) watcher(kind, number);
  if (!mine.any.load(std::memory_order_relaxed)) return false;
  const std::lock_guard lock(mutex);
  const bool due = std::erase(mine.due, number) != 0;
  mine.any = !mine.due.empty();
  return due;
}

void watchFaults(FaultWatcher watcher) { watching = watcher; }

void clearFaults() {
  for (Orders& kind : orders()) forget(kind);
}

}  // namespace host
