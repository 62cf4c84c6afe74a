#pragma once
// The connections of managers that ask over TCP. None of them holds the others up: there are only so many, and what one
// does not take of its answers waits for it. Part of the library's transport, and so the leader's.

#include <map>
#include <span>
#include <vector>

#include "library.h"
#include "platform/types.h"

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

 private:
  struct Library {  // what the library does itself
    decltype(netsnmp_transport::f_accept) accept;
    decltype(netsnmp_transport::f_recv) receive;
    decltype(netsnmp_transport::f_close) close;
  };
  struct Stream {
    const Library* library = nullptr;
    u64 used = 0;       // the greater, the later
    bool ends = false;  // the library is about to find out
    std::vector<u8> unsent;
    std::size_t sent = 0;  // of these
  };

  static int accept(netsnmp_transport* listener);
  static int receive(netsnmp_transport* transport, void* bytes, int size, void** address, int* length);
  static int send(netsnmp_transport* transport, const void* bytes, int size, void** address, int* length);
  static int close(netsnmp_transport* transport);

  void add(int socket, const Library& library);
  bool send(int socket, Stream& stream, std::span<const u8> bytes);
  void sendMore(int socket);

  static Streams* theStreams;
  std::map<int, Library> listeners_;  // by socket
  std::map<int, Stream> streams_;
  u64 uses_ = 0;
};

}  // namespace msand
