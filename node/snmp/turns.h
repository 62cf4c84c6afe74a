#pragma once
// Two threads share the work of one: one of them leads, and what it does now may take long. If it does, the other one
// takes the lead, and the first stands by when it is through. So nothing is handed from thread to thread as long as all
// is quick.

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace msand {

class Turns {
 public:
  explicit Turns(std::chrono::milliseconds patience) : patience_(patience) {}

  // Thread 0 leads at first, thread 1 stands by. Returns when the thread leads; false: it is over.
  bool lead(int thread);

  // The leader does something that may take long, between these two. What it had to itself may be the other one's then;
  // it is its own again if end() says so. If not, the other one leads.
  void begin();
  bool end(int thread);

  void stop();

 private:
  using Clock = std::chrono::steady_clock;

  const std::chrono::milliseconds patience_;
  std::mutex mutex_;
  std::condition_variable changed_;
  int leader_ = 0;
  bool away_ = false;      // the leader is between begin and end,
  Clock::time_point due_;  // and loses the lead at this time
  bool watched_ = false;   // the other one will look again by itself
  bool stopped_ = false;
};

}  // namespace msand
