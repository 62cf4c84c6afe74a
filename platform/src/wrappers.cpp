#include "platform/wrappers.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

#include "host/log.h"
#include "host/semaphores.h"

int bep_StrCmp(const char* a, const char* b) { return std::strcmp(a, b); }
int bep_StrNCmp(const char* a, const char* b, std::size_t length) { return std::strncmp(a, b, length); }
char* bep_StrNCpy(char* to, const char* from, std::size_t length) { return std::strncpy(to, from, length); }
std::size_t bep_StrLen(const char* text) { return std::strlen(text); }
void* bep_memCpyEx(void* to, const void* from, std::size_t length) { return std::memcpy(to, from, length); }
void* bep_memSetEx(void* memory, int value, std::size_t length) { return std::memset(memory, value, length); }

void cli_gpon_get_mac_str(const u8* mac, char* text) {
  std::sprintf(text, "%02x-%02x-%02x-%02x-%02x-%02x", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
}

int cli_gpon_judge_mac_format(const char* text, u8* mac) {
  const std::string_view digits(text);
  u8 bytes[6] = {};
  if (digits.size() != 2 * sizeof bytes) return -1;
  for (std::size_t i = 0; i < sizeof bytes; ++i) {
    const char* at = digits.data() + 2 * i;
    if (std::from_chars(at, at + 2, bytes[i], 16).ptr != at + 2) return -1;
  }
  std::ranges::copy(bytes, mac);
  return 0;
}

i32 bep_atoiEx(const char* text) {
  using Limits = std::numeric_limits<i32>;
  return static_cast<i32>(std::clamp<long long>(std::strtoll(text, nullptr, 10), Limits::min(), Limits::max()));
}

namespace {

struct Semaphore {
  std::mutex mutex;
  std::condition_variable given;
  bool full = false;
  bool held = false;       // taken and not given back
  std::thread::id holder;  // while it is held
};

std::mutex tableMutex;
std::vector<std::shared_ptr<Semaphore>>& table() {
  static std::vector<std::shared_ptr<Semaphore>> all;
  return all;
}

std::shared_ptr<Semaphore> find(SemaphoreId id) {
  const std::lock_guard lock(tableMutex);
  return id != 0 && id <= table().size() ? table()[id - 1] : nullptr;
}

}  // namespace

SemaphoreId bep_semBCreateEx(i32, i32 full) {
  auto semaphore = std::make_shared<Semaphore>();
  semaphore->full = full != 0;
  const std::lock_guard lock(tableMutex);
  table().push_back(std::move(semaphore));
  return static_cast<SemaphoreId>(table().size());
}

int bep_semTakeEx(SemaphoreId id, i32 timeoutTicks) {
  const auto semaphore = find(id);
  if (semaphore == nullptr) return -1;
  std::unique_lock lock(semaphore->mutex);
  const auto isFull = [&] { return semaphore->full; };
  if (timeoutTicks < 0) {
    if (!semaphore->full && semaphore->held && semaphore->holder == std::this_thread::get_id())
      host::platformError("bep_semTakeEx: a thread waits for semaphore %u, which it holds itself", id);
    semaphore->given.wait(lock, isFull);
  } else {
    const auto limit = std::chrono::milliseconds(i64{timeoutTicks} * 1000 / host::kTicksPerSecond);
    if (!semaphore->given.wait_for(lock, limit, isFull)) return -1;
  }
  semaphore->full = false;
  semaphore->held = true;
  semaphore->holder = std::this_thread::get_id();
  return 0;
}

int bep_semGiveEx(SemaphoreId id) {
  const auto semaphore = find(id);
  if (semaphore == nullptr) return -1;
  const std::lock_guard lock(semaphore->mutex);
  semaphore->full = true;
  semaphore->held = false;
  semaphore->given.notify_one();
  return 0;
}

namespace host {

u32 semaphoresHeld() {
  const std::lock_guard lock(tableMutex);
  return static_cast<u32>(std::count_if(table().begin(), table().end(), [](const auto& semaphore) {
    const std::lock_guard inner(semaphore->mutex);
    return semaphore->held;
  }));
}

void clearSemaphores() {
  const std::lock_guard lock(tableMutex);
  table().clear();
}

}  // namespace host
