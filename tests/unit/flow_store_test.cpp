#include "host/flow_store.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

class FlowStore : public testing::Test {
 protected:
  ~FlowStore() override {
    host::clearFlowStore();
    host::forgetFlowChecks();
  }
};

std::string nameOf(i16 id, u8 room = 20) {
  char name[22];
  std::memset(name, '#', sizeof name);
  if (flowRuleGetNameById(name, &room, id) < 0) return "none";
  return std::string(name, room) + "/" + std::to_string(room) + (name[20] == '#' ? "" : " beyond its room");
}

TEST_F(FlowStore, RuleZeroIsThereAndHasNoName) {
  EXPECT_EQ(flowRuleIsPrfExist(0), 1);
  FlowRule rule;
  rule.count = 7;
  EXPECT_EQ(flowRuleGetPrfInfo(0, &rule), 0);
  EXPECT_EQ(rule.count, 0);
  EXPECT_LT(flowRuleGetIdByName(""), 0);
  EXPECT_EQ(nameOf(0), "none");
  EXPECT_EQ(flowPolicyIsPrfExist(0), 0);
}

TEST_F(FlowStore, FindsARuleByTheFirstTwentyCharactersOfItsName) {
  host::setFlowRule(9, "twenty-characters-xy", host::plainFlowRule("twenty-characters-xy"));
  host::setFlowRule(7, "video", host::plainFlowRule("video"));
  host::setFlowRule(3, "video", host::plainFlowRule("video"));
  EXPECT_EQ(flowRuleGetIdByName("twenty-characters-xyz"), 9);
  EXPECT_LT(flowRuleGetIdByName("twenty-characters-x"), 0);
  EXPECT_LT(flowRuleGetIdByName("Video"), 0);
  EXPECT_EQ(flowRuleGetIdByName("video"), 3);
  EXPECT_EQ(nameOf(9), "twenty-characters-xy/20");
  EXPECT_EQ(nameOf(3), "video/5");
  EXPECT_EQ(nameOf(3, 2), "vi/2");
  // Another rule of the id takes its place, under every name.
  host::setFlowRule(3, "voice", host::plainFlowRule("voice"));
  EXPECT_EQ(flowRuleGetIdByName("video"), 7);
  EXPECT_EQ(flowRuleGetIdByName("voice"), 3);
  EXPECT_EQ(flowRuleIsPrfExist(4), 0);
}

TEST_F(FlowStore, HandsOutWhatWasKept) {
  FlowRule rule = host::plainFlowRule("r");
  rule.count = 1;
  rule.entries[0] = {{1, 2, 3, 4}, {{0xaa}, {0xbb}}};
  host::setFlowRule(-3, "r", rule);  // ids are signed
  FlowRule read;
  ASSERT_EQ(flowRuleGetPrfInfo(-3, &read), 0);
  EXPECT_EQ(std::memcmp(&read, &rule, sizeof rule), 0);
  EXPECT_LT(flowRuleGetPrfInfo(3, &read), 0);

  host::FlowPolicyPack pack = host::plainFlowPolicy("p");
  pack[64] = 1;
  pack[96] = 2;
  host::setFlowPolicy(5, "p", pack);
  u8 info[kFlowPolicyInfo] = {}, packed[kFlowPolicyPack] = {};
  u32 length = 0;
  EXPECT_EQ(flowPolicyGetPrfInfo(5, info), 0);
  EXPECT_EQ(info[64], 1);
  EXPECT_EQ(fpGetSpcPrfPack(packed, &length, 5), 0);
  EXPECT_EQ(length, 97U);
  EXPECT_EQ(packed[96], 2);
  EXPECT_NE(flowPolicyGetPrfInfo(6, info), 0);
  EXPECT_LT(fpGetSpcPrfPack(packed, &length, 6), 0);
}

int bound(i16 type, u16 id) { return flowRulePrfTypeCheck(type) < 0 ? -1 : id == 5 ? 1 : 0; }

TEST_F(FlowStore, RemovesWhatIsNotBound) {
  for (const i16 id : {i16{4}, i16{5}}) {
    host::setFlowRule(id, "r", host::plainFlowRule("r"));
    host::setFlowPolicy(id, "p", host::plainFlowPolicy("p"));
  }
  flowRuleRegBindCheck(bound);
  flowPolicyRegBindCheck(bound);  // which can't tell of a policy: that forbids nothing
  EXPECT_EQ(host::removeFlowRule(5), host::FlowRemoval::bound);
  EXPECT_EQ(host::removeFlowRule(4), host::FlowRemoval::removed);
  EXPECT_EQ(host::removeFlowRule(4), host::FlowRemoval::unknown);
  EXPECT_EQ(host::removeFlowPolicy(5), host::FlowRemoval::removed);
  host::forgetFlowChecks();
  EXPECT_EQ(host::removeFlowRule(5), host::FlowRemoval::removed);
}

}  // namespace
