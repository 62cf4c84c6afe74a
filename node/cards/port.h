#pragma once
// A port of a simulated DSL card: its line, what it was told, and how far it is.

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "profile.h"

namespace cards {

using Clock = std::chrono::steady_clock;
using Time = Clock::time_point;

enum class FarEnd : u8 { open, shorted, present };

// What is outside the node.
struct Site {
  line::Plant plant{.loop = {.metres = 1000}};
  FarEnd far = FarEnd::present;
  bool operator==(const Site&) const = default;
};

// As the messages number them.
enum class State : u16 {
  config = 1,
  init = 2,
  training = 3,
  showtime = 4,
  deltInit = 6,
  deltFetch = 7,
  deltDone = 8,
  deltFailed = 9,
  seltRun = 10,
  seltDone = 11,
};

// Reasons of a drop, as the messages number them.
enum class Reason : u16 { noMargin = 26, modemLost = 45, reset = 46, stopped = 47 };

// Trains lines, equal ones once.
class Trainer {
 public:
  std::shared_ptr<const line::Trained> train(const line::Plant& plant, const line::Order& order);

 private:
  static constexpr std::size_t kKept = 128;
  struct Entry {
    line::Plant plant;
    line::Order order;
    std::shared_ptr<const line::Trained> line;
  };
  std::deque<Entry> kept_;  // what was asked for last is the last
};

class Port {
 public:
  struct Drop {
    Time at;
    Reason reason;
  };

  // The card has started: it knows nothing, not even of drops.
  void start(bool vdsl);

  // What is heard; the line trains anew where it has to. The time is now.
  void setSite(const Site& site, Time now, Trainer& trainer);
  void setEnabled(bool enabled, Time now, Trainer& trainer);
  void setProfile(const Profile& profile, Time now, Trainer& trainer);
  void setLoopback(u8 type) { loopback_ = type; }
  void runTest(bool delt, bool start, Time now);

  State state(Time now, Trainer& trainer);
  const Site& site() const { return site_; }
  const Profile& profile() const { return profile_; }
  const std::deque<Drop>& drops() const { return drops_; }
  u8 loopback() const { return loopback_; }
  Time up() const { return trains_ + kTrained; }  // since when it is in showtime
  const line::Summary& summary(Trainer& trainer);
  std::shared_ptr<const line::Trained> line(Trainer& trainer);

 private:
  static constexpr std::chrono::seconds kHandshake{2}, kTrained{5};
  static constexpr std::size_t kDrops = 8;

  State testState(Time now) const;
  void retrain(Reason reason, Time now, Trainer& trainer);

  Site site_;
  Profile profile_;
  bool enabled_ = false;
  Time trains_;  // since then
  u8 loopback_ = 0;
  enum class Test : u8 { none, selt, delt } test_ = Test::none;
  Time tested_;
  std::deque<Drop> drops_;                // the last one first
  std::optional<line::Summary> summary_;  // of the site and the profile
};

}  // namespace cards
