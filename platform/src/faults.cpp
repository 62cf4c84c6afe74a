#include "host/faults.h"

#include <array>
#include <atomic>

namespace host {

namespace {

// Operations until the one that fails, that one included; 0: no order.
std::array<std::atomic<u32>, kFaults> remaining;

std::atomic<u32>& order(Fault kind) { return remaining[static_cast<std::size_t>(kind)]; }

}  // namespace

void failNth(Fault kind, u32 n) { order(kind) = n; }

bool faultPending(Fault kind) { return order(kind) != 0; }

bool faultDue(Fault kind) {
  u32 left = order(kind).load(std::memory_order_relaxed);
  while (left != 0)
    if (order(kind).compare_exchange_weak(left, left - 1)) return left == 1;
  return false;
}

void clearFaults() {
  for (auto& left : remaining) left = 0;
}

}  // namespace host
