#pragma once
// What the functions for standard MIBs share of slots and ports.

#include <algorithm>
#include <optional>
#include <span>

#include "common/msan_obj.h"
#include "msan/standard_mib.h"
#include "platform/types.h"

inline constexpr int kNullArgument = -24;

// The slots that may hold a service card, ascending. None if the platform has no list, or one that is too long.
class ServiceSlots {
 public:
  ServiceSlots();
  explicit operator bool() const { return known_; }
  std::span<const u32> list() const { return std::span(slots_).first(count_); }

 private:
  u32 slots_[kMostServeSlots] = {};
  u32 count_ = 0;
  bool known_ = false;
};

// The ports of the card that is configured in a slot; none if there is no card of the family.
std::optional<u16> dataPortsOf(u16 slot);
std::optional<u16> potsPortsOf(u16 slot);

// --- Walks over the ports of cards of a family: `isCard(slot)` tells which. 0, or a code. ---

inline constexpr int kEndOfPorts = -2, kPortAbove = -3;

// Port 1 of the first such card.
template <class IsCard>
int firstPortOf(std::span<const u32> slots, IsCard isCard, u16* slot, u16* port) {
  const auto found = std::ranges::find_if(slots, [&](u32 number) { return isCard(static_cast<u16>(number)); });
  if (found == slots.end()) return kEndOfPorts;
  *slot = static_cast<u16>(*found);
  *port = 1;
  return 0;
}

// The port behind one of a card that has so many, or port 1 of the next card.
template <class IsCard>
int nextPortOf(u16 ports, IsCard isCard, u16* slot, u16* port) {
  if (*port > ports) return kPortAbove;
  if (*port < ports) {
    ++*port;
    return 0;
  }
  const ServiceSlots slots;
  const auto list = slots.list();
  const auto here = std::ranges::find(list, *slot);
  return here != list.end() ? firstPortOf({here + 1, list.end()}, isCard, slot, port) : kEndOfPorts;
}
