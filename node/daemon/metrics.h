#pragma once
// What a node counts, as a page that Prometheus reads.

#include <array>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "host/chassis.h"
#include "host/watcher.h"

namespace msand {

class Metrics : public host::Watcher {
 public:
  using Clock = std::chrono::steady_clock;

  Metrics();  // counts as long as it lives
  ~Metrics() override;
  Metrics(const Metrics&) = delete;
  Metrics& operator=(const Metrics&) = delete;

  std::string page(std::size_t terminals) const;

  void request(const host::WatchedRequest& request) override;
  void message(const host::WatchedMessage& message) override;

  static constexpr std::array kBounds = {0.0001, 0.00025, 0.0005, 0.001, 0.0025, 0.005, 0.01, 0.05, 0.25, 1.0, 5.0};

  // Of a message's SETs, or its GETs.
  struct Requests {
    std::array<u64, kBounds.size() + 1> took{};  // how many up to each bound, above the one ahead; then those above all
    double seconds = 0;
    std::map<i32, u64> refused;  // by code
    u64 count() const;
  };
  // To one end, by one link, told or asked.
  struct Traffic {
    u64 messages = 0, bytes = 0, failures = 0, answerBytes = 0;
  };
  using TrafficTable = std::array<std::array<std::array<Traffic, 2>, host::kSlots + 1>, 4>;  // by link and slot
  // What a card has told of a line.
  struct Line {
    Clock::time_point at;
    bool up = false;
    std::array<double, 2> rate{}, attainable{}, margin{};  // down, up; kbit/s and dB
  };

 private:
  void noteLines(const host::WatchedMessage& message);

  const Clock::time_point begin_ = Clock::now();
  std::vector<u16> rows_;  // by id: the row of requests_, in pairs of SET and GET; 0: that of unknown ones
  mutable std::mutex mutex_;
  std::vector<std::array<Requests, 2>> requests_;
  TrafficTable traffic_{};
  std::map<u32, Line> lines_;  // by slot * 65536 + port
};

}  // namespace msand
