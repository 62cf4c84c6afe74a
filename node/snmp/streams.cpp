#include "streams.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace msand {

constexpr std::size_t kMostStreams = 64;
constexpr std::size_t kMostUnsent = 1u << 20;  // of one stream: its answers, which it does not take
constexpr std::size_t kMostDeaf = 24;          // streams that have such; the library watches 32 sockets for us, no more
constexpr std::size_t kSpent = 1u << 16;

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

// Of the chosen streams of the address that has most of those, the one of least rank; none if none is chosen.
template <class Choice, class Rank>
Streams::Place Streams::ofMost(Choice choice, Rank rank) {
  std::map<WrongKeys::Source, std::size_t> of;
  for (const auto& [socket, stream] : streams_) of[stream.from] += choice(stream) ? 1 : 0;
  Place found = streams_.end();
  const auto isAhead = [&](const Stream& one, const Stream& other) {
    return of[one.from] != of[other.from] ? of[one.from] > of[other.from] : rank(one) < rank(other);
  };
  for (Place at = streams_.begin(); at != streams_.end(); ++at)
    if (choice(at->second) && (found == streams_.end() || isAhead(at->second, found->second))) found = at;
  return found;
}

// Both directions end; the library reads that, and closes the session when it is not busy with others.
void Streams::end(int socket, Stream& stream) {
  stream.ends = true;
  forgetUnsent(socket, stream);
  shutdown(socket, SHUT_RDWR);
}

void Streams::forgetUnsent(int socket, Stream& stream) {
  if (!stream.unsent.empty()) unregister_writefd(socket);
  stream.unsent = {};
  stream.sent = 0;
}

static WrongKeys::Source sourceOf(int socket) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (getpeername(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) return {};
  return WrongKeys::sourceOf(&address, size);
}

// A manager whose machine has gone without a word is noticed, whatever it has asked.
static void watchPeer(int socket) {
  constexpr struct {
    int level, option, value;
  } kOptions[] = {{SOL_SOCKET, SO_KEEPALIVE, 1},
                  {IPPROTO_TCP, TCP_KEEPIDLE, 10},  // seconds
                  {IPPROTO_TCP, TCP_KEEPINTVL, 10},
                  {IPPROTO_TCP, TCP_KEEPCNT, 3}};
  for (const auto& [level, option, value] : kOptions) setsockopt(socket, level, option, &value, sizeof value);
}

// One more than there may be: one that has asked for nothing for longest makes room.
void Streams::add(int socket, const Library& library) {
  const auto isOpen = [](const Stream& one) { return !one.ends; };
  const auto open = std::ranges::count_if(streams_, [&](const auto& one) { return isOpen(one.second); });
  if (static_cast<std::size_t>(open) >= kMostStreams) {
    const Place silent = ofMost(isOpen, [](const Stream& one) { return one.used; });
    end(silent->first, silent->second);
  }
  Stream& stream = streams_[socket] = {};
  stream.library = &library;
  stream.from = sourceOf(socket);
  stream.used = ++uses_;
  watchPeer(socket);
}

bool Streams::hears(const netsnmp_transport* transport) const {
  const auto found = transport == nullptr ? streams_.end() : streams_.find(transport->sock);
  return found == streams_.end() || !found->second.ends;
}

int Streams::receive(netsnmp_transport* transport, void* bytes, int size, void** address, int* length) {
  const auto found = theStreams->streams_.find(transport->sock);
  if (found == theStreams->streams_.end()) return -1;
  Stream& stream = found->second;
  // Who sends a request byte by byte is no busier for it.
  if (!std::exchange(stream.asking, true)) stream.used = ++theStreams->uses_;
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
  stream.asking = false;
  stream.used = ++uses_;
  bool failed = false;
  const bool waits = !stream.unsent.empty();
  if (!waits) bytes = bytes.subspan(sendNow(socket, bytes, failed));
  if (failed || stream.waiting() + bytes.size() > kMostUnsent) {
    end(socket, stream);
    return false;
  }
  if (bytes.empty()) return true;
  stream.unsent.insert(stream.unsent.end(), bytes.begin(), bytes.end());
  if (waits) return true;
  stream.took = uses_;
  return waitToSend(socket);
}

// False: it is this one that has to go.
bool Streams::waitToSend(int socket) {
  const auto isDeaf = [](const Stream& one) { return !one.ends && one.waiting() != 0; };
  const auto deaf = std::ranges::count_if(streams_, [&](const auto& one) { return isDeaf(one.second); });
  if (static_cast<std::size_t>(deaf) > kMostDeaf) {
    const Place longest = ofMost(isDeaf, [](const Stream& one) { return one.took; });
    end(longest->first, longest->second);
    if (longest->first == socket) return false;
  }
  const auto more = [](int ready, void* of) { static_cast<Streams*>(of)->sendMore(ready); };
  return register_writefd(socket, more, this) == FD_REGISTERED_OK;
}

void Streams::sendMore(int socket) {
  Stream& stream = streams_.at(socket);
  bool failed = false;
  const std::size_t sent = sendNow(socket, std::span(stream.unsent).subspan(stream.sent), failed);
  stream.sent += sent;
  if (sent != 0) stream.took = ++uses_;
  if (!failed && stream.waiting() != 0) {
    if (stream.sent < kSpent) return;
    stream.unsent.erase(stream.unsent.begin(), stream.unsent.begin() + static_cast<std::ptrdiff_t>(stream.sent));
    stream.sent = 0;
    return;
  }
  if (failed)
    end(socket, stream);
  else
    forgetUnsent(socket, stream);
}

int Streams::close(netsnmp_transport* transport) {
  const int socket = transport->sock;
  if (const auto listener = theStreams->listeners_.find(socket); listener != theStreams->listeners_.end())
    return listener->second.close(transport);
  const auto found = theStreams->streams_.find(socket);
  if (found == theStreams->streams_.end()) return -1;  // the library closes some twice
  const auto closeIt = found->second.library->close;
  forgetUnsent(socket, found->second);
  theStreams->streams_.erase(found);
  theStreams->spare_.left();
  return closeIt(transport);
}

}  // namespace msand
