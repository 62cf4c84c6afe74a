#include "platform/pool.h"

#include <gtest/gtest.h>

#include <thread>

#include "host/faults.h"
#include "host/pool.h"

namespace {

class Pool : public testing::Test {
 protected:
  ~Pool() override { host::dropPools(); }
  const i32 pool_ = (host::dropPools(), mpuCreate("test", 100, 1, 1));
  void* take(u32 size, i32 line = 1) { return mpuAlloc_(pool_, size, "pool_test.cpp", line); }
};

TEST_F(Pool, HoldsItsSizeToTheByte) {
  void* const first = take(60);
  void* const second = take(40);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(take(1), nullptr);
  EXPECT_EQ(take(0xFFFFFFFF), nullptr);
  EXPECT_EQ(host::poolInUse(), 100u);
  mpuFree(second);
  EXPECT_EQ(host::poolInUse(), 60u);
  EXPECT_EQ(take(41), nullptr);
  EXPECT_NE(take(40), nullptr);
  EXPECT_EQ(mpuAlloc_(pool_ + 1, 1, "", 1), nullptr);
  EXPECT_NE(mpuAlloc_(mpuCreate("other", 1, 1, 1), 1, "", 1), nullptr);
}

TEST_F(Pool, LiveBlocksNameTheirOwnersInOrder) {
  take(1, 11);
  void* const second = take(2, 22);
  take(3, 33);
  void* const last = take(4, 44);
  mpuFree(second);
  mpuFree(last);
  take(5, 55);
  mpuFree(nullptr);
  std::string lines;
  for (const host::LiveBlock& block : host::liveBlocks())
    lines += block.file + ':' + std::to_string(block.line) + '=' + std::to_string(block.size) + ' ';
  EXPECT_EQ(lines, "pool_test.cpp:11=1 pool_test.cpp:33=3 pool_test.cpp:55=5 ");
  EXPECT_EQ(host::dropPools(), 3u);
  EXPECT_EQ(host::poolInUse(), 0u);
  EXPECT_EQ(take(1), nullptr);
}

TEST_F(Pool, CatchesStrangersAndBlocksGivenBackTwice) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        void* const block = take(8);
        mpuFree(block);
        mpuFree(block);
      },
      "no block of a pool");
  EXPECT_DEATH(
      {
        alignas(16) u8 stranger[256] = {};
        mpuFree(stranger + 128);
      },
      "no block of a pool");
}

#if defined(__SANITIZE_ADDRESS__)
TEST_F(Pool, WritesAheadOfAndBehindABlockAreFound) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  volatile u8* const block = static_cast<u8*>(take(8));
  EXPECT_DEATH(block[-1] = 1, "AddressSanitizer");
  EXPECT_DEATH(block[8] = 1, "AddressSanitizer");
}
#endif

TEST_F(Pool, ServesThreads) {
  const i32 shared = mpuCreate("shared", 1000, 1, 1);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([shared] {
      for (int round = 0; round < 2000; ++round) {
        auto* const block = static_cast<u8*>(mpuAlloc_(shared, 100, "pool_test.cpp", 1));
        block[99] = 1;
        mpuFree(block);
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(host::poolInUse(), 0u);
}

}  // namespace
