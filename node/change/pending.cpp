#include "pending.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "descriptor.h"
#include "files.h"
#include "note.h"

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

void Pending::removeFile() {
  if (unlink(path_.c_str()) != 0 && errno != ENOENT) throw FileError(path_, "can't be removed", errno);
  // A loss of power must not bring it back: the next start would undo a change that was confirmed.
  const auto folder = std::filesystem::absolute(path_).parent_path();
  if (const Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
      !opened || fsync(opened.get()) != 0)
    note("the removal of " + path_ + " may not last: " + std::generic_category().message(errno));
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
