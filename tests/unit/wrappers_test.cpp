#include "platform/wrappers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "host/semaphores.h"

namespace {

TEST(Wrappers, NumbersStayWithinTheirWidth) {
  struct {
    const char* text;
    i32 value;
  } const cases[] = {{"", 0},
                     {"x1", 0},
                     {" +12x", 12},
                     {"-12", -12},
                     {"2147483648", 2147483647},
                     {"-2147483649", -2147483647 - 1},
                     {"99999999999999999999", 2147483647}};
  for (const auto& [text, value] : cases) EXPECT_EQ(bep_atoiEx(text), value) << text;
}

class Semaphores : public testing::Test {
 protected:
  ~Semaphores() override { host::clearSemaphores(); }
};

TEST_F(Semaphores, AreTakenOnceAndGivenBack) {
  const SemaphoreId full = bep_semBCreateEx(2, 1);
  const SemaphoreId empty = bep_semBCreateEx(2, 0);
  ASSERT_NE(full, 0u);
  EXPECT_NE(bep_semTakeEx(empty, 0), 0);
  EXPECT_EQ(host::semaphoresHeld(), 0u);
  EXPECT_EQ(bep_semTakeEx(full, -1), 0);
  EXPECT_EQ(host::semaphoresHeld(), 1u);
  EXPECT_NE(bep_semTakeEx(full, 1), 0);
  EXPECT_EQ(bep_semGiveEx(full), 0);
  EXPECT_EQ(bep_semGiveEx(full), 0);  // binary: a second give adds nothing
  EXPECT_EQ(host::semaphoresHeld(), 0u);
  EXPECT_EQ(bep_semTakeEx(full, 0), 0);
  EXPECT_NE(bep_semTakeEx(full, 0), 0);
  EXPECT_NE(bep_semTakeEx(0, -1), 0);
}

TEST_F(Semaphores, KeepThreadsApart) {
  const SemaphoreId id = bep_semBCreateEx(2, 1);
  int count = 0;  // guarded by the semaphore alone
  const auto work = [&] {
    for (int i = 0; i < 1000; ++i) {
      bep_semTakeEx(id, -1);
      ++count;
      bep_semGiveEx(id);
    }
  };
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(count, 2000);
}

}  // namespace
