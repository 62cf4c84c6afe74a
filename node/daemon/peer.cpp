#include "peer.h"

#include <fmt/format.h>
#include <grp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <vector>

namespace msand {

// What the kernel tells of users and groups that a user namespace, such as that of the unit, does not know.
constexpr id_t kUnknown = 65534;

std::optional<gid_t> findGroup(const std::string& name) {
  std::array<char, 65536> room;
  group entry{};
  group* found = nullptr;
  if (getgrnam_r(name.c_str(), &entry, room.data(), room.size(), &found) != 0 || found == nullptr) return std::nullopt;
  if (found->gr_gid == kUnknown) return std::nullopt;
  return found->gr_gid;
}

static bool isMember(int socket, gid_t primary, gid_t of) {
  if (primary == of) return true;
  socklen_t size = 0;
  if (getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, nullptr, &size) == 0) return false;  // none
  if (errno != ERANGE) return false;
  std::vector<gid_t> groups(size / sizeof(gid_t));
  if (getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) != 0) return false;
  return std::ranges::find(groups, of) != groups.end();
}

Peer peerAt(int socket) {
  ucred peer{0, kUnknown, kUnknown};
  socklen_t size = sizeof peer;
  getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size);
  return {peer.pid, peer.uid};
}

std::string strangerAt(int socket, const Operators& operators) {
  ucred peer{};
  socklen_t size = sizeof peer;
  if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
    return "somebody unknown: " + std::generic_category().message(errno);
  if (peer.uid == 0 || (peer.uid == geteuid() && peer.uid != kUnknown)) return "";
  if (operators.group && isMember(socket, peer.gid, *operators.group)) return "";
  return fmt::format("process {} of user {}", peer.pid, peer.uid);
}

}  // namespace msand
