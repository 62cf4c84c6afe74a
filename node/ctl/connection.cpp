#include "connection.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>

#include "display.h"

namespace ctl {

static std::string textOf(int code) { return std::strerror(code); }

static void pauseBriefly() {
  const timespec pause{0, 10'000'000};
  nanosleep(&pause, nullptr);
}

static Descriptor connectTo(const std::string& path, int seconds) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) throw ConnectionError(path + ": is too long for a socket");
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  Descriptor made(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  while (connect(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    const int code = errno;
    const bool mayCome = code == ENOENT || code == ECONNREFUSED || code == EAGAIN || code == EINTR;
    if (!mayCome || std::chrono::steady_clock::now() >= end)
      throw ConnectionError(path + ": no connection to msand: " + textOf(code));
    pauseBriefly();
  }
  return made;
}

Connection::Connection(const std::string& path, int seconds) : socket_(connectTo(path, seconds)) {}

void Connection::post(wire::Kind kind, std::string_view line) { wire::appendFrame(posted_, kind, line); }

void Connection::sendFile(const std::string& name, std::string_view bytes) {
  const std::size_t most = wire::kMaxRequest - 2 - name.size();
  do {
    send(wire::Kind::file, name + '\n' + std::string(bytes.substr(0, most)));
    bytes.remove_prefix(std::min(most, bytes.size()));
  } while (!bytes.empty());
}

void Connection::send() {
  std::string_view rest = posted_;
  while (!rest.empty()) {
    const ssize_t sent = ::send(socket_.get(), rest.data(), rest.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    // What the node has said is still to be read; receive() finds the end, which comes when nothing more can.
    if (sent < 0) {
      shutdown(socket_.get(), SHUT_WR);
      break;
    }
    rest.remove_prefix(static_cast<std::size_t>(sent));
  }
  posted_.clear();
}

void Connection::tellScreen() {
  const wire::Screen screen = screenOf(STDOUT_FILENO);
  if (screen == screen_) return;
  screen_ = screen;
  post(wire::Kind::screen, wire::screenPayload(screen));
}

bool Connection::fill(bool wait) {
  std::array<char, 65536> bytes;
  const ssize_t got = recv(socket_.get(), bytes.data(), bytes.size(), wait ? 0 : MSG_DONTWAIT);
  if (got > 0) {
    reader_.feed({bytes.data(), static_cast<std::size_t>(got)});
    return true;
  }
  if (got < 0 && (errno == EAGAIN || errno == EINTR)) return false;
  throw ConnectionError("the connection to msand is lost");
}

// The next frame that is the caller's business.
std::optional<wire::Frame> Connection::next() {
  while (const auto frame = reader_.next()) {
    if (frame->kind == wire::Kind::hello) {
      if (frame->payload.size() != 1 || static_cast<u8>(frame->payload[0]) != wire::kVersion)
        throw ConnectionError("msand speaks another version of the protocol");
    } else if (frame->kind == wire::Kind::prompt) {
      prompt_ = frame->payload;
    } else if (frame->kind == wire::Kind::bye) {
      ended_ = true;
      farewell_ = frame->payload;
      return std::nullopt;
    } else if (givenUp_ != 0 && (frame->kind == wire::Kind::text || frame->kind == wire::Kind::result)) {
      if (frame->kind == wire::Kind::result) --givenUp_;
    } else {
      return frame;
    }
  }
  if (reader_.broken()) throw ConnectionError("what answers is no msand");
  return std::nullopt;
}

std::optional<wire::Frame> Connection::receive() {
  while (!ended_) {
    if (const auto frame = next()) return frame;
    if (ended_) break;
    fill(true);
  }
  return std::nullopt;
}

void Connection::awaitPrompt() {
  while (prompt_.empty() && !ended_) {
    if (next()) throw ConnectionError("what answers is no msand");
    if (prompt_.empty() && !ended_) fill(true);
  }
}

std::optional<wire::Frame> Connection::receiveReady() {
  if (ended_) return std::nullopt;
  if (const auto frame = next()) return frame;
  if (ended_ || !fill(false)) return std::nullopt;
  return next();
}

}  // namespace ctl
