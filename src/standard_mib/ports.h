#pragma once
// What the functions for standard MIBs share of slots and ports.

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
