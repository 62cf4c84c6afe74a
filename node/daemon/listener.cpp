#include "listener.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include "files.h"

namespace msand {

constexpr int kWaiting = 128;  // connections that may wait to be accepted

constexpr std::string_view kBeside = ".new";  // behind the path: the socket, until it takes its place

void checkSocketPath(const std::string& path) {
  constexpr std::size_t kMost = sizeof sockaddr_un{}.sun_path - 1 - kBeside.size();
  if (path.size() > kMost)
    throw FileError(path, "is too long for a socket: " + std::to_string(kMost) + " bytes at most");
}

// The path has been checked.
static sockaddr_un address(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return address;
}

static Descriptor newSocket(const std::string& path) {
  Descriptor made(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!made) throw FileError(path, "no socket can be had", errno);
  return made;
}

// Somebody who does not know of our locks may serve the path.
static bool isServed(const std::string& path) {
  const sockaddr_un to = address(path);
  const Descriptor probe = newSocket(path);
  return connect(probe.get(), reinterpret_cast<const sockaddr*>(&to), sizeof to) == 0 || errno == EAGAIN;
}

static bool same(const struct stat& a, const struct stat& b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

void Listener::lock() {
  const std::string path = path_ + ".lock";
  while (true) {
    lock_ = Descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock_) throw FileError(path, "can't be opened", errno);
    if (flock(lock_.get(), LOCK_EX | LOCK_NB) != 0)
      throw errno == EWOULDBLOCK ? FileError(path_, "is served by another msand") : FileError(path, "no lock", errno);
    // Its last owner may have removed it between our two steps.
    struct stat held {
    }, there{};
    if (fstat(lock_.get(), &held) == 0 && stat(path.c_str(), &there) == 0 && same(held, there)) return;
  }
}

Listener::Listener(const std::string& path) : path_(path) {
  checkSocketPath(path);
  lock();
  struct stat status {};
  const bool exists = lstat(path.c_str(), &status) == 0;
  try {
    if (exists && !S_ISSOCK(status.st_mode)) throw FileError(path, "is there and is no socket");
    if (exists && isServed(path)) throw FileError(path, "is served by another process");
  } catch (...) {
    unlink((path + ".lock").c_str());
    throw;
  }
}

Listener::~Listener() {
  if (socket_) unlink(path_.c_str());
  unlink((path_ + ".lock").c_str());
}

void Listener::open(bool forOthers) {
  const mode_t mode = forOthers ? 0666 : 0600;
  const std::string beside = path_ + std::string(kBeside);
  const sockaddr_un at = address(beside);
  Descriptor made = newSocket(path_);
  unlink(beside.c_str());
  // The mode of a socket is that of the descriptor at bind.
  if (fchmod(made.get(), mode) != 0 || bind(made.get(), reinterpret_cast<const sockaddr*>(&at), sizeof at) != 0 ||
      chmod(beside.c_str(), mode) != 0 || listen(made.get(), kWaiting) != 0 ||
      rename(beside.c_str(), path_.c_str()) != 0) {
    const int code = errno;
    unlink(beside.c_str());
    throw FileError(path_, "can't be served", code);
  }
  socket_ = std::move(made);
}

}  // namespace msand
