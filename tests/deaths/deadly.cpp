// Preloaded into msand: the N-th call that concerns a file of a folder is its last one, or fails.
//
//   DEADLY_FOLDER  the folder; counted is what names a file in it, and what is done to one that was opened there
//   DEADLY_ARM     count while this file is there; without it, from the beginning
//   DEADLY_AT      N
//   DEADLY_ERROR   the errno with which that call fails; 0: it is done, and then the process is killed
//   DEADLY_COUNT   a file that is made once it has come to it

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kMostFiles = 1024;
std::atomic<bool> ours[kMostFiles];  // by descriptor
std::atomic<long> calls{0};

template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

const char* setting(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

bool concerns(const char* path) {
  static const char* const folder = setting("DEADLY_FOLDER");
  return path != nullptr && *folder != '\0' && std::strncmp(path, folder, std::strlen(folder)) == 0;
}
bool concerns(int descriptor) { return descriptor >= 0 && descriptor < kMostFiles && ours[descriptor]; }

bool counts() {
  static const char* const arm = setting("DEADLY_ARM");
  return *arm == '\0' || real<int(const char*, int)>("access")(arm, F_OK) == 0;
}

void tell() {
  static const char* const file = setting("DEADLY_COUNT");
  if (*file != '\0') real<int(const char*, int, ...)>("open")(file, O_CREAT | O_WRONLY, 0600);
}

// Does the call, if it is not the one that fails; -1 with errno then.
template <class Call>
auto counted(bool concerned, Call call) -> decltype(call()) {
  static const long at = std::atol(setting("DEADLY_AT"));
  static const int error = std::atoi(setting("DEADLY_ERROR"));
  if (!concerned || !counts() || ++calls != at) return call();
  tell();
  if (error != 0) {
    errno = error;
    return -1;
  }
  call();
  raise(SIGKILL);
  return -1;
}

int noted(int descriptor, const char* path) {
  if (descriptor >= 0 && descriptor < kMostFiles) ours[descriptor] = concerns(path);
  return descriptor;
}

}  // namespace

// A call that is counted if it concerns a file, which is named or open.
#define COUNTED(result, name, parameters, arguments, file)                                    \
  result name parameters {                                                                    \
    return counted(concerns(file), [&] { return real<result parameters>(#name) arguments; }); \
  }

extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return noted(counted(concerns(path), [&] { return real<int(const char*, int, ...)>("open")(path, flags, mode); }),
               path);
}
int open64(const char* path, int flags, ...) __attribute__((alias("open")));
int mkostemp(char* path, int flags) {
  return noted(counted(concerns(path), [&] { return real<int(char*, int)>("mkostemp")(path, flags); }), path);
}
int close(int descriptor) {
  if (descriptor >= 0 && descriptor < kMostFiles) ours[descriptor] = false;
  return real<int(int)>("close")(descriptor);
}

COUNTED(ssize_t, write, (int file, const void* bytes, size_t size), (file, bytes, size), file)
COUNTED(ssize_t, read, (int file, void* bytes, size_t size), (file, bytes, size), file)
COUNTED(int, fsync, (int file), (file), file)
COUNTED(int, fchmod, (int file, mode_t mode) noexcept, (file, mode), file)
COUNTED(int, rename, (const char* from, const char* to) noexcept, (from, to), to)
COUNTED(int, link, (const char* from, const char* to) noexcept, (from, to), to)
COUNTED(int, unlink, (const char* path) noexcept, (path), path)
COUNTED(int, remove, (const char* path) noexcept, (path), path)
COUNTED(int, mkdir, (const char* path, mode_t mode) noexcept, (path, mode), path)

}  // extern "C"
