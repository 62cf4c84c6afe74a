#include "voice/common/voice_snmp.h"

#include <gtest/gtest.h>

#include <vector>

#include "module_fixture.h"
#include "voice/common/voice_msc.h"

namespace {

using Frame = std::vector<u8>;

std::string codeAndDetail(const SnmpErrInfo& err) {
  const u32 held = std::min<u32>(err.errDataLen, sizeof err.errData);
  return std::to_string(err.errCode) + " " + host::hexText({err.errData, held});
}

TEST(FrameCheck, HeadAndCountOfAGlobalItem) {
  Frame frame(58);
  frame[35] = 1;
  SnmpErrInfo err;
  EXPECT_EQ(nCheckSnmpItemsLengthPre(frame.data(), 58, 22, &err), 0);
  EXPECT_EQ(nCheckSnmpItemsLengthPre(frame.data(), 57, 22, &err), -1);
  EXPECT_EQ(codeAndDetail(err), "65518 00000039");
  EXPECT_EQ(nCheckSnmpItemsLengthPre(frame.data(), -1, 22, &err), -1);
  EXPECT_EQ(codeAndDetail(err), "65518 ffffffff");
  frame[35] = 2;
  EXPECT_EQ(nCheckSnmpItemsLengthPre(frame.data(), 58, 22, &err), -1);
  EXPECT_EQ(codeAndDetail(err), "65535 00000002");
  EXPECT_EQ(nCheckSnmpItemsLengthPre(nullptr, 58, 22, &err), -1);
}

TEST(FrameCheck, AreaWithAndWithoutACount) {
  const Frame none{0, 0, 0, 0};
  const Frame lying{0xFF, 0xFF, 0xFF, 0xFF};  // times a unit of 2 is beyond 32 bits
  SnmpErrInfo err;
  EXPECT_EQ(nCheckSnmpItemsLength(none.data(), 4, 52, 4, 0, 10, &err), 0);
  EXPECT_EQ(nCheckSnmpItemsLength(none.data(), 3, 52, 4, 0, 10, &err), -1);
  EXPECT_EQ(codeAndDetail(err), "65518 00000003");
  EXPECT_EQ(nCheckSnmpItemsLength(none.data(), 4, 52, 4, 1, 10, &err), -1);
  EXPECT_EQ(codeAndDetail(err), "65535 00000000");
  EXPECT_EQ(nCheckSnmpItemsLength(lying.data(), 4, 2, 4, 0, 0xFFFFFFFF, &err), -1);
  EXPECT_EQ(codeAndDetail(err), "65518 00000004");
  EXPECT_EQ(nCheckSnmpItemsLength(lying.data(), 4, 1, 2, 0, 65534, &err), -1) << "a width of 2 reads 2 bytes";
  EXPECT_EQ(codeAndDetail(err), "65535 0000ffff");
  EXPECT_EQ(nCheckSnmpItemsLength(none.data(), 34, 34, 0, 1, 1, &err), 0);
  EXPECT_EQ(nCheckSnmpItemsLength(none.data(), 33, 34, 0, 1, 1, &err), -1);
  EXPECT_EQ(vCheckSnmpParaItemsLength(none.data(), 4, 4, false, 1, 1, &err), 0) << "one unit, and no count is read";
}

TEST(ErrorInfo, StandsWithoutItsValue) {
  const u16 two = 0x1234;
  SnmpErrInfo err;
  vSetErrorInfo(65410, nullptr, 2, &err);
  EXPECT_EQ(err.errCode, 65410) << "the code stands although the value is missing";
  vSetErrorInfo(65410, &two, 2, nullptr);
}

TEST(ErrorPacket, CarriesNoDetailThatIsTooLong) {
  u8 reply[80] = {};
  u32 length = 0;
  SnmpErrInfo err;
  const Frame many(60, 7);
  vSetErrorInfo(65416, many.data(), 51, &err);
  vBuildErrorInfo(3087, &err, reply, &length);
  EXPECT_EQ(length, 16U);
  err.errCode = 0;
  vBuildErrorInfo(3087, &err, reply, &length);
  EXPECT_EQ(host::hexText({reply, length}), "00000041");
}

class ConfirmTest : public ModuleTest {
 protected:
  // A confirm: an envelope of zeros and the bytes behind it.
  void add(const Frame& payload) {
    Frame whole(32);
    whole.insert(whole.end(), payload.begin(), payload.end());
    ASSERT_EQ(nSetDataList(whole.data(), static_cast<u32>(whole.size()), list_), 0);
  }
  DataList list_;
  u8 reply_[64] = {};
  u32 length_ = 0;
};

TEST_F(ConfirmTest, LengthIsHeldAgainstTheCount) {
  add({0, 2, 1, 1, 2, 2, 9});
  EXPECT_EQ(nCheckMSCCfmLength(list_, 2, 2), 0) << "longer than needed is good";
  EXPECT_EQ(nCheckMSCCfmLength(list_, 2, 3), -1);
  EXPECT_EQ(nCheckMSCCfmLength(list_, 4, 1), -1) << "00020101 units are not there";
  EXPECT_EQ(nCheckMSCCfmLength(list_, 0, 8), -1);
  EXPECT_EQ(nCheckMSCCfmLength(list_, 0, 0), -1);
  EXPECT_EQ(nCheckMSCCfmLength(nullptr, 0, 1), -1);
  add({0, 0});
  EXPECT_EQ(nCheckMSCCfmLength(list_, 2, 2), -1) << "the second one is empty";
}

TEST_F(ConfirmTest, RepliesAreBuiltFromTheFirst) {
  add({0, 0, 0, 2, 0xA1, 0xA2, 0xB1, 0xB2});
  EXPECT_EQ(nBuildSnmpCfmPacket(list_, 2, reply_, &length_), 0);
  EXPECT_EQ(host::hexText({reply_, length_}), "00000001000000000002a1a2b1b2");
  std::fill(std::begin(reply_), std::end(reply_), 0xEE);
  EXPECT_EQ(nBuildSnmpCfmPacketEx(list_, 2, 1, reply_, &length_), 0);
  EXPECT_EQ(host::hexText({reply_, length_}), "00000002a1a2eeb1b2ee");
  EXPECT_EQ(vBuildSnmpCfmPacketS(list_, 2, reply_, &length_), 0);
  EXPECT_EQ(host::hexText({reply_, length_}), "000000000002a1a2b1b2");
  EXPECT_EQ(vBuildSnmpCfmPacketS(list_, 0, reply_, &length_), 0);
  EXPECT_EQ(host::hexText({reply_, length_}), "00000002a1a2b1b2");
  EXPECT_EQ(nBuildSnmpCfmPacketEx(list_, 3, 0, reply_, &length_), -1) << "two units of 3 are not there";
  EXPECT_EQ(nBuildSnmpCfmPacketEx(list_, 2, 400000, reply_, &length_), -1) << "longer than a reply";
  vFreeDataList(list_);
  add({});
  EXPECT_EQ(vBuildSnmpCfmPacketS(list_, 0, reply_, &length_) + nBuildSnmpCfmPacket(list_, 0, reply_, &length_), 0);
  EXPECT_EQ(length_, 4U);
  EXPECT_EQ(vBuildSnmpCfmPacketS(list_, 2, reply_, &length_) + nBuildSnmpCfmPacketEx(list_, 1, 0, reply_, &length_) +
                nCheckMSCCfmLength(list_, 2, 1),
            -3);
}

}  // namespace
