#pragma once
// Which terminal's line is run next: the one whose terminal would have had least of the node's time with it. So one who
// asks for little is not kept waiting by those who ask for much, and nobody waits for ever: time that passes is had by
// all who did not want it.

#include <chrono>
#include <string>
#include <string_view>
#include <unordered_map>

namespace msand {

class Shares {
 public:
  using Time = std::chrono::nanoseconds;

  // What a terminal has had when it wants to be next; `had` is what it had behind its last line. Time that it has not
  // wanted meanwhile is lost to it.
  Time entered(Time had) const { return had > now_ ? had : now_; }

  // What it would have had with this line, by what the line took when it was run last.
  Time expected(Time entered, std::string_view line) const;

  // A line of it has been run; what it has had now.
  Time charge(Time entered, std::string_view line, Time took);

 private:
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  Time now_{0};
  std::unordered_map<std::string, Time, Hash, std::equal_to<>> long_;  // lines that took long
};

}  // namespace msand
