#include <algorithm>
#include <cstring>
#include <string>
#include <thread>

#include "combo/adsl/adsl_config_aux.h"
#include "combo/adsl/adsl_profile.h"
#include "combo/port/dsl_port_mode.h"
#include "combo/pvc/pvc_profile.h"
#include "combo/vdsl/vdsl_line_func_prf.h"
#include "host/agent.h"
#include "host/chassis.h"
#include "host/profile_store.h"
#include "module_fixture.h"
#include "msan/entries.h"

namespace {

using Bytes = std::vector<u8>;

Bytes hex(std::string_view text) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    if (text[i] == ' ') ++i;
    bytes.push_back(static_cast<u8>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
  }
  return bytes;
}

Bytes join(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

Bytes zeros(std::size_t count) { return Bytes(count); }
Bytes number(u32 width, u32 value) {
  Bytes bytes(width);
  for (u32 i = width; i-- > 0; value >>= 8) bytes[i] = static_cast<u8>(value);
  return bytes;
}
Bytes name(std::string text) {
  text.resize(20);
  return {text.begin(), text.end()};
}

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

Bytes item(u32 id, const std::string& label, const Bytes& body) { return join({number(2, id), name(label), body}); }
Bytes frame(u32 count, const Bytes& items) { return join({zeros(32), number(2, count), items}); }

// The code in an error packet, 0 for a success, 1 for a failure without a code.
int codeOf(const Bytes& reply) {
  if (reply == hex("00000001")) return 0;
  return reply.size() >= 12 ? static_cast<i16>(reply[10] << 8 | reply[11]) : 1;
}
int set(u16 id, Bytes request) { return codeOf(*host::agentSet(id, true, &request).reply); }

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

// A value that the check refuses, where it stands in a body, in the order of the check.
struct Bad {
  std::size_t at;
  const char* value;
  int code;
};
struct Checked {
  u16 message;
  Bytes body;
  std::vector<Bad> bad;
};
// clang-format off
const Checked checked[] = {
    {34803, serviceBody(), {{2, "0004", -103}, {0, "0000", -102}, {0, "0003", -121}, {6, "00000137", -104}, {10, "02", -105},
      {13, "ffffffff", -106}, {19, "00000137", -107}, {13, "00000000 0001 00000001", -120}, {25, "80000000", -108},
      {29, "ff", -109}, {32, "00000137", -110}, {38, "ffffffff", -111}, {32, "00000135 0001 00000136", -120},
      {46, "00030d41", -113}, {54, "ffffffff", -115}, {58, "0040", -116}, {60, "ffff", -117}, {62, "0013", -118},
      {64, "0013", -119}}},
    {34805, pboBody(), {{0, "0003", -102}, {4, "000009fc", -103}, {10, "00000f9f", -104}, {16, "00001000", -105},
      {22, "00001fa0", -106}, {28, "ffffffff", -107}, {34, "00000f9f", -108}, {40, "00001000", -109}, {46, "00001fa0", -110},
      {52, "ffffffff", -111}, {58, "000009fc", -112}, {64, "fa0a1eff", -113}, {70, "08f0d181", -114}, {76, "80000000", -115},
      {82, "00000001", -116}, {86, "0801", -117}, {88, "001f", -118}, {86, "0200", -119}}},
    {34807, cpsdBody(), {{4, "0011", -102}, {34, "0029", -105}, {6, "0021", -103}, {10, "00000001", -104}, {18, "0000", -103},
      {22, "fffffb4f", -104}, {36, "0020", -106}, {40, "00000001", -107}}},
    {34809, vnBody(), {{4, "0001", -102}, {26, "0021", -105}, {26, "0001", -105}, {6, "0021", -103}, {8, "0029", -104},
      {16, "ff73", -104}, {28, "04bf", -106}, {30, "0029", -107}}},
    {34820, extraBody(), {{0, "0002", -101}, {2, "0003", -102}, {4, "ffff", -103}, {8, "00000137", -104}, {12, "4000", -105},
      {16, "ffffffff", -106}, {20, "4000", -107}, {8, "0000005b", -112}, {12, "001f", -112}, {24, "00000137", -108},
      {28, "4e20", -109}, {32, "ffffffff", -110}, {36, "4000", -111}, {24, "0000005b", -112}, {28, "001f", -112}}},
    {34822, ginpBody(), {{0, "0004", -101}, {2, "0004", -102}, {4, "0040", -103}, {6, "0040", -104}, {10, "000004f7", -105},
      {16, "ffffffff", -106}, {20, "0002", -107}, {22, "0002", -108}, {26, "00000047", -109}, {30, "0002", -110},
      {34, "00000047", -111}, {38, "0000003f", -112}, {42, "0007d001", -113}, {46, "0000003f", -114}, {38, "000186a1", -124},
      {50, "00000000", -115}, {54, "ffffffff", -116}, {58, "0007d001", -117}, {50, "000186a1", -124}, {62, "0020", -118},
      {64, "0020", -119}, {68, "000000a1", -120}, {74, "ffffffff", -121}, {78, "00000003", -122}, {82, "000000ed", -123}}},
};
// clang-format on

// The first bad value is told, whatever is behind it.
TEST_F(ProfileTest, TheOrderOfTheChecks) {
  for (const Checked& kind : checked) {
    Bytes body = kind.body;
    ASSERT_EQ(set(kind.message, frame(1, item(9, "good", body))), 0) << kind.message;
    for (std::size_t i = kind.bad.size(); i-- > 0;) {
      std::ranges::copy(hex(kind.bad[i].value), body.begin() + static_cast<std::ptrdiff_t>(kind.bad[i].at));
      EXPECT_EQ(set(kind.message, frame(1, item(9, "bad", body))), kind.bad[i].code) << kind.message << " at " << i;
    }
  }
}

// Where a field of an ADSL line profile stands in the body, with one blackout: its lowest and highest value, and the
// code of the others.
struct Edge {
  std::size_t at;
  u32 width, lowest, highest;
  int code;
};
// clang-format off
constexpr Edge adslEdges[] = {
    {0, 2, 0, 4, -73},      {2, 2, 1, 3, -74},       {4, 2, 1, 3, -75},    {6, 2, 1, 5, -76},
    {16, 1, 0, 0, -79},     {17, 1, 1, 1, -79},      {18, 4, 0, 310, -79},  // margins: head, digits, tenths
    {22, 1, 0, 0, -80},     {23, 1, 1, 1, -80},      {24, 4, 0, 310, -80},
    {28, 2, 0, 63, -81},    {30, 2, 0, 63, -82},     {32, 2, 1, 18, -83},  {34, 2, 1, 18, -84},
    {36, 1, 0, 1, -85},     {37, 1, 0, 1, -86},      {38, 2, 0, 3, -87},   {40, 2, 0, 65534, -88},
    {42, 2, 0, 65534, -89}, {44, 2, 0, 15, -90},     {46, 4, 0, 1024, -91},
    {50, 2, 0, 31, -95},    {52, 2, 0, 31, -96},     {54, 2, 0, 31, -97},  {56, 2, 0, 31, -98},
    {60, 2, 0, 511, -93},   {62, 2, 0, 511, -94},    {68, 4, 0, 100000, -99}, {72, 4, 0, 100000, -100},
};
// clang-format on

TEST_F(ProfileTest, EachFieldOfAnAdslLineProfileHasItsEdgesAndItsCode) {
  const Bytes good = join({hex("0000 0002 0002 0003"), zeros(8),
                           hex("0001 0000003c 0001 0000003c 0010 0010 0001 0001 0000 0000 012c 001e 0003 00000020"),
                           hex("001f 001f 0000 0000 0001"), zeros(8), zeros(8), zeros(64)});
  const auto with = [](Bytes body, std::size_t at, u32 width, u32 value) {
    std::ranges::copy(number(width, value), body.begin() + static_cast<std::ptrdiff_t>(at));
    return set(34661, frame(1, item(5, "five", body)));
  };
  for (const auto& [at, width, lowest, highest, code] : adslEdges) {
    EXPECT_EQ(with(good, at, width, lowest), 0) << at;
    EXPECT_EQ(with(good, at, width, highest), 0) << at;
    EXPECT_EQ(with(good, at, width, lowest - 1), code) << at;
    EXPECT_EQ(with(good, at, width, highest + 1), code) << at;
  }
  EXPECT_EQ(with(good, 58, 2, 17), -92);
  Bytes crossed = good;
  for (const std::size_t greatest : {50, 52}) {
    crossed[greatest + 1] = 5;
    EXPECT_EQ(with(crossed, greatest + 4, 2, 5), 0);
    EXPECT_EQ(with(crossed, greatest + 4, 2, 6), -101);
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
