#include "command_line_offers.h"

#include <algorithm>
#include <charconv>

#include "host/chassis.h"
#include "host/flow_store.h"

namespace command_line {
namespace {

constexpr std::string_view kTelephone = "telephone";  // the keyword of numbers

bool isControl(char letter) { return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7f; }

class Offers {
 public:
  explicit Offers(std::string_view typed) : typed_(typed) {}

  // What can't be typed is left out.
  void add(std::string word, std::string help) {
    const bool blanks = word.find(' ') != word.npos;
    if (std::ranges::any_of(word, isControl) || (blanks && word.find('"') != word.npos)) return;
    if (blanks) word = '"' + word + '"';
    if (std::ranges::any_of(help, isControl)) help.clear();
    if (word.starts_with(typed_)) list_.push_back({std::move(word), std::move(help)});
  }
  void add(u32 number, std::string help) { add(std::to_string(number), std::move(help)); }
  std::vector<Offer> take() { return std::move(list_); }

 private:
  std::string_view typed_;
  std::vector<Offer> list_;
};

std::string textOf(const host::CardType& type) {
  return std::string(type.name) + ", " + std::to_string(type.ports) + " ports";
}

template <class Visit>
void eachCard(Visit visit) {
  for (u16 slot = 1; slot <= host::kSlots; ++slot)
    if (const host::CardType* type = host::authorisedType(slot)) visit(slot, *type);
}

u16 numberOf(std::string_view digits) {
  u16 number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

// The part of a list that is still being typed, behind the last of these marks.
std::string_view unfinished(std::string_view typed, std::string_view marks) {
  return typed.substr(typed.find_last_of(marks) + 1);
}

void offerSlots(std::string_view typed, Offers& to) {
  const std::string ahead(typed.substr(0, typed.size() - unfinished(typed, ",-").size()));
  eachCard([&](u16 slot, const host::CardType& type) { to.add(ahead + std::to_string(slot), textOf(type)); });
}

void offerPorts(std::string_view slot, const std::string& ahead, Offers& to) {
  const host::CardType* type = host::authorisedType(numberOf(slot));
  for (u16 port = 1; type != nullptr && port <= type->ports; ++port)
    to.add(ahead + std::to_string(port), std::string(type->name));
}

// Lists of ports: those of each slot, then single ports behind the slot.
void offerPortLists(std::string_view typed, Offers& to) {
  const std::string ahead(typed.substr(0, typed.size() - unfinished(typed, "/,-").size()));
  const std::size_t slash = typed.find('/');
  if (slash != typed.npos) return offerPorts(typed.substr(0, slash), ahead, to);
  eachCard([&](u16 slot, const host::CardType& type) {
    to.add(ahead + std::to_string(slot) + "/1-" + std::to_string(type.ports), textOf(type));
  });
}

// The choice ahead of a profile says which of the two is typed; without one it may be either.
void offerProfiles(const Asked& asked, Offers& to) {
  if (asked.profiles == nullptr || equal(asked.choice, "all")) return;
  CommandOffers profiles;
  asked.profiles->list(asked.profiles->context, &profiles);
  const bool ids = asked.names == Names::id || (asked.names == Names::profile && !equal(asked.choice, "name"));
  const bool names = asked.names == Names::name || (asked.names == Names::profile && !equal(asked.choice, "id"));
  for (const CommandOffers::Thing& one : profiles.things)
    if (ids && one.id >= 0) to.add(static_cast<u32>(one.id), one.name);
  for (const CommandOffers::Thing& one : profiles.things)
    if (names && !one.name.empty()) to.add(one.name, one.id < 0 ? "" : std::to_string(one.id));
}

void offerNumbers(const std::vector<OfferSource>& sources, Offers& to) {
  for (const OfferSource& source : sources) {
    if (source.keyword != kTelephone) continue;
    CommandOffers numbers;
    source.list(source.context, &numbers);
    for (const CommandOffers::Thing& one : numbers.things) to.add(one.name, "");
  }
}

}  // namespace

std::vector<Offer> offers(const Asked& asked, const std::vector<OfferSource>& sources) {
  Offers to(asked.typed);
  switch (asked.names) {
    case Names::nothing:
      break;
    case Names::ports:
      offerPortLists(asked.typed, to);
      break;
    case Names::slots:
      offerSlots(asked.typed, to);
      break;
    case Names::slot:
      eachCard([&](u16 slot, const host::CardType& type) { to.add(slot, textOf(type)); });
      break;
    case Names::port:
      offerPorts(asked.slot, "", to);
      break;
    case Names::profile:
    case Names::id:
    case Names::name:
      offerProfiles(asked, to);
      break;
    case Names::rule:
      for (const host::FlowEntry& rule : host::flowRules()) to.add(rule.name, std::to_string(rule.id));
      break;
    case Names::ruleId:
      for (const host::FlowEntry& rule : host::flowRules()) to.add(static_cast<u32>(rule.id), rule.name);
      break;
    case Names::policyId:
      for (const host::FlowEntry& policy : host::flowPolicies()) to.add(static_cast<u32>(policy.id), policy.name);
      break;
    case Names::telephone:
      offerNumbers(sources, to);
      break;
    case Names::cardType:
      for (const host::CardType& type : host::cardTypes())
        to.add(std::string(type.name), std::to_string(type.ports) + " ports");
      break;
  }
  return to.take();
}

}  // namespace command_line
