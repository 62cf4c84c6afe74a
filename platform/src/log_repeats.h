#pragma once
// Keeps lines of one kind from filling the log: what a stranger sends may have the node say the same for ever.

#include <array>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>

#include "platform/types.h"

namespace host {

// Lines are of one kind when they differ in their numbers at most. Of a kind kMostOfAKind pass in kWindow; how many
// more there were is told behind that time, with the next line of any kind, or at the end.
class LogRepeats {
 public:
  using Time = std::chrono::system_clock::time_point;
  using Tell = std::function<void(const std::string& line)>;
  static constexpr u32 kMostOfAKind = 100;
  static constexpr std::chrono::minutes kWindow{1};

  // True if the line may pass.
  bool passes(std::string_view line, Time now, const Tell& tell);
  void tellRest(const Tell& tell);

 private:
  struct Kind {
    std::string line;  // without its numbers; empty: none
    Time begin{};
    u32 count = 0;
  };
  Kind& kindOf(std::string line, Time now, const Tell& tell);
  void end(Kind& kind, const Tell& tell);

  std::array<Kind, 64> kinds_;
  u32 kept_ = 0;  // kinds of which lines are kept back
};

}  // namespace host
