#include "host/chassis.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace {

// The tree as "SLOT:TYPE[FIRST-LAST PORT:PORT TYPE] ...".
std::string tree() {
  std::string text;
  for (u32 i = 0; i < gpOmFrameObj->childCount; ++i) {
    const OmObject* slot = gpOmFrameObj->m_pChildObjList[i];
    const OmObject* first = slot->m_pChildObjList[0];
    const OmObject* last = slot->m_pChildObjList[slot->childCount - 1];
    text += std::to_string(slot->number) + ':' + std::to_string(slot->type) + '[' + std::to_string(first->number) +
            '-' + std::to_string(last->number) + ':' + std::to_string(last->type) + "] ";
  }
  return text;
}

class Chassis : public testing::Test {
 protected:
  Chassis() { host::clearChassis(); }
  ~Chassis() override { host::clearChassis(); }
  static void authorise(u16 slot, const char* type) { host::authorise(slot, *host::findCardType(type)); }
};

TEST_F(Chassis, KnowsItsSlots) {
  for (const u32 slot : {1u, 9u, 20u, 801u}) EXPECT_EQ(ddIsRealSlot(slot, nullptr), 0) << slot;
  for (const u32 slot : {0u, 21u, 800u, 802u, 65537u}) EXPECT_NE(ddIsRealSlot(slot, nullptr), 0) << slot;
  for (const u32 slot : {9u, 10u, 19u, 20u, 801u, 65537u}) EXPECT_NE(ddIsServeBoardSlot(slot, nullptr), 0) << slot;
  u32 slots[100] = {}, count = 0;
  ASSERT_EQ(ddGetServeSlotList(slots, 100, &count), 0);
  const u32 expected[] = {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18};
  ASSERT_EQ(count, std::size(expected));
  EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), slots));
  ASSERT_EQ(ddGetServeSlotList(slots, 3, &count), 0);
  EXPECT_EQ(count, 3u);
}

TEST_F(Chassis, AnswersForACardType) {
  // ADSL, VDSL, msan, data, POTS; port type; ports
  struct {
    const char* name;
    const char* facts;
  } const cases[] = {{"adsl32-pots", "a-mdp 817 32"}, {"583", "-vmd- 56 64"},    {"62", "--m-p 600 32"},
                     {"pots32-data", "--mdp 600 32"}, {"ces32", "--md- 700 32"}, {"foreign8", "----- 901 8"}};
  for (const auto& [name, facts] : cases) {
    const u16 number = host::findCardType(name)->number;
    u16 ports = 0, portType = 0;
    EXPECT_EQ(ddGetBoardServePortAmountByType(number, &ports), 0);
    EXPECT_EQ(ddGetPortTypeByBoardType(number, 1, &portType), 0);
    const auto letter = [](char family, int answer) { return answer == 0 ? family : '-'; };
    const char families[] = {
        letter('a', caCheckCardTypeIsADSLCard(number)),     letter('v', caCheckCardTypeIsVDSLCard(number)),
        letter('m', caCheckCardTypeIsMsanCard(number)),     letter('d', caCheckCardTypeIsMsanDataCard(number)),
        letter('p', caCheckCardTypeIsMsanPotsCard(number)), 0};
    EXPECT_EQ(families + (' ' + std::to_string(portType)) + ' ' + std::to_string(ports), facts) << name;
  }
  u16 value = 0;
  EXPECT_LT(ddGetBoardServePortAmountByType(1, &value), 0);
  EXPECT_LT(ddGetPortTypeByBoardType(0, 1, &value), 0);
  for (const char* wrong : {"", "adsl", "548x", "99999999999", "-548"}) EXPECT_EQ(host::findCardType(wrong), nullptr);
}

TEST_F(Chassis, TheTreeHasTheAuthorisedSlotsInOrderWithoutGaps) {
  EXPECT_EQ(tree(), "");
  authorise(11, "pots64");
  authorise(2, "adsl16");
  authorise(5, "foreign8");
  EXPECT_EQ(tree(), "2:548[1-16:116] 5:900[1-8:901] 11:63[1-64:600] ");
  authorise(11, "vdsl32-pots");
  host::unauthorise(5);
  EXPECT_EQ(tree(), "2:548[1-16:116] 11:13[1-32:818] ");
  authorise(9, "adsl16");  // a control card's slot
  EXPECT_EQ(tree(), "2:548[1-16:116] 11:13[1-32:818] ");

  OmObject* slot = nullptr;
  ASSERT_EQ(omGetChildAddr(gpOmFrameObj, 2, 11, &slot), 0);
  EXPECT_EQ(slot->childCount, 32u);
  EXPECT_NE(omGetChildAddr(gpOmFrameObj, 2, 5, &slot), 0);
  EXPECT_EQ(slot, nullptr);
}

TEST_F(Chassis, ACardGoesThroughItsStates) {
  const auto facts = [](u16 slot) {
    const int status = get_card_type_status(slot, nullptr, nullptr);
    return std::to_string(card_exist(slot)) + ' ' + std::to_string(get_config_card_type(slot)) + ' ' +
           std::to_string(get_exist_card_type(slot)) + ' ' + std::to_string(get_valid_servicecard_type(slot)) + ' ' +
           std::to_string(get_card_type(slot)) + ' ' + std::to_string(status);
  };
  EXPECT_EQ(facts(3), "0 0 0 0 0 1");
  authorise(3, "adsl32");
  EXPECT_EQ(facts(3), "0 542 0 0 0 1");
  host::setCardState(3, host::CardState::present);
  EXPECT_EQ(facts(3), "1 542 542 542 0 1");
  host::setCardState(3, host::CardState::up);
  EXPECT_EQ(facts(3), "1 542 542 542 542 0");
  host::unauthorise(3);
  EXPECT_EQ(facts(3), "1 0 0 0 0 0");
  EXPECT_EQ(facts(801), "0 0 0 0 0 1");
  host::clearChassis();
  EXPECT_EQ(facts(3), "0 0 0 0 0 1");
}

TEST_F(Chassis, ObjectsHaveIdsAndComeBackFromThem) {
  u32 id = 0;
  EXPECT_EQ(omSlot2ObjId(3, &id), 0);
  EXPECT_EQ(id, 0x30000u);
  EXPECT_EQ(omSlot2ObjId(801, &id), 0);
  EXPECT_EQ(id, 0x3210000u);
  EXPECT_NE(omSlot2ObjId(0, &id), 0);
  EXPECT_NE(omSlot2ObjId(21, &id), 0);
  EXPECT_NE(omOltport2ObjId(3, 1, &id), 0);
  authorise(3, "eth8");
  EXPECT_EQ(omOltport2ObjId(3, 8, &id), 0);
  EXPECT_EQ(id, 0x30008u);
  EXPECT_NE(omOltport2ObjId(3, 9, &id), 0);
  EXPECT_NE(omOltport2ObjId(3, 0, &id), 0);
  EXPECT_EQ(omOltport2ObjId(801, 64, &id), 0);
  EXPECT_EQ(id, 0x3210040u);
  EXPECT_NE(omOltport2ObjId(801, 65, &id), 0);

  OmLevelId place;
  EXPECT_EQ(omObjId2LevelId(0x3210040, &place), 0);
  EXPECT_EQ(place.level, 3);
  EXPECT_EQ(place.addr[1], 801);
  EXPECT_EQ(place.addr[2], 64);
  EXPECT_NE(omObjId2LevelId(0x150001, &place), 0);  // slot 21
  EXPECT_NE(omObjId2LevelId(0x30041, &place), 0);   // port 65
}

}  // namespace
