#pragma once
// A terminal at the operators' socket, for the server's own sources.

#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include "server.h"

namespace msand {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kTick{500};              // how often terminals that do not read are looked at
constexpr std::size_t kMostPending = 4 * wire::kMaxRequest;  // bytes of a terminal's requests

// A process with its terminals.
struct Server::Party {
  explicit Party(Peer who) : peer(who) {}

  const Peer peer;

  // under the lock
  Shares shares;                   // of its terminals
  Shares::Time had{0};             // of the node's time; while it wants some, as it entered
  std::size_t posted = 0;          // of its terminals
  const Session* first = nullptr;  // of its terminals that are ready, while the next one is looked for
};

struct Server::Session {
  explicit Session(int descriptor) : socket(descriptor) {}

  // run()'s thread only
  Descriptor socket;
  wire::FrameReader reader{wire::kMaxRequest};
  u32 watched = 0;                            // events that epoll waits for
  bool inputEnded = false;                    // nothing more is taken off the socket
  Clock::time_point progress = Clock::now();  // when it took something last
  Clock::time_point asked = Clock::now();     // when a whole request of it came last
  bool gone = false;

  // the door's thread only
  Terminal terminal;
  std::string prompt;
  std::size_t files = 0;  // what the terminal's files take
  bool takePiece(std::string_view piece);

  std::shared_ptr<Party> party;  // stays

  // under the lock
  struct Request {
    wire::Kind kind;
    std::string line;
  };
  std::deque<Request> requests;
  std::size_t pending = 0;  // their bytes
  TraceForm shown = TraceForm::off;
  Shares::Time had{0};   // of the node's time, with its last request; while one is ready, as it entered
  std::size_t kept = 0;  // `files`, behind its last request
  bool posted = false;   // is in ready_, or the door runs a request of it
  bool ended = false;    // nothing is run any more; the connection ends when all is sent
  bool dropped = false;  // the connection ends now
  bool marked = false;   // is in changed_
  std::string output;
  std::size_t sent = 0;

  std::size_t unsent() const { return output.size() - sent; }
  void forgetRequests() {
    requests.clear();
    pending = 0;
  }
  bool takesMore() const { return requests.size() < wire::kAhead && pending < kMostPending; }
};

}  // namespace msand
