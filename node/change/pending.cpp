#include "pending.h"

#include <unistd.h>

#include <cerrno>
#include <stdexcept>

#include "files.h"

namespace msand {

static constexpr std::size_t kMaxFile = 16 << 20;

void Pending::begin(const std::string& configuration, std::chrono::seconds time, std::function<void()> late) {
  if (waits()) throw std::invalid_argument("a change waits to be confirmed already");
  timer_ = {};
  replaceFile(path_, configuration);
  const std::lock_guard lock(mutex_);
  configuration_ = configuration;
  until_ = std::chrono::steady_clock::now() + time;
  waits_ = true;
  timer_ = std::jthread([this, late = std::move(late)](const std::stop_token& stop) {
    {
      std::unique_lock waiting(mutex_);
      changed_.wait_until(waiting, stop, until_, [this] { return !waits_; });
      if (stop.stop_requested() || !waits_) return;
    }
    late();
  });
}

bool Pending::confirm() {
  const std::lock_guard lock(mutex_);
  if (!waits_) return false;
  removeFile();
  waits_ = false;
  changed_.notify_all();
  return true;
}

std::string Pending::configuration() {
  const std::lock_guard lock(mutex_);
  return waits_ ? configuration_ : "";
}

void Pending::done() {
  const std::lock_guard lock(mutex_);
  removeFile();
  waits_ = false;
  changed_.notify_all();
}

bool Pending::waits() const {
  const std::lock_guard lock(mutex_);
  return waits_;
}

std::chrono::seconds Pending::left() const {
  const std::lock_guard lock(mutex_);
  return std::chrono::ceil<std::chrono::seconds>(until_ - std::chrono::steady_clock::now());
}

void Pending::removeFile() {
  if (unlink(path_.c_str()) != 0 && errno != ENOENT) throw FileError(path_, "can't be removed", errno);
}

std::string Pending::leftBehind() const {
  try {
    return readFile(path_, kMaxFile);
  } catch (const FileError& error) {
    if (error.code == ENOENT) return "";
    throw;
  }
}

}  // namespace msand
