#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scenario/compare.h"

namespace {

using scenario::align;
using scenario::Expectation;
using scenario::matchesLine;
using testing::ElementsAre;
using testing::IsEmpty;

using Lines = std::vector<std::string>;

std::vector<Expectation> expecting(const Lines& lines) {
  std::vector<Expectation> expectations;
  for (const std::string& line : lines) expectations.push_back({0, line});
  return expectations;
}

bool met(const Lines& expected, const Lines& record) { return matches(align(expecting(expected), record)); }

Lines difference(const Lines& expected, const Lines& record) {
  const auto expectations = expecting(expected);
  return diff(align(expectations, record), expectations, record);
}

TEST(ScenarioMatching, AnyByteAndRunsOfThem) {
  EXPECT_TRUE(matchesLine("ngn 3087 00..02", "ngn 3087 000102"));
  EXPECT_FALSE(matchesLine("ngn 3087 00..02", "ngn 3087 000103"));
  EXPECT_FALSE(matchesLine("ngn 3087 00..", "ngn 3087 000102"));
  EXPECT_TRUE(matchesLine("reply 00000001 ..*20 0a", "reply 00000001 00*19 010a"));
  EXPECT_TRUE(matchesLine("reply 00*15 ..", "reply 00*16"));
  EXPECT_FALSE(matchesLine("reply ..", "reply none"));
  EXPECT_FALSE(matchesLine("reply ..", "reply -"));
  EXPECT_TRUE(matchesLine("gpon? 3 1 ..*17", "gpon? 3 1 00*17"));
  EXPECT_FALSE(matchesLine("gpon 3 1 ..", "gpon 4 1 00"));
  EXPECT_FALSE(matchesLine("gpon 3 1 ..", "gepon 3 1 00"));
}

TEST(ScenarioMatching, HexStringsInRowsAndProfiles) {
  EXPECT_TRUE(matchesLine("row a=1 key=..*16 b=\"x y\"", "row a=1 key=00*16 b=\"x y\""));
  EXPECT_TRUE(matchesLine("row key=00.. c=5", "row key=00ff c=5"));
  EXPECT_FALSE(matchesLine("row key=00.. c=5", "row key=00ff c=6"));
  EXPECT_FALSE(matchesLine("row key=00..", "row key=00ff c=6"));
  EXPECT_FALSE(matchesLine("row key=00..", "row yek=00ff"));
  EXPECT_TRUE(matchesLine("out view=..*16", "out view=00*16"));
  EXPECT_FALSE(matchesLine("out view=..", "out slot=10"));
  EXPECT_TRUE(matchesLine("profile 2 \"a b\" 01..", "profile 2 \"a b\" 01ff"));
  EXPECT_FALSE(matchesLine("profile 2 \"a c\" 01..", "profile 2 \"a b\" 01ff"));
}

TEST(ScenarioMatching, TextsAreNoPatterns) {
  EXPECT_FALSE(matchesLine("| ..", "| 00"));
  EXPECT_FALSE(matchesLine("log 13 ..", "log 13 ab"));
  EXPECT_FALSE(matchesLine("= ..", "= 10"));
}

TEST(ScenarioMatching, AnyNumberOfLines) {
  EXPECT_TRUE(met({"..."}, {}));
  EXPECT_TRUE(met({"...", "= 0"}, {"| a", "= 0", "= 0"}));
  EXPECT_FALSE(met({"...", "= 0"}, {"= 0", "| a"}));
  EXPECT_TRUE(met({"...", "| b", "...", "= 0"}, {"| a", "| b", "| b", "crc 9 1 1", "= 0"}));
  EXPECT_FALSE(met({"...", "| b", "...", "= 0"}, {"| a", "= 0"}));
  EXPECT_TRUE(met({"(nothing)"}, {}));
  EXPECT_FALSE(met({"(nothing)"}, {"= 0"}));
}

TEST(ScenarioMatching, AnyLinesButSomeMarks) {
  EXPECT_TRUE(met({"... no gpon crc", "= 0"}, {"gpon? 3 1 00", "| gpon", "= 0"}));
  EXPECT_FALSE(met({"... no gpon crc", "= 0"}, {"gpon 3 1 00", "= 0"}));
  EXPECT_FALSE(met({"... no gpon crc", "= 0"}, {"crc 9 1 1", "= 0"}));
  EXPECT_TRUE(met({"... no crc", "crc 9 1 1", "... no crc"}, {"| a", "crc 9 1 1", "= 0"}));
  EXPECT_FALSE(met({"... no |", "= 0"}, {"|", "= 0"}));
}

TEST(ScenarioDiff, ShowsTheSmallestDifferenceInPlace) {
  EXPECT_THAT(difference({"| a", "| b", "= 0"}, {"| a", "| c", "= 0"}), ElementsAre(" | a", "-| b", "+| c", " = 0"));
  EXPECT_THAT(difference({"crc 9 1 1", "= 0"}, {"= 0"}), ElementsAre("-crc 9 1 1", " = 0"));
  EXPECT_THAT(difference({"...", "= 0"}, {"| a", "= 1"}), ElementsAre(" | a", " = 1", "-= 0"));
  EXPECT_THAT(difference({"(nothing)"}, {"= 0"}), ElementsAre("-(nothing)", "+= 0"));
  EXPECT_THAT(difference({"= 0"}, {"= 0"}), IsEmpty());
}

TEST(ScenarioDiff, LeavesOutWhatIsFarAway) {
  EXPECT_THAT(difference({"| 1", "| 2", "| 3", "| 4", "= 0"}, {"| 1", "| 2", "| 3", "| 4", "= 1"}),
              ElementsAre(" | 2", " | 3", " | 4", "-= 0", "+= 1"));
  EXPECT_THAT(difference({"= 0", "| 1", "| 2", "| 3", "| 4"}, {"= 1", "| 1", "| 2", "| 3", "| 4"}),
              ElementsAre("-= 0", "+= 1", " | 1", " | 2", " | 3"));
}

TEST(ScenarioDiff, OfTwoTextsTakesEachLineLiterally) {
  EXPECT_THAT(scenario::diffLines({"set a", "..."}, {"set a", "set b"}), ElementsAre(" set a", "-...", "+set b"));
  EXPECT_THAT(scenario::diffLines({"set a"}, {"set a"}), IsEmpty());
}

}  // namespace
