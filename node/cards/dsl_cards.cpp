#include "dsl_cards.h"

#include "answers.h"
#include "messages/answer.h"

namespace cards {

using messages::Road, messages::View;

namespace {

enum : u16 { kTest = 2829, kEnable = 2840, kLoopback = 2852 };
constexpr i64 kAllPorts = 65535;

Road sendRoad(host::Link link) { return link == host::Link::gepon ? Road::gepon : Road::gpon; }
Road askRoad(host::Link link) { return link == host::Link::gepon ? Road::geponAsk : Road::gponAsk; }

u16 portOf(const View& item) { return static_cast<u16>(item.numberOr("port", 0)); }

}  // namespace

DslCards::DslCards(std::function<Time()> now) : now_(std::move(now)) {}

// A card with DSL ports that is up. One that has started since it was looked at has forgotten all that it was told.
DslCards::Card* DslCards::cardOf(u16 slot) {
  const host::CardType* const type = host::authorisedType(slot);
  if (type == nullptr || host::cardState(slot) != host::CardState::up) return nullptr;
  if ((type->families & (host::ADSL | host::VDSL)) == 0) return nullptr;
  Card& card = cards_[slot - 1u];
  const u32 starts = host::cardStarts(slot);
  if (card.starts == starts && card.families == type->families) return &card;
  card.starts = starts;
  card.families = type->families;
  for (Port& port : card.ports) port.start((type->families & host::VDSL) != 0);
  return &card;
}

void DslCards::setSite(u16 slot, u16 port, const Site& site) {
  if (slot < 1 || slot > host::kSlots || port > host::kPorts) return;
  const std::lock_guard lock(mutex_);
  cardOf(slot);
  Card& card = cards_[slot - 1u];
  if (port != 0) {
    card.own[port - 1u] = true;
    card.ports[port - 1u].setSite(site, now_(), trainer_);
    return;
  }
  card.site = site;
  for (u16 i = 0; i < host::kPorts; ++i)
    if (!card.own[i]) card.ports[i].setSite(site, now_(), trainer_);
}

Site DslCards::site(u16 slot, u16 port) const {
  if (slot < 1 || slot > host::kSlots || port > host::kPorts) return {};
  const std::lock_guard lock(mutex_);
  const Card& card = cards_[slot - 1u];
  return port == 0 ? card.site : card.ports[port - 1u].site();
}

template <class Action>
void DslCards::forPorts(Card& card, u16 port, Action action) {
  for (u16 i = 0; i < host::kPorts; ++i)
    if (port == i + 1 || port == kAllPorts) action(card.ports[i]);
}

void DslCards::hearPort(Card& card, u16 id, const View& item) {
  const Time now = now_();
  forPorts(card, portOf(item), [&](Port& port) {
    if (id == kEnable) return port.setEnabled(item.numberOr("enable", 0) == 1, now, trainer_);
    if (id == kTest) return port.runTest(item.numberOr("type", 0) == 1, item.numberOr("action", 0) == 1, now);
    if (id == kLoopback)
      return port.setLoopback(item.numberOr("enable", 0) == 1 ? static_cast<u8>(item.numberOr("type", 0)) : u8{0});
    Profile profile = port.profile();
    profile.hear(id, item);
    port.setProfile(profile, now, trainer_);
  });
}

void DslCards::hear(host::Link link, u16 slot, u16 id, host::Bytes payload) {
  if (link != host::Link::gpon && link != host::Link::gepon) return;
  const bool heard = id == kEnable || id == kTest || id == kLoopback || Profile::hears(id);
  if (!heard) return;
  const std::lock_guard lock(mutex_);
  Card* const card = cardOf(slot);
  const auto message =
      card == nullptr ? std::nullopt : messages::readMessage(messages::book(), sendRoad(link), id, payload);
  if (!message) return;
  const View whole(*message);
  if (id == kLoopback) return hearPort(*card, id, whole);
  for (const View& item : whole.items("port")) hearPort(*card, id, item);
}

std::optional<std::vector<u8>> DslCards::answer(host::Link link, u16 slot, u16 id, host::Bytes question) {
  if (!isAboutLines(id) || (link != host::Link::gpon && link != host::Link::gepon)) return {};
  const std::lock_guard lock(mutex_);
  Card* const card = cardOf(slot);
  const auto asked =
      card == nullptr ? std::nullopt : messages::readMessage(messages::book(), askRoad(link), id, question);
  if (!asked) return {};
  const u16 last = host::authorisedType(slot)->ports;
  std::vector<LineState> lines;
  const auto add = [&](const View& item) {
    const u16 port = portOf(item);
    for (u16 i = 1; i <= last; ++i)
      if (port == i || port == kAllPorts) lines.push_back(look(slot, i, card->ports[i - 1u], now_(), trainer_, id));
  };
  if (link == host::Link::gepon) add(View(*asked));
  for (const View& item : View(*asked).items("port")) add(item);
  return messages::answer(messages::book(), askRoad(link), id, question, Answers(id, std::move(lines)));
}

}  // namespace cards
