#include "server.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <system_error>

namespace msand {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kTick{500};  // how often terminals that do not read are looked at

struct Server::Session {
  explicit Session(int descriptor) : socket(descriptor) {}

  // run()'s thread only
  Descriptor socket;
  wire::FrameReader reader{wire::kMaxRequest};
  u32 watched = 0;          // events that epoll waits for
  bool inputEnded = false;  // nothing more is taken off the socket
  Clock::time_point progress = Clock::now();
  bool gone = false;

  // the door's thread only
  Terminal terminal;
  std::string prompt;

  // under the lock
  struct Request {
    wire::Kind kind;
    std::string line;
  };
  std::deque<Request> requests;
  TraceForm shown = TraceForm::off;
  bool posted = false;   // the door has, or runs, a request of this terminal
  bool ended = false;    // nothing is run any more; the connection ends when all is sent
  bool dropped = false;  // the connection ends now
  bool marked = false;   // is in changed_
  std::string output;
  std::size_t sent = 0;

  std::size_t unsent() const { return output.size() - sent; }
};

static Descriptor check(int descriptor) {
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "msand: no descriptor");
  return Descriptor(descriptor);
}

static bool tryControl(const Descriptor& epoll, int what, int descriptor, u32 events) {
  epoll_event event{};
  event.events = events;
  event.data.fd = descriptor;
  return epoll_ctl(epoll.get(), what, descriptor, &event) == 0;
}

static void control(const Descriptor& epoll, int what, int descriptor, u32 events) {
  if (!tryControl(epoll, what, descriptor, events))
    throw std::system_error(errno, std::generic_category(), "msand: epoll_ctl");
}

Server::Server(int listener, Door& door, Service& service, Limits limits)
    : listener_(listener),
      door_(door),
      service_(service),
      limits_(limits),
      epoll_(check(epoll_create1(EPOLL_CLOEXEC))),
      wake_(check(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))) {
  control(epoll_, EPOLL_CTL_ADD, listener_, EPOLLIN);
  control(epoll_, EPOLL_CTL_ADD, wake_.get(), EPOLLIN);
}

Server::~Server() { door_.stop(); }  // its requests know this server

void Server::run(int stop) {
  control(epoll_, EPOLL_CTL_ADD, stop, EPOLLIN);
  std::array<epoll_event, 64> events{};
  bool stopped = false;
  while (!stopped) {
    const int count = epoll_wait(epoll_.get(), events.data(), static_cast<int>(events.size()), timeout());
    if (count < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category(), "msand: epoll_wait");
    for (int i = 0; i < count; ++i) {
      const epoll_event& event = events[static_cast<std::size_t>(i)];
      if (event.data.fd == stop)
        stopped = true;
      else
        handle(event.data.fd, event.events);
    }
    settleChanged();
    disconnectStalled();
    std::erase_if(sessions_, [](const auto& entry) { return entry.second->gone; });
  }
  control(epoll_, EPOLL_CTL_DEL, stop, 0);
  door_.stop();
  sayGoodbye();
}

void Server::handle(int descriptor, u32 events) {
  if (descriptor == listener_) return acceptAll();
  if (descriptor == wake_.get()) {
    eventfd_t count = 0;
    eventfd_read(wake_.get(), &count);
    return;  // settleChanged does the work
  }
  const auto found = sessions_.find(descriptor);
  if (found == sessions_.end() || found->second->gone) return;
  const SessionPtr session = found->second;
  if ((events & (EPOLLHUP | EPOLLERR)) != 0) return disconnect(session);
  if ((events & EPOLLIN) != 0) receive(*session);
  settle(session);
}

int Server::timeout() const {
  const bool waits = acceptPaused_ || std::ranges::any_of(sessions_, [](const auto& entry) {
                       return (entry.second->watched & EPOLLOUT) != 0;
                     });
  return waits ? static_cast<int>(std::min(kTick, limits_.patience).count()) : -1;
}

// --- connections

void Server::acceptAll() {
  while (true) {
    const int descriptor = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (descriptor < 0) {
      if (errno == EINTR || errno == ECONNABORTED) continue;
      if (errno != EAGAIN && errno != EWOULDBLOCK) pauseAccepting(true);  // no descriptor or no memory is left
      return;
    }
    const auto session = std::make_shared<Session>(descriptor);
    if (!tryControl(epoll_, EPOLL_CTL_ADD, descriptor, 0)) continue;
    sessions_.insert_or_assign(descriptor, session);
    session->prompt = service_.prompt(session->terminal);
    const char version = wire::kVersion;
    wire::appendFrame(session->output, wire::Kind::hello, {&version, 1});
    wire::appendFrame(session->output, wire::Kind::prompt, session->prompt);
    settle(session);
  }
}

void Server::pauseAccepting(bool pause) {
  if (acceptPaused_ == pause) return;
  acceptPaused_ = pause;
  pausedAt_ = Clock::now();
  control(epoll_, EPOLL_CTL_MOD, listener_, pause ? 0u : u32{EPOLLIN});
}

void Server::disconnect(const SessionPtr& session) {
  if (session->gone) return;
  session->gone = true;
  {
    const std::lock_guard lock(mutex_);
    session->dropped = true;
    session->requests.clear();
    std::erase(tracing_, session);
    countTracing();
  }
  session->socket.reset();
  pauseAccepting(false);
}

void Server::disconnectStalled() {
  const auto now = Clock::now();
  for (const auto& [descriptor, session] : sessions_)
    if (!session->gone && (session->watched & EPOLLOUT) != 0 && now - session->progress > limits_.patience)
      disconnect(session);
  if (now - pausedAt_ >= kTick) pauseAccepting(false);
}

void Server::sayGoodbye() {
  for (const auto& [descriptor, session] : sessions_) {
    if (session->gone) continue;
    {
      const std::lock_guard lock(mutex_);
      wire::appendFrame(session->output, wire::Kind::bye, "the node is shut down");
    }
    send(*session);
    disconnect(session);
  }
  sessions_.clear();
}

// --- bytes in

void Server::receive(Session& session) {
  std::array<char, 65536> bytes;
  const ssize_t got = recv(session.socket.get(), bytes.data(), bytes.size(), 0);
  if (got > 0) {
    session.reader.feed({bytes.data(), static_cast<std::size_t>(got)});
  } else if (got == 0 || (errno != EAGAIN && errno != EINTR)) {
    session.inputEnded = true;
  }
}

// Moves whole frames to the requests, as many as may be under way; the rest stays in the reader.
void Server::takeRequests(const SessionPtr& session) {
  const std::lock_guard lock(mutex_);
  while (!session->ended && session->requests.size() < wire::kAhead) {
    const auto frame = session->reader.next();
    if (!frame) {
      if (session->reader.broken()) refuse(*session, "a frame of a length that is not allowed");
      break;
    }
    if (frame->kind == wire::Kind::line || frame->kind == wire::Kind::ask)
      session->requests.push_back({frame->kind, std::string(frame->payload)});
    else
      refuse(*session, "a frame of a kind that is not known");
  }
  schedule(session);
}

void Server::refuse(Session& session, std::string_view why) {
  session.requests.clear();
  session.ended = true;
  wire::appendFrame(session.output, wire::Kind::bye, why);
}

// --- bytes out

void Server::send(Session& session) {
  const std::lock_guard lock(mutex_);
  while (session.unsent() != 0) {
    const ssize_t taken =
        ::send(session.socket.get(), session.output.data() + session.sent, session.unsent(), MSG_NOSIGNAL);
    if (taken < 0 && errno == EINTR) continue;
    if (taken < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
    if (taken < 0) {
      session.dropped = true;
      return;
    }
    session.sent += static_cast<std::size_t>(taken);
    session.progress = Clock::now();
  }
  if (session.unsent() == 0)
    session.output.clear();
  else if (session.sent >= limits_.slow)
    session.output.erase(0, session.sent);
  else
    return;
  session.sent = 0;
}

// Brings a session up to date: sends what waits, takes what may be taken, ends what has ended.
void Server::settle(const SessionPtr& session) {
  if (session->gone) return;
  takeRequests(session);
  send(*session);
  takeRequests(session);
  bool over = false;
  {
    const std::lock_guard lock(mutex_);
    const bool idle = !session->posted && session->requests.empty();
    over = session->dropped || (session->unsent() == 0 && (session->ended || (session->inputEnded && idle)));
  }
  if (over)
    disconnect(session);
  else
    watch(*session);
}

void Server::watch(Session& session) {
  u32 events = 0;
  {
    const std::lock_guard lock(mutex_);
    if (!session.inputEnded && !session.ended && session.requests.size() < wire::kAhead) events |= EPOLLIN;
    if (session.unsent() != 0) events |= EPOLLOUT;
  }
  if (events == session.watched) return;
  if ((events & ~session.watched & EPOLLOUT) != 0) session.progress = Clock::now();
  control(epoll_, EPOLL_CTL_MOD, session.socket.get(), events);
  session.watched = events;
}

// --- what the door's thread and run()'s thread have for each other

void Server::settleChanged() {
  std::vector<SessionPtr> sessions;
  {
    const std::lock_guard lock(mutex_);
    sessions.swap(changed_);
    woken_ = false;
    for (const SessionPtr& session : sessions) session->marked = false;
  }
  for (const SessionPtr& session : sessions) settle(session);
}

void Server::changed(const SessionPtr& session) {
  if (!session->marked) changed_.push_back(session);
  session->marked = true;
  if (!woken_) eventfd_write(wake_.get(), 1);
  woken_ = true;
}

void Server::schedule(const SessionPtr& session) {
  if (session->posted || session->ended || session->dropped || session->requests.empty()) return;
  if (session->unsent() >= limits_.slow) return;
  session->posted = true;
  door_.post([this, session] { serveOne(session); });
}

void Server::serveOne(const SessionPtr& session) {
  Session::Request request;
  {
    const std::lock_guard lock(mutex_);
    if (session->requests.empty()) {
      session->posted = false;
      return changed(session);
    }
    request = std::move(session->requests.front());
    session->requests.pop_front();
  }
  Terminal& terminal = session->terminal;
  std::string frames;
  if (request.kind == wire::Kind::ask) {
    const std::string rows = service_.suggest(terminal, request.line);
    wire::appendFrame(frames, wire::Kind::suggestions, std::string_view(rows).substr(0, wire::kMaxFrame - 1));
  } else {
    std::string text;
    const wire::Result result = service_.run(terminal, request.line, text);
    wire::appendFrames(frames, wire::Kind::text, text);
    std::string prompt = service_.prompt(terminal);
    if (prompt != session->prompt) wire::appendFrame(frames, wire::Kind::prompt, prompt);
    session->prompt = std::move(prompt);
    if (terminal.ended)
      wire::appendFrame(frames, wire::Kind::bye, "");
    else
      wire::appendResult(frames, result);
  }

  const std::lock_guard lock(mutex_);
  session->posted = false;
  if (session->dropped) return;
  session->output += frames;
  if (terminal.ended) {
    session->ended = true;
    session->requests.clear();
  }
  const auto at = std::ranges::find(tracing_, session);
  session->shown = terminal.trace;
  const bool traces = terminal.trace != TraceForm::off;
  if (traces && at == tracing_.end()) tracing_.push_back(session);
  if (!traces && at != tracing_.end()) tracing_.erase(at);
  countTracing();
  schedule(session);
  changed(session);
}

void Server::countTracing() {
  u8 forms = 0;
  for (const SessionPtr& session : tracing_) forms = static_cast<u8>(forms | 1u << static_cast<int>(session->shown));
  traced_ = forms;
}

void Server::show(std::string_view line, TraceForm form) {
  std::string frame;
  wire::appendFrame(frame, wire::Kind::trace, line.substr(0, wire::kMaxFrame - 1));
  const std::lock_guard lock(mutex_);
  for (const SessionPtr& session : tracing_) {
    if (form != TraceForm::off && form != session->shown) continue;
    if (session->unsent() >= limits_.most)
      session->dropped = true;
    else
      session->output += frame;
    changed(session);
  }
  std::erase_if(tracing_, [](const SessionPtr& session) { return session->dropped; });
  countTracing();
}

}  // namespace msand
