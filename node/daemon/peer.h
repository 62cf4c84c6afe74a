#pragma once
// Who is at the other end of the operator's socket, and whether he is an operator.

#include <sys/types.h>

#include <optional>
#include <string>

namespace msand {

// Those who may: root, the user that the node runs as, and the members of a group if there is one.
struct Operators {
  std::optional<gid_t> group;
};

// By its name. Nothing if there is none, or if it is the one that stands for those who can't be told apart.
std::optional<gid_t> findGroup(const std::string& name);

struct Peer {
  pid_t process = 0;
  uid_t user = 0;
  bool operator==(const Peer&) const = default;
};

// As the kernel noted it when the peer connected; of one that it does not tell, process 0 of a user that can't be told
// apart.
Peer peerAt(int socket);

// As the kernel noted it when the peer connected. Empty if it may; else who it is, to be logged.
std::string strangerAt(int socket, const Operators& operators);

}  // namespace msand
