#include "shares.h"

#include <algorithm>

namespace msand {

constexpr Shares::Time kLong = std::chrono::milliseconds(2);
constexpr std::size_t kMostLines = 64;
constexpr std::size_t kMostLetters = 256;

Shares::Time Shares::charge(Time entered, Time took) {
  now_ = std::max(now_, entered);
  return entered + took;
}

Shares::Time LongLines::cost(std::string_view line) const {
  const auto found = line.size() <= kMostLetters ? lines_.find(line) : lines_.end();
  return found == lines_.end() ? Shares::Time{0} : found->second;
}

void LongLines::note(std::string_view line, Shares::Time took) {
  if (line.size() > kMostLetters) return;
  if (took < kLong) {
    if (const auto found = lines_.find(line); found != lines_.end()) lines_.erase(found);
    return;
  }
  if (lines_.size() >= kMostLines) lines_.clear();
  lines_.insert_or_assign(std::string(line), took);
}

}  // namespace msand
