#pragma once
// Serves the operator's socket: many terminals, one command at a time over all of them.
//
// One thread (the one that calls run) moves bytes, the door's thread runs the requests. A terminal's requests are run
// in their order; over the processes at the other ends, and the terminals of each, those who had less of the node's
// time are first. A terminal that leaves loses the requests that have not begun. One that does not read what it is sent
// is disconnected, the others and the node do not wait for it. Where all together want more than there is, it is the
// terminals of whoever has most that go.

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "descriptor.h"
#include "door.h"
#include "peer.h"
#include "service.h"
#include "shares.h"
#include "spare.h"

namespace msand {

struct Limits {
  std::size_t slow = 256 * 1024;         // unsent bytes from which on a terminal's next request waits
  std::size_t most = 4 * 1024 * 1024;    // unsent bytes from which on a further trace line disconnects it
  std::size_t all = 32 * 1024 * 1024;    // unsent bytes of all: above, those who took none for longest are disconnected
  std::size_t files = 64 * 1024 * 1024;  // bytes of files of all that wait for their lines: above, who has most goes
  std::size_t terminals = 256;           // for one more, one that was silent for longest is disconnected
  std::chrono::milliseconds patience{30000};  // without a byte taken, while some wait
};

class Server : public TraceSink {
 public:
  // `listener` is a listening socket that does not block. All three outlive the server.
  Server(int listener, Door& door, Service& service, Limits limits = {}, Operators operators = {});
  ~Server() override;
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  // run() calls `alive` at least so often, as long as its thread goes on. Zero: never. Ahead of run().
  void setHeartbeat(std::chrono::milliseconds interval, std::function<void()> alive);

  // Serves until `stop` is readable; then the door is stopped, and the terminals are told and disconnected.
  void run(int stop);

  // That are served now; from any thread.
  std::size_t terminals() const { return count_; }

  // A line for every terminal, shown as those of a trace are; from any thread.
  void announce(std::string_view line);

  // A terminal traces; it is shown a line.
  bool wanted() const override { return traced_ != 0; }
  bool wanted(TraceForm form) const override { return (traced_ >> static_cast<int>(form) & 1) != 0; }
  void show(std::string_view line) override { show(line, TraceForm::off); }
  void show(std::string_view line, TraceForm form) override;  // off: to all

 private:
  struct Session;
  struct Party;
  using SessionPtr = std::shared_ptr<Session>;

  // On the thread of run():
  void handle(int descriptor, u32 events);
  void acceptSome();
  bool admits(const Descriptor& socket) const;
  void join(Session& session);
  void pauseAccepting(bool pause);
  void receive(Session& session);
  void takeRequests(const SessionPtr& session);
  void refuse(Session& session, std::string_view why);
  void send(Session& session);
  void settle(const SessionPtr& session);
  void watch(Session& session);
  void settleChanged();
  void disconnectStalled();
  void disconnectDeafest();
  void disconnectHoarders();
  void makeRoom();
  void disconnect(const SessionPtr& session);
  void sayGoodbye();
  int timeout() const;
  void beat();

  // On the door's thread:
  void serveNext();
  void serveOne(const SessionPtr& session);

  // On either, the lock held:
  SessionPtr takeNext();
  void append(Session& session, std::string frames);
  void schedule(const SessionPtr& session);
  void changed(const SessionPtr& session);
  void countTracing();

  const int listener_;
  Door& door_;
  Service& service_;
  const Limits limits_;
  const Operators operators_;
  Descriptor epoll_;
  Descriptor wake_;
  std::unordered_map<int, SessionPtr> sessions_;
  std::atomic<std::size_t> count_ = 0;  // of them
  bool acceptPaused_ = false;
  std::chrono::steady_clock::time_point pausedAt_{};
  std::chrono::milliseconds interval_{0};
  std::function<void()> alive_;
  std::chrono::steady_clock::time_point beaten_{};
  SpareMemory spare_;

  std::mutex mutex_;               // what follows, and the sessions' shared part
  std::vector<SessionPtr> ready_;  // those with a request that is not under way yet, in their order
  std::size_t held_ = 0;           // of these, how many are not posted, since too much is unsent
  Shares shares_;                  // of the processes
  LongLines long_;
  std::size_t unsent_ = 0;  // bytes, of all
  std::size_t kept_ = 0;    // bytes of files, of all
  std::string announced_;   // frames for all
  std::vector<SessionPtr> changed_;
  std::vector<SessionPtr> tracing_;
  std::atomic<u8> traced_ = 0;  // a bit for each form that is shown
  bool woken_ = false;
};

}  // namespace msand
