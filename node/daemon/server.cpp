#include "server.h"

#include <fmt/format.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "note.h"
#include "reserve.h"
#include "server_session.h"

namespace msand {

using Clock = std::chrono::steady_clock;

constexpr int kAtOnce = 16;  // connections that are accepted ahead of what the terminals want

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

Server::Server(int listener, Door& door, Service& service, Limits limits, Operators operators)
    : listener_(listener),
      door_(door),
      service_(service),
      limits_(limits),
      operators_(operators),
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
    disconnectDeafest();
    disconnectHoarders();
    std::erase_if(sessions_, [](const auto& entry) { return entry.second->gone; });
    count_ = sessions_.size();
    spare_.giveBack();
    beat();
    renewReserve();
  }
  control(epoll_, EPOLL_CTL_DEL, stop, 0);
  door_.stop();
  sayGoodbye();
}

void Server::handle(int descriptor, u32 events) {
  if (descriptor == listener_) return acceptSome();
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
  const bool waits = acceptPaused_ || spare_.waits() || std::ranges::any_of(sessions_, [](const auto& entry) {
                       return (entry.second->watched & EPOLLOUT) != 0;
                     });
  auto longest = waits ? std::min(kTick, limits_.patience) : std::chrono::milliseconds::max();
  if (alive_) longest = std::min(longest, interval_);
  return longest == std::chrono::milliseconds::max() ? -1 : static_cast<int>(longest.count());
}

void Server::setHeartbeat(std::chrono::milliseconds interval, std::function<void()> alive) {
  if (interval.count() == 0) return;
  interval_ = interval;
  alive_ = std::move(alive);
}

void Server::beat() {
  if (!alive_ || Clock::now() - beaten_ < interval_ / 2) return;
  beaten_ = Clock::now();
  alive_();
}

// --- connections

// Who comes again and again must not keep this thread from those who are here.
void Server::acceptSome() {
  for (int i = 0; i < kAtOnce; ++i) {
    const int descriptor = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (descriptor < 0) {
      if (errno == EINTR || errno == ECONNABORTED) continue;
      if (errno != EAGAIN && errno != EWOULDBLOCK) pauseAccepting(true);  // no descriptor or no memory is left
      return;
    }
    const auto session = std::make_shared<Session>(descriptor);
    if (!admits(session->socket)) continue;
    join(*session);
    makeRoom();
    if (!tryControl(epoll_, EPOLL_CTL_ADD, descriptor, 0)) continue;
    sessions_.insert_or_assign(descriptor, session);
    session->prompt = service_.prompt(session->terminal);
    const char version = wire::kVersion;
    std::string frames;
    wire::appendFrame(frames, wire::Kind::hello, {&version, 1});
    wire::appendFrame(frames, wire::Kind::prompt, session->prompt);
    {
      const std::lock_guard lock(mutex_);
      append(*session, std::move(frames));
    }
    settle(session);
  }
}

// Who may not is told so as far as it takes the words at once; it costs nobody his place.
bool Server::admits(const Descriptor& socket) const {
  const std::string stranger = strangerAt(socket.get(), operators_);
  if (stranger.empty()) return true;
  warn("refused at the operators' socket: " + stranger);
  std::string frame;
  wire::appendFrame(frame, wire::Kind::bye, "you are no operator of this node");
  ::send(socket.get(), frame.data(), frame.size(), MSG_NOSIGNAL);
  return false;
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
    session->forgetRequests();
    unsent_ -= session->unsent();
    kept_ -= std::exchange(session->kept, 0);
    session->output = {};
    session->sent = 0;
    std::erase(tracing_, session);
    countTracing();
  }
  session->socket.reset();
  spare_.left();
  pauseAccepting(false);
}

void Server::sayGoodbye() {
  for (const auto& [descriptor, session] : sessions_) {
    if (session->gone) continue;
    {
      const std::lock_guard lock(mutex_);
      refuse(*session, "the node is shut down");
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
  while (!session->ended && session->takesMore()) {
    const auto frame = session->reader.next();
    if (!frame) {
      if (session->reader.broken()) refuse(*session, "a frame of a length that is not allowed");
      break;
    }
    using enum wire::Kind;
    if (frame->kind == line || frame->kind == ask || frame->kind == screen || frame->kind == file) {
      session->asked = Clock::now();
      session->requests.push_back({frame->kind, std::string(frame->payload)});
      session->pending += frame->payload.size();
    } else {
      refuse(*session, "a frame of a kind that is not known");
    }
  }
  schedule(session);
}

void Server::refuse(Session& session, std::string_view why) {
  session.forgetRequests();
  session.ended = true;
  std::string frame;
  wire::appendFrame(frame, wire::Kind::bye, why);
  append(session, std::move(frame));
}

// --- bytes out

void Server::append(Session& session, std::string frames) {
  unsent_ += frames.size();
  if (session.output.empty())
    session.output = std::move(frames);
  else
    session.output += frames;
}

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
    unsent_ -= static_cast<std::size_t>(taken);
    session.progress = Clock::now();
  }
  if (session.unsent() == 0)
    session.output = {};  // with its memory
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
    if (!session.inputEnded && !session.ended && session.takesMore()) events |= EPOLLIN;
    if (session.unsent() != 0) events |= EPOLLOUT;
  }
  if (events == session.watched) return;
  if ((events & ~session.watched & EPOLLOUT) != 0) session.progress = Clock::now();
  control(epoll_, EPOLL_CTL_MOD, session.socket.get(), events);
  session.watched = events;
}

// --- what the door's thread and run()'s thread have for each other

void Server::announce(std::string_view line) {
  const std::lock_guard lock(mutex_);
  wire::appendFrame(announced_, wire::Kind::trace, line.substr(0, wire::kMaxFrame - 1));
  if (!woken_) eventfd_write(wake_.get(), 1);
  woken_ = true;
}

void Server::settleChanged() {
  std::vector<SessionPtr> sessions;
  {
    const std::lock_guard lock(mutex_);
    const std::string announced = std::exchange(announced_, {});
    for (const auto& [descriptor, session] : sessions_) {
      if (announced.empty() || session->gone || session->ended) continue;
      append(*session, announced);
      changed(session);
    }
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
  Party& party = *session->party;
  session->had = party.shares.entered(session->had);
  if (party.posted++ == 0) party.had = shares_.entered(party.had);
  ready_.push_back(session);
  door_.post([this] { serveNext(); });
}

// The first of a process among its own, then the first process. Among equals, the one that has waited for longest.
Server::SessionPtr Server::takeNext() {
  const auto cost = [this](const Session& one) {
    return one.requests.empty() ? Shares::Time{0} : long_.cost(one.requests.front().line);
  };
  for (const SessionPtr& session : ready_) session->party->first = nullptr;
  for (const SessionPtr& session : ready_) {
    const Session*& first = session->party->first;
    if (first == nullptr || session->had + cost(*session) < first->had + cost(*first)) first = session.get();
  }
  const auto next = std::ranges::min_element(ready_, {}, [&](const SessionPtr& session) {
    return session->party->first == session.get() ? session->party->had + cost(*session) : Shares::Time::max();
  });
  const SessionPtr taken = *next;
  ready_.erase(next);
  return taken;
}

void Server::serveNext() {
  SessionPtr session;
  {
    const std::lock_guard lock(mutex_);
    if (unsent_ > limits_.all) {
      ++held_;
      if (!woken_) eventfd_write(wake_.get(), 1);
      woken_ = true;
      return;
    }
    session = takeNext();
  }
  serveOne(session);
}

// False: it is too much, and the session ends.
bool Server::Session::takePiece(std::string_view piece) {
  constexpr std::size_t kOfName = 100;  // what a name takes beside its letters
  const std::size_t end = std::min(piece.find('\n'), piece.size());
  const std::string_view bytes = piece.substr(std::min(end + 1, piece.size()));
  const auto [file, isNew] = terminal.files.try_emplace(std::string(piece.substr(0, end)));
  files += bytes.size() + (isNew ? end + kOfName : 0);
  terminal.ended = files > wire::kMaxFiles;
  if (!terminal.ended) file->second += bytes;
  return !terminal.ended;
}

void Server::serveOne(const SessionPtr& session) {
  Session::Request request;
  {
    const std::lock_guard lock(mutex_);
    if (session->requests.empty()) {
      session->posted = false;
      --session->party->posted;
      return changed(session);
    }
    request = std::move(session->requests.front());
    session->requests.pop_front();
    session->pending -= request.line.size();
  }
  const auto begin = Clock::now();
  Terminal& terminal = session->terminal;
  std::string frames;
  if (request.kind == wire::Kind::screen) {
    terminal.screen = wire::readScreen(request.line).value_or(terminal.screen);
  } else if (request.kind == wire::Kind::file) {
    if (!session->takePiece(request.line)) wire::appendFrame(frames, wire::Kind::bye, "files of more than 16 MiB");
  } else if (request.kind == wire::Kind::ask) {
    const std::string rows = service_.suggest(terminal, request.line);
    wire::appendFrame(frames, wire::Kind::suggestions, std::string_view(rows).substr(0, wire::kMaxFrame - 1));
  } else {
    std::string text;
    const wire::Result result = service_.run(terminal, request.line, text);
    terminal.files.clear();
    session->files = 0;
    frames.reserve(text.size() + text.size() / wire::kMaxFrame * 8 + 256);
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
  Party& party = *session->party;
  const Shares::Time took = Clock::now() - begin;
  session->had = party.shares.charge(session->had, took);
  party.had = shares_.charge(party.had, took);
  --party.posted;
  long_.note(request.line, took);
  if (session->dropped || session->ended) return;  // nothing follows a goodbye
  kept_ += session->files - session->kept;
  session->kept = session->files;
  append(*session, std::move(frames));
  if (terminal.ended) {
    session->ended = true;
    session->forgetRequests();
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
    if (session->ended || (form != TraceForm::off && form != session->shown)) continue;
    if (session->unsent() >= limits_.most)
      session->dropped = true;
    else
      append(*session, frame);
    changed(session);
  }
  std::erase_if(tracing_, [](const SessionPtr& session) { return session->dropped; });
  countTracing();
}

}  // namespace msand
