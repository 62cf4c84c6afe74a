#pragma once
// Managers that prove themselves with what is wrong: they are logged, and who tries again and again is heard less and
// less often. By where they are: an address of IPv4, or a network of 64 bits of IPv6.

#include <array>
#include <chrono>
#include <map>
#include <string>

#include "platform/types.h"

namespace msand {

class WrongKeys {
 public:
  using Clock = std::chrono::steady_clock;
  using Source = std::array<u8, 16>;  // IPv4 as a mapped address; the low half of IPv6 is zero

  // Of the bytes of a socket's address; one of another family is the source of zeros.
  static Source sourceOf(const void* address, std::size_t size);

  // False: what comes from there now is dropped unread.
  bool hears(const Source& source, Clock::time_point now) const;

  // One of its messages has proved wrong. Gives how long nothing more is heard from there: zero for the first ones.
  std::chrono::seconds note(const Source& source, Clock::time_point now);

 private:
  struct Tries {
    int count = 0;
    Clock::time_point last;
    Clock::time_point until;  // deaf
  };
  std::map<Source, Tries> sources_;
};

// "192.0.2.1", "2001:db8::/64"
std::string textOf(const WrongKeys::Source& source);

}  // namespace msand
