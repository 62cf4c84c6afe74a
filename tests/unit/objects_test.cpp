#include <gtest/gtest.h>

#include "common/interface_list.h"
#include "common/msan_obj.h"
#include "common/obj_attributes.h"
#include "host/chassis.h"
#include "module_fixture.h"
#include "ppda/volt_current.h"
#include "voice/common/voice_msc.h"
#include "voice/common/voice_obj.h"

namespace {

// Slot 2 ADSL with 16 ports, slot 3 POTS with 32, slot 5 the combined card 12 with 32.
class ObjectTest : public ModuleTest {
 protected:
  ObjectTest() {
    card(2, "adsl16");
    card(3, "pots32");
    card(5, "adsl32-pots");
  }
  ~ObjectTest() override { host::clearChassis(); }

  static void card(u16 slot, const char* type) { host::authorise(slot, *host::findCardType(type)); }

  static std::string check(const ObjIndex& object, u32 option) {
    SnmpErrInfo err;
    const int result = checkObjErr(2839, 285, &object, option, &err);
    return result == 0 ? "good" : std::to_string(err.errCode) + " " + host::hexText({err.errData, err.errDataLen});
  }
  static std::string valid(int (*isValid)(u16, u16, u16, u16, SnmpErrInfo*), u16 id, u16 slot, u16 port) {
    SnmpErrInfo err;
    const int result = isValid(id, kPotsCardKind, slot, port, &err);
    return result == 1 ? "good" : std::to_string(err.errCode) + " " + host::hexText({err.errData, err.errDataLen});
  }
  // The objects under a target: how many, and the first and the last one.
  static std::string walk(u16 slot, u32 flags, std::vector<u16> types) {
    ObjIndex target;
    EXPECT_EQ(SlotNoPortConvertObjIndex(slot, 0, 0, &target), 0);
    ObjList list;
    EXPECT_EQ(ForEachTargetTree(&target, list, flags, types.data(), static_cast<i32>(types.size())), 0);
    std::string text = std::to_string(lstCount(list));
    for (NODE* cell : {lstFirst(list), lstLast(list)}) {
      if (cell == nullptr) continue;
      const auto* object = dataOf<const ObjIndex>(cell);
      text += " " + std::to_string(object->addr[1]) + "/" + std::to_string(object->addr[2]);
    }
    return text;
  }
  Recorder recorder_;
};

TEST_F(ObjectTest, HandlesOfSlotAndPort) {
  ObjIndex object;
  EXPECT_EQ(SlotNoPortConvertObjIndex(0, 0, 77, &object), 0);
  EXPECT_EQ(object.type * 10 + object.level, 11) << "the system, whatever type was given";
  EXPECT_EQ(SlotNoPortConvertObjIndex(0, 1, 0, &object), -1);
  EXPECT_EQ(SlotNoPortConvertObjIndex(1, 1, 0, nullptr), -2);
  EXPECT_EQ(SlotNoPortConvertObjIndex(21, 0, 0, &object), -3);
  EXPECT_EQ(SlotNoPortConvertObjIndex(3, 65, 0, &object), -5);
  EXPECT_EQ(SlotNoPortConvertObjIndex(1, 1, 0, &object), -18);
  EXPECT_EQ(SlotNoPortConvertObjIndex(1, 1, 600, &object), 0) << "with a type no card is asked for";
  EXPECT_EQ(SlotNoPortConvertObjIndex(3, 0, 0, &object), 0);
  EXPECT_EQ(object.type, 62);
  EXPECT_EQ(SlotNoPortConvertObjIndex(3, 7, 0, &object), 0);
  EXPECT_EQ(object.type, 600);
  u16 slot = 0, port = 0, type = 0;
  EXPECT_EQ(ObjIndexConvertSlotNoPort(&slot, &port, &type, &object), 0);
  EXPECT_EQ(slot * 10 + port, 37);
  object.addr[2] = 0;
  EXPECT_EQ(ObjIndexConvertSlotNoPort(&slot, &port, &type, &object), -5);
  object.level = 1;
  EXPECT_EQ(ObjIndexConvertSlotNoPort(&slot, &port, &type, &object), -45);
}

TEST_F(ObjectTest, CheckTellsWhatIsWrong) {
  EXPECT_EQ(check({1, 1, {1}}, kCardUp), "good");
  EXPECT_EQ(check({1, 1, {2}}, 0), "65534 0002");
  EXPECT_EQ(check({0, 2, {1, 20}}, 0), "65534 0014") << "the slot count itself";
  EXPECT_EQ(check({0, 2, {1, 801}}, 0), "good");
  EXPECT_EQ(check({0, 3, {1, 801, 1}}, 0), "good");
  EXPECT_EQ(check({600, 3, {1, 3, 0}}, 0), "65529 00030000");
  EXPECT_EQ(check({600, 3, {1, 3, 65}}, 0), "65529 00030041");
  EXPECT_EQ(check({600, 3, {1, 3, 33}}, 0), "65533 0003");
  EXPECT_EQ(check({600, 3, {1, 1, 1}}, 0), "65533 0001");
  EXPECT_EQ(check({600, 3, {1, 3, 1}}, kAnyCard), "good");
  EXPECT_EQ(check({600, 3, {1, 3, 1}}, 0x20000000), "good") << "bit 29 alone asks nothing";
  EXPECT_EQ(check({600, 3, {1, 3, 1}}, kCardPresent), "65532 0003");
  host::setCardState(3, host::CardState::present);
  EXPECT_EQ(check({600, 3, {1, 3, 1}}, kCardPresent), "good");
  EXPECT_EQ(check({600, 3, {1, 3, 1}}, kCardUp), "65532 0003");
  host::setCardState(3, host::CardState::up);
  EXPECT_EQ(check({600, 3, {1, 3, 1}}, kCardUp), "good");
}

TEST_F(ObjectTest, WalkFindsTheWantedTypes) {
  EXPECT_EQ(walk(0, 0, {600}), "32 3/1 3/32");
  EXPECT_EQ(walk(0, 0, {600, 817, 818}), "64 3/1 5/32");
  EXPECT_EQ(walk(0, 0, {62}), "1 3/0 3/0") << "a slot that matches, and none of its ports";
  EXPECT_EQ(walk(3, 0, {600}), "32 3/1 3/32");
  EXPECT_EQ(walk(2, 0, {600}), "0");
  EXPECT_EQ(walk(0, kCardUp, {600}), "0");
  host::setCardState(3, host::CardState::present);
  EXPECT_EQ(walk(0, kCardPresent, {600, 817}), "32 3/1 3/32");
  EXPECT_EQ(walk(0, kCardUp, {600, 817}), "0");
  host::setCardState(5, host::CardState::up);
  EXPECT_EQ(walk(0, kCardUp, {600, 817}), "32 5/1 5/32");
  EXPECT_EQ(walk(0, kAnyCard, {600}), "0") << "a flag that a check takes and a walk does not know";
}

TEST_F(ObjectTest, VoiceChecksByMessage) {
  EXPECT_EQ(valid(vIsOBJMValid, 2839, 3, 1), "good");
  EXPECT_EQ(valid(vIsOBJMValid, 2839, 3, kAllPorts), "good");
  EXPECT_EQ(valid(vIsOBJMValid, 2839, 2, 1), "65534 0002");
  EXPECT_EQ(valid(vIsOBJMValid, 2839, 3, 0), "65529 0000");
  EXPECT_EQ(valid(vIsOBJMValid, 2839, 3, 33), "65529 0021");
  EXPECT_EQ(valid(vIsOBJMValid, 2842, 3, 1), "65532 0003");
  EXPECT_EQ(valid(nIsOBJMValid, 3092, 3, 1), "good");
  EXPECT_EQ(valid(nIsOBJMValid, 3095, 3, 1), "good") << "an id without an option is not tested for a card";
  EXPECT_EQ(valid(nIsOBJMValid, 3100, 3, 1), "65532 0003");
  u16 slots[kVoiceSlots];
  u16 count = 9;
  EXPECT_EQ(nGetCurrentVoiceSlotNo(3100, slots, &count), -1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(nGetCurrentVoiceSlotNo(3092, slots, &count), 0);
  EXPECT_EQ(count * 100 + slots[0] * 10 + slots[1], 235);
}

std::string ports(LIST* list) {
  std::string text;
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<DataNode*>(at);
    text += std::to_string(node->slot) + "/" + std::to_string(node->port) + " ";
  }
  return text;
}

TEST_F(ObjectTest, AllPortsOfASlotGoToTheEnd) {
  card(7, "foreign8");
  // Count 2: all ports of slot 5, port 4 of slot 3.
  std::vector<u8> wire(4 + 40);
  wire[3] = 2;
  wire[5] = 5, wire[6] = wire[7] = 0xFF;
  wire[25] = 3, wire[27] = 4;
  {
    DataList list;
    u32 count = 0;
    ASSERT_EQ(nParsePortLocationHandle(wire, 148, 2, &count, list), 0);
    EXPECT_EQ(count, 33U);
    EXPECT_EQ(ports(list).substr(0, 16), "3/4 5/1 5/2 5/3 ");
    EXPECT_EQ(static_cast<DataNode*>(lstLast(list))->msgId, 148U);
  }
  {
    DataList list;
    u32 count = 0;
    ASSERT_EQ(vParsePOTSPortLocation(wire, kPotsPort, &count, list), 0) << "card type 12 has ports of type 817";
    EXPECT_EQ(lstCount(list), 33);
    EXPECT_EQ(count, 2U);
    SnmpErrInfo err;
    EXPECT_EQ(vCheckPOTSPortLocationHandle(2839, kPotsCardKind, list, &err), 0);
    EXPECT_EQ(ports(list).substr(0, 8), "3/4 5/1 ");
  }
  for (const u8 slot : std::initializer_list<u8>{1, 7}) {
    wire[5] = slot;
    DataList list;
    u32 count = 0;
    EXPECT_EQ(vParsePOTSPortLocation(wire, kPotsPort, &count, list), -1) << "no card, or one of other ports";
  }
  DataList list;
  u32 count = 0;
  EXPECT_EQ(nParsePortLocationHandle(WireIn(wire).first(43), 148, 2, &count, list), -1) << "the frame ends early";
}

TEST_F(ObjectTest, SlotListsBeginWithASlot) {
  ObjList addresses;
  DataList list;
  EXPECT_EQ(vSetSlotObjList(addresses, 285, list), -1);
  ASSERT_EQ(CliInputConvertObjIndex("3,5", addresses), 0);
  ASSERT_EQ(vSetSlotObjList(addresses, 285, list), 0);
  EXPECT_EQ(ports(list), "3/65535 5/65535 ");
  EXPECT_EQ(host::hexText({static_cast<DataNode*>(lstFirst(list))->data, 4}), "0300ffff");
}

TEST_F(ObjectTest, RunsOfSlotsAreReported) {
  DataList list;
  for (const u16 slot : std::initializer_list<u16>{3, 3, 5, 3}) {
    vCreateDataNode(list, 1, 1);
    static_cast<DataNode*>(lstLast(list))->slot = slot;
  }
  recorder_.take();
  msan_cfg_sync_trigger(list, 2839, 3, kDataNodeList);
  EXPECT_EQ(recorder_.take(), (std::vector<std::string>{"crc 3 2839 3", "crc 5 2839 3", "crc 3 2839 3"}));
  msan_cfg_sync_trigger(list, 2839, 3, 3);
  msan_cfg_sync_trigger(nullptr, 2839, 3, 2);
  EXPECT_EQ(recorder_.take().size(), 2U) << "a log line each";
}

TEST_F(ObjectTest, AttributeStore) {
  ObjIndex object;
  ASSERT_EQ(SlotNoPortConvertObjIndex(3, 7, 0, &object), 0);
  PotsFeed feed{3, 7, {}, 45, 30, {}};
  EXPECT_EQ(setObjAttrDataByCondition(&object, 285, &feed, 0, 60), 0);
  EXPECT_EQ(setObjAttrDataByCondition(&object, 285, &feed, 1, 60), -9);
  EXPECT_EQ(setObjAttrDataByCondition(&object, 285, &feed, -1, 60), -9);
  EXPECT_EQ(setObjAttrDataByCondition(&object, 277, &feed, 0, 60), -54);
  EXPECT_EQ(setObjAttrDataByCondition(&object, 285, nullptr, 0, 60), -2);
  PotsFeed read;
  EXPECT_EQ(getObjAttrDataByCondition(&object, 285, &read, 0, 60, 0), 0);
  EXPECT_EQ(read.voltage * 100 + read.current, 4530U);
  EXPECT_EQ(getObjAttrDataByCondition(&object, 285, &read, 4, 4, 0), -53);
  object.addr[2] = 8;
  EXPECT_EQ(getObjAttrDataByCondition(&object, 285, &read, 0, 60, 0), -900);
  object.addr[2] = 33;
  EXPECT_EQ(getObjAttrDataByCondition(&object, 285, &read, 0, 60, 0), -1) << "the object model's own code";
  object.level = 1;
  EXPECT_EQ(getObjAttrDataByCondition(&object, 285, &read, 0, 60, 0), -45);
  EXPECT_EQ(delSlotAttrDataByCondition(3, 267, 0), 0);
  EXPECT_EQ(delPortAttrDataByCondition(3, 7, 285, 0), -54);
  delObjAttrBySlot(1);  // has nothing
  delObjAttrBySlot(3);
  std::vector<std::string> rows;
  ASSERT_TRUE(host::listRows("DB_VOLTCURRENT_CFG", rows));
  EXPECT_TRUE(rows.empty());
}

}  // namespace
