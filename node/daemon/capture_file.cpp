#include "capture_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "files.h"
#include "note.h"

namespace msand {

static constexpr std::string_view kEnding = ".pcapng";
static constexpr std::size_t kLongestName = 100;

// Without folders and without a dot ahead, so that nothing else can be replaced.
static void checkName(std::string_view name) {
  const auto plain = [](char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9') ||
           letter == '-' || letter == '_' || letter == '.';
  };
  if (name.size() <= kEnding.size() || name.size() > kLongestName || !name.ends_with(kEnding) ||
      name.starts_with('.') || !std::ranges::all_of(name, plain))
    throw std::invalid_argument("a capture's name is of letters, digits, - _ and dots, and ends with .pcapng");
}

// False, with errno: not all of it.
static bool writeAll(const Descriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::string CaptureFile::begin(const std::string& name) {
  checkName(name);
  end();
  std::error_code failed;
  std::filesystem::create_directories(settings_.folder, failed);
  const std::string path = (std::filesystem::path(settings_.folder) / name).string();
  Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0640));
  const std::string head = messages::captureHead();
  if (!file) throw FileError(path, "can't be written", errno);
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
