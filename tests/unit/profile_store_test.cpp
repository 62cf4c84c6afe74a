#include "platform/profile_store.h"

#include <gtest/gtest.h>

#include <thread>

#include "host/profile_store.h"

namespace {

class ProfileStore : public testing::Test {
 protected:
  ~ProfileStore() override { host::clearProfiles(); }

  bool add(i16 id, const char* name, u32 value) const {
    return prfCreate(kind, name, id) >= 0 && prfAddItem(kind, id, 0, &value, sizeof value) >= 0;
  }
  // What the item of the profile is, 0 without one.
  u32 value(i16 id) const {
    u32 item = 0;
    u16 size = sizeof item;
    return prfGetItem(&item, &size, kind, id, 0) == 0 ? item : 0;
  }

  const i16 kind = prfRegNewType(-1, 3, 1, 4);
};

TEST_F(ProfileStore, KindsAreNumberedAndKeptApart) {
  const i16 other = prfRegNewType(-1, 1, 1, 2);
  EXPECT_EQ(kind, 0);
  EXPECT_EQ(other, 1);
  EXPECT_EQ(prfRegNewType(other, 1, 1, 2), other);
  EXPECT_LT(prfRegNewType(-1, 1, 2, 2), 0);
  EXPECT_EQ(prfRegNewType(5, 1, 1, 2), 2);
  EXPECT_TRUE(add(0, "a", 1));
  EXPECT_EQ(prfIsIdUsed(other, 0), 0);
  EXPECT_LT(prfCreate(3, "a", 0), 0);
}

TEST_F(ProfileStore, IdsAndNamesAreUniqueAndTheLowestFreeIdIsGiven) {
  EXPECT_EQ(prfGetFreeId(kind), 0);
  EXPECT_TRUE(add(0, "a", 1) && add(2, "c", 3));
  EXPECT_EQ(prfGetFreeId(kind), 1);
  EXPECT_FALSE(add(1, "c", 9));
  EXPECT_FALSE(add(2, "d", 9));
  EXPECT_FALSE(add(3, "d", 9));
  EXPECT_FALSE(add(-1, "d", 9));
  EXPECT_TRUE(add(1, "b", 2));
  EXPECT_LT(prfGetFreeId(kind), 0);
  EXPECT_EQ(prfDel(kind, 0), 0);
  EXPECT_LT(prfDel(kind, 0), 0);
  EXPECT_EQ(prfGetFreeId(kind), 0);
  EXPECT_TRUE(add(0, "a", 7));
  EXPECT_EQ(value(0), 7U);
}

TEST_F(ProfileStore, ARenamedProfileIsFoundByItsNewNameOnly) {
  EXPECT_TRUE(add(0, "a", 1) && add(1, "b", 2));
  EXPECT_LT(prfNameModify(kind, "a", 1), 0);
  EXPECT_EQ(prfGetPrfIdByName(kind, "b"), 1);
  EXPECT_EQ(prfNameModify(kind, "c", 1), 0);
  EXPECT_EQ(prfIsNameExist(kind, "b"), 0);
  EXPECT_EQ(prfGetPrfIdByName(kind, "c"), 1);
  EXPECT_TRUE(add(2, "b", 3));
}

TEST_F(ProfileStore, TwentyCharactersOfANameCountAndHaveNoTerminator) {
  EXPECT_TRUE(add(0, "12345678901234567890x", 1));
  EXPECT_EQ(prfIsNameExist(kind, "12345678901234567890y"), 1);
  char name[21] = "....................";
  u8 capacity = 19;
  EXPECT_LT(prfGetNameByPrfId(name, &capacity, kind, 0), 0);
  capacity = 20;
  EXPECT_EQ(prfGetNameByPrfId(name, &capacity, kind, 0), 0);
  EXPECT_STREQ(name, "12345678901234567890");
}

TEST_F(ProfileStore, AnItemIsOfItsKindsSizeAndAddedOnce) {
  const u32 item = 5;
  u32 out = 0;
  u16 size = 4;
  EXPECT_EQ(prfCreate(kind, "a", 0), 0);
  EXPECT_LT(prfGetItem(&out, &size, kind, 0, 0), 0);
  EXPECT_LT(prfModifyItem(kind, 0, 0, &item, 4), 0);
  EXPECT_LT(prfAddItem(kind, 0, 0, &item, 3), 0);
  EXPECT_EQ(prfAddItem(kind, 0, 0, &item, 4), 0);
  EXPECT_LT(prfAddItem(kind, 0, 0, &item, 4), 0);
  EXPECT_EQ(value(0), 5U);
  size = 3;
  EXPECT_LT(prfGetItem(&out, &size, kind, 0, 0), 0);
}

TEST_F(ProfileStore, CallsAreWholeWhereTheyOverlap) {
  const i16 wide = prfRegNewType(-1, 1000, 1, 8);
  EXPECT_EQ(prfCreate(wide, "shared", 0), 0);
  const u64 first = 0;
  EXPECT_EQ(prfAddItem(wide, 0, 0, &first, sizeof first), 0);
  const auto work = [wide](u64 pattern) {
    u64 item = 0;
    for (int i = 0; i < 500; ++i) {
      u16 size = sizeof item;
      prfModifyItem(wide, 0, 0, &pattern, sizeof pattern);
      if (prfGetItem(&item, &size, wide, 0, 0) != 0 || (item != 0 && item + 1 != 0)) ADD_FAILURE() << item;
    }
  };
  std::thread other(work, ~u64{0});
  work(0);
  other.join();
}

}  // namespace
