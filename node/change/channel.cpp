#include "channel.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

#include "platform/types.h"

namespace msand {

static constexpr u32 kMost = 256u << 20;

Value bytesValue(std::string_view bytes) { return Value::binary({bytes.begin(), bytes.end()}); }

std::string bytesOf(const Value& value) {
  const auto& bytes = value.get_binary();
  return {bytes.begin(), bytes.end()};
}

[[noreturn]] static void fail(const char* what) {
  throw ChannelError(fmt::format("{}: {}", what, std::generic_category().message(errno)));
}

static void await(int socket, short events, Deadline deadline) {
  using std::chrono::milliseconds, std::chrono::steady_clock;
  while (true) {
    int patience = -1;
    if (deadline) {
      const auto left = std::chrono::ceil<milliseconds>(*deadline - steady_clock::now());
      if (left.count() <= 0) throw ChannelError("the shadow gives no answer");
      patience = static_cast<int>(std::min<i64>(left.count(), 1000));
    }
    pollfd ready{socket, events, 0};
    if (poll(&ready, 1, patience) > 0) return;
  }
}

static void sendAll(int socket, const u8* bytes, std::size_t size, Deadline deadline) {
  while (size != 0) {
    await(socket, POLLOUT, deadline);
    const ssize_t sent = send(socket, bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (sent < 0) fail("the shadow can't be told");
    bytes += sent;
    size -= static_cast<std::size_t>(sent);
  }
}

void sendValue(int socket, const Value& value, Deadline deadline) {
  std::vector<u8> bytes(sizeof(u32));
  Value::to_cbor(value, bytes);
  const auto length = static_cast<u32>(bytes.size() - sizeof(u32));
  std::memcpy(bytes.data(), &length, sizeof length);
  sendAll(socket, bytes.data(), bytes.size(), deadline);
}

// False: the other end has closed the socket.
static bool receiveAll(int socket, u8* bytes, std::size_t size, Deadline deadline) {
  while (size != 0) {
    await(socket, POLLIN, deadline);
    const ssize_t got = recv(socket, bytes, size, MSG_DONTWAIT);
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (got < 0) fail("the shadow can't be heard");
    if (got == 0) return false;
    bytes += got;
    size -= static_cast<std::size_t>(got);
  }
  return true;
}

std::optional<Value> receiveValue(int socket, Deadline deadline) {
  u32 length = 0;
  if (!receiveAll(socket, reinterpret_cast<u8*>(&length), sizeof length, deadline)) return std::nullopt;
  if (length > kMost) throw ChannelError("the shadow's answer is too long");
  std::vector<u8> bytes(length);
  if (!receiveAll(socket, bytes.data(), length, deadline)) return std::nullopt;
  Value value = Value::from_cbor(bytes, true, false);
  if (value.is_discarded()) throw ChannelError("the shadow's answer can't be read");
  return value;
}

}  // namespace msand
