#pragma once
// Whether lines are up, as their cards tell. A card may take long, and one that is dead takes longest: it is asked on a
// thread of its own, and what it told is good for some seconds.

#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "platform/types.h"

namespace msand {

class LineStates {
 public:
  // `ask` gives 1 for a line that is up, 0 for one that is down.
  explicit LineStates(int (*ask)(u16 slot, u16 port));
  // Lets the question under way end.
  ~LineStates();
  LineStates(const LineStates&) = delete;
  LineStates& operator=(const LineStates&) = delete;

  // What the card told last; none while it has not told anything. What is old or not known is asked for.
  std::optional<bool> isUp(u16 slot, u16 port);

 private:
  using Clock = std::chrono::steady_clock;
  using Port = std::pair<u16, u16>;
  struct State {
    std::optional<bool> up;
    Clock::time_point until;  // it is good
    bool asked = false;       // and waits for its answer
  };

  void work();

  int (*const ask_)(u16 slot, u16 port);
  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<Port, State> states_;
  std::deque<Port> waiting_;
  bool stopped_ = false;
  std::thread thread_;
};

}  // namespace msand
