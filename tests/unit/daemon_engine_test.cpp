// The record of the agent's starts.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "engine.h"

namespace fs = std::filesystem;
using msand::Engine, msand::startEngine;

class EngineStarts : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(mkdtemp(folder_.data()), nullptr); }
  void TearDown() override { fs::remove_all(folder_); }
  Engine startWith(const std::string& text) const {
    std::ofstream(file()) << text;
    return startEngine(file());
  }
  std::string file() const { return folder_ + "/engine"; }
  std::string folder_ = testing::TempDir() + "engineXXXXXX";
};

TEST_F(EngineStarts, ARecordIsTakenAsItIsWritten) {
  const Engine engine = startWith("80001f88050102030405060708 2147483645\n");
  EXPECT_EQ(engine.id, (std::array<u8, 13>{0x80, 0, 0x1f, 0x88, 5, 1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(engine.boots, 2147483646u);
}

TEST_F(EngineStarts, ARecordThatIsNoneGivesANewName) {
  const std::string name = "80001f88050102030405060708";
  const std::vector<std::string> records = {
      std::string(), name, name + " 7", name + " \n", name + " 0\n", name + " 7x\n", name + "7\n", " " + name + " 7\n",
      "81001f88050102030405060708 7\n", "80001f880501020304050607 12\n", "80001f880501020304050607zz 7\n",
      // Its last start was the last one that can be counted.
      name + " 2147483647\n", name + " 4294967296\n", std::string(101, ' ')};
  for (const std::string& text : records) {
    const Engine engine = startWith(text);
    EXPECT_EQ(engine.boots, 1u) << text;
    EXPECT_NE(engine.id, (std::array<u8, 13>{0x80, 0, 0x1f, 0x88, 5, 1, 2, 3, 4, 5, 6, 7, 8})) << text;
  }
}

TEST_F(EngineStarts, AStartThatCannotBeCountedHasANameOfItsOwn) {
  fs::create_directory(file());  // in the place of the record
  const Engine first = startEngine(file());
  EXPECT_EQ(first.boots, 1u);
  EXPECT_NE(startEngine(file()).id, first.id);
}
