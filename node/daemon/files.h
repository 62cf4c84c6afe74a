#pragma once
// Whole files, read and written.

#include <stdexcept>
#include <string>
#include <string_view>

#include "descriptor.h"

namespace msand {

// Where files go that an operator asks for, as captures and records.
struct FileSettings {
  std::string folder;            // made when it is needed
  std::size_t most = 64u << 20;  // bytes of a file
};

// A file that can't be read or written; `code` is the errno, 0 if the system is not to blame.
struct FileError : std::runtime_error {
  FileError(const std::string& path, const std::string& what, int errorCode = 0);
  int code;
};

// The bytes of a regular file of at most `limit` bytes. Throws FileError.
std::string readFile(const std::string& path, std::size_t limit);

// Throws FileError if nothing could be appended to a file, or none be made with its folders; makes nothing.
void checkAppending(const std::string& path);

// Replaces a file as a whole: after a crash at any point the old file or the new one is there. Keeps the old file's
// mode; a new one gets 0640. Follows a symbolic link. Throws FileError, which names this path; then the old file is as
// it was, unless it is the disk that failed behind the replacing. Removes what is unfinished, too.
void replaceFile(const std::string& path, std::string_view bytes);

// Throws FileError if the folder of a file to be replaced is not there, or can't be written to.
void checkReplacing(const std::string& path);

// Gives a file a further name beside its own, ahead of its replacing, or that name alone where it may have but one;
// that name. Empty: it is no regular file. Throws FileError.
std::string keepAside(const std::string& path);

// Throws std::invalid_argument for the name of `what` (a word with its article) that is not plain: without folders and
// without a dot ahead, so that nothing else can be replaced.
void checkFileName(std::string_view name, std::string_view ending, std::string_view what);

// An empty file of this name, opened for writing, in the place of an older one; the folder is made if it is not there.
// Its path. Throws FileError.
std::string newFile(const std::string& folder, const std::string& name, Descriptor& file);

// False, with errno: not all of it is written.
bool writeAll(const Descriptor& file, std::string_view bytes);

// Removes what replaceFile has left beside this file when its process was killed.
void removeUnfinished(const std::string& path);

}  // namespace msand
