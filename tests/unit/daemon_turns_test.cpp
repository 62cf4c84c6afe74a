#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "turns.h"

namespace {

using std::chrono::milliseconds;

TEST(TurnsThreads, TheOtherOneLeadsWhileTheFirstIsLong) {
  msand::Turns turns(milliseconds(5));
  int shared = 0;  // the leader's; what the thread sanitizer looks at
  std::promise<void> taken;
  std::thread other([&] {
    EXPECT_TRUE(turns.lead(1));
    EXPECT_EQ(shared, 1);
    shared = 2;
    turns.begin();
    EXPECT_TRUE(turns.end(1)) << "the first one is not back";
    taken.set_value();
    EXPECT_FALSE(turns.lead(0)) << "stopped";
  });
  ASSERT_TRUE(turns.lead(0));
  shared = 1;
  turns.begin();
  taken.get_future().wait();
  EXPECT_FALSE(turns.end(0));
  turns.stop();
  EXPECT_FALSE(turns.lead(0));
  other.join();
  EXPECT_EQ(shared, 2);
}

TEST(TurnsThreads, TheLeaderStaysWhileItIsQuick) {
  msand::Turns turns(std::chrono::minutes(1));
  std::atomic<bool> led = false;
  std::thread other([&] { led = turns.lead(1); });
  for (int i = 0; i < 10'000; ++i) {
    turns.begin();
    ASSERT_TRUE(turns.end(0));
  }
  turns.stop();
  other.join();
  EXPECT_FALSE(led);
}

// They exchange the lead as often as they can; each finds what the other one left.
TEST(TurnsThreads, TheLeadIsExchangedAgainAndAgain) {
  msand::Turns turns(milliseconds(0));
  int exchanges = 0;
  const auto work = [&](int me) {
    while (turns.lead(me)) {
      do {
        if (++exchanges == 200) turns.stop();
        turns.begin();
        std::this_thread::yield();
      } while (turns.end(me) && exchanges < 200);
    }
  };
  std::thread first(work, 0), second(work, 1);
  first.join();
  second.join();
  EXPECT_GE(exchanges, 200);
}

}  // namespace
