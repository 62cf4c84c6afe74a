// Preloaded into msand or msanctl: tells the sites of their calls to the system, or has the first call from one of them
// fail. A site is a function with the innermost of the program's own calls that led to it; of what a library does for
// these only the first is one. Frames are found by their pointers, which the program keeps: unwinding takes too long.
//
//   FAILING_SITES  a file that gets the sites, one line each as they first come: the site, the function, the offset
//                  in the program that the innermost call returns to
//   FAILING_SITE   the site whose first call fails
//   FAILING_CAME   a file that is made when it has
//   FAILING_OF     what is listed and fails: programs whose path ends so; others are left alone

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kInnermost = 4;
constexpr std::size_t kMostSites = 1 << 16;  // a power of two

struct Range {
  std::uintptr_t low = 0, high = 0;
  bool has(std::uintptr_t address) const { return address >= low && address < high; }
};
Range program;
Range agents[2];  // the SNMP library's two; they end the process when they get no memory
std::atomic<bool> on{false};
thread_local bool inside = false;  // what this file does itself
std::atomic<std::uint64_t> seen[kMostSites];
std::uint64_t wanted = 0;
std::atomic<bool> done{false};
int list = -1;

template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// True the first time.
bool add(std::uint64_t site) {
  for (std::size_t i = site; i - site < kMostSites; ++i) {
    std::uint64_t none = 0;
    if (seen[i % kMostSites].compare_exchange_strong(none, site)) return true;
    if (none == site) return false;
  }
  return false;
}

std::uint64_t hash(std::uint64_t so, std::uint64_t value) { return (so ^ value) * 0x9e3779b97f4a7c15u + (so >> 29); }

// Where this thread's stack ends.
std::uintptr_t stackEnd() {
  static thread_local std::uintptr_t end = 0;
  pthread_attr_t attributes;
  void* begin = nullptr;
  std::size_t size = 0;
  if (end == 0 && pthread_getattr_np(pthread_self(), &attributes) == 0) {
    pthread_attr_getstack(&attributes, &begin, &size);
    pthread_attr_destroy(&attributes);
    end = reinterpret_cast<std::uintptr_t>(begin) + size;
  }
  return end;
}

// Whether this call is the one that fails.
bool fails(const char* function) {
  if (!on.load(std::memory_order_acquire) || inside || (list < 0 && done.load(std::memory_order_relaxed))) return false;
  inside = true;
  std::uint64_t site = 0;
  std::uintptr_t innermost = 0;
  for (const char* at = function; *at != '\0'; ++at) site = hash(site, static_cast<unsigned char>(*at));
  const std::uintptr_t end = stackEnd();
  auto frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  for (int mine = 0; mine < kInnermost && frame % 8 == 0 && frame + 16 <= end;) {
    const auto* const words = reinterpret_cast<const std::uintptr_t*>(frame);
    if (const std::uintptr_t address = words[1]; program.has(address)) {
      if (innermost == 0) innermost = address - program.low;
      site = hash(site, address - program.low);
      ++mine;
    }
    if (words[0] <= frame) break;
    frame = words[0];
  }
  bool failing = false;
  if (innermost != 0 && list >= 0 && add(site)) {
    char line[96];
    const int size = std::snprintf(line, sizeof line, "%016lx %s %lx\n", static_cast<unsigned long>(site), function,
                                   static_cast<unsigned long>(innermost));
    if (real<ssize_t(int, const void*, size_t)>("write")(list, line, static_cast<std::size_t>(size)) < 0) std::abort();
  }
  if (wanted != 0 && site == wanted && !done.exchange(true)) {
    failing = true;
    if (const char* const came = std::getenv("FAILING_CAME"))
      real<int(int)>("close")(real<int(const char*, int, ...)>("open")(came, O_CREAT | O_WRONLY, 0600));
  }
  inside = false;
  return failing;
}

int findRanges(dl_phdr_info* info, std::size_t, void*) {
  Range range{info->dlpi_addr, info->dlpi_addr};
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    const std::uintptr_t end = info->dlpi_addr + header.p_vaddr + header.p_memsz;
    if (header.p_type == PT_LOAD && range.high < end) range.high = end;
  }
  if (program.low == 0) program = range;  // it is the first
  if (std::strstr(info->dlpi_name, "libnetsnmp") != nullptr) agents[agents[0].low == 0 ? 0 : 1] = range;
  return 0;
}

bool isMine() {
  char path[4096];
  const ssize_t size = readlink("/proc/self/exe", path, sizeof path - 1);
  const char* const of = std::getenv("FAILING_OF");
  if (size <= 0 || of == nullptr) return false;
  path[size] = '\0';
  const std::size_t tail = std::strlen(of);
  return static_cast<std::size_t>(size) >= tail && std::strcmp(path + size - tail, of) == 0;
}

void begin() {
  dl_iterate_phdr(findRanges, nullptr);
  if (const char* const site = std::getenv("FAILING_SITE")) wanted = std::strtoull(site, nullptr, 16);
  if (const char* const sites = std::getenv("FAILING_SITES"))
    list = real<int(const char*, int, ...)>("open")(sites, O_CREAT | O_WRONLY | O_APPEND | O_CLOEXEC, 0600);
  on.store(true, std::memory_order_release);
}

int (*programsMain)(int, char**, char**) = nullptr;

// What comes ahead of it, the objects of libraries, can't tell anybody.
int countedMain(int argc, char** argv, char** environment) {
  if (isMine()) begin();
  return programsMain(argc, argv, environment);
}

// malloc and its kin come before anything can be looked up; the C library has them under these names, too.
extern "C" void* __libc_malloc(std::size_t);
extern "C" void* __libc_calloc(std::size_t, std::size_t);
extern "C" void* __libc_realloc(void*, std::size_t);

bool memoryFails(const char* function, void* caller) {
  const auto address = reinterpret_cast<std::uintptr_t>(caller);
  return !agents[0].has(address) && !agents[1].has(address) && fails(function);
}

void* none() {
  errno = ENOMEM;
  return nullptr;
}

}  // namespace

// A function that fails with -1 and an errno.
#define FAILS(result, name, parameters, arguments, error)     \
  result name parameters {                                    \
    static auto* const call = real<result parameters>(#name); \
    if (!fails(#name)) return call arguments;                 \
    errno = error;                                            \
    return -1;                                                \
  }

extern "C" {

int __libc_start_main(int (*main)(int, char**, char**), int argc, char** argv, void (*init)(), void (*end)(),
                      void (*last)(), void* stack) {
  programsMain = main;
  return real<int(int (*)(int, char**, char**), int, char**, void (*)(), void (*)(), void (*)(), void*)>(
      "__libc_start_main")(countedMain, argc, argv, init, end, last, stack);
}

void* malloc(std::size_t size) noexcept {
  return memoryFails("malloc", __builtin_return_address(0)) ? none() : __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) noexcept {
  return memoryFails("calloc", __builtin_return_address(0)) ? none() : __libc_calloc(count, size);
}
void* realloc(void* block, std::size_t size) noexcept {
  return memoryFails("realloc", __builtin_return_address(0)) ? none() : __libc_realloc(block, size);
}

int open(const char* path, int flags, ...) {
  static auto* const call = real<int(const char*, int, ...)>("open");
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  if (!fails("open")) return call(path, flags, mode);
  errno = EMFILE;
  return -1;
}
int open64(const char* path, int flags, ...) __attribute__((alias("open")));

FAILS(ssize_t, read, (int file, void* bytes, std::size_t size), (file, bytes, size), EIO)
FAILS(ssize_t, write, (int file, const void* bytes, std::size_t size), (file, bytes, size), ENOSPC)
FAILS(ssize_t, writev, (int file, const iovec* parts, int count), (file, parts, count), ENOSPC)
FAILS(ssize_t, pread, (int file, void* bytes, std::size_t size, off_t at), (file, bytes, size, at), EIO)
FAILS(ssize_t, recv, (int file, void* bytes, std::size_t size, int flags), (file, bytes, size, flags), ECONNRESET)
FAILS(ssize_t, recvmsg, (int file, msghdr* message, int flags), (file, message, flags), ENOMEM)
FAILS(ssize_t, send, (int file, const void* bytes, std::size_t size, int flags), (file, bytes, size, flags), ENOBUFS)
FAILS(ssize_t, sendmsg, (int file, const msghdr* message, int flags), (file, message, flags), ENOBUFS)
FAILS(int, fsync, (int file), (file), EIO)
FAILS(int, ftruncate, (int file, off_t size) noexcept, (file, size), ENOSPC)
FAILS(int, fchmod, (int file, mode_t mode) noexcept, (file, mode), EPERM)
FAILS(int, chmod, (const char* path, mode_t mode) noexcept, (path, mode), EPERM)
FAILS(int, rename, (const char* from, const char* to) noexcept, (from, to), EACCES)
FAILS(int, link, (const char* from, const char* to) noexcept, (from, to), EMLINK)
FAILS(int, mkdir, (const char* path, mode_t mode) noexcept, (path, mode), EACCES)
FAILS(int, pipe2, (int* files, int flags) noexcept, (files, flags), EMFILE)
FAILS(int, eventfd, (unsigned count, int flags) noexcept, (count, flags), EMFILE)
FAILS(int, memfd_create, (const char* name, unsigned flags) noexcept, (name, flags), EMFILE)
FAILS(int, socket, (int family, int type, int protocol) noexcept, (family, type, protocol), EMFILE)
FAILS(int, socketpair, (int family, int type, int protocol, int* files) noexcept, (family, type, protocol, files),
      EMFILE)
FAILS(int, bind, (int file, const sockaddr* address, socklen_t size) noexcept, (file, address, size), EADDRINUSE)
FAILS(int, listen, (int file, int waiting) noexcept, (file, waiting), EADDRINUSE)
FAILS(int, connect, (int file, const sockaddr* address, socklen_t size), (file, address, size), ECONNREFUSED)
FAILS(int, accept, (int file, sockaddr* address, socklen_t* size), (file, address, size), EMFILE)
FAILS(int, accept4, (int file, sockaddr* address, socklen_t* size, int flags), (file, address, size, flags), EMFILE)
FAILS(int, setsockopt, (int file, int level, int name, const void* value, socklen_t size) noexcept,
      (file, level, name, value, size), ENOMEM)
FAILS(int, getsockopt, (int file, int level, int name, void* value, socklen_t* size) noexcept,
      (file, level, name, value, size), ENOBUFS)
FAILS(int, epoll_create1, (int flags) noexcept, (flags), EMFILE)
FAILS(int, epoll_ctl, (int file, int operation, int other, epoll_event* event) noexcept,
      (file, operation, other, event), ENOMEM)
FAILS(int, epoll_wait, (int file, epoll_event* events, int most, int time), (file, events, most, time), EINTR)
FAILS(int, poll, (pollfd * files, nfds_t count, int time), (files, count, time), EINTR)
FAILS(int, ppoll, (pollfd * files, nfds_t count, const timespec* time, const sigset_t* signals),
      (files, count, time, signals), EINTR)

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* value) noexcept {
  static auto* const call = real<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create");
  return fails("pthread_create") ? EAGAIN : call(thread, attributes, run, value);
}

}  // extern "C"
