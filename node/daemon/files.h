#pragma once
// Whole files, read and written.

#include <stdexcept>
#include <string>
#include <string_view>

namespace msand {

// A file that can't be read or written; `code` is the errno, 0 if the system is not to blame.
struct FileError : std::runtime_error {
  FileError(const std::string& path, const std::string& what, int errorCode = 0);
  int code;
};

// The bytes of a regular file of at most `limit` bytes. Throws FileError.
std::string readFile(const std::string& path, std::size_t limit);

// Replaces a file as a whole: after a crash at any point the old file or the new one is there. Keeps the old file's
// mode; a new one gets 0640. Follows a symbolic link. Throws FileError; then the old file is as it was.
void replaceFile(const std::string& path, std::string_view bytes);

}  // namespace msand
