#include "host/agent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace {

using testing::ElementsAre;

enum : u16 { kEcho = 1, kSilent, kEmptyReply, kTooLong, kDirty, kNothing };

int answer(u16 id, const u8* data, i32 length, u8* reply, u32* replyLen) {
  switch (id) {
    case kEcho:  // the frame's length, whether there is one, and the last reply byte as it was found
      reply[0] = static_cast<u8>(length);
      reply[1] = data != nullptr ? 1 : 0;
      reply[2] = reply[host::kReplyCapacity - 1];
      *replyLen = 3;
      return 1;
    case kEmptyReply:
      *replyLen = 0;
      return 1;
    case kTooLong:
      reply[host::kReplyCapacity - 1] = 7;
      *replyLen = host::kReplyCapacity + 1;
      return 1;
    case kDirty:  // says less than it wrote
      std::fill_n(reply, host::kReplyCapacity, u8{0xEE});
      *replyLen = 1;
      return 1;
    case kSilent:
      return 1;
    default:
      return 0;
  }
}

int write(u16 id, u8 lastFlag, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  if (length > 0) data[0] = lastFlag;
  return answer(id, data, length, reply, replyLen);
}

int read(u16 id, u8* lastFlagOut, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  EXPECT_EQ(*lastFlagOut, 0);
  *lastFlagOut = 1;
  return answer(id, data, length, reply, replyLen);
}

class Agent : public testing::Test {
 protected:
  Agent() {
    host::forgetAgent();
    EXPECT_EQ(RegisterHookFunc(write, read, 1), 1);
  }
  ~Agent() override { host::forgetAgent(); }
  std::vector<u8> frame_{9, 9};
};

TEST_F(Agent, HandsOverTheFrameAndTheFlags) {
  const host::Answer set = host::agentSet(kEcho, true, &frame_);
  EXPECT_EQ(set.result, 1);
  EXPECT_THAT(*set.reply, ElementsAre(2, 1, 0));
  EXPECT_THAT(frame_, ElementsAre(1, 9));
  host::agentSet(kEcho, false, &frame_);
  EXPECT_THAT(frame_, ElementsAre(0, 9));
  EXPECT_EQ(host::agentGet(kEcho, &frame_).last, 1);
}

TEST_F(Agent, TellsNothingFromNone) {
  std::vector<u8> empty;
  EXPECT_THAT(*host::agentSet(kEcho, true, &empty).reply, ElementsAre(0, 1, 0));
  EXPECT_THAT(*host::agentGet(kEcho, nullptr).reply, ElementsAre(0, 0, 0));
  EXPECT_EQ(host::agentSet(kSilent, true, &frame_).reply, std::nullopt);
  EXPECT_THAT(*host::agentSet(kEmptyReply, true, &frame_).reply, ElementsAre());
  EXPECT_EQ(host::agentSet(kNothing, true, &frame_).result, 0);
}

TEST_F(Agent, CutsAReplyThatTheBufferCannotHold) {
  const host::Answer set = host::agentSet(kTooLong, true, &frame_);
  ASSERT_EQ(set.reply->size(), 400000u);
  EXPECT_EQ(set.reply->back(), 7);
}

TEST_F(Agent, KeepsAnnouncedNamesInOrder) {
  char text[] = "Set CIDMode configuration";
  installSnmpCommand(3087, text, 1, 1, 1);
  installSnmpCommand(2, "two", 1, 1, 1);
  text[0] = 'X';  // the agent has a copy
  EXPECT_EQ(host::messageName(3087), "Set CIDMode configuration");
  EXPECT_EQ(host::messageName(3), "");
  EXPECT_EQ(host::announcedMessages().at(1).id, 2);
}

TEST_F(Agent, GivesEachDoorABufferThatIsZeroedForEachCall) {
  const auto door = [] {
    std::vector<u8> frame(5);
    for (int i = 0; i < 200; ++i) {
      EXPECT_THAT(*host::agentSet(kEcho, true, &frame).reply, ElementsAre(5, 1, 0));
      host::agentSet(kDirty, true, &frame);
    }
  };
  std::thread other(door);
  door();
  other.join();
}

}  // namespace
