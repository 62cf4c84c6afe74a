#include <algorithm>
#include <cstring>
#include <string>
#include <thread>

#include "combo/adsl/adsl_config_aux.h"
#include "combo/adsl/adsl_profile.h"
#include "combo/port/dsl_port_mode.h"
#include "combo/pvc/pvc_profile.h"
#include "combo/vdsl/vdsl_line_func_prf.h"
#include "frames.h"
#include "host/agent.h"
#include "host/chassis.h"
#include "host/profile_store.h"
#include "module_fixture.h"
#include "msan/entries.h"

namespace {

// Bodies with as many entries as there may be.
Bytes adslBody() {
  Bytes body = join({hex("0000 0002 0002 0003"), zeros(8),
                     hex("0001 0000003c 0001 0000003c 0010 0010 0001 0001 0000 0000 012c 001e 0003 00000020"),
                     hex("001f 001f 0000 0000 0010")});
  for (u32 i = 0; i < 16; ++i) body = join({body, number(2, i), number(2, 511 - i), zeros(4)});
  return join({body, number(4, 100000), number(4, 1), zeros(64)});
}
Bytes pvcBody() {
  Bytes body = join({zeros(8), hex("0008")});
  for (u32 i = 0; i < 8; ++i) body = join({body, number(2, i), number(2, 8), number(4, 32 + i), zeros(4)});
  return body;
}
Bytes vdslBody() {
  Bytes body = join({hex("0002 00ff 0015 0001 000000cd 0001 00000091"), zeros(4), hex("0010")});
  for (u32 i = 0; i < 16; ++i) body = join({body, number(2, i), number(2, 4095), zeros(4)});
  body = join({body, zeros(4), hex("0008")});
  for (u32 i = 0; i < 8; ++i) body = join({body, number(2, 0), number(2, i), zeros(4)});
  return join({body, zeros(8)});
}

Bytes serviceBody() {
  return join({hex("0002 0002 00010000003c 00 000100000136 000100000000 00010000003c 00 000100000136 000100000000"),
               zeros(4), hex("00000040"), zeros(4), hex("00000040 0010 0010 0001 0001"), zeros(8)});
}
Bytes pboBody() {
  return join(
      {hex("0000 000100000000 000200000fa0 000200000000 000200001612 0002000003fc 000200001612 000200000267"),
       hex("000200001612 000200000267 000100000000 00080029b927 000805e3ff5d 0008001dcd65 0001fffffc7c 0000 01ff"),
       zeros(32)});
}
Bytes cpsdBody() {
  return join({zeros(4), hex("0002 0007 0001fffffb50 00000000 0ad5 000100000000 00000000"), zeros(4),
               hex("0002 0021 0001fffffb50 00000000 0ff1 000100000000 00000000"), zeros(8)});
}
Bytes vnBody() {
  return join({zeros(4), hex("0002 0007 ff74 00000000 0ad5 0028 00000000"), zeros(4),
               hex("0002 0021 ff74 00000000 0ff1 0028 00000000"), zeros(8)});
}
Bytes extraBody() {
  return join(
      {hex("0001 0000 0000 00010000001e 001e 00010000005a 001e 00010000001e 001e 00010000005a 001e"), zeros(64)});
}
Bytes ginpBody() {
  return join({hex("0000 0003 0000 003f 000100000000 0001000004f6 0001 0000 000100000000 0001 000100000046"),
               hex("00000100 000186a0 000186a0 00000100 000186a0 000186a0 0000 001f 000100000000 0001000000a0 00000010 "
                   "000000ec"),
               zeros(64)});
}

class ProfileTest : public ModuleTest {
 protected:
  ~ProfileTest() override { host::clearChassis(); }
  static void authorise(u16 slot, const char* type) {
    host::authorise(slot, *host::findCardType(type));
    host::setCardState(slot, host::CardState::up);
  }
  static std::size_t stored(i16 type) {
    std::vector<host::StoredProfile> profiles;
    host::listProfiles(type, profiles);
    return profiles.size();
  }
  Recorder recorder_;
};

TEST_F(ProfileTest, AnItemThatIsCutAnywhereIsRefusedAndStoresNothing) {
  struct Kind {
    u16 message;
    i16 type;
    Bytes body;
    std::size_t length;
  };
  const Kind kinds[] = {{34661, 0, adslBody(), 282},   {34664, 1, pvcBody(), 128},   {34801, 2, vdslBody(), 252},
                        {34803, 3, serviceBody(), 96}, {34805, 4, pboBody(), 144},   {34807, 5, cpsdBody(), 90},
                        {34809, 8, vnBody(), 74},      {34820, 6, extraBody(), 124}, {34822, 7, ginpBody(), 172}};
  for (const Kind& kind : kinds) {
    const Bytes two = join({item(3, "first", kind.body), item(4, "second", kind.body)});
    ASSERT_EQ(two.size(), 2 * kind.length);
    for (std::size_t length = 0; length < two.size(); ++length) {
      const Bytes cut(two.begin(), two.begin() + static_cast<std::ptrdiff_t>(length));
      ASSERT_EQ(set(kind.message, frame(2, cut)), -18) << kind.message << " at " << length;
    }
    EXPECT_EQ(stored(kind.type), 1U);
    EXPECT_EQ(set(kind.message, frame(2, two)), 0);
    EXPECT_EQ(stored(kind.type), 3U);
    for (std::size_t length = 0; length < 34; ++length) {
      EXPECT_EQ(set(kind.message, zeros(length)), -18) << length;
      EXPECT_EQ(set(static_cast<u16>(kind.message + 1), zeros(length)), -18) << length;
    }
  }
}

TEST_F(ProfileTest, AttachmentsThatAreCutAnywhereAreRefused) {
  authorise(3, "adsl16");
  authorise(5, "vdsl16");
  for (const u16 message : {u16{2837}, u16{2838}, u16{2860}, u16{2862}, u16{2863}, u16{2857}, u16{2856}, u16{2855}}) {
    const Bytes written = join({hex("0003 0001"), zeros(22), hex("0005 0002"), zeros(22)});
    for (std::size_t length = 0; length < written.size(); ++length) {
      const Bytes cut(written.begin(), written.begin() + static_cast<std::ptrdiff_t>(length));
      ASSERT_EQ(set(message, join({zeros(32), number(4, 2), cut})), -18) << message << " at " << length;
    }
    const Bytes read = join({hex("0003 0001"), zeros(16), hex("0005 0002"), zeros(16)});
    for (std::size_t length = 0; length < read.size(); ++length) {
      const Bytes cut(read.begin(), read.begin() + static_cast<std::ptrdiff_t>(length));
      Bytes request = join({zeros(32), number(4, 2), cut});
      ASSERT_EQ(codeOf(*host::agentGet(message, &request).reply), -18) << message << " at " << length;
    }
    EXPECT_TRUE(recorder_.take().empty());
  }
}

TEST_F(ProfileTest, ANameInUseStopsABatchAheadOfItsFirstRecord) {
  EXPECT_EQ(set(34801, frame(1, item(7, "taken", vdslBody()))), 0);
  const Bytes batch = join({item(8, "free", vdslBody()), item(9, "taken", vdslBody())});
  EXPECT_EQ(set(34801, frame(2, batch)), 1);
  EXPECT_EQ(stored(2), 2U);
}

TEST_F(ProfileTest, AFlushReachesThePortsOfItsProfileOnly) {
  authorise(3, "adsl16");
  const Bytes body = adslBody();
  set(34661, frame(3, join({item(5, "five", body), item(6, "six", body), item(7, "seven", body)})));
  typed(CONFIG_NODE, "attach adslLine profile id 5 interface 3/1");
  typed(CONFIG_NODE, "attach adslLine profile id 6 interface 3/2,4");
  typed(CONFIG_NODE, "attach adslLine profile id 7 interface 3/3");
  recorder_.take();
  EXPECT_EQ(typed(CONFIG_NODE, "flush adslLine profile id 6"), " = 0");
  ASSERT_EQ(recorder_.lines.size(), 1U);
  // Two ports; the first is port 2.
  EXPECT_EQ(recorder_.lines[0].substr(0, 29), "slot 3 2837 0000000200030002 ");
}

// 81 times the 16 ports of a slot are 1296, more than the node's 1280.
TEST_F(ProfileTest, AReadThatWidensBeyondTheNodeIsRefused) {
  authorise(6, "dsl16");
  Bytes slots;
  for (int i = 0; i < 80; ++i) slots = join({slots, hex("0006 ffff"), zeros(16)});
  Bytes request = join({zeros(32), number(4, 80), slots});
  EXPECT_EQ(host::agentGet(2838, &request).reply->size(), 40 + 1280 * 26u);
  request = join({zeros(32), number(4, 81), slots, hex("0006 ffff"), zeros(16)});
  EXPECT_EQ(*host::agentGet(2838, &request).reply, hex("00000041 0001000c 0b16 ffff 00000000 00000510"));
}

TEST_F(ProfileTest, AFullTableGivesNoId) {
  const Bytes body = pvcBody();
  Bytes items;
  for (u32 i = 0; i < 129; ++i) items = join({items, item(0xFFFF, "p" + std::to_string(i), body)});
  // 128 places are free; what is ahead of the record without one stays.
  EXPECT_EQ(set(34664, frame(129, items)), -11);
  EXPECT_EQ(stored(1), 129U);
  EXPECT_EQ(typed(CONFIG_NODE, "add pvc profile more"), "Add PVC profine failed,and errcode is -11\r\n = -1");
  EXPECT_EQ(set(34665, frame(1, number(2, 77))), 0);
  EXPECT_EQ(typed(CONFIG_NODE, "add pvc profile more"), " = 0");
}

TEST_F(ProfileTest, WithoutMemoryNothingIsStored) {
  authorise(3, "adsl16");
  host::failNth(host::Fault::alloc, 1);
  EXPECT_EQ(set(34661, frame(1, item(5, "five", adslBody()))), -19);
  EXPECT_EQ(stored(0), 1U);
  // The second port's place in the list.
  host::failNth(host::Fault::alloc, 4);
  const Bytes ports = join({hex("0003 0001"), zeros(22), hex("0003 0002"), zeros(22)});
  const int code = set(2837, join({zeros(32), number(4, 2), ports}));
  EXPECT_FALSE(host::faultPending(host::Fault::alloc));
  EXPECT_EQ(code, -19);
  EXPECT_TRUE(recorder_.take().empty());
}

TEST_F(ProfileTest, ModeOfAPort) {
  authorise(3, "adsl16");
  authorise(4, "adsl32-pots");
  authorise(5, "vdsl16");
  authorise(6, "vdsl32-pots");
  authorise(7, "eth8");
  const auto mode = [](u16 slot, u16 port) {
    u16 value = 0;
    return get_dsl_port_mode(slot, port, &value) == 0 ? static_cast<int>(value) : -1;
  };
  EXPECT_EQ(mode(3, 1), 1);
  EXPECT_EQ(mode(4, 1), -1);
  EXPECT_EQ(mode(5, 1), 2);
  EXPECT_EQ(mode(6, 1), 2);
  EXPECT_EQ(mode(7, 1), -1);
  EXPECT_EQ(mode(5, 17), -1);
  EXPECT_EQ(mode(8, 1), -1);
  for (const auto& [word, expected] : {std::pair{"atm", 1}, {"ptm", 2}, {"self-adaption", 1}}) {
    typed(CONFIG_NODE, "add vdslLine profile p id 9");
    typed(CONFIG_NODE, "set vdslLine profile id 9");
    typed(CONFIG_NODE, std::string("set vdslline para portmode ") + word);
    typed(CONFIG_NODE, "attach vdslLine profile id 9 interface 5/1");
    EXPECT_EQ(mode(5, 1), expected) << word;
    EXPECT_EQ(mode(5, 2), 2);
  }
  u16 value = 0;
  EXPECT_EQ(get_dsl_obj_mode(nullptr, &value), -1);
}

TEST_F(ProfileTest, LeastRateOfAPort) {
  authorise(3, "adsl16");
  u32 rate = 9;
  EXPECT_EQ(adsl_min_rate_get(3, 1, kUpstream, &rate), 0);
  EXPECT_EQ(rate, 0U);
  EXPECT_EQ(set(34661, frame(1, item(5, "five", adslBody()))), 0);
  EXPECT_EQ(typed(CONFIG_NODE, "attach adslLine profile id 5 interface 3/1"), " = 0");
  EXPECT_EQ(adsl_min_rate_get(3, 1, kUpstream, &rate), 0);
  EXPECT_EQ(rate, 1U);
  EXPECT_EQ(adsl_min_rate_get(3, 1, kDownstream, &rate), 0);
  EXPECT_EQ(rate, 100000U);
  EXPECT_EQ(adsl_min_rate_get(3, 1, 3, &rate), -1);
  EXPECT_EQ(adsl_min_rate_get(3, 17, kUpstream, &rate), -1);
  EXPECT_EQ(adsl_min_rate_get(4, 1, kUpstream, &rate), -1);
}

TEST_F(ProfileTest, SelectorsThatNameNothingChangeNothing) {
  SnmpErrInfo err;
  AdslPrfRecord adsl{};
  typed(CONFIG_NODE, "add adslLine profile a id 1");
  typed(CONFIG_NODE, "set adslLine profile id 1");
  for (const u32 selector : {0, 20, 27}) EXPECT_EQ(modify_spc_adsl_prf_para(&err, &adsl, selector), -1) << selector;
  // The table alone: the number stays.
  adsl.item.tones[0] = {1, 2, {}};
  EXPECT_EQ(modify_spc_adsl_prf_para(&err, &adsl, 19), 0);
  EXPECT_EQ(get_adsl_line_prf(&err, &adsl, 1), 0);
  EXPECT_EQ(adsl.item.tones[0].end, 2);
  EXPECT_EQ(adsl.item.ToneBlackoutNum, 0);
  VdslLinePrfRecord vdsl{};
  typed(CONFIG_NODE, "add vdslLine profile v id 1");
  typed(CONFIG_NODE, "set vdslLine profile id 1");
  for (const u32 selector : {0, 8}) EXPECT_EQ(modify_spc_vdsl_line_prf_para(&err, &vdsl, selector), -1) << selector;
  err.errCode = 5;
  vdsl.item.psdShape = 42;
  EXPECT_EQ(modify_spc_vdsl_line_prf_para(&err, &vdsl, 3), 0);
  EXPECT_EQ(err.errCode, 0);
  EXPECT_EQ(modify_spc_adsl_prf_para(nullptr, &adsl, 1), -1);
  EXPECT_EQ(modify_spc_vdsl_line_prf_para(&err, nullptr, 1), -1);
}

TEST_F(ProfileTest, EveryTenthOfAPowerIsKept) {
  typed(CONFIG_NODE, "add vdslLine profile v id 1");
  typed(CONFIG_NODE, "set vdslLine profile id 1");
  for (u32 tenths = 0; tenths <= 255; ++tenths) {
    const std::string power = std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
    EXPECT_EQ(typed(CONFIG_NODE, "set vdslline para maxTxPowerDn " + power), " = 0");
    SnmpErrInfo err;
    VdslLinePrfRecord record;
    ASSERT_EQ(get_vdsl_line_prf_base(&err, &record, 1), 0);
    const u32 kept = record.item.maxTxPwrDn.value;
    EXPECT_EQ(kept, tenths);
  }
}

TEST_F(ProfileTest, AnUnchangedEditIsWrittenUnchecked) {
  // During recovery a profile is stored that no check would pass.
  host::setFastMode(true);
  Bytes body = vdslBody();
  body[1] = 9;  // no such mode
  EXPECT_EQ(set(34801, frame(1, item(4, "odd", body))), 0);
  host::setFastMode(false);
  typed(CONFIG_NODE, "set vdslLine profile id 4");
  EXPECT_EQ(typed(CONFIG_NODE, "set vdslline para psd 21"), " = 0");
  EXPECT_EQ(typed(CONFIG_NODE, "set vdslline para psd 20"), "failed,error code is -102\r\n = -1");
}

// Operator, manager and a card that returns, all at once.
TEST_F(ProfileTest, DoorsOverlapThreads) {
  authorise(3, "adsl16");
  authorise(5, "vdsl16");
  set(34661, frame(1, item(5, "five", adslBody())));
  set(34801, frame(1, item(5, "five", vdslBody())));
  host::observe(nullptr);  // the recorder is one thread's
  std::thread manager([] {
    for (int i = 0; i < 30; ++i) {
      EXPECT_EQ(set(34661, frame(1, item(5, "five", adslBody()))), 0);
      EXPECT_EQ(set(34801, frame(1, item(5, "five", vdslBody()))), 0);
      EXPECT_EQ(set(2862, join({zeros(32), number(4, 1), hex("0005 0002"), zeros(16), hex("0005"), zeros(4)})), 0);
      Bytes request = zeros(32);
      EXPECT_EQ(host::agentGet(34801, &request).result, 1);
    }
  });
  std::thread card([] {
    for (int i = 0; i < 30; ++i) msan_slot_hotplug(i % 2 == 0 ? 3 : 5);
  });
  for (int i = 0; i < 30; ++i) {
    typed(CONFIG_NODE, "set vdslLine profile id 5");
    typed(CONFIG_NODE, "set vdslline para psd " + std::to_string(i));
    typed(CONFIG_NODE, "attach adslLine profile id 5 interface 3/1-4");
    Vty vty;
    msan_Init_Showrun(&vty);
    EXPECT_NE(vty.text.find("attach adslLine profile id 5 interface 3/1"), std::string::npos);
  }
  manager.join();
  card.join();
  EXPECT_EQ(stored(2), 2U);
}

}  // namespace
