#pragma once
// The operator's socket.

#include <string>

#include "descriptor.h"

namespace msand {

// Throws FileError for a path that no socket can have.
void checkSocketPath(const std::string& path);

// Claims a path for this process: a lock file beside it, "PATH.lock", keeps a second msand away from the moment on. The
// socket itself appears with open(), ready to be connected to, in the place of one that was left behind.
class Listener {
 public:
  // Throws std::runtime_error if another process serves the path, or if it can't be had.
  explicit Listener(const std::string& path);
  // Removes the socket and the lock.
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  // Mode 0600; with `forOthers` 0666, and who connects is to be asked for. Throws std::runtime_error.
  void open(bool forOthers = false);
  int descriptor() const { return socket_.get(); }

 private:
  void lock();

  std::string path_;
  Descriptor lock_;
  Descriptor socket_;
};

}  // namespace msand
