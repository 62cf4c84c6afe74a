#include "wrong_keys.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstring>

namespace msand {

using std::chrono::seconds;

constexpr int kFree = 5;                    // tries that cost nothing: somebody mistypes, or his keys have just changed
constexpr seconds kLongest{16};             // a forged source must not keep a manager out for long
constexpr seconds kRemembered{60};          // without another wrong one
constexpr std::size_t kMostSources = 1024;  // those that were silent for longest are forgotten
constexpr std::array<u8, 12> kMapped = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};

WrongKeys::Source WrongKeys::sourceOf(const void* address, std::size_t size) {
  Source source{};
  sa_family_t family = AF_UNSPEC;
  if (address == nullptr || size < sizeof family) return source;
  std::memcpy(&family, address, sizeof family);
  if (family == AF_INET && size >= sizeof(sockaddr_in)) {
    std::ranges::copy(kMapped, source.begin());
    std::memcpy(source.data() + kMapped.size(), static_cast<const char*>(address) + offsetof(sockaddr_in, sin_addr), 4);
  } else if (family == AF_INET6 && size >= sizeof(sockaddr_in6)) {
    std::memcpy(source.data(), static_cast<const char*>(address) + offsetof(sockaddr_in6, sin6_addr), 8);
  }
  return source;
}

bool WrongKeys::hears(const Source& source, Clock::time_point now) const {
  const auto found = sources_.find(source);
  return found == sources_.end() || now >= found->second.until;
}

seconds WrongKeys::note(const Source& source, Clock::time_point now) {
  const auto last = [](const auto& one) { return one.second.last; };
  if (sources_.size() >= kMostSources && !sources_.contains(source))
    sources_.erase(std::ranges::min_element(sources_, {}, last));
  Tries& tries = sources_[source];
  if (now - tries.last > kRemembered) tries.count = 0;
  ++tries.count;
  tries.last = now;
  const int paid = tries.count - kFree;
  if (paid < 0) return seconds(0);
  const seconds deaf = paid < 4 ? seconds(1 << paid) : kLongest;
  tries.until = now + deaf;
  return deaf;
}

std::string textOf(const WrongKeys::Source& source) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  if (std::equal(kMapped.begin(), kMapped.end(), source.begin()))
    return inet_ntop(AF_INET, source.data() + kMapped.size(), text.data(), text.size());
  return inet_ntop(AF_INET6, source.data(), text.data(), text.size()) + std::string("/64");
}

}  // namespace msand
