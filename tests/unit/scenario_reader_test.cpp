#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "scenario/modes.h"
#include "scenario/reader.h"
#include "scenario/text.h"

namespace {

using scenario::Played;
using scenario::readScenario;
using scenario::Scenario;
using scenario::terminalLines;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Scenario good(std::string_view text) {
  std::vector<scenario::Problem> problems;
  Scenario read = readScenario("file", text, problems);
  for (const auto& problem : problems) ADD_FAILURE() << problem.line << ": " << problem.why;
  return read;
}

// "LINE: WHY" of the only problem of a bad text.
std::string problem(std::string_view text) {
  std::vector<scenario::Problem> problems;
  readScenario("file", text, problems);
  if (problems.size() != 1) return std::to_string(problems.size()) + " problems";
  return std::to_string(problems[0].line) + ": " + problems[0].why;
}

std::vector<std::string> expected(const scenario::Directive& directive) {
  std::vector<std::string> texts;
  for (const auto& expectation : directive.expectations) texts.push_back(expectation.text);
  return texts;
}

TEST(ScenarioText, LinesShowHowTheyEnd) {
  EXPECT_THAT(terminalLines(""), IsEmpty());
  EXPECT_THAT(terminalLines("\r\n a b \r\n"), ElementsAre("", " a b "));
  EXPECT_THAT(terminalLines("a\nb"), ElementsAre("a\\n", "b\\c"));
  EXPECT_THAT(terminalLines("\n\r"), ElementsAre("\\n", "\\r\\c"));
  EXPECT_THAT(terminalLines("a\r\r\nb\rc\r\n"), ElementsAre("a\\r", "b\\rc"));
}

TEST(ScenarioText, LogTextsAreOneLine) {
  EXPECT_EQ(scenario::logText("\r\n a. \r\n"), " a. ");
  EXPECT_EQ(scenario::logText("a\r\nb\n"), "a\\r\\nb");
  EXPECT_EQ(scenario::logText("\r\n"), "");
}

TEST(ScenarioReader, TellsDirectivesCommentsAndExpectationsApart) {
  const Scenario read = good(
      "# a comment\n"
      "\n"
      "log all\n"
      "pool mark\n"
      "pool\n"
      "pool 120\n"
      "pool change \n"
      "pool change -8\n"
      "log failures\n"
      "cli show cid mode\r\n"
      "log 13 text\n"
      "# between\n"
      "|\n"
      "out\n"
      "... no gpon? |\n"
      "= 0\n"
      "restart\n"
      "(nothing)\n");
  ASSERT_EQ(read.directives.size(), 7u);
  EXPECT_THAT(expected(read.directives[2]), ElementsAre("pool 120"));
  EXPECT_THAT(expected(read.directives[3]), ElementsAre("pool change -8"));
  EXPECT_EQ(read.directives[5].text, "cli show cid mode");
  EXPECT_THAT(expected(read.directives[5]), ElementsAre("log 13 text", "|", "out", "... no gpon? |", "= 0"));
  EXPECT_EQ(read.directives[5].expectations[2].line, 14u);
}

TEST(ScenarioReader, ABackslashJoinsTheNextLine) {
  const Scenario read = good("snmp set 3087 00*32 \\\nu32:1 \\\n00*22\n= 1\nsave");
  ASSERT_EQ(read.directives.size(), 2u);
  EXPECT_EQ(read.directives[0].text, "snmp set 3087 00*32 u32:1 00*22");
  EXPECT_EQ(read.directives[0].line, 1u);
  EXPECT_EQ(read.directives[0].end, 3u);
  EXPECT_EQ(read.directives[1].line, 5u);
}

TEST(ScenarioReader, BadLinesAreToldWithTheNearestWord) {
  EXPECT_THAT(problem("save\ncrad 1 up\n"), testing::AllOf(HasSubstr("2: crad 1 up"), HasSubstr("\"card\"")));
  EXPECT_THAT(problem("save\ncrcc 9 3087 1\n"), HasSubstr("\"crc\""));
  EXPECT_THAT(problem("= 0\nsave\n"), HasSubstr("1: = 0: an expectation ahead"));
  EXPECT_THAT(problem("card 1 auth adsl33\n"), HasSubstr("\"adsl32\""));
  EXPECT_THAT(problem("card 9 auth adsl32\n"), HasSubstr("no service card"));
  EXPECT_THAT(problem("save\n...no\n"), HasSubstr("2: "));
  EXPECT_THAT(problem("save\n... no gpn\n"), HasSubstr("\"gpon\""));
  EXPECT_THAT(problem("save\n= 0\n(nothing)\n"), HasSubstr("3: "));
  EXPECT_THAT(problem("save\n(nothing)\n= 0\n"), HasSubstr("3: "));
}

TEST(ScenarioReader, ArgumentsOfEveryDirectiveAreChecked) {
  for (const char* line : {"card",
                           "card 1",
                           "card 1 auth",
                           "card 21 up",
                           "card 1 up 2",
                           "cli@x show",
                           "confirm maybe",
                           "save it",
                           "recover maybe",
                           "snmp put 3087 -",
                           "snmp set 70000 -",
                           "snmp set 3087",
                           "snmp set 3087 null 00",
                           "answer epon 3 1 00",
                           "answer gpon 1 00",
                           "answer ngn 3087",
                           "fail ngn 3087",
                           "fail gpon 3 1 x",
                           "flow-rule x NAME",
                           "flow-rule 0 NAME",
                           "flow-rule 32768 NAME",
                           "flow-rule 1 NAME 00*343",
                           "flow-policy 1 abcdefghijklmnopqrstu",
                           "std std_snmp_data_port_enable_get 65536 1",
                           "flow-policy 1 NAME 00*98",
                           "master",
                           "events detach",
                           "fault alloc 0",
                           "fault db update 1",
                           "fault voice-mode",
                           "rows",
                           "attribute 1 0 285",
                           "profiles x",
                           "pool marked",
                           "log some",
                           "std"})
    EXPECT_NE(problem(line), "0 problems") << line;
  for (const char* line :
       {"cli", "cli@10 show msan debug print", "snmp get 0x0c0f null", "fail epon 3 2841 -5", "flow-rule 1 NAME",
        "flow-rule 32767 NAME 00*344", "flow-policy 1 NAME 00*97", "attribute 1 0 285 4", "std std_get 1 2"})
    EXPECT_EQ(problem(line), "0 problems") << line;
}

// What is left of `text` when its directives have given these records.
std::string rewritten(std::string_view text, const std::vector<std::vector<std::string>>& records, bool all) {
  std::vector<Played> played;
  for (const auto& record : records) played.push_back({record, true});
  std::string lines;
  for (const std::string& line : rewriteLines(good(text), played, all)) lines += line + "\n";
  return lines;
}

TEST(ScenarioRewriting, ReplacesWhatIsNotMetAndKeepsComments) {
  const std::string_view text =
      "# head\n"
      "cli a\n"
      "# why\n"
      "| old\n"
      "# the result\n"
      "= 0\n"
      "\n"
      "cli b\n"
      "cli c \\\n"
      "d\n"
      "...\n"
      "= 0\n"
      "# tail\n";
  EXPECT_EQ(rewritten(text, {{"| new", "| more", "= 0"}, {"= 7"}, {"| x", "= 0"}}, false),
            "# head\ncli a\n# why\n| new\n| more\n# the result\n= 0\n\ncli b\ncli c \\\nd\n...\n= 0\n# tail\n");
  EXPECT_EQ(rewritten(text, {{}, {"= 7"}, {"= 1"}}, true),
            "# head\ncli a\n# why\n# the result\n(nothing)\n\ncli b\n= 7\ncli c \\\nd\n= 1\n# tail\n");
}

}  // namespace
