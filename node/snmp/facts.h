#pragma once
// What takes long to learn, as what a card tells of a port. A card may take its time, and one that is dead takes
// longest: each is asked on a thread of its own, so that none delays another one or whoever does not ask it. What was
// told is good for some seconds.

#include <array>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "platform/types.h"

namespace msand {

enum class Fact : u8 { lineUp, lineStatus, modem, rateModes };
inline constexpr std::size_t kFacts = 4;

class Facts {
 public:
  using Clock = std::chrono::steady_clock;
  using Bytes = std::vector<u8>;
  using Told = std::shared_ptr<const Bytes>;  // null: nothing
  // Called under the request gate. None: there is nothing to learn.
  using Ask = std::function<std::optional<Bytes>(u16 slot, u16 port)>;

  struct Key {
    Fact fact = Fact::lineUp;
    u16 slot = 0;  // 0: the module itself
    u16 port = 0;
    auto operator<=>(const Key&) const = default;
  };

  // Nobody waits longer for an answer.
  static constexpr std::chrono::seconds kPatience{3};

  // `wake` is called, on any thread, when something was told.
  explicit Facts(std::function<void()> wake) : wake_(std::move(wake)) {}
  ~Facts() { stop(); }
  Facts(const Facts&) = delete;
  Facts& operator=(const Facts&) = delete;

  // Ahead of the first question.
  void learn(Fact fact, std::chrono::seconds good, Ask ask) { kinds_[index(fact)] = {std::move(ask), good, 0}; }
  // Lets the questions under way end.
  void stop();

  // What is known now.
  Told told(const Key& key);
  // There is no use in waiting for it: it is known, or its card has been silent for long.
  bool isSettled(const Key& key);
  void ask(const std::vector<Key>& keys);
  // What was told before is not good any more.
  void forget(Fact fact);

  // Between these two, told() notes what is not settled. For one thread.
  void beginNoting();
  std::vector<Key> endNoting();
  // told() has noted something since this was asked last.
  bool takeNoted() { return std::exchange(hasNoted_, false); }

 private:
  struct Kind {
    Ask ask;
    std::chrono::seconds good{};
    u32 version = 0;  // what was asked for under another one is not good
  };
  struct State {
    Told told;
    Clock::time_point until;  // it is good
    bool asked = false;       // and waits for its answer
  };
  struct Lane {
    std::condition_variable changed;
    std::deque<Key> waiting;
    std::optional<Clock::time_point> since;  // the card has been asked
    std::thread thread;
  };

  static std::size_t index(Fact fact) { return static_cast<std::size_t>(fact); }
  bool settled(const Key& key);
  void settle(const Key& key, std::optional<Bytes> bytes, u32 version);
  void work(Lane& lane);

  const std::function<void()> wake_;
  std::array<Kind, kFacts> kinds_;
  std::mutex mutex_;
  std::map<Key, State> states_;
  std::map<u16, Lane> lanes_;  // by slot
  bool stopped_ = false;

  bool noting_ = false, hasNoted_ = false;
  std::vector<Key> noted_;
};

}  // namespace msand
