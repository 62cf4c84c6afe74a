#include "files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "descriptor.h"

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

static void writeAll(const Descriptor& file, const std::string& path, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw FileError(path, "can't be written", errno);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

// Writes the bytes to the disk under the name of a new file.
static void writeTemporary(const Descriptor& file, const std::string& path, mode_t mode, std::string_view bytes) {
  writeAll(file, path, bytes);
  if (fchmod(file.get(), mode) != 0) throw FileError(path, "can't be given its mode", errno);
  if (fsync(file.get()) != 0) throw FileError(path, "can't be written to the disk", errno);
}

// Where a path leads to in the end; the last link may lead to a file that is not there yet.
static std::filesystem::path behindLinks(std::filesystem::path path) {
  std::error_code failed;
  for (int links = 0; links < 40 && std::filesystem::is_symlink(path, failed); ++links)
    path = path.parent_path() / std::filesystem::read_symlink(path, failed);
  return path;
}

void replaceFile(const std::string& path, std::string_view bytes) {
  const std::string target = behindLinks(path).string();
  struct stat old {};
  const mode_t mode = stat(target.c_str(), &old) == 0 ? old.st_mode & 07777 : 0640;

  std::string folder = std::filesystem::path(target).parent_path().string();
  if (folder.empty()) folder = ".";
  const Descriptor directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!directory) throw FileError(folder, "can't be opened", errno);

  std::string temporary = target + ".XXXXXX";
  {
    const Descriptor file(mkostemp(temporary.data(), O_CLOEXEC));
    if (!file) throw FileError(temporary, "can't be created", errno);
    try {
      writeTemporary(file, temporary, mode, bytes);
    } catch (...) {
      unlink(temporary.c_str());
      throw;
    }
  }
  if (rename(temporary.c_str(), target.c_str()) != 0) {
    const int code = errno;
    unlink(temporary.c_str());
    throw FileError(target, "can't be replaced", code);
  }
  if (fsync(directory.get()) != 0) throw FileError(folder, "can't be written to the disk", errno);
}

}  // namespace msand
