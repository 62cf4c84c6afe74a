#pragma once
// Whose line is run next: that of whoever would have had least of the node's time with it. So one who asks for little
// is not kept waiting by those who ask for much, and nobody waits for ever: time that passes is had by all who did not
// want it.

#include <chrono>
#include <string>
#include <string_view>
#include <unordered_map>

namespace msand {

class Shares {
 public:
  using Time = std::chrono::nanoseconds;

  // What somebody has had when he wants to be next; `had` is what he had behind his last line. Time that he has not
  // wanted meanwhile is lost to him.
  Time entered(Time had) const { return had > now_ ? had : now_; }

  // A line of his has been run; what he has had now.
  Time charge(Time entered, Time took);

 private:
  Time now_{0};
};

// How long lines take, by what they took when they were run last.
class LongLines {
 public:
  Shares::Time cost(std::string_view line) const;
  void note(std::string_view line, Shares::Time took);

 private:
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  std::unordered_map<std::string, Shares::Time, Hash, std::equal_to<>> lines_;
};

}  // namespace msand
