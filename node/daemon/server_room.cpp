// Who goes where all together want more than there is. Whoever has most of it makes room: so strangers to each other
// keep nobody out, how many terminals one of them may open.

#include <fmt/format.h>
#include <sys/epoll.h>

#include <algorithm>
#include <map>
#include <tuple>

#include "note.h"
#include "server_session.h"

namespace msand {

// Puts a new terminal beside the others of its process.
void Server::join(Session& session) {
  const Peer peer = peerAt(session.socket.get());
  const auto same = [&](const auto& entry) { return !entry.second->gone && entry.second->party->peer == peer; };
  const auto found = std::ranges::find_if(sessions_, same);
  session.party = found != sessions_.end() ? found->second->party : std::make_shared<Party>(peer);
}

// Of the user with most terminals, of his process with most of them, the one that has asked for nothing for longest.
// One that waits for an answer goes only if all of the process do.
void Server::makeRoom() {
  std::map<uid_t, std::size_t> ofUser;
  std::map<const Party*, std::size_t> ofProcess;
  std::size_t all = 0;
  for (const auto& [descriptor, session] : sessions_) {
    if (session->gone) continue;
    ++ofUser[session->party->peer.user];
    ++ofProcess[session->party.get()];
    ++all;
  }
  if (all < limits_.terminals) return;
  const auto rank = [&](const Session& one) {
    return std::tuple(all - ofUser[one.party->peer.user], all - ofProcess[one.party.get()], one.posted,
                      std::max(one.asked, one.progress));
  };
  SessionPtr silent;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [descriptor, session] : sessions_)
      if (!session->gone && (!silent || rank(*session) < rank(*silent))) silent = session;
    refuse(*silent, "there are too many terminals; of whoever has most, this one was silent for longest");
  }
  send(*silent);
  disconnect(silent);
}

void Server::disconnectStalled() {
  const auto now = Clock::now();
  for (const auto& [descriptor, session] : sessions_)
    if (!session->gone && (session->watched & EPOLLOUT) != 0 && now - session->progress > limits_.patience)
      disconnect(session);
  if (now - pausedAt_ >= kTick) pauseAccepting(false);
}

// While too much is unsent over all, nothing further is run; it is those who read nothing that make room for the rest.
void Server::disconnectDeafest() {
  while (true) {
    SessionPtr deafest;
    {
      const std::lock_guard lock(mutex_);
      if (unsent_ <= limits_.all) {
        for (; held_ != 0; --held_) door_.post([this] { serveNext(); });
        return;
      }
      std::map<const Party*, std::size_t> of;
      for (const auto& [descriptor, session] : sessions_) of[session->party.get()] += session->unsent();
      const auto rank = [&](const Session& one) { return std::tuple(unsent_ - of[one.party.get()], one.progress); };
      for (const auto& [descriptor, session] : sessions_)
        if (session->unsent() != 0 && (!deafest || rank(*session) < rank(*deafest))) deafest = session;
    }
    note(fmt::format("a terminal that does not read is disconnected: {} MiB wait for all of them", limits_.all >> 20));
    disconnect(deafest);
  }
}

void Server::disconnectHoarders() {
  while (true) {
    SessionPtr hoarder;
    {
      const std::lock_guard lock(mutex_);
      if (kept_ <= limits_.files) return;
      std::map<const Party*, std::size_t> of;
      for (const auto& [descriptor, session] : sessions_) of[session->party.get()] += session->kept;
      const auto rank = [&](const Session& one) { return std::tuple(of[one.party.get()], one.kept); };
      for (const auto& [descriptor, session] : sessions_)
        if (session->kept != 0 && (!hoarder || rank(*session) > rank(*hoarder))) hoarder = session;
      refuse(*hoarder, fmt::format("the files of all terminals have more than {} MiB, of which this one has most",
                                   limits_.files >> 20));
    }
    send(*hoarder);
    disconnect(hoarder);
  }
}

}  // namespace msand
