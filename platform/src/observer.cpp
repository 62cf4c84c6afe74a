#include "host/observer.h"

#include <atomic>
#include <cstdio>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "constants.h"
#include "host/links.h"
#include "host/watcher.h"
#include "platform/database.h"

namespace host {

namespace {

std::recursive_mutex mutex;
std::atomic<Observer*> current{nullptr};
thread_local int depth = 0;  // of calls to the observer on this thread

std::atomic<Watcher*> theWatcher{nullptr};

std::FILE* realOutput = nullptr;
std::FILE* realError = nullptr;

ssize_t writeOut(void* real, const char* text, std::size_t length) {
  if (depth > 0) return static_cast<ssize_t>(std::fwrite(text, 1, length, *static_cast<std::FILE**>(real)));
  told([&](Observer& observer) { observer.out({text, length}); });
  return static_cast<ssize_t>(length);
}

std::FILE* openCapture(std::FILE** real) {
  cookie_io_functions_t functions{};
  functions.write = writeOut;
  std::FILE* stream = fopencookie(real, "w", functions);
  if (stream == nullptr) throw std::runtime_error("can't capture the output of the process");
  std::setvbuf(stream, nullptr, _IONBF, 0);
  return stream;
}

}  // namespace

Observer::~Observer() = default;

void observe(Observer* observer) {
  const std::lock_guard lock(mutex);
  current = observer;
}

bool observed() { return current.load(std::memory_order_relaxed) != nullptr; }

void watch(Watcher* watcher) { theWatcher = watcher; }
Watcher* watcher() { return theWatcher.load(std::memory_order_acquire); }

Observer* lockObserver() {
  mutex.lock();
  ++depth;
  return current;
}

void unlockObserver() {
  --depth;
  mutex.unlock();
}

CaptureOutput::CaptureOutput() {
  std::FILE* const output = openCapture(&realOutput);
  std::FILE* const error = openCapture(&realError);
  std::fflush(stdout);
  realOutput = std::exchange(stdout, output);
  realError = std::exchange(stderr, error);
}

CaptureOutput::~CaptureOutput() {
  std::fclose(std::exchange(stdout, realOutput));
  std::fclose(std::exchange(stderr, realError));
}

}  // namespace host

void trigger_obj_crc(u16 slot, int c0, int c1, u16 id, int origin) {
  if (!host::constantsDiffer(__func__, 0, {c0, c1}) && !host::linksHeld())
    host::told([=](host::Observer& observer) { observer.crc(slot, id, origin); });
}
