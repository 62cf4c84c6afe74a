#include "capture_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "files.h"
#include "note.h"

namespace msand {

static constexpr std::string_view kEnding = ".pcapng";

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
  return fmt::format("every message goes to {}, up to {} MiB", path_, settings_.most >> 20);
}

std::string CaptureFile::told() const {
  return fmt::format("{}: {} message{}, {} bytes{}", path_, messages_, messages_ == 1 ? "" : "s", bytes_, ended_);
}

std::string CaptureFile::end() {
  const std::lock_guard lock(mutex_);
  if (path_.empty()) return "there is no capture";
  const std::string text = told();
  close("");
  path_.clear();
  return text;
}

std::string CaptureFile::state() {
  const std::lock_guard lock(mutex_);
  return path_.empty() ? "there is no capture" : told();
}

void CaptureFile::close(const std::string& why) {
  wanted_ = false;
  file_.reset();
  ended_ = why;
}

void CaptureFile::add(messages::Road road, u16 slot, u16 id, messages::Bytes bytes) {
  if (!wanted_) return;
  const std::lock_guard lock(mutex_);
  if (!file_) return;
  packet_.clear();
  messages::appendPacket(packet_, std::chrono::system_clock::now().time_since_epoch(), road, slot, id, bytes);
  std::string why;
  if (bytes_ + packet_.size() > settings_.most)
    why = ", full";
  else if (!writeAll(file_, packet_))
    why = ", can't be written: " + std::generic_category().message(errno);
  if (!why.empty()) {
    close(why);
    note("the capture has ended: " + told());
    return;
  }
  bytes_ += packet_.size();
  ++messages_;
}

CaptureFile& captureFile() {
  static CaptureFile one;
  return one;
}

}  // namespace msand
