#include "files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace msand {

FileError::FileError(const std::string& path, const std::string& what, int errorCode)
    : std::runtime_error(path + ": " + what +
                         (errorCode == 0 ? "" : ": " + std::generic_category().message(errorCode))),
      code(errorCode) {}

std::string readFile(const std::string& path, std::size_t limit) {
  // Not blocking: to open a pipe must not wait for its writer.
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file) throw FileError(path, "can't be opened", errno);
  struct stat status {};
  if (fstat(file.get(), &status) != 0) throw FileError(path, "can't be read", errno);
  if (!S_ISREG(status.st_mode)) throw FileError(path, "is not a regular file");
  const std::string tooLong = "is longer than " + std::to_string(limit) + " bytes";
  if (static_cast<std::size_t>(status.st_size) > limit) throw FileError(path, tooLong);

  // The file may grow meanwhile; what counts is what is read.
  std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
  std::size_t filled = 0;
  while (true) {
    const ssize_t got = read(file.get(), bytes.data() + filled, bytes.size() - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw FileError(path, "can't be read", errno);
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
    if (filled > limit) throw FileError(path, tooLong);
    if (filled == bytes.size()) bytes.resize(2 * filled);
  }
  bytes.resize(filled);
  return bytes;
}

bool writeAll(const Descriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

void checkAppending(const std::string& path) {
  const int flags = O_WRONLY | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  if (Descriptor(open(path.c_str(), flags))) return;
  if (errno != ENOENT) throw FileError(path, "can't be opened", errno);
  std::filesystem::path folder = std::filesystem::absolute(path).parent_path();
  std::error_code failed;
  while (!std::filesystem::exists(folder, failed) && folder.has_relative_path()) folder = folder.parent_path();
  if (!std::filesystem::is_directory(folder, failed)) throw FileError(path, "can't be opened", ENOTDIR);
  if (access(folder.c_str(), W_OK | X_OK) != 0) throw FileError(path, "can't be opened", errno);
}

constexpr std::string_view kUnfinished = ".new-";  // and six letters, behind a file's name: what is being written

// Where a path leads to in the end; the last link may lead to a file that is not there yet.
static std::filesystem::path behindLinks(std::filesystem::path path) {
  std::error_code failed;
  for (int links = 0; links < 40 && std::filesystem::is_symlink(path, failed); ++links)
    path = path.parent_path() / std::filesystem::read_symlink(path, failed);
  return path;
}

static std::filesystem::path folderOf(const std::filesystem::path& target) {
  return target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
}

// Removes a file that nobody writes any more: its writer holds a lock on it.
static void removeAbandoned(const std::filesystem::path& file) {
  const Descriptor opened(open(file.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  if (opened && flock(opened.get(), LOCK_EX | LOCK_NB) == 0) unlink(file.c_str());
}

void removeUnfinished(const std::string& path) {
  const std::filesystem::path target = behindLinks(path);
  const std::string begin = target.filename().string() + std::string(kUnfinished);
  std::error_code failed;
  std::vector<std::filesystem::path> found;
  for (const auto& entry : std::filesystem::directory_iterator(folderOf(target), failed)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with(begin) && name.size() == begin.size() + 6) found.push_back(entry.path());
  }
  for (const auto& file : found) removeAbandoned(file);
}

// A new file beside the one that it will replace, removed unless it has taken its place. Complaints name the latter.
class Unfinished {
 public:
  Unfinished(const std::string& path, std::string target)
      : path_(path), target_(std::move(target)), name_(target_ + std::string(kUnfinished) + "XXXXXX") {
    file_ = Descriptor(mkostemp(name_.data(), O_CLOEXEC));
    if (!file_) throw FileError(path_, "can't be written", errno);
    flock(file_.get(), LOCK_EX | LOCK_NB);
  }
  ~Unfinished() {
    if (!name_.empty()) unlink(name_.c_str());
  }
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;

  void write(std::string_view bytes, mode_t mode) {
    if (!writeAll(file_, bytes)) throw FileError(path_, "can't be written", errno);
    if (fchmod(file_.get(), mode) != 0) throw FileError(path_, "can't be given its mode", errno);
    if (fsync(file_.get()) != 0) throw FileError(path_, "can't be written to the disk", errno);
  }

  void takePlace() {
    if (rename(name_.c_str(), target_.c_str()) != 0) throw FileError(path_, "can't be replaced", errno);
    name_.clear();
  }

 private:
  const std::string& path_;
  const std::string target_;
  std::string name_;
  Descriptor file_;
};

void replaceFile(const std::string& path, std::string_view bytes) {
  const std::string target = behindLinks(path).string();
  struct stat old {};
  const mode_t mode = stat(target.c_str(), &old) == 0 ? old.st_mode & 07777 : 0640;
  const Descriptor folder(open(folderOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) throw FileError(path, "its folder can't be opened", errno);

  removeUnfinished(path);
  Unfinished file(path, target);
  file.write(bytes, mode);
  file.takePlace();
  if (fsync(folder.get()) != 0) throw FileError(path, "its folder can't be written to the disk", errno);
}

void checkReplacing(const std::string& path) {
  const std::string folder = folderOf(behindLinks(path).string());
  if (access(folder.c_str(), W_OK | X_OK) != 0) throw FileError(path, "its folder can't be written to", errno);
}

std::string keepAside(const std::string& path) {
  const std::filesystem::path target = behindLinks(path);
  std::error_code failed;
  if (!std::filesystem::is_regular_file(target, failed)) return {};
  for (int number = 1;; ++number) {
    const std::string aside = target.string() + ".unread" + (number == 1 ? "" : std::to_string(number));
    if (link(target.c_str(), aside.c_str()) == 0) return aside;
    // Another owner's file, which may not be read, gets no further name; and some file systems know none.
    if (errno == EPERM && renameat2(AT_FDCWD, target.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0)
      return aside;
    if (errno != EEXIST) throw FileError(path, "can't be kept under another name", errno);
  }
}

void checkFileName(std::string_view name, std::string_view ending, std::string_view what) {
  constexpr std::size_t kLongestName = 100;
  const auto plain = [](char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9') ||
           letter == '-' || letter == '_' || letter == '.';
  };
  if (name.size() <= ending.size() || name.size() > kLongestName || !name.ends_with(ending) || name.starts_with('.') ||
      !std::ranges::all_of(name, plain))
    throw std::invalid_argument(
        fmt::format("{}'s name is of letters, digits, - _ and dots, and ends with {}", what, ending));
}

std::string newFile(const std::string& folder, const std::string& name, Descriptor& file) {
  std::error_code failed;
  std::filesystem::create_directories(folder, failed);
  const std::string path = (std::filesystem::path(folder) / name).string();
  file = Descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0640));
  if (!file) throw FileError(path, "can't be written", errno);
  return path;
}

}  // namespace msand
