#include "streams.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

namespace msand {

constexpr std::size_t kMostStreams = 64;
constexpr std::size_t kMostUnsent = 1u << 20;  // of one stream: its answers, which it does not take

Streams* Streams::theStreams = nullptr;

Streams::Streams() { theStreams = this; }

Streams::~Streams() { theStreams = nullptr; }

// A connection's transport is a copy of the listener's.
void Streams::watch(netsnmp_transport& listener) {
  listeners_[listener.sock] = {listener.f_accept, listener.f_recv, listener.f_close};
  listener.f_accept = accept;
  listener.f_recv = receive;
  listener.f_send = send;
  listener.f_close = close;
}

// Both directions end; the library reads that, and closes the session when it is not busy with others.
static void shutDown(int socket) { shutdown(socket, SHUT_RDWR); }

// As much as the peer takes now.
static std::size_t sendNow(int socket, std::span<const u8> bytes, bool& failed) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t one = ::send(socket, bytes.data() + sent, bytes.size() - sent, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (one < 0 && errno == EINTR) continue;
    if (one < 0) {
      failed = errno != EAGAIN && errno != EWOULDBLOCK;
      break;
    }
    sent += static_cast<std::size_t>(one);
  }
  return sent;
}

int Streams::accept(netsnmp_transport* listener) {
  const Library& library = theStreams->listeners_.at(listener->sock);
  const int socket = library.accept(listener);
  if (socket >= 0) theStreams->add(socket, library);
  return socket;
}

// One more than there may be: the one that was silent for longest makes room.
void Streams::add(int socket, const Library& library) {
  const auto open = std::ranges::count_if(streams_, [](const auto& one) { return !one.second.ends; });
  if (static_cast<std::size_t>(open) >= kMostStreams) {
    const auto rank = [](const auto& one) { return one.second.ends ? ~u64{0} : one.second.used; };
    const auto silent = std::ranges::min_element(streams_, {}, rank);
    silent->second.ends = true;
    shutDown(silent->first);
  }
  streams_[socket] = {&library, ++uses_, false, {}, 0};
}

int Streams::receive(netsnmp_transport* transport, void* bytes, int size, void** address, int* length) {
  const auto found = theStreams->streams_.find(transport->sock);
  if (found == theStreams->streams_.end()) return -1;
  Stream& stream = found->second;
  stream.used = ++theStreams->uses_;
  return stream.library->receive(transport, bytes, size, address, length);
}

int Streams::send(netsnmp_transport* transport, const void* bytes, int size, void**, int*) {
  const auto found = theStreams->streams_.find(transport->sock);
  if (found == theStreams->streams_.end()) return -1;
  const std::span<const u8> all(static_cast<const u8*>(bytes), static_cast<std::size_t>(std::max(size, 0)));
  return theStreams->send(found->first, found->second, all) ? size : -1;
}

bool Streams::send(int socket, Stream& stream, std::span<const u8> bytes) {
  if (stream.ends) return false;
  bool failed = false;
  const bool waits = !stream.unsent.empty();
  if (!waits) bytes = bytes.subspan(sendNow(socket, bytes, failed));
  if (failed || stream.unsent.size() - stream.sent + bytes.size() > kMostUnsent) {
    stream.ends = true;
    shutDown(socket);
    return false;
  }
  if (bytes.empty()) return true;
  stream.unsent.insert(stream.unsent.end(), bytes.begin(), bytes.end());
  if (!waits)
    register_writefd(
        socket, [](int ready, void* of) { static_cast<Streams*>(of)->sendMore(ready); }, this);
  return true;
}

void Streams::sendMore(int socket) {
  Stream& stream = streams_.at(socket);
  bool failed = false;
  stream.sent += sendNow(socket, std::span(stream.unsent).subspan(stream.sent), failed);
  if (!failed && stream.sent < stream.unsent.size()) return;
  stream.unsent = {};
  stream.sent = 0;
  unregister_writefd(socket);
  if (!failed) return;
  stream.ends = true;
  shutDown(socket);
}

int Streams::close(netsnmp_transport* transport) {
  const int socket = transport->sock;
  if (const auto listener = theStreams->listeners_.find(socket); listener != theStreams->listeners_.end())
    return listener->second.close(transport);
  const auto found = theStreams->streams_.find(socket);
  if (found == theStreams->streams_.end()) return -1;  // the library closes some twice
  const auto closeIt = found->second.library->close;
  if (!found->second.unsent.empty()) unregister_writefd(socket);
  theStreams->streams_.erase(found);
  return closeIt(transport);
}

}  // namespace msand
