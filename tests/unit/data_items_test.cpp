// Data items where a scenario would be long, and what the standard MIB agent sees of them.

#include "common/wire.h"
#include "data/mac/line_mac_table.h"
#include "data/policy/pvc_attach_policy.h"
#include "data/rate/port_rate_bind.h"
#include "host/agent.h"
#include "host/chassis.h"
#include "host/flow_store.h"
#include "host/profile_store.h"
#include "module_fixture.h"
#include "msan/entries.h"
#include "msan/standard_mib.h"

namespace {

class DataItems : public ModuleTest {
 protected:
  DataItems() { host::clearChassis(); }
  ~DataItems() override {
    host::clearChassis();
    host::clearFlowStore();
    host::forgetFlowChecks();
    host::clearProfiles();
  }

  static void card(u16 slot, const char* type) {
    host::authorise(slot, *host::findCardType(type));
    msan_card_auth_init_db(slot);
    host::setCardState(slot, host::CardState::up);
  }

  // What left the module: slot, message, objects and bytes of each message; reports.
  class Sent : public host::Observer {
   public:
    Sent() { host::observe(this); }
    ~Sent() override { host::observe(nullptr); }
    void send(host::Link, u16 slot, u16 id, host::Bytes payload) override {
      text += std::to_string(slot) + " " + std::to_string(id) + ":" + std::to_string(getNumber(payload.data(), 4)) +
              "/" + std::to_string(payload.size()) + " ";
    }
    void crc(u16 slot, u16 id, int) override { text += "crc " + std::to_string(slot) + " " + std::to_string(id) + " "; }
    std::string take() { return std::exchange(text, {}); }
    std::string text;
  };
};

// One port 1024 times, and then a walk that finds no more than an answer of the item holds.
TEST_F(DataItems, AThousandAndTwentyFourRecordsOfOnePortAreOneMessage) {
  card(1, "adsl64");
  std::vector<u8> set(36 + 1024 * 54), get(36 + 1024 * 20);
  set[34] = get[34] = 4;
  for (u32 i = 0; i < 1024; ++i) {
    set[36 + 54 * i + 1] = set[36 + 54 * i + 3] = 1;
    get[36 + 20 * i + 1] = 1;  // port 0: the whole slot
  }
  Sent sent;
  EXPECT_EQ(*host::agentSet(2820, true, &set).reply, (std::vector<u8>{0, 0, 0, 1}));
  EXPECT_EQ(sent.take(), "1 2820:1024/75780 crc 1 2820 ");
  EXPECT_EQ(host::agentGet(2820, &get).reply->size(), 40U + 1024 * 54);
  // Its card is asked for as often, and for all of its ports has no addresses.
  EXPECT_EQ(host::agentGet(2818, &get).reply->size(), 40U + 64 * (22 + 8 * 6));
}

TEST_F(DataItems, AListOfNoneIsFine) {
  for (const u16 message : {u16{2819}, u16{2821}, u16{2822}}) {
    std::vector<u8> none(36);
    EXPECT_EQ(*host::agentSet(message, true, &none).reply, (std::vector<u8>{0, 0, 0, 1})) << message;
  }
}

TEST_F(DataItems, AProfileIsBoundOnEveryPortAndItsChangeReachesThemAll) {
  std::string messages;
  constexpr u16 kSlots[] = {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18};
  for (const u16 slot : kSlots) {
    card(slot, "adsl64");
    messages += std::to_string(slot) + " 2820:64/4740 ";
  }
  EXPECT_EQ(std_snmp_rate_prf_add(1, "a"), 0);
  EXPECT_EQ(typed(CONFIG_NODE, "attach rate-limit profile id 1 interface 1-8,11-18/1-64"),
            "attach profile ok!\r\n = 0");
  Sent sent;
  EXPECT_EQ(std_snmp_rate_prf_rate_set(1, 0, 1000), 0);
  EXPECT_EQ(sent.take(), messages + "crc 9 34609 ");
  EXPECT_EQ(std_snmp_rate_prf_delete_by_id(1), -1);
}

// Ports 2/2 and 2/16 are in ATM mode; the others of a VDSL card carry packets.
TEST_F(DataItems, PoliciesAsTheStandardAgentSeesThem) {
  card(1, "adsl16");
  card(2, "vdsl16");
  for (const char* const line : {"add vdslLine profile atm id 7", "set vdslline profile id 7",
                                 "set vdslline para portmode atm", "attach vdslLine profile id 7 interface 2/2,16"}) {
    typed(CONFIG_NODE, line);
  }
  host::setFlowPolicy(1, "twenty-characters-xy", {});
  host::setFlowRule(5, "video", {});
  std::string eight = "attach policy interface 1-2/16 pvc 3";
  for (int i = 0; i < 8; ++i) eight += " up 1 5 down 1 0";
  typed(CONFIG_NODE, eight);
  typed(CONFIG_NODE, "attach policy interface 2/1 up 1 0 down 1 5");
  char policies[kPolicyNames + 1], rules[kPolicyNames + 1];
  policies[kPolicyNames] = '#';
  u32 length = 0, ruleLength = 0;
  for (const u16 slot : {u16{1}, u16{2}}) {
    EXPECT_EQ(std_snmp_get_pvc_upstream_policy_attach(slot, 16, 3, policies, &length, rules, &ruleLength), 0);
    EXPECT_EQ(length * 1000 + ruleLength, 168048U);
    EXPECT_EQ(std::string(policies).substr(0, 24), "twenty-characters-xy:twe");
    EXPECT_EQ(policies[kPolicyNames], '#');
    EXPECT_STREQ(rules, "video:video:video:video:video:video:video:video:");
  }
  EXPECT_EQ(std_snmp_get_pvc_downstream_policy_attach(1, 16, 3, policies, &length, rules, &ruleLength), 0);
  EXPECT_STREQ(rules, "");
  EXPECT_EQ(std_snmp_get_pvc_upstream_policy_attach(2, 1, 3, policies, &length, rules, &ruleLength), -1);
  EXPECT_EQ(std_snmp_get_pvc_upstream_policy_attach(1, 16, 8, policies, &length, rules, &ruleLength) +
                std_snmp_get_pvc_downstream_policy_attach(1, 16, 8, policies, &length, rules, &ruleLength),
            -2);
  EXPECT_EQ(std_snmp_get_port_downstream_policy_attach(2, 1, policies, &length, rules, &ruleLength), 0);
  EXPECT_STREQ(rules, "video:");
  EXPECT_EQ(std_snmp_get_port_upstream_policy_attach(2, 2, policies, &length, rules, &ruleLength), -1);

  u16 slot = 0, port = 0, pvc = 0;
  const auto next = [&](u16 s, u16 p, u16 c) {
    const int code = std_snmp_policy_first_next_pvc_get(s, p, c, &slot, &port, &pvc);
    return code == 0 ? slot * 10000 + port * 100 + pvc : code;
  };
  EXPECT_EQ(next(0, 0, 65535), 10100);
  EXPECT_EQ(next(1, 16, 65535), 11600);
  EXPECT_EQ(next(1, 16, 6), 11607);
  EXPECT_EQ(next(1, 16, 7), 20200);
  EXPECT_EQ(next(2, 2, 0), 20201);
  EXPECT_EQ(next(2, 2, 7), 21600);
  EXPECT_EQ(next(2, 3, 65535), 21600);
  EXPECT_EQ(next(2, 3, 4), 21600);
  for (const int code : {next(2, 16, 7), next(0, 0, 0), next(1, 0, 65535), next(1, 1, 8), next(1, 17, 0)}) {
    EXPECT_EQ(code, -1);
  }
  EXPECT_EQ(std_snmp_first_policy_port_get(&slot, &port), 0);
  EXPECT_EQ(slot * 100 + port, 201);
  EXPECT_EQ(std_snmp_policy_next_port_get(2, 1, &slot, &port), 0);
  EXPECT_EQ(slot * 100 + port, 202);
  for (const auto& [code, s, p] : {std::tuple{-2, 2, 16}, std::tuple{-3, 2, 17}, std::tuple{-102, 1, 1}}) {
    slot = static_cast<u16>(s), port = static_cast<u16>(p);
    EXPECT_EQ(std_snmp_next_policy_port_get(&slot, &port), code);
  }
}

// An answer has 563,272 bytes: 41 bindings at each of 1024 ports and 344 more.
TEST_F(DataItems, AllBindingsOfTheNodeComeInPiecesUpToALimit) {
  PvcPolicyRow row;
  const auto bind = [&row](u32 slot, u32 port, u16 pvc, u16 count) {
    row.pvcIndex = pvc;
    row.bound.bindNum = count;
    EXPECT_EQ(set_plc_prf_att_dbapi(slot << 16 | port, &row, 0, sizeof row), 0);
  };
  for (u16 slot = 1; slot <= 18; slot = slot == 8 ? u16{11} : static_cast<u16>(slot + 1)) {
    card(slot, "adsl64");
    for (u16 port = 1; port <= 64; ++port)
      for (u16 pvc = 0; pvc < 6; ++pvc) bind(slot, port, pvc, pvc < 5 ? 8 : 1);
  }
  for (u16 port = 1; port <= 43; ++port) bind(1, port, 6, 8);
  std::vector<u8> all(36);
  EXPECT_EQ(host::agentGet(2847, &all).reply->size(), 400000U);
  EXPECT_EQ(host::agentGet(2847, &all).reply->size(), 40U + 1024 * (54 + 41 * 12) + 344 * 12 - 400000);
  bind(1, 44, 6, 1);
  EXPECT_EQ((*host::agentGet(2847, &all).reply)[11], 0xed);
  EXPECT_EQ(typed(CONFIG_NODE, "attach policy interface 1-8,11-18/1-64 pvc 7 up 0 0 down 0 0"), " = 0");
}

}  // namespace
