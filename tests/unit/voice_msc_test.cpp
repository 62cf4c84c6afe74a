#include "voice/common/voice_msc.h"

#include "module_fixture.h"

namespace {

class MscTest : public ModuleTest {
 protected:
  std::string node(NODE* at) {
    const auto* data = static_cast<DataNode*>(at);
    return std::to_string(data->slot) + " " + std::to_string(data->msgId) + " " +
           host::hexText({data->data, data->dataLen});
  }
  Recorder recorder_;
  DataList list_;
};

// Envelope: eight zeros, the id in host order (little-endian here), 22 zeros, which run on into the payload.
TEST_F(MscTest, ToACardThePayloadGoesWithoutItsEnvelope) {
  const u8 payload[] = {0, 0, 0, 1, 0xAB};
  ASSERT_EQ(vBuildMscPacketS(3, 2841, 0, payload, 5, list_), 0);
  EXPECT_EQ(node(lstFirst(list_)), "3 0 0000000000000000190b 00*25 01ab");
  EXPECT_EQ(vSendMscPacket(list_), 0);
  EXPECT_EQ(recorder_.take(), (std::vector<std::string>{"slot 3 2841 00000001ab"}));
}

TEST_F(MscTest, HeaderAloneIsAMessageAndLessIsNot) {
  u8 buffer[32];
  ASSERT_EQ(buildMscHeader(buffer, 2841, 0), 0);
  EXPECT_EQ(sendMscMsg(4, buffer, 31), -1);
  EXPECT_EQ(sendMscMsg(4, nullptr, 32), -1);
  EXPECT_EQ(sendMscMsg(4, buffer, 32), 0);
  EXPECT_EQ(recorder_.take(), (std::vector<std::string>{"slot 4 2841 -"}));
}

TEST_F(MscTest, CountIsCutToSixteenBits) {
  const u8 payload[] = {0, 1, 0, 2};
  ASSERT_EQ(vBuildMscPacketSX(3, 1, 0, payload, 4, list_), 0);
  EXPECT_EQ(node(lstFirst(list_)), "3 0 000000000000000001 00*24 02");
  DataList other;
  EXPECT_EQ(vBuildMscPacketSX(3, 1, 0, payload, 3, other), -1) << "shorter than its count";
}

TEST_F(MscTest, OneMessageForEachSlot) {
  const u16 slots[] = {5, 2};
  const u8 payload[] = {7};
  ASSERT_EQ(vBuildMscPacketD(slots, 2, 1, 0, payload, 1, list_), 0);
  vSendMscPacket(list_);
  EXPECT_EQ(recorder_.take(), (std::vector<std::string>{"slot 5 1 07", "slot 2 1 07"}));
  DataList headers;
  ASSERT_EQ(vBuildMscPacketND(list_, 9, 0, headers), 0);
  vSendMscPacket(headers);
  EXPECT_EQ(recorder_.take(), (std::vector<std::string>{"slot 5 9 -", "slot 2 9 -"}));
  host::failNth(host::Fault::alloc, 1);
  EXPECT_EQ(vBuildMscPacketND(list_, 9, 0, headers), -1);
}

TEST_F(MscTest, AFailedSendIsNotAFailure) {
  const u8 payload[] = {1, 2};
  ASSERT_EQ(vBuildMscPacketI(18, 3087, 0, payload, 2, list_), 0);
  EXPECT_EQ(node(lstFirst(list_)), "18 3087 0102");
  host::queueFailure(host::Link::ngn, 0, 3087, -1);
  EXPECT_EQ(vSendMscPacketI(list_), 0);
  EXPECT_EQ(vSendMscPacketI(nullptr), -1);
}

TEST_F(MscTest, AtMostTwentySlotsAreGrouped) {
  MscSlotInfo slots[kMscSlots] = {};
  for (u16 slot = 1; slot <= 21; ++slot) {
    vCreateDataNode(list_, 1, 1);
    static_cast<DataNode*>(lstLast(list_))->slot = slot;
    u16 count = 0;
    EXPECT_EQ(vSetMscSlotInfo(list_, slots, &count), slot <= 20 ? 0 : -1) << slot;
  }
}

TEST_F(MscTest, NodesAreMadeZeroedAndPortsAreNamedInThem) {
  EXPECT_EQ(vCreateDataNode(list_, 0, 4), -1);
  EXPECT_EQ(vCreateDataNode(list_, 1, 0), -1);
  ASSERT_EQ(vCreatePortDataNode(list_, 2, 3, 2, 6), 0);
  EXPECT_EQ(node(lstFirst(list_)), "3 0 030003000000");  // u16 slot, u16 port in host order
  EXPECT_EQ(static_cast<DataNode*>(lstLast(list_))->port, 4);
  host::failNth(host::Fault::alloc, 4);
  EXPECT_EQ(vCreateDataNode(list_, 2, 8), -1) << "the second node's data";
  vFreeDataList(list_);
  EXPECT_EQ(lstCount(list_), 0);
}

TEST_F(MscTest, ConfirmsCannotBeWaitedFor) {
  DataList received;
  EXPECT_EQ(vRecvMscPacket(list_, received), 0) << "nothing to wait for";
  vBuildMscPacketN(3, 1, 0, list_);
  EXPECT_EQ(vRecvMscPacket(list_, received), -1);
}

}  // namespace
