// What the terminal tells of what may be typed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/chassis.h"
#include "messages/layout.h"
#include "operator.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

// A node with two cards, two profiles of a kind that has a default, a VLAN profile, a flow rule and a number.
class Terminals : public testing::Test {
 protected:
  Terminals() {
    node.authorise(1, *host::findCardType("adsl16"));
    node.authorise(12, *host::findCardType("pots32"));
    for (const char* line : {"flow rule 7 name video", "add adslLine profile gold id 5", "add adslLine profile gone",
                             "create vlan profile triple", "add pots telephone number 8100 type a",
                             "set voice port telephone number 4711 step 1 interface 12/1-2"})
      EXPECT_EQ(run(line), "") << line;
  }

  // Why a line failed.
  std::string run(std::string_view line) {
    std::string text;
    return commands.run(terminal, line, text).good() ? "" : text;
  }

  // What exists and may stand next.
  std::vector<std::string> existing(std::string_view line) {
    std::vector<std::string> words;
    std::istringstream rows(commands.suggest(terminal, line));
    for (std::string row; std::getline(rows, row);)
      if (!row.starts_with('<')) words.push_back(row.substr(0, row.find('\t')));
    return words;
  }

  node::Node node{MSAN_MODULE};
  msand::Startup startup{"none.cfg"};
  cards::DslCards dsl;
  msand::Operator commands{node, startup, dsl};
  msand::Terminal terminal;
};

TEST_F(Terminals, OfferWhatExists) {
  EXPECT_THAT(existing("attach adslLine profile name "), ElementsAre("defaultAdslPrf", "gone", "gold"));
  EXPECT_THAT(existing("attach adslLine profile id "), ElementsAre("0", "1", "5"));
  EXPECT_THAT(existing("show adslLine profile all "), IsEmpty());
  EXPECT_THAT(existing("attach alarm profile id "), ElementsAre("0"));
  EXPECT_THAT(existing("attach rate-limit profile name "), ElementsAre("PORTRATE.PRF"));
  EXPECT_THAT(existing("attach vlan profile "), ElementsAre("triple"));
  EXPECT_THAT(existing("add adslLine profile "), IsEmpty());
  EXPECT_THAT(existing("set dsp profile name p"), ElementsAre("p1", "p2", "p3", "p4", "p5", "p6", "p7", "p8", "p9"));
  EXPECT_THAT(existing("set voice port dsp profile id 1 call profile id "), ElementsAre("0"));
  EXPECT_THAT(existing("show cid mode interface "), IsEmpty());
  EXPECT_THAT(existing("show isolation interface 1,"), ElementsAre("1,1", "1,12"));
  EXPECT_THAT(existing("show service vlan interface "), ElementsAre("1/1-16", "12/1-32"));
  EXPECT_THAT(existing("show service vlan interface 12/1-8,3"),
              ElementsAre("12/1-8,3", "12/1-8,30", "12/1-8,31", "12/1-8,32"));
  EXPECT_THAT(existing("show onhook state slot "), ElementsAre("1", "12"));
  EXPECT_THAT(existing("show onhook state slot 1 port 1"), ElementsAre("1", "10", "11", "12", "13", "14", "15", "16"));
  EXPECT_THAT(existing("flow rule "), ElementsAre("7"));
  EXPECT_THAT(existing("add unicast tag cvlan tpid 33024 vid 1 cos 1 rule "), ElementsAre("null", "video"));
  EXPECT_THAT(existing("start call out simulation timeout 60 telephone number "), ElementsAre("8100", "4711", "4712"));
  EXPECT_THAT(existing("chassis slot 1 card eth"), ElementsAre("eth8", "eth16", "eth24"));
}

TEST_F(Terminals, FindCommands) {
  std::string text;
  EXPECT_TRUE(commands.run(terminal, "help MILLIAMP feed", text).good());
  EXPECT_THAT(text, MatchesRegex("  set pots port feed voltage .*\r\n"));
  EXPECT_EQ(std::ranges::count(text, '\n'), 1) << text;
  EXPECT_EQ(run("help milliamp vdsl"), "no command of this level, and no help text, has all of these words\r\n");
  EXPECT_THAT((commands.run(terminal, "help none CARD", text), text), HasSubstr("  chassis slot <1-20> card <type>"));
}

// A line that begins with a word of both the module and the platform.
TEST_F(Terminals, SayWhatWasExpected) {
  std::string text;
  const auto told = [&](std::string_view line) {
    const wire::Result result = commands.run(terminal, line, text);
    return std::to_string(result.at) + " " + result.expected;
  };
  EXPECT_EQ(told("chassis slot 30 up"), "13 <1-20>");
  EXPECT_THAT(told(" traze on"), StartsWith("1 trace, "));
  EXPECT_THAT(told("trac on"), StartsWith("0 trace, "));
  EXPECT_THAT(told("show runing"), StartsWith("5 running-config, "));
  EXPECT_THAT(told("show r"), Not(HasSubstr("the end of the line")));
}

TEST_F(Terminals, AskByName) {
  EXPECT_THAT(existing("get adslA"), ElementsAre("adslAttachment"));
  EXPECT_THAT(existing("get lineTes"), IsEmpty());  // it has no answer
  std::string text;
  EXPECT_TRUE(commands.run(terminal, "get CIDMODE --json", text).good());
  EXPECT_EQ(text, "{\r\n  \"CIDMode\": \"fsk\"\r\n}\r\n");
  EXPECT_EQ(run("get adslAttachment 1/2 9/9"), "refused: -3, the slot has no card (slot 9)\r\n");
  EXPECT_EQ(run("get cidMode CIDMode=x=y 1/1"), "1/1: the message has no list of ports\r\n");
}

TEST_F(Terminals, NameTheGetBehindACommand) {
  for (const messages::Message& message : messages::book().messages)
    for (const std::string& syntax : message.shows) {
      EXPECT_TRUE(message.find(messages::Road::getReply)) << message.name << " can't be asked for";
      const auto all = host::installedCommands();
      const auto command = std::ranges::find(all, syntax, &host::InstalledCommand::syntax);
      ASSERT_NE(command, all.end()) << message.name << ": no command \"" << syntax << "\"";
      EXPECT_THAT(command->help, MatchesRegex(".*[ (]" + message.name + "[,)].*"));
    }
  EXPECT_THAT(commands.suggest(terminal, "show rfc"), HasSubstr("DTMF relay (get rfc2833)\n"));
}

TEST_F(Terminals, HaveAHelpLineForEachParameter) {
  std::vector<std::string> syntaxes;
  for (const host::InstalledCommand& command : host::installedCommands()) syntaxes.push_back(command.syntax);
  constexpr const char* kTable = "platform/src/command_line_parameter_rows.cpp";
  for (const std::string& syntax : syntaxes)
    for (const host::ParameterHelp& one : host::parameterHelp(syntax))
      EXPECT_TRUE(one.known) << one.parameter << " of \"" << syntax << "\" has no help line: add one to " << kTable;
  for (const std::string& place : host::unusedParameterHelp(syntaxes))
    ADD_FAILURE() << place << " is in no syntax, or another line always goes ahead of it: " << kTable;
}

}  // namespace
