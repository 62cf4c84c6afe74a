#include "platform/pool.h"

#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <new>

#include "constants.h"
#include "host/faults.h"
#include "host/log.h"
#include "host/pool.h"
#include "sanitizers.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define POOL_OWN __attribute__((no_sanitize_address))
#else
#define POOL_OWN
#define ASAN_POISON_MEMORY_REGION(address, size) ((void)(address), (void)(size))
#endif

namespace {

// Lies ahead of each block, in the same allocation. Under the address sanitizer it is poisoned, so that a write
// ahead of a block is found like one behind it; the functions that touch it are exempt.
struct alignas(std::max_align_t) Header {
  std::uintptr_t mark;  // depends on the address, so that a copy of a header is not taken for one
  std::uintptr_t previous, next;
  const char* file;
  i32 line;
  u32 size;
  i32 pool;
};

constexpr std::uintptr_t kMark = 0x4d504f4c;

// Links are kept in a form that a leak check does not follow: a block that only the pool still knows has been lost by
// its owner.
std::uintptr_t hide(const Header* header) { return ~reinterpret_cast<std::uintptr_t>(header); }
Header* show(std::uintptr_t link) { return reinterpret_cast<Header*>(~link); }
constexpr std::uintptr_t kNoLink = ~std::uintptr_t{0};

struct Pool {
  std::string name;
  u32 size = 0;
  u32 used = 0;
};

std::mutex mutex;
std::vector<Pool>& pools() {
  static std::vector<Pool> all;
  return all;
}
std::uintptr_t oldest = kNoLink, newest = kNoLink;
u64 inUse = 0;

std::uintptr_t markOf(const Header* header) { return reinterpret_cast<std::uintptr_t>(header) ^ kMark; }

POOL_OWN void link(Header* header) {
  header->previous = newest;
  header->next = kNoLink;
  (newest != kNoLink ? show(newest)->next : oldest) = hide(header);
  newest = hide(header);
}

POOL_OWN void unlink(const Header* header) {
  (header->previous != kNoLink ? show(header->previous)->next : oldest) = header->next;
  (header->next != kNoLink ? show(header->next)->previous : newest) = header->previous;
}

Pool* findPool(i32 id) {
  return id > 0 && static_cast<std::size_t>(id) <= pools().size() ? &pools()[static_cast<std::size_t>(id) - 1]
                                                                  : nullptr;
}

// Takes a block off the books; false if it is none of ours, or was given back before.
POOL_OWN bool release(Header* header) {
  const std::lock_guard lock(mutex);
  if (header->mark != markOf(header)) return false;
  header->mark = 0;
  unlink(header);
  inUse -= header->size;
  if (Pool* pool = findPool(header->pool)) pool->used -= header->size;
  return true;
}

POOL_OWN host::LiveBlock describe(const Header* header) {
  return {header->file != nullptr ? header->file : "", header->line, header->size};
}

thread_local u32 refusals = 0;

void* refuse() {
  ++refusals;
  return nullptr;
}

POOL_OWN Header* behind(const Header* header) { return show(header->next); }

}  // namespace

i32 mpuCreate(const char* name, u32 size, i32 c0, i32 c1) {
  if (name == nullptr || size == 0 || host::constantsDiffer(__func__, 1, {c0, c1})) return -1;
  const std::lock_guard lock(mutex);
  pools().push_back({name, size});
  return static_cast<i32>(pools().size());
}

POOL_OWN void* mpuAlloc_(i32 id, u32 size, const char* file, i32 line) {
  if (host::faultDue(host::Fault::alloc)) return refuse();
  const std::lock_guard lock(mutex);
  Pool* pool = findPool(id);
  if (pool == nullptr || size > pool->size - pool->used) return refuse();
  auto* header = static_cast<Header*>(std::malloc(sizeof(Header) + size));
  if (header == nullptr) return refuse();
  header->mark = markOf(header);
  header->file = file;
  header->line = line;
  header->size = size;
  header->pool = id;
  link(header);
  pool->used += size;
  inUse += size;
  ASAN_POISON_MEMORY_REGION(header, sizeof(Header));
  return header + 1;
}

void mpuFree(void* block) {
  if (block == nullptr) return;
  auto* header = static_cast<Header*>(block) - 1;
  if (!release(header)) {
    host::platformError("mpuFree: %p is no block of a pool, or was given back before", block);
#if !defined(__SANITIZE_ADDRESS__)
    std::abort();
#endif
  }
  std::free(header);  // for a stranger the sanitizer reports here, with the stacks
}

namespace host {

u32 poolRefusals() { return refusals; }

u64 poolInUse() {
  const std::lock_guard lock(mutex);
  return inUse;
}

std::vector<LiveBlock> liveBlocks() {
  const std::lock_guard lock(mutex);
  std::vector<LiveBlock> blocks;
  for (Header* header = show(oldest); header != nullptr; header = behind(header)) blocks.push_back(describe(header));
  return blocks;
}

u32 dropPools() {
  u32 dropped = 0;
  for (;; ++dropped) {
    Header* header = nullptr;
    {
      const std::lock_guard lock(mutex);
      header = show(oldest);
    }
    if (header == nullptr) break;
    mpuFree(header + 1);
  }
  const std::lock_guard lock(mutex);
  pools().clear();
  return dropped;
}

}  // namespace host
