#include "collections.h"

#include <utility>

namespace msand {

void Collections::took(u16 id, Owner owner, Clock::time_point now) { all_[id] = {std::move(owner), now, false}; }

void Collections::leave(const void* session) {
  for (auto& [id, one] : all_)
    if (one.owner.session == session) one.owner = {};
  std::erase_if(lapsed_, [&](const auto& one) { return one.second.session == session; });
}

std::vector<u16> Collections::due(Clock::time_point now) {
  std::vector<u16> ids;
  for (auto& [id, one] : all_) {
    if (one.ends || (one.owner.session != nullptr && now - one.last < kPatience)) continue;
    one.ends = true;
    ids.push_back(id);
  }
  return ids;
}

bool Collections::ends(u16 id) const {
  const auto found = all_.find(id);
  return found != all_.end() && found->second.ends;
}

void Collections::lapsed(u16 id) {
  const auto found = all_.find(id);
  if (found == all_.end()) return;
  if (found->second.owner.session != nullptr) lapsed_[id] = std::move(found->second.owner);
  all_.erase(found);
}

bool Collections::isRest(u16 id, const Owner& owner) {
  if (const auto found = all_.find(id); found != all_.end() && found->second.ends && found->second.owner == owner) {
    found->second.owner = {};  // it has been told
    return true;
  }
  const auto found = lapsed_.find(id);
  if (found == lapsed_.end() || found->second != owner) return false;
  lapsed_.erase(found);
  return true;
}

}  // namespace msand
