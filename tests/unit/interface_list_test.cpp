#include "common/interface_list.h"

#include "module_fixture.h"

namespace {

class InterfaceTest : public ModuleTest {
 protected:
  // The entries as texts, or what the parser gave.
  std::string parse(const std::string& text) {
    const host::CaptureOutput capture;
    recorder_.printed.clear();
    ObjList list;
    if (CliInputConvertObjIndex(text.c_str(), list) != 0) return "refused";
    std::string entries;
    for (NODE* cell = lstFirst(list); cell != nullptr; cell = lstNext(cell)) {
      const auto* entry = dataOf<const CliAddr>(cell);
      entries += std::to_string(entry->slot);
      if (entry->level > 1) entries += "/" + std::to_string(entry->port);
      if (entry->level > 2) entries += "/" + std::to_string(entry->sub);
      entries += " ";
    }
    return entries;
  }
  static int code(const std::string& text) {
    IfLevel records[6] = {{{}, 64, 1}, {{}, 64, 1}, {{}, 64, 0}};
    u32 levels = 0;
    return parseIfStr(text.c_str(), &levels, records);
  }
  Recorder recorder_;
};

TEST_F(InterfaceTest, RangesAndDuplicates) {
  EXPECT_EQ(parse("3"), "3 ");
  EXPECT_EQ(parse("1,1-3"), "1 2 3 ");
  EXPECT_EQ(parse("5-3/2,1"), "3/1 3/2 4/1 4/2 5/1 5/2 ");
  EXPECT_EQ(parse("1~2/64/0"), "1/64/0 2/64/0 ");
  EXPECT_EQ(parse("7/2/63,0"), "7/2/0 7/2/63 ");
}

TEST_F(InterfaceTest, ControlUnitIs24Or801AndStandsLast) {
  EXPECT_EQ(parse("24/1"), "801/1 ");
  EXPECT_EQ(parse("801/1"), "801/1 ");
  EXPECT_EQ(parse("23/1"), "23/1 ");
  EXPECT_EQ(parse("20-30"), "20 21 22 23 25 26 27 28 29 30 801 ");
  EXPECT_EQ(recorder_.printed, "enter in hcu slot.\r");
  EXPECT_EQ(parse("23-25/1"), "23/1 25/1 801/1 ");
  EXPECT_EQ(recorder_.printed, "") << "it is told of a string of one level alone";
  EXPECT_EQ(parse("1/801"), "1/24 ");
  EXPECT_EQ(parse("1/1/801"), "1/1/24 ");
}

TEST_F(InterfaceTest, EachLevelHasItsCode) {
  EXPECT_EQ(code("65"), -2);
  EXPECT_EQ(code("a"), -2);
  EXPECT_EQ(code("1/65"), -3);
  EXPECT_EQ(code("1/1/64"), -4);
  EXPECT_EQ(code("1/1/1/1"), -5);
  EXPECT_EQ(code("0"), -1);
  EXPECT_EQ(code("1/0"), -1);
  EXPECT_EQ(code("1/1/0"), 0);
  EXPECT_EQ(code("1-2-3"), -1);
  EXPECT_EQ(code("99999999999999999999"), -2);
  for (const char* empty : {"", "1,", ",1", "1//2", "-3", "3-", "/"}) EXPECT_EQ(code(empty), -1) << empty;
  std::string sections = "1";
  for (int i = 0; i < 30; ++i) sections += ",1";
  EXPECT_EQ(code(sections), 0);
  EXPECT_EQ(code(sections + ",1"), -1) << "31 sections are the most";
  EXPECT_EQ(code(std::string(255, '1')), -2);
  EXPECT_EQ(code(std::string(256, '1')), -1);
  EXPECT_EQ(parse("65"), "refused");
  EXPECT_EQ(recorder_.printed, "unknown input interface\r");
}

TEST_F(InterfaceTest, WithoutMemoryNothingIsLost) {
  const host::CaptureOutput capture;
  for (u32 n = 1; n <= 8; ++n) {
    ObjList list;
    host::failNth(host::Fault::alloc, n);
    EXPECT_EQ(ParseInterface("1/1-4", list), -1) << n;
    EXPECT_EQ(lstCount(list), static_cast<int>((n - 1) / 2)) << "what was made stays";
  }
}

TEST_F(InterfaceTest, EqualsGoAheadOfWhatIsThere) {
  ObjIndex objects[] = {{1, 3, {1, 3, 5}}, {2, 3, {1, 3, 5}}, {3, 3, {1, 2, 9}}, {4, 3, {1, 3, 1}}};
  LIST list;
  lstInit(&list);
  for (ObjIndex& object : objects) ASSERT_EQ(insert_sort_list(&object, &list, compare_adsl_slot_no), 0);
  std::string order;
  for (NODE* cell = lstFirst(&list); cell != nullptr; cell = lstNext(cell)) {
    order += std::to_string(dataOf<ObjIndex>(cell)->type);
  }
  EXPECT_EQ(order, "3421");
  delete_list_freedata(&list, nullptr, nullptr);
}

}  // namespace
