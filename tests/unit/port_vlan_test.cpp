// Tables of ports where a scenario would be long: messages and lists that are full, and the rows of the database.

#include "data/vlan/port_vlan.h"

#include <thread>

#include "common/wire.h"
#include "frames.h"
#include "host/agent.h"
#include "host/chassis.h"
#include "host/flow_store.h"
#include "module_fixture.h"
#include "msan/entries.h"

namespace {

constexpr u16 kSlots[] = {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18};

class PortVlan : public ModuleTest {
 protected:
  PortVlan() { host::clearChassis(); }
  ~PortVlan() override {
    host::clearChassis();
    host::clearFlowStore();
    gCurrentVlanPrfId = 0;
  }

  static void authorise(u16 slot, const char* type) {
    host::authorise(slot, *host::findCardType(type));
    msan_card_auth_init_db(slot);
  }

  // A profile of so many services, all with a rule of so many entries, around the cvlan and around the outer tag.
  static void makeProfile(int services, u16 entries) {
    FlowRule rule = host::plainFlowRule("r");
    rule.count = entries;
    host::setFlowRule(1, "r", rule);
    typed(CONFIG_NODE, "create vlan profile p");
    for (int i = 0; i < services; ++i)
      typed(CONFIG_NODE, "add unicast transparent cvlan tpid 1 vid 1 cos 0 rule r qinq tpid 1 vid 1 cos 0 rule r");
  }

  static u32 errorOf(const host::Answer& answer) {
    const auto& reply = *answer.reply;
    return reply.size() >= 12 && reply[3] == 0x41 ? getNumber(reply.data() + 10, 2) : 0;
  }
};

// The objects of each message to a card, "SLOT:OBJECTS/BYTES", and the slots whose change was reported, "crc SLOT".
class Sent : public host::Observer {
 public:
  Sent() { host::observe(this); }
  ~Sent() override { host::observe(nullptr); }
  void send(host::Link, u16 slot, u16 id, host::Bytes payload) override {
    if (id != kVlanMessage) return;
    text += std::to_string(slot) + ":" + std::to_string(getNumber(payload.data(), 4)) + "/" +
            std::to_string(payload.size()) + " ";
  }
  void crc(u16 slot, u16 id, int) override {
    if (id == kVlanMessage) text += "crc " + std::to_string(slot) + " ";
  }
  std::string take() { return std::exchange(text, {}); }
  std::string text;
};

// 16 services with two rules of 8 entries each make a port of 22 + 20 + 16 * (34 + 16 * 42) = 11338 bytes, of which a
// message of 600000 bytes, 36 of them ahead of the ports, holds 52.
TEST_F(PortVlan, WhatAMessageHasNoRoomForIsLeftOutButACardThatReturnsGetsAllOrNothing) {
  authorise(1, "vdsl64");
  makeProfile(16, 8);
  EXPECT_EQ(typed(CONFIG_NODE, "add multicast tag cvlan tpid 1 vid 1 cos 0 rule r"),
            "Vlan profile p(id:1) already has 16 service, can't add more.\r\n = -1");
  Sent sent;
  EXPECT_EQ(typed(CONFIG_NODE, "attach vlan profile p interface 1/1-64"),
            "Attach vlan profile p(id:1) to slot 1 port 64 pvc 65535 success.\r\n = 0");
  EXPECT_EQ(sent.take(), "1:52/589580 crc 1 ");
  recover_port_vlan_cfg(1);
  EXPECT_EQ(sent.take(), "");
  typed(CONFIG_NODE, "clear vlan service interface 1/53-64");
  sent.take();
  // 52 full ports and 12 of 42 bytes.
  recover_port_vlan_cfg(1);
  EXPECT_EQ(sent.take(), "1:64/590084 ");
}

TEST_F(PortVlan, ARuleOfMoreEntriesThanARuleHasCannotBeSent) {
  authorise(1, "vdsl16");
  makeProfile(1, 9);
  Sent sent;
  typed(CONFIG_NODE, "attach vlan profile p interface 1/1");
  EXPECT_EQ(sent.take(), "1:0/4 crc 1 ");
}

TEST_F(PortVlan, EntriesAreSentOfRulesUpTo1024) {
  authorise(1, "vdsl16");
  FlowRule rule = host::plainFlowRule("r");
  rule.count = 2;
  host::setFlowRule(1024, "last", rule);
  host::setFlowRule(1025, "beyond", rule);
  Sent sent;
  // A port of one row and one service is 22 + 20 + 34 bytes, an entry 42.
  typed(CONFIG_NODE, "add vlan service type unicast mode tag vid 1 crule last interface 1/1");
  EXPECT_EQ(sent.take(), "1:1/164 crc 1 ");
  typed(CONFIG_NODE, "add vlan service type unicast mode tag vid 1 crule beyond interface 1/2");
  EXPECT_EQ(sent.take(), "1:1/80 crc 1 ");
}

// A port of one row with one service: unicast, tagged, vid 1.
TEST_F(PortVlan, AFrameThatEndsEarlyIsRefusedWithItsLength) {
  authorise(2, "vdsl16");
  const Bytes whole = join({zeros(32), number(4, 1), hex("00020001"), zeros(16), hex("0001"), zeros(18), hex("0001"),
                            hex("00 0001 0000 8100 0001"), zeros(25)});
  EXPECT_EQ(set(kVlanMessage, whole), 0);
  for (u32 length = 0; length < whole.size(); ++length) {
    Bytes part(whole.begin(), whole.begin() + length);
    EXPECT_EQ(*host::agentSet(kVlanMessage, true, &part).reply,
              join({hex("00000041 0001 000c 0b1e ffee 00000000"), number(4, length)}));
  }
}

TEST_F(PortVlan, AThousandAndTwentyFourPortsInARequest) {
  std::vector<u8> set(36 + 1024 * 42), get(32 + 4);
  std::string messages, reports;
  set[34] = 4;
  for (u32 i = 0; i < 1024; ++i) {
    const u16 slot = kSlots[15 - i / 64];  // from the last to the first
    u8* object = set.data() + 36 + i * 42;
    putNumber(object, 2, slot);
    putNumber(object + 2, 2, 64 - i % 64);
    putNumber(object + 20, 2, 1);
  }
  for (const u16 slot : kSlots) {
    authorise(slot, "vdsl64");
    messages += std::to_string(slot) + ":64/" + std::to_string(4 + 64 * 42) + " ";
    reports += "crc " + std::to_string(slot) + " ";
  }
  Sent sent;
  EXPECT_EQ(*host::agentSet(kVlanMessage, true, &set).reply, (std::vector<u8>{0, 0, 0, 1}));
  EXPECT_EQ(sent.take(), messages + reports);
  EXPECT_EQ(host::agentGet(kVlanMessage, &get).reply->size(), 40U + 1024 * 42);
  EXPECT_EQ(typed(CONFIG_NODE, "clear vlan service interface 1-8,11-18/1-64"),
            "clear vlan service successfully.\r\n = 0");
  EXPECT_EQ(sent.take(), messages + reports);
}

TEST_F(PortVlan, AnswersAndListsThatAreTooLargeAreRefused) {
  for (const u16 slot : kSlots) authorise(slot, "adsl64");
  std::vector<u8> node(36);
  EXPECT_EQ(host::agentGet(kVlanMessage, &node).reply->size(), 40U + 1024 * 182);
  makeProfile(8, 0);
  typed(CONFIG_NODE, "attach vlan profile p interface 1-8,11-18/1-64 pvc 0");
  // 1024 * (182 + 8 * 34) bytes are more than a reply holds.
  EXPECT_EQ(errorOf(host::agentGet(kVlanMessage, &node)), 65517U);
  // 1024 whole slots.
  std::vector<u8> slots(36 + 1024 * 20);
  slots[34] = 4;
  for (u32 i = 0; i < 1024; ++i) {
    putNumber(slots.data() + 36 + i * 20, 2, kSlots[i % 16]);
    putNumber(slots.data() + 38 + i * 20, 2, 65535);
  }
  EXPECT_EQ(errorOf(host::agentGet(kVlanMessage, &slots)), 65517U);
  // 65536 records.
  typed(CONFIG_NODE, "enter vlan profile p");
  EXPECT_EQ(typed(CONFIG_NODE, "attach vlan profile p interface 1-8,11-18/1-64/0-63 pvc 0"), "malloc fail!\r\n = -1");
}

// Operator, manager and a card that returns, each on its thread, over the same ports.
TEST_F(PortVlan, DoorsOverlapThreads) {
  authorise(1, "adsl16");
  authorise(2, "vdsl16");
  makeProfile(2, 8);
  std::thread manager([] {
    for (int i = 0; i < 30; ++i) {
      std::vector<u8> set(36 + 42), get(36);
      set[35] = set[39] = 1;
      set[37] = 2;
      set[57] = 1;
      EXPECT_EQ(host::agentSet(kVlanMessage, true, &set).reply->size(), 4U);
      EXPECT_GT(host::agentGet(kVlanMessage, &get).reply->size(), 40U);
    }
  });
  std::thread card([] {
    for (int i = 0; i < 30; ++i) msan_slot_hotplug(i % 2 == 0 ? 1 : 2);
  });
  for (int i = 0; i < 30; ++i) {
    host::setFlowRule(2, "other", host::plainFlowRule("other"));
    typed(CONFIG_NODE, "enter vlan profile p");
    EXPECT_EQ(typed(CONFIG_NODE, "attach vlan profile p interface 1-2/1-2 pvc 0"),
              "Attach vlan profile p(id:1) to slot 2 port 2 pvc 0 success.\r\n = 0");
    Vty vty;
    msan_Init_Showrun(&vty);
    EXPECT_NE(vty.text.find("attach vlan profile defVlanPrf interface 1/1 pvc 0 "), std::string::npos);
  }
  manager.join();
  card.join();
}

TEST_F(PortVlan, RowsGoByTheirNumberServicesByThePvcThatTheRowNames) {
  PortVlanTable table, read;
  for (u16 i = 0; i < kPvcRows; ++i) init_vlan_item(&table.rows[i], i);
  const auto add = [&](int row, u16 vid) {
    VlanItem& item = table.rows[row];
    VlanService& service = item.services[item.serviceNum++];
    service.cvlanVid = vid;
    service.entryState = kInUse;
  };
  const auto services = [&] {
    std::string text;
    EXPECT_EQ(get_port_vlan_cfg_db_api(7, &read, 0, sizeof read), 0);
    for (const VlanItem& row : read.rows)
      for (u16 i = 0; i < row.serviceNum; ++i)
        text += std::to_string(row.pvcIndex) + ":" + std::to_string(row.services[i].cvlanVid) + " ";
    return text;
  };
  const auto store = [&] { return set_port_vlan_cfg_db_api(7, &table, 0, sizeof table); };
  add(0, 100);
  add(3, 300);
  add(3, 301);
  table.pvcNum = 8;
  EXPECT_EQ(store(), 0);
  EXPECT_EQ(services(), "0:100 3:300 3:301 ");
  // What row 0 puts under PVC 5 stays; what it puts under PVC 3 is gone when row 3 has had its turn.
  table.rows[3].serviceNum = 0;
  table.rows[0].pvcIndex = 3;
  EXPECT_EQ(store(), 0);
  EXPECT_EQ(services(), "");
  table.rows[5].pvcIndex = 2;
  add(5, 500);
  EXPECT_EQ(store(), 0);
  EXPECT_EQ(services(), "2:500 ");
  // Rows behind the count stay as they are; without a PVC the services are those of PVC 0.
  table.pvcNum = 1;
  table.rows[0].pvcIndex = 65535;
  EXPECT_EQ(store(), 0);
  EXPECT_EQ(services(), "0:100 2:500 ");
  table.pvcNum = 8;
  table.rows[0].serviceNum = 0;
  table.rows[5].pvcIndex = 65535;
  EXPECT_EQ(store(), 0);
  EXPECT_EQ(services(), "0:500 ");  // row 2 has had its turn, too
  EXPECT_EQ(del_port_vlan_cfg_db_api(7), 0);
  EXPECT_EQ(services(), "");
  std::vector<std::string> rows;
  host::listRows("ServiceCfg", rows);
  host::listRows("PortService", rows);
  EXPECT_EQ(rows.size(), 0U);

  table.pvcNum = 9;
  EXPECT_EQ(store(), -1);
  EXPECT_EQ(set_port_vlan_cfg_db_api(7, nullptr, 0, sizeof table), -24);
  EXPECT_EQ(set_port_vlan_cfg_db_api(7, &table, 2, sizeof table), -33);
  EXPECT_EQ(get_port_vlan_cfg_db_api(7, &read, 0, sizeof read - 1), -33);
  EXPECT_EQ(get_port_vlan_cfg_db_api(7, nullptr, 0, sizeof read), -24);
}

}  // namespace
