#include "metrics_file.h"

#include <chrono>
#include <exception>
#include <filesystem>
#include <utility>

#include "files.h"
#include "note.h"

namespace msand {

constexpr std::chrono::seconds kPeriod{15};

// Those who read it are other users, and there is no secret in it: a new file is for all.
static void makeReadable(const std::string& path) {
  using std::filesystem::perms;
  std::error_code failed;
  std::filesystem::permissions(path, perms::group_read | perms::others_read, std::filesystem::perm_options::add,
                               failed);
}

MetricsFile::MetricsFile(std::string path, std::function<std::string()> page)
    : path_(std::move(path)), page_(std::move(page)) {
  const bool isNew = !std::filesystem::exists(path_);
  replaceFile(path_, page_());
  if (isNew) makeReadable(path_);
  thread_ = std::thread(&MetricsFile::serve, this);
}

MetricsFile::~MetricsFile() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void MetricsFile::serve() {
  bool failed = false;
  std::unique_lock lock(mutex_);
  while (!changed_.wait_for(lock, kPeriod, [this] { return stopped_; })) {
    lock.unlock();
    try {
      replaceFile(path_, page_());
      failed = false;
    } catch (const std::exception& error) {
      if (!std::exchange(failed, true)) complain(error.what());
    }
    lock.lock();
  }
}

}  // namespace msand
