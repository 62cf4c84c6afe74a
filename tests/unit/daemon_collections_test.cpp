// Frames that are collected from pieces end when their managers do not go on.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collections.h"

using namespace std::chrono_literals;
using msand::Collections;
using testing::ElementsAre, testing::IsEmpty;

TEST(Collections, EndWhenNoPieceComesFor30Seconds) {
  Collections all;
  const int sessions[2] = {};
  const Collections::Owner one{&sessions[0], {1}}, other{&sessions[0], {2}};
  const auto start = Collections::Clock::time_point(100s);
  all.took(7, one, start);
  all.took(8, one, start);
  all.took(7, one, start + 20s);
  EXPECT_THAT(all.due(start + 29999ms), IsEmpty());
  EXPECT_THAT(all.due(start + 30s), ElementsAre(8));
  EXPECT_THAT(all.due(start + 40s), IsEmpty()) << "once";
  all.lapsed(8);
  EXPECT_FALSE(all.isRest(8, other)) << "a frame of another manager";
  EXPECT_TRUE(all.isRest(8, one)) << "it has lost the pieces ahead of this one";
  EXPECT_FALSE(all.isRest(8, one)) << "a new frame";
  EXPECT_THAT(all.due(start + 50s), ElementsAre(7));
  EXPECT_TRUE(all.isRest(7, one)) << "while it is about to be ended";
  all.lapsed(7);
  EXPECT_FALSE(all.isRest(7, one));
  EXPECT_TRUE(all.empty());
}

TEST(Collections, EndWithTheirManager) {
  Collections all;
  const int sessions[2] = {};
  const auto now = Collections::Clock::time_point(100s);
  all.took(7, {&sessions[0], {}}, now);
  all.took(8, {&sessions[1], {}}, now);
  all.took(9, {}, now);
  all.leave(&sessions[0]);
  EXPECT_THAT(all.due(now), ElementsAre(7, 9));
  all.lapsed(7);
  EXPECT_FALSE(all.isRest(7, {&sessions[0], {}})) << "a new session at the old one's address";
  all.ended(8);
  all.lapsed(9);
  EXPECT_TRUE(all.empty());
}
