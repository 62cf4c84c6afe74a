#pragma once
// The connections of managers that ask over TCP. None of them holds the others up: there are only so many, and what one
// does not take of its answers waits for it. Where more are wanted, it is those of the address with most of them that
// go. Part of the library's transport, and so the leader's.

#include <map>
#include <span>
#include <vector>

#include "library.h"
#include "platform/types.h"
#include "spare.h"
#include "wrong_keys.h"

namespace msand {

class Streams {
 public:
  // Of a process; one at a time.
  Streams();
  ~Streams();
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;

  // The connections that this listener accepts from now on.
  void watch(netsnmp_transport& listener);

  // False: the connection has been ended, and what it had asked ahead is nobody's business any more.
  bool hears(const netsnmp_transport* transport) const;

  // Once a second or so.
  void giveBack() { spare_.giveBack(); }

 private:
  struct Library {  // what the library does itself
    decltype(netsnmp_transport::f_accept) accept;
    decltype(netsnmp_transport::f_recv) receive;
    decltype(netsnmp_transport::f_close) close;
  };
  struct Stream {
    const Library* library = nullptr;
    WrongKeys::Source from{};
    u64 used = 0;         // when it began a request, or was answered; the greater, the later
    bool asking = false;  // a part of a request has come
    bool ends = false;    // the library is about to find out
    u64 took = 0;         // when it took something of what is unsent
    std::vector<u8> unsent;
    std::size_t sent = 0;  // of these
    std::size_t waiting() const { return unsent.size() - sent; }
  };
  using Place = std::map<int, Stream>::iterator;

  static int accept(netsnmp_transport* listener);
  static int receive(netsnmp_transport* transport, void* bytes, int size, void** address, int* length);
  static int send(netsnmp_transport* transport, const void* bytes, int size, void** address, int* length);
  static int close(netsnmp_transport* transport);

  void add(int socket, const Library& library);
  bool send(int socket, Stream& stream, std::span<const u8> bytes);
  void sendMore(int socket);
  bool waitToSend(int socket);
  template <class Choice, class Rank>
  Place ofMost(Choice choice, Rank rank);
  static void end(int socket, Stream& stream);
  static void forgetUnsent(int socket, Stream& stream);

  static Streams* theStreams;
  std::map<int, Library> listeners_;  // by socket
  std::map<int, Stream> streams_;
  u64 uses_ = 0;
  SpareMemory spare_;
};

}  // namespace msand
