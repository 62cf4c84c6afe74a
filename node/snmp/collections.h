#pragma once
// Which frames the module is collecting from pieces, and for whom. The module keeps what it has collected until the
// last piece comes, and has memory for one collection or two; it knows no managers. So one whose manager has gone, or
// has sent nothing for long, has to be ended.

#include <chrono>
#include <map>
#include <vector>

#include "platform/types.h"

namespace msand {

class Collections {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::seconds kPatience{30};

  // A manager: its session, and its address where several share one.
  struct Owner {
    const void* session = nullptr;  // null: it has gone
    std::vector<u8> address;
    bool operator==(const Owner&) const = default;
  };

  // The module has taken a piece that others follow.
  void took(u16 id, Owner owner, Clock::time_point now);
  // It holds nothing of this message any more.
  void ended(u16 id) { all_.erase(id); }
  // A session has ended. Its address means nothing from now on.
  void leave(const void* session);

  bool empty() const { return all_.empty(); }
  bool has(u16 id) const { return all_.contains(id); }
  // Those that have to be ended, each of them once.
  std::vector<u16> due(Clock::time_point now);
  // One of these is still to be ended: no piece has come meanwhile.
  bool ends(u16 id) const;
  // It was: what its manager sends next is the rest of a frame that is lost.
  void lapsed(u16 id);
  // True, once, for the manager whose collection has lapsed or is about to.
  bool isRest(u16 id, const Owner& owner);

 private:
  struct Collection {
    Owner owner;
    Clock::time_point last;
    bool ends = false;
  };
  std::map<u16, Collection> all_;
  std::map<u16, Owner> lapsed_;
};

}  // namespace msand
