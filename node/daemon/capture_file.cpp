#include "capture_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "files.h"
#include "note.h"

namespace msand {

static constexpr std::string_view kEnding = ".pcapng";
static constexpr std::size_t kBatch = 64 * 1024;          // bytes that are written at once,
static constexpr std::chrono::milliseconds kLatest{200};  // or what has come in this time

std::string CaptureFile::begin(const std::string& name) {
  checkFileName(name, kEnding, "a capture");
  end();
  Descriptor file;
  const std::string path = newFile(settings_.folder, name, file);
  const std::string head = messages::captureHead();
  if (!writeAll(file, head)) throw FileError(path, "can't be written", errno);
  const std::lock_guard lock(mutex_);
  path_ = path;
  file_ = std::move(file);
  bytes_ = head.size();
  messages_ = 0;
  ended_.clear();
  wanted_ = true;
  if (!writer_.joinable()) writer_ = std::jthread([this](const std::stop_token& stop) { flushNowAndThen(stop); });
  return fmt::format("every message goes to {}, up to {} MiB", path_, settings_.most >> 20);
}

std::string CaptureFile::told() const {
  return fmt::format("{}: {} message{}, {} bytes{}", path_, messages_, messages_ == 1 ? "" : "s", bytes_, ended_);
}

std::string CaptureFile::end() {
  const std::lock_guard lock(mutex_);
  if (path_.empty()) return "there is no capture";
  flush();
  const std::string text = told();
  close("");
  path_.clear();
  return text;
}

std::string CaptureFile::state() {
  const std::lock_guard lock(mutex_);
  flush();
  return path_.empty() ? "there is no capture" : told();
}

void CaptureFile::close(const std::string& why) {
  wanted_ = false;
  file_.reset();
  pending_.clear();
  ended_ = why;
  if (!why.empty()) note("the capture has ended: " + told());
}

// A call of the system for each message would cost a request more than all else that a capture does.
void CaptureFile::flush() {
  if (!file_) return;
  if (!writeAll(file_, pending_)) return close(", can't be written: " + std::generic_category().message(errno));
  pending_.clear();
}

void CaptureFile::flushNowAndThen(const std::stop_token& stop) {
  std::unique_lock lock(mutex_);
  while (changed_.wait(lock, stop, [this] { return !pending_.empty(); })) {
    changed_.wait_for(lock, stop, kLatest, [] { return false; });
    flush();
  }
}

void CaptureFile::add(messages::Road road, u16 slot, u16 id, messages::Bytes bytes) {
  if (!wanted_) return;
  const std::lock_guard lock(mutex_);
  if (!file_) return;
  const std::size_t before = pending_.size();
  messages::appendPacket(pending_, std::chrono::system_clock::now().time_since_epoch(), road, slot, id, bytes);
  const std::size_t size = pending_.size() - before;
  if (bytes_ + size > settings_.most) {
    pending_.resize(before);
    flush();
    if (file_) close(", full");
    return;
  }
  bytes_ += size;
  ++messages_;
  if (before == 0) changed_.notify_one();
  if (pending_.size() >= kBatch) flush();
}

CaptureFile& captureFile() {
  static CaptureFile one;
  return one;
}

}  // namespace msand
