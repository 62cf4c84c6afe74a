#include "platform/wrappers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "host/semaphores.h"
#include "platform/cards.h"
#include "platform/module_registry.h"
#include "platform/ngn.h"
#include "platform/objects.h"
#include "platform/pool.h"

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

TEST(Wrappers, ArgumentsWithOneValueHaveIt) {
  u8 answer[4];
  u32 length = sizeof answer;
  u16 type = 0;
  for (int i = 0; i < 5; ++i) {
    const auto at = [i](int place) { return i == place ? 1 : 0; };
    EXPECT_EQ(writeNgnCmd(1, at(0), "", 1, at(1), at(2), at(3), at(4)), -1);
    EXPECT_EQ(modInitRegister("m", at(0), nullptr, i == 1 ? answer : nullptr, at(2), at(3), at(4)), -1);
    if (i > 2) continue;
    EXPECT_EQ(gepon_send_and_wait_for_response_copy(1, 1, at(0), at(1), "", 1, answer, &length, at(2)), -1);
    if (i > 1) continue;
    EXPECT_EQ(dm_get_port_type(62, at(0), at(1), 1, &type), -1);
    EXPECT_EQ(mpuCreate("p", 1, i, 1 - i), -1);
  }
  EXPECT_EQ(dm_get_port_type(62, 0, 0, 1, &type), 0);
  EXPECT_EQ(dm_get_port_type(62, 0, 0, 0, &type), -1);  // ports count from 1
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
