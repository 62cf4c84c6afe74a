#include "reserve.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string_view>

#include "note.h"

namespace msand {

static constexpr std::size_t kReserve = 1 << 20;

static std::atomic<void*> reserve{nullptr};
static std::atomic<bool> again{true};  // beside the one who took the reserve, another may try once more

static void useReserve() {
  if (void* const block = reserve.exchange(nullptr)) return std::free(block);
  if (again.exchange(false)) return;
  constexpr std::string_view kWords = "msand: out of memory\n";
  static_cast<void>(!write(STDERR_FILENO, kWords.data(), kWords.size()));
  std::_Exit(1);
}

void keepReserve() {
  reserve = std::malloc(kReserve);
  std::set_new_handler(useReserve);
}

void renewReserve() {
  if (reserve != nullptr) return;
  if (void* const block = std::malloc(kReserve)) {
    reserve = block;
    again = true;
    warn("memory was short; the reserve was used");
  }
}

}  // namespace msand
