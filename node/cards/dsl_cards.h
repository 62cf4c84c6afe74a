#pragma once
// The simulated DSL cards: they hear what the node sends them, and answer questions about their lines.

#include <array>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "host/chassis.h"
#include "host/observer.h"
#include "port.h"

namespace cards {

// All functions from any thread.
class DslCards {
 public:
  explicit DslCards(std::function<Time()> now = Clock::now);

  // The line behind a port; with port 0 behind all of the slot that have not been told one of their own.
  void setSite(u16 slot, u16 port, const Site& site);
  Site site(u16 slot, u16 port) const;

  // A message to a card.
  void hear(host::Link link, u16 slot, u16 id, host::Bytes payload);

  // What a card that is up answers; nothing if it has no DSL ports or the question is not about lines.
  std::optional<std::vector<u8>> answer(host::Link link, u16 slot, u16 id, host::Bytes question);

 private:
  struct Card {
    Site site;  // where a port has none of its own
    std::array<bool, host::kPorts> own{};
    std::array<Port, host::kPorts> ports;
    u32 starts = 0;
    u8 families = 0;
  };

  Card* cardOf(u16 slot);
  template <class Action>
  void forPorts(Card& card, u16 port, Action action);
  void hearPort(Card& card, u16 id, const messages::View& item);

  const std::function<Time()> now_;
  mutable std::mutex mutex_;
  std::array<Card, host::kSlots> cards_;
  Trainer trainer_;
};

}  // namespace cards
