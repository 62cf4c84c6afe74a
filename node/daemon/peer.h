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

// As the kernel noted it when the peer connected. Empty if it may; else who it is, to be logged.
std::string strangerAt(int socket, const Operators& operators);

}  // namespace msand
