#include <thread>

#include "command_line_fixture.h"

namespace {

using Strings = std::vector<std::string>;

TEST_F(CommandLine, TakesKeywordsByTheirBeginningAndWithoutRegardToCase) {
  installAll(
      {{"mode", "set cid mode [fsk|dtmf]"}, {"show", "show cid mode"}, {"clear", "[distribute|erase] cid mode"}});
  EXPECT_EQ(run("set cid mode fsk"), "mode(fsk)");
  EXPECT_EQ(run("  SET\tCid  m F \r\n"), "mode(fsk)");
  EXPECT_EQ(run("e c m"), "clear(erase)");
  EXPECT_EQ(run("sh cid mode"), "show()");
  EXPECT_EQ(run("s cid mode"), "show()");
  EXPECT_EQ(run("s cid mode d"), "mode(dtmf)");
  EXPECT_EQ(run("set cid modes fsk"), "unknown");
  EXPECT_EQ(run("set cid mode pulse"), "unknown");
  EXPECT_EQ(run("set cid mode fsk now"), "unknown");
  EXPECT_EQ(run("set cid mode"), "incomplete");
  EXPECT_EQ(run("s"), "incomplete");
  EXPECT_EQ(run("show cid mode", DEBUG_NODE), "unknown");
}

TEST_F(CommandLine, PrefersWholeKeywordsToBeginnings) {
  installAll({{"ip", "show voice ip"},
              {"status", "show voice ip status"},
              {"switch", "show voice_self_switch"},
              {"ring", "set tone ring <t>"},
              {"back", "set tone ring-back <t>"},
              {"plain", "set mode [2833|2833redun|transparent]"},
              {"all", "showrun ngn"}});
  EXPECT_EQ(run("showr ngn"), "all()");
  EXPECT_EQ(run("show ngn"), "unknown");
  EXPECT_EQ(run("show voice"), "incomplete");
  EXPECT_EQ(run("show voice_"), "switch()");
  EXPECT_EQ(run("show voi ip"), "ip()");
  EXPECT_EQ(run("show voice ip s"), "status()");
  EXPECT_EQ(run("set tone ring 3"), "ring(3)");
  EXPECT_EQ(run("set tone rin 3"), "ambiguous");
  EXPECT_EQ(run("set tone ring- 3"), "back(3)");
  EXPECT_EQ(run("set mode 2833"), "plain(2833)");
  EXPECT_EQ(run("set mode 2833r"), "plain(2833redun)");
}

TEST_F(CommandLine, PrefersKeywordsToRangesAndRangesToParameters) {
  installAll({{"name", "set profile <id> name <name>"},
              {"port", "set profile <1-9> port <port>"},
              {"gain", "set profile [id|name] <which> gain <gain>"},
              {"any", "set profile <id> <word> <value>"}});
  EXPECT_EQ(run("set profile 3 name x"), "name(3,x)");
  EXPECT_EQ(run("set profile id name gain 3"), "gain(id,name,3)");
  EXPECT_EQ(run("set profile id name gain"), "name(id,gain)");
  EXPECT_EQ(run("set profile 3 port 4"), "port(3,4)");
  EXPECT_EQ(run("set profile 10 port 4"), "any(10,port,4)");
  EXPECT_EQ(run("set profile 10 na 4"), "name(10,4)");
}

TEST_F(CommandLine, PrefersCompleteMatchesToIncompleteOnes) {
  installAll({{"address", "set mgc primary <address> port <port> {secondary <address> port <port>}*1"},
              {"register", "set mgc [primary|secondary] [register|unregister]"},
              {"item", "[distribute|erase] pots number"},
              {"whole", "erase pots general"},
              {"slot", "distribute slot <slot> pots"}});
  EXPECT_EQ(run("set mgc primary register"), "register(primary,register)");
  EXPECT_EQ(run("set mgc primary register port 5"), "address(register,5)");
  EXPECT_EQ(run("set mgc primary ::1 port 5 s ::2 p 6"), "address(::1,5,::2,6)");
  EXPECT_EQ(run("set mgc primary 10.0.0.1"), "incomplete");
  EXPECT_EQ(run("erase pots number"), "item(erase)");
  EXPECT_EQ(run("erase pots general"), "whole()");
  EXPECT_EQ(run("erase slot 3 pots"), "unknown");
  EXPECT_EQ(run("dist slot 3 pots"), "slot(3)");
}

TEST_F(CommandLine, RefusesNumbersOutsideTheirRangeAndShortenedNumbers) {
  installAll({{"tone", "set tone [<7-32>|<880-1196>] value <value>"},
              {"interval", "set interval [10|20|12kc|12000]"},
              {"top", "set top <0-4294967295>"}});
  for (const char* value : {"7", "32", "880", "1196", "007"}) {
    EXPECT_EQ(run(std::string("set tone ") + value + " value -3.5"), std::string("tone(") + value + ",-3.5)");
  }
  for (const char* value : {"6", "33", "879", "1197", "-7", "+7", "7.0", "0x10", "\"\"", "18446744073709551623"}) {
    EXPECT_EQ(run(std::string("set tone ") + value + " value 1"), "unknown") << value;
  }
  EXPECT_EQ(run("set top 4294967295"), "top(4294967295)");
  EXPECT_EQ(run("set top 4294967296"), "unknown");
  EXPECT_EQ(run("set interval 1"), "unknown");
  EXPECT_EQ(run("set interval 120"), "unknown");
  EXPECT_EQ(run("set interval 12"), "interval(12kc)");
}

TEST_F(CommandLine, TakesOptionalGroupsInWrittenOrder) {
  installAll({{"md5", "set md5 [open|close] {mg id <id>}*1 {shared key <key>}*1 {prime <prime>}*1"},
              {"rfi", "set rfi {start <0-4095> end <0-4095>}*8 {start <0-4095> end <0-4095>}*8"},
              {"debug", "set debug [on|off] {[module|level] <input>}*3"},
              {"snr", "set snr {max <value>  min <value>}"},
              {"limit", "set limit {[number] [<limit>]}*1 interface <if> {pvc <pvc>}*1"},
              {"first", "{opt}*1 second third"},
              {"second", "first {second}*1 third"},
              {"best", "set best {<x>}*1 {word}*1 tail"}});
  EXPECT_EQ(run("set md5 open"), "md5(open)");
  EXPECT_EQ(run("set md5 open mg id 1 prime 7"), "md5(open,1,7)");
  EXPECT_EQ(run("set md5 open prime 7 mg id 1"), "unknown");
  EXPECT_EQ(run("set md5 open mg id 1 mg id 2"), "unknown");
  EXPECT_EQ(run("set md5 open mg id"), "incomplete");
  EXPECT_EQ(run("set md5 open mg id  shared key K"), "unknown");  // "shared" is the id
  EXPECT_EQ(run("set debug off level buf LEVEL x mod y"), "debug(off,level,buf,level,x,module,y)");
  EXPECT_EQ(run("set snr max 3 min 1"), "snr(3,1)");
  EXPECT_EQ(run("set snr max 3 min 1 max 3 min 1"), "unknown");
  EXPECT_EQ(run("set limit interface 1/1 pvc 3"), "limit(1/1,3)");
  EXPECT_EQ(run("set limit n 16 interface 1/1"), "limit(number,16,1/1)");
  EXPECT_EQ(run("second third") + run("opt second third"), "first()first()");
  EXPECT_EQ(run("first third") + run("first second third"), "second()second()");
  EXPECT_EQ(run("set best word tail"), "best()");
  EXPECT_EQ(run("set best word word tail"), "best(word)");

  std::string line = "set rfi";
  std::string arguments = "rfi(";
  for (int i = 0; i < 16; ++i) {
    line += " start 4095 end 0";
    arguments += i ? ",4095,0" : "4095,0";
  }
  EXPECT_EQ(run(line), arguments + ")");
  EXPECT_EQ(run(line + " start 1 end 2"), "unknown");
  EXPECT_EQ(run("set rfi"), "rfi()");
}

TEST_F(CommandLine, TakesAnyWordAsParameterAlsoInQuotes) {
  installAll({{"map", "set map <map> {rule [<name>|null]}*1"}});
  EXPECT_EQ(run("set map -35"), "map(-35)");
  EXPECT_EQ(run("set map \"[0-9] |x\""), "map([0-9] |x)");
  EXPECT_EQ(run("set map \"\""), "map()");
  EXPECT_EQ(run("set map \"a"), "map(\"a)");
  EXPECT_EQ(run("set map \"a\"b\" rule x"), "map(a\"b,x)");
  EXPECT_EQ(run("set map \"a\"b"), "map(\"a\"b)");
  EXPECT_EQ(run("set map \xc3\xa4\x01\x7f\xff"), "map(\xc3\xa4\x01\x7f\xff)");
  // A parameter beside the word: only the whole word is the word.
  EXPECT_EQ(run("set map m rule nul"), "map(m,nul)");
  EXPECT_EQ(run("set map m rule NULL"), "map(m,null)");
}

TEST_F(CommandLine, TellsAmbiguityOnlyWhereTheReadingsDiffer) {
  installAll({{"code", "set code [711u|711a|723]"},
              {"ans", "set fax {a1 <x>}*1 {a2 <x>}*1"},
              {"same", "set same {a <x>}*1 {a <x>}*1 {a <x>}*1"},
              {"two", "set two {one}*1 {[only|other]}*1 tail"},
              {"left", "show left"},
              {"list", "show list"}});
  EXPECT_EQ(run("set code 711"), "ambiguous");
  EXPECT_EQ(run("set code 711a"), "code(711a)");
  EXPECT_EQ(run("set fax a 3"), "ans(3)");  // the same argument either way
  EXPECT_EQ(run("set same a 1 a 2"), "same(1,2)");
  EXPECT_EQ(run("set two on tail"), "ambiguous");
  EXPECT_EQ(run("set two ot tail"), "two(other)");
  EXPECT_EQ(run("show l"), "ambiguous");
  EXPECT_EQ(run("show le"), "left()");
}

TEST_F(CommandLine, SurvivesHostileLines) {
  std::string groups = "set g";
  std::string words = "set g";
  for (int i = 0; i < 16; ++i) groups += " {<a>}*9";
  for (int i = 0; i < 80; ++i) words += " x";
  installAll({{"p", "set p <a>"}, {"t", "set t {<a> x <b>}*8 {<a> x <b>}*8"}, {"g", groups}});
  EXPECT_EQ(run("set p " + std::string(65530, 'a')), "p(" + std::string(65530, 'a') + ")");
  EXPECT_EQ(run("set p " + std::string(65531, 'a')), "unknown");
  EXPECT_EQ(run(std::string(70000, ' ')), "unknown");
  EXPECT_EQ(run(std::string_view("set p a\0b", 9)), "unknown");
  EXPECT_EQ(run("\""), "unknown");
  EXPECT_EQ(run("\"\" \"\" \"\""), "unknown");
  EXPECT_EQ(run("set \"\" a"), "unknown");
  std::string many = "set t";
  for (int i = 0; i < 20000; ++i) many += " x";
  EXPECT_EQ(run(many), "unknown");
  EXPECT_TRUE(suggest(many).empty());
  EXPECT_EQ(run(words).size(), 3U + 80 + 79);  // g(x,x,...): countless ways to take it, one meaning
  EXPECT_TRUE(suggest(std::string_view("\0", 1)).empty());
}

TEST_F(CommandLine, RefusesTextsThatAreNoSyntax) {
  for (const char* text :
       {"", "  ", "set [a", "set [a|]", "set []", "set a]", "set <a", "set <>", "set <a b>", "set {a", "set {}",
        "set {a {b}}", "set a}", "set {a}*0", "set {a}*", "set {a b}*600", "set <9-1>", "set <0-4294967296>", "a|b"}) {
    EXPECT_EQ(-1, install(CONFIG_NODE, text)) << text;
  }
  EXPECT_EQ(-1, install_element(CONFIG_NODE, nullptr));
  EXPECT_TRUE(host::installedCommands().empty());
}

TEST_F(CommandLine, RefusesASecondCommandForTheSameLines) {
  EXPECT_EQ(0, install(50, "show a <x> [b|c]", "first"));
  EXPECT_EQ(-1, install(50, "SHOW  a <y> [b|C] ", "second"));
  EXPECT_EQ(0, install(50, "show a <x> [c|d]"));
  EXPECT_EQ(0, install(10, "show a <x> [b|c]", "other node"));
  EXPECT_EQ(run("show a 1 b"), "first(1,b)");
  EXPECT_EQ(run("show a 1 b", 10), "other node(1,b)");
}

int runAnother(const CommandElement*, Vty* vty, int argc, char** argv) {
  const host::LineOutcome outcome = host::runLine(*vty, CONFIG_NODE, "inner 1 2 3");
  vty_out(vty, " %s %s %d", argv[0], argv[1], argv[argc] == nullptr);
  argv[0][0] = 'X';  // the texts are the handler's to change
  return outcome.returned;
}

TEST_F(CommandLine, LetsAHandlerRunALine) {
  install(CONFIG_NODE, "outer [one|two] <b>", "", runAnother);
  install(CONFIG_NODE, "inner <a> <b> <c>", "inner");
  for (int i = 0; i < 2; ++i) {
    Vty vty;
    EXPECT_EQ(3, host::runLine(vty, CONFIG_NODE, "outer one second").returned);
    EXPECT_EQ(vty.text, "inner(1,2,3) one second 1");
  }
}

TEST_F(CommandLine, RunsLinesOfTwoDoorsAtOnce) {
  installAll({{"a", "set a <x>"}, {"b", "set b <x>"}});
  const auto door = [](const std::string& letter) {
    for (int i = 0; i < 300; ++i) {
      const std::string value = std::to_string(i);
      ASSERT_EQ(run("set " + letter + " " + value), letter + "(" + value + ")");
      host::suggestions(CONFIG_NODE, "set ");
    }
  };
  std::thread first(door, "a");
  std::thread second(door, "b");
  for (int i = 0; i < 50; ++i) install(CONFIG_NODE, "c" + std::to_string(i));
  first.join();
  second.join();
}

TEST_F(CommandLine, SuggestsWhatMayStandNext) {
  installAll({{"fsk or dtmf", "set cid mode [fsk|dtmf]"},
              {"a tone", "set tone <7-32> {value <value>}*1"},
              {"the tone", "set TONE off"},
              {"show it", "show cid mode"},
              {"map rule", "set map rule [<name>|null]"},
              {"other", "set other <backCallTime_2>"}});
  EXPECT_EQ(suggest(""), (Strings{"set: cid, map, other, tone", "show: show it"}));
  EXPECT_EQ(suggest("s"), (Strings{"set: cid, map, other, tone", "show: show it"}));
  EXPECT_EQ(suggest("set "), (Strings{"cid: fsk or dtmf", "map: map rule", "other: other", "tone: <7-32>, off"}));
  EXPECT_EQ(suggest("SET C"), (Strings{"cid: fsk or dtmf"}));
  EXPECT_EQ(suggest("set c m "), (Strings{"dtmf: fsk or dtmf", "fsk: fsk or dtmf"}));
  EXPECT_EQ(suggest("set cid mode fsk "), (Strings{"<cr>: fsk or dtmf"}));
  EXPECT_EQ(suggest("set tone "), (Strings{"<7-32>: a number, 7 to 32", "off: the tone"}));
  EXPECT_EQ(suggest("set tone 8 "), (Strings{"value: a tone", "<cr>: a tone"}));
  EXPECT_EQ(suggest("set tone 8 v"), (Strings{"value: a tone"}));
  EXPECT_EQ(suggest("set tone 8"), (Strings{"<7-32>: a number, 7 to 32"}));
  EXPECT_EQ(suggest("set tone 99 "), Strings{});
  EXPECT_EQ(suggest("set map rule n"), (Strings{"<name>: a flow rule's name", "null: map rule"}));
  EXPECT_EQ(suggest("set other "), (Strings{"<backCallTime_2>: back call time 2"}));
  EXPECT_EQ(suggest("nothing "), Strings{});
}

// 100 things, ids from 1 on.
void offerMany(const void*, CommandOffers* to) {
  offer_to_cli(to, 0, "a\tb", 3);  // can't be typed
  for (i32 i = 1; i <= 100; ++i) offer_to_cli(to, i, i == 100 ? "o" : "one two", i == 100 ? 1 : i < 3 ? 7 : 3);
}

TEST_F(CommandLine, OffersSomeOfMany) {
  installAll(
      {{"attach", "attach much profile [id|name] <idOrName>"}, {"other", "attach other profile [id] <idOrName>"}});
  install_offers("MUCH", offerMany, nullptr);
  EXPECT_EQ(suggest("attach other profile id ").size(), 1U);
  const Strings ids = suggest("attach much profile id ");
  ASSERT_EQ(ids.size(), 66U);
  EXPECT_EQ(ids[1] + ids[2], "0: 1: one two");
  EXPECT_EQ(ids[65], "<...>: 37 more: type how they begin");
  EXPECT_EQ(suggest("attach much profile id 10")[2], "100: o");
  // All begin with an o; the one that has no more is shown, so that Tab adds no more.
  const Strings names = suggest("attach much profile name o");
  ASSERT_EQ(names.size(), 66U);
  EXPECT_EQ(names[1], "one: 3");
  EXPECT_EQ(names[64], "o: 100");
  EXPECT_EQ(suggest("attach much profile name \"o")[1], "\"one two\": 1");
}

TEST_F(CommandLine, TellsWhereALineIsNotUnderstood) {
  installAll({{"mode", "set cid mode [fsk|dtmf]"},
              {"tone", "set tone <7-32> {value <value>}*1"},
              {"two", "set line [none|fastOnly|FastOrInter] end"},
              {"show", "show cid mode"},
              {"list", "show list"},
              {"left", "show left"}});
  const auto told = [](std::string_view line) {
    const host::Misunderstanding why = host::misunderstanding(CONFIG_NODE, line);
    return std::to_string(why.at) + " " + host::wordsOf(why);
  };
  EXPECT_EQ(told("set cid mode xxx"), "13 fsk or dtmf");
  EXPECT_EQ(told("  set cid mode \"d m\" x"), "15 dtmf or fsk");
  EXPECT_EQ(told("set cid mode fsk now"), "17 the end of the line");
  EXPECT_EQ(told("set cid mode fsk x x x x x x x x"), "17 the end of the line");
  EXPECT_EQ(told("set cid"), "7 mode");
  EXPECT_EQ(told("set cid "), "8 mode");
  EXPECT_EQ(told("set tone 33"), "9 <7-32>");
  EXPECT_EQ(told("set tone 8 x"), "11 value or the end of the line");
  EXPECT_EQ(told("shaw cid"), "0 show or set");
  EXPECT_EQ(told("set line fast end"), "9 fastOnly or FastOrInter");
  EXPECT_EQ(told("show l"), "5 list or left");
  EXPECT_EQ(told(std::string_view("set \0", 5)), "4 ");
  EXPECT_EQ(told(std::string(70000, 'x')), "65536 ");
}

TEST_F(CommandLine, PrintsTextsOfAnyLength) {
  Vty vty;
  for (const std::size_t size : {0U, 510U, 511U, 512U, 513U, 70000U}) {
    vty.text = "|";
    vty_out(&vty, "%s%c", std::string(size, 'x').c_str(), '.');
    EXPECT_EQ(vty.text, "|" + std::string(size, 'x') + ".");
  }
}

}  // namespace
