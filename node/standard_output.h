#pragma once
// The standard descriptors of the programs that print: what is lost must not look like success.

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <initializer_list>

namespace output {

// Ahead of all else: a number that is closed would go to the next file or connection that is opened, and what is
// printed into it. It is taken by a descriptor that fails like a closed one instead.
inline void keepStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest number that is free: this one.
    static_cast<void>(open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
  }
}

// A program's exit code: `code`, or, with a message, `lost` if not all that it printed could be written.
inline int exitCode(int code, const char* program, int lost) {
  const bool failed = std::ferror(stdout) != 0;
  errno = 0;
  if (std::fflush(stdout) == 0 && !failed) return code;
  // What stopped an earlier write is not known any more.
  std::fprintf(stderr, "%s: standard output can't be written%s%s\n", program, errno != 0 ? ": " : "",
               errno != 0 ? std::strerror(errno) : "");
  return lost;
}

// A program from its begin to its end: what nothing else has caught is told, and it failed.
template <class Program>
int run(const char* name, int failed, int lost, Program program) {
  keepStandardDescriptors();
  int code = failed;
  try {
    code = program();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", name, error.what());
  }
  return exitCode(code, name, lost);
}

}  // namespace output
