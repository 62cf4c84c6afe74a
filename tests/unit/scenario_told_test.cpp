// The messages of a record: requests and answers in pieces, and comparisons by name.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scenario/arguments.h"
#include "scenario/told.h"

namespace scenario {
namespace {

using messages::Road;
using testing::ElementsAre;

std::vector<std::string> read(TellingReader& reader, const std::string& directive,
                              const std::vector<std::string>& record) {
  std::vector<std::string> texts;
  for (const Told& told : reader.read(directive, record)) {
    std::string text = std::string(roadName(told.road)) + " " + std::to_string(told.id) + " ";
    for (const u8 byte : told.bytes) text += static_cast<char>('a' + byte);
    texts.push_back(text + (told.line == Told::kDirective ? " itself" : " " + std::to_string(told.line)));
  }
  return texts;
}

TEST(ScenarioToldTest, messagesAreFoundInLinesAndDirectives) {
  TellingReader reader;
  EXPECT_THAT(
      read(reader, "cli x", {"gpon 3 7 01", "crc 3 7 3", "gepon? 4 8 0203", "ngn 9 04", "| gpon 3 7 01", "= 0"}),
      ElementsAre("gpon 7 b 0", "gepon ask 8 cd 2", "ngn 9 e 3"));
  EXPECT_THAT(read(reader, "snmp set 7 05", {"gpon 3 7 01", "reply 00000001", "= 1"}),
              ElementsAre("set 7 f itself", "set reply 7 aaab 1", "gpon 7 b 0"));
  // What was refused was no message, and what was not answered has none.
  EXPECT_THAT(read(reader, "snmp set 7 05", {"reply 00000041", "= 1"}), ElementsAre("set reply 7 aaa\xa2 0"));
  EXPECT_THAT(read(reader, "snmp get 7 null", {"reply none", "last 1", "= 1"}), ElementsAre());
}

TEST(ScenarioToldTest, piecesAreOneMessage) {
  TellingReader reader;
  EXPECT_THAT(read(reader, "snmp set-more 7 0102", {"reply none", "= 1"}), ElementsAre());
  EXPECT_THAT(read(reader, "snmp set 8 05", {"reply none", "= 0"}), ElementsAre());
  EXPECT_THAT(read(reader, "snmp set 7 03", {"reply 00000001", "= 1"}),
              ElementsAre("set 7 bcd itself", "set reply 7 aaab 0"));
  EXPECT_THAT(read(reader, "snmp get 7 -", {"reply 000000", "last 0", "= 1"}), ElementsAre());
  EXPECT_THAT(read(reader, "snmp get 7 -", {"reply 0102", "last 1", "= 1"}),
              ElementsAre("get 7  itself", "get reply 7 aaabc 0"));
}

TEST(ScenarioToldTest, aComparisonThatFailsNamesTheFields) {
  Directive directive;
  directive.text = "snmp set 3087 -";
  const auto differences = [&](std::vector<std::string> expected, const std::vector<std::string>& record) {
    directive.expectations.clear();
    for (std::string& text : expected) directive.expectations.push_back({1, std::move(text)});
    return fieldDifferences(directive, align(directive.expectations, record), record);
  };
  EXPECT_THAT(differences({"ngn 3087 000000010001 ..*32"}, {"ngn 3087 000000010002 00*32"}),
              ElementsAre("  cidMode: CIDMode: dtmf, not fsk"));
  // A line that `...` stands for may be the one that was meant.
  EXPECT_THAT(differences({"ngn 3087 000000010001 00*31 07", "..."}, {"ngn 3087 000000010001 00*32"}),
              ElementsAre("  cidMode: reserved: 00*32, not 00*31 07"));
  EXPECT_THAT(differences({"reply 00000041 0001 000a 0c0f ff88 00000000 0003"},
                          {"reply 00000041 0001 000a 0c0f ff88 00000000 0004"}),
              ElementsAre("  cidMode: CIDMode: 4, not 3"));
  EXPECT_THAT(differences({"ngn 3083 00000001 00000002 31 00*19 0000 00*30 32 00*19 0001 00*30"},
                          {"ngn 3083 00000001 00000001 31 00*19 0003 00*30"}),
              ElementsAre("  potsNumbers: numbers: 1, not 2", "  potsNumbers: number[0].phnType: D, not A",
                          "  potsNumbers: number[1].phnNumber: missing, not \"2\"",
                          "  potsNumbers: number[1].phnType: missing, not B",
                          "  potsNumbers: number[1].reserved: missing, not 00*30"));
  EXPECT_THAT(differences({"crc 9 3087 1", "ngn 3087 00"}, {"ngn 3088 00"}), ElementsAre());
}

}  // namespace
}  // namespace scenario
