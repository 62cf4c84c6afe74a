#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "common/debug_control.h"
#include "common/msan_snmp.h"
#include "host/agent.h"
#include "module_fixture.h"

namespace {

using Frame = std::vector<u8>;

// Messages of the test's own beside the module's.
constexpr u16 kSet = 0x0BF0, kBig = 0x0BF1, kSetOnly = 0x0BF2, kDirect = 0x0BF3;
constexpr u32 kBigLimit = 1000000;

struct Seen {
  int sets = 0;
  int gets = 0;
  Frame data;      // of the last SET
  u32 answer = 0;  // bytes that a GET gives
  int result = 0;
} seen;

int onSet(u16, u8, u8* data, i32 length, u8*, u32*, void*, void*) {
  ++seen.sets;
  seen.data.assign(data, data + length);
  return seen.result;
}

// Every byte of the reply says in which piece of 400,000 it stands.
int onGet(u16, u8*, u8*, i32, u8* reply, u32* replyLen, void*, void*) {
  ++seen.gets;
  for (u32 i = 0; i < seen.answer; ++i) reply[i] = static_cast<u8>(1 + i / kMaxPacket);
  *replyLen = seen.answer;
  return seen.result;
}

class GatewayTest : public ModuleTest {
 protected:
  GatewayTest() {
    seen = {};
    for (const SnmpMsgReg& message : {SnmpMsgReg{kSet, {0, 0}, onSet, onGet, 0, "a name of more than twenty letters"},
                                      SnmpMsgReg{kBig, {1, 1}, onSet, onGet, kBigLimit, "big"},
                                      SnmpMsgReg{kSetOnly, {0, 0}, onSet, nullptr, 0, "set"},
                                      SnmpMsgReg{kDirect, {0, 0}, nullptr, onGet, 400000, "direct"}}) {
      EXPECT_EQ(SnmpMsgRegister(&message), 0);
    }
  }

  static std::string text(const host::Answer& answer) {
    std::string reply = "none";
    if (answer.reply) {
      reply = answer.reply->size() <= 16
                  ? host::hexText(*answer.reply)
                  : std::to_string(answer.reply->size()) + " of " + std::to_string(answer.reply->front());
    }
    return std::to_string(answer.result) + " " + reply;
  }
  static std::string set(u16 id, bool last, u32 size, u8 byte = 0) {
    Frame frame(size, byte);
    return text(host::agentSet(id, last, &frame));
  }
  static std::string get(u16 id) {
    Frame frame(1);
    const host::Answer answer = host::agentGet(id, &frame);
    return text(answer) + " " + std::to_string(answer.last);
  }

  Recorder recorder_;
};

TEST_F(GatewayTest, LargestPacketPassesAndOneMoreIsRefused) {
  EXPECT_EQ(set(kSet, true, 400000), "1 none");
  EXPECT_EQ(set(kSet, true, 400001), "1 00000041");
  EXPECT_EQ(set(0x0BFF, true, 400001), "1 00000041") << "the length counts ahead of the id";
  EXPECT_EQ(text(host::agentSet(kSet, true, nullptr)), "1 00000041");
  EXPECT_EQ(seen.sets, 1);
  u8 byte = 0;
  u32 length = 7;
  u8 reply[8] = {};
  EXPECT_EQ(snmpSystemWrite(kSet, 1, &byte, -1, reply, &length, nullptr, nullptr), 1);
  EXPECT_EQ(host::hexText({reply, length}), "00000041") << "a negative length is no length";
  u8 last = 0;
  length = 7;
  EXPECT_EQ(snmpSystemRead(kSet, &last, &byte, INT32_MIN, reply, &length, nullptr, nullptr), 1);
  EXPECT_EQ(host::hexText({reply, length}), "00000041");
  EXPECT_EQ(last, 1);
  EXPECT_EQ(seen.gets, 0) << "no handler subtracts the envelope from it";
}

TEST_F(GatewayTest, ClassesThatNobodyHasAreUnregistered) {
  // 0x64 falls into the block of class 11, where 0xf0 is in use.
  EXPECT_EQ(set(0x64F0, true, 4), "0 none");
  EXPECT_EQ(get(0x64F0), "0 none 1");
  EXPECT_EQ(get(0x0BFE), "0 none 1");
  EXPECT_EQ(get(kSetOnly), "1 00000041 1");
  EXPECT_EQ(set(kDirect, true, 4), "1 00000041");
  EXPECT_EQ(set(kDirect, false, 4), "1 00000041") << "at its first fragment";
}

TEST_F(GatewayTest, FragmentsAreJoined) {
  EXPECT_EQ(set(kSet, false, 2, 0xA1), "1 none");
  EXPECT_EQ(set(kSet, false, 1, 0xB1), "1 none");
  EXPECT_EQ(set(kSetOnly, true, 1, 0xEE), "1 none") << "another id's request in between";
  EXPECT_EQ(set(kSet, true, 1, 0xC1), "1 none");
  EXPECT_EQ(host::hexText(seen.data), "a1a1b1c1");
  EXPECT_EQ(set(kSet, true, 1, 0xD1), "1 none");
  EXPECT_EQ(host::hexText(seen.data), "d1") << "the collection has ended";
}

TEST_F(GatewayTest, SixteenFragmentsAreTheMost) {
  for (int i = 0; i < 15; ++i) ASSERT_EQ(set(kSet, false, 400000, 1), "1 none");
  EXPECT_EQ(set(kSet, true, 400000, 1), "1 none");
  EXPECT_EQ(seen.data.size(), 6400000U);
  for (int i = 0; i < 16; ++i) ASSERT_EQ(set(kSet, false, 1), "1 none");
  EXPECT_EQ(set(kSet, true, 1), "1 00000041");
  EXPECT_EQ(recorder_.take(), (std::vector<std::string>{"log snmpSystemWrite: Frag num exceed the limit!!\r\n"}));
  for (int i = 0; i < 16; ++i) ASSERT_EQ(set(kSet, false, 1), "1 none") << "those before it were dropped";
  EXPECT_EQ(set(kSet, false, 1), "1 00000041");
  EXPECT_EQ(recorder_.take(), (std::vector<std::string>{"log snmpSystemWrite: Frag num exceed the limit!\r\n"}));
}

TEST_F(GatewayTest, ReassemblyNeedsThePool) {
  host::failNth(host::Fault::alloc, 1);
  EXPECT_EQ(set(kSet, false, 1), "1 00000041");
  EXPECT_EQ(recorder_.take(), (std::vector<std::string>{"log snmpSystemWrite: Malloc failed!\r\n"}));
  EXPECT_EQ(set(kSet, false, 1), "1 none");
  EXPECT_EQ(set(kBig, false, 1), "1 00000041") << "the pool holds one at a time";
  set(kSet, true, 1);
}

TEST_F(GatewayTest, LargeReplyIsHandedOutInPieces) {
  seen.answer = 800001;
  EXPECT_EQ(get(kBig), "1 400000 of 1 0");
  EXPECT_EQ(get(kBig), "1 400000 of 2 0");
  EXPECT_EQ(get(kBig), "1 03 1");
  EXPECT_EQ(seen.gets, 1);
  seen.answer = 800000;
  EXPECT_EQ(get(kBig), "1 400000 of 1 0");
  EXPECT_EQ(get(kBig), "1 400000 of 2 1") << "exactly one piece left is the last one";
  EXPECT_EQ(seen.gets, 2);
}

TEST_F(GatewayTest, LargeReplyThatFails) {
  EXPECT_EQ(get(kBig), "1 00000041 1") << "success without a byte";
  EXPECT_EQ(recorder_.take(), (std::vector<std::string>{"log Snmp msg 0xbf1 left buf is null!\r\n"}));
  seen.answer = 5;
  seen.result = -1;
  EXPECT_EQ(get(kBig), "1 0101010101 1") << "what a failing handler wrote is its reply";
  seen.answer = 400001;
  EXPECT_EQ(get(kBig), "1 400000 of 1 1");
  host::failNth(host::Fault::alloc, 1);
  EXPECT_EQ(get(kBig), "1 00000041 1");
}

TEST_F(GatewayTest, DirectReplyTakesNothingFromThePool) {
  seen.answer = 400000;
  host::failNth(host::Fault::alloc, 1);
  EXPECT_EQ(get(kDirect), "1 400000 of 1 1");
  EXPECT_EQ(get(kSet), "1 400000 of 1 1");
  EXPECT_TRUE(host::faultPending(host::Fault::alloc));
}

TEST_F(GatewayTest, SetAndGetOfOneIdMeet) {
  seen.answer = 800000;
  set(kBig, false, 1, 0xA1);
  EXPECT_EQ(get(kBig), "1 00000041 1") << "a collection is no reply, and ends";
  EXPECT_EQ(get(kBig), "1 400000 of 1 0");
  EXPECT_EQ(set(kBig, false, 1, 0xB1), "1 none") << "ends the handing out";
  EXPECT_EQ(set(kBig, true, 1, 0xC1), "1 none");
  EXPECT_EQ(host::hexText(seen.data), "b1c1");
}

TEST_F(GatewayTest, RegistryRefusesTwiceAndMoreThanItsRows) {
  const SnmpMsgReg again{kSet, {0, 0}, onSet, nullptr, 0, "again"};
  const SnmpMsgReg nameless{0x0BEE, {0, 0}, onSet, nullptr, 0, nullptr};
  EXPECT_EQ(SnmpMsgRegister(&again), -1);
  EXPECT_EQ(SnmpMsgRegister(&nameless), -1);
  EXPECT_EQ(SnmpMsgRegister(nullptr), -1);
  EXPECT_EQ(recorder_.take(), (std::vector<std::string>{"log SnmpMsgRegister: Can't repeatedly register!\r\n",
                                                        "log SnmpMsgRegister: Invalid input para!\r\n",
                                                        "log SnmpMsgRegister: Invalid input para!\r\n"}));
  u32 rows = 0;
  for (u32 block : {11, 12, 135, 136, 120}) {
    for (u32 low = 0; low < 256; ++low) {
      const SnmpMsgReg message{static_cast<u16>(block << 8 | low), {0, 0}, onSet, nullptr, 0, "x"};
      rows += SnmpMsgRegister(&message) == 0;
    }
  }
  EXPECT_GT(rows, 0U);
  EXPECT_EQ(host::announcedMessages().size(), kMaxMessages) << "five blocks of 256";
}

TEST_F(GatewayTest, RegisteredMessageIsShown) {
  EXPECT_EQ(host::messageName(kSet), "a name of more than twenty letters");
  const std::string shown = typed(DEBUG_NODE, "show snmp msg info 0x0BF2");
  EXPECT_NE(shown.find("Msg Type      : 0xbf2\r\nSet Func      : 0x"), shown.npos) << shown;
  EXPECT_NE(shown.find("Get Func      : NULL\r\nMax Reply Len : 0\r\nDescription   : set\r\n = 0"), shown.npos)
      << shown;
  EXPECT_NE(typed(DEBUG_NODE, "show snmp msg info 3056").find("Description   : a name of more than \r\n"),
            std::string::npos);
  EXPECT_EQ(typed(DEBUG_NODE, "show snmp msg info 65536"), "Unregistered msg!\r\n = 0");
}

class DebugTest : public ModuleTest {
 protected:
  ~DebugTest() override {
    msanSetDebugControl(10, 0, 0);
    msanSetDebugControl(10, 1, 0);
  }
  static std::string words() {
    std::string all;
    for (const auto& row : gMsanDebugControl) {
      all += std::to_string(row[0]) + "/" + std::to_string(row[1]) + " ";
    }
    return all;
  }
};

TEST_F(DebugTest, WordsBySubAreaAndLevel) {
  typed(DEBUG_NODE, "set msan debug on");
  EXPECT_EQ(words(), "65535/0 65535/0 65535/0 65535/0 65535/0 65535/0 0/0 0/0 0/0 0/0 ");
  typed(DEBUG_NODE, "set msan debug on level buf");
  typed(DEBUG_NODE, "set msan debug off");
  EXPECT_EQ(words(), "0/65535 0/65535 0/65535 0/65535 0/65535 0/65535 0/0 0/0 0/0 0/0 ");
  typed(DEBUG_NODE, "set msan debug off level buf");
  typed(DEBUG_NODE, "set msan debug off module voice cmdid 3087");
  EXPECT_EQ(words(), "0/0 0/0 0/0 0/0 0/0 3087/0 0/0 0/0 0/0 0/0 ") << "an id counts whatever off said";
  EXPECT_EQ(typed(DEBUG_NODE, "set msan debug on module nowhere"), "Error: wrong module. \r\n = -1");
  EXPECT_EQ(typed(DEBUG_NODE, "set msan debug on level deep"), "Error: wrong level. \r\n = -1");
  msanSetDebugControl(6, 0, 9);
  msanSetDebugControl(11, 0, 9);
  msanSetDebugControl(0, 2, 9);
  EXPECT_EQ(words(), "0/0 0/0 0/0 0/0 0/0 3087/0 0/0 0/0 0/0 0/0 ");
}

TEST_F(DebugTest, TraceNamesItsPlace) {
  Recorder recorder;
  const host::CaptureOutput capture;
  Frame frame(20);
  msanSetDebugControl(5, 0, 65535);
  host::agentSet(3087, true, &frame);
  EXPECT_NE(recorder.printed.find("\r\n nSnmpSetCIDMode, cidMode.cpp "), std::string::npos) << recorder.printed;
  EXPECT_NE(recorder.printed.find(", invalid SNMP command para. \r\n"), std::string::npos);
  recorder.printed.clear();
  msanSetDebugControl(5, 0, 0);
  host::agentSet(3087, true, &frame);
  EXPECT_EQ(recorder.printed, "");
}

}  // namespace
