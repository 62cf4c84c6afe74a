#include "channel.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>

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

static void sendAll(int socket, const u8* bytes, std::size_t size) {
  while (size != 0) {
    const ssize_t sent = send(socket, bytes, size, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent < 0) fail("the shadow can't be told");
    bytes += sent;
    size -= static_cast<std::size_t>(sent);
  }
}

void sendValue(int socket, const Value& value) {
  std::vector<u8> bytes(sizeof(u32));
  Value::to_cbor(value, bytes);
  const auto length = static_cast<u32>(bytes.size() - sizeof(u32));
  std::memcpy(bytes.data(), &length, sizeof length);
  sendAll(socket, bytes.data(), bytes.size());
}

// False: the other end has closed the socket.
static bool receiveAll(int socket, u8* bytes, std::size_t size, std::chrono::milliseconds patience) {
  while (size != 0) {
    pollfd ready{socket, POLLIN, 0};
    const int polled = poll(&ready, 1, static_cast<int>(patience.count()));
    if (polled == 0) throw ChannelError("the shadow gives no answer");
    const ssize_t got = polled < 0 ? -1 : recv(socket, bytes, size, 0);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) fail("the shadow can't be heard");
    if (got == 0) return false;
    bytes += got;
    size -= static_cast<std::size_t>(got);
  }
  return true;
}

std::optional<Value> receiveValue(int socket, std::chrono::milliseconds patience) {
  u32 length = 0;
  if (!receiveAll(socket, reinterpret_cast<u8*>(&length), sizeof length, patience)) return std::nullopt;
  if (length > kMost) throw ChannelError("the shadow's answer is too long");
  std::vector<u8> bytes(length);
  if (!receiveAll(socket, bytes.data(), length, patience)) return std::nullopt;
  Value value = Value::from_cbor(bytes, true, false);
  if (value.is_discarded()) throw ChannelError("the shadow's answer can't be read");
  return value;
}

}  // namespace msand
