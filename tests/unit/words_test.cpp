// Each word that an operator types for a value, and the word that stands for the value where it is shown.

#include <algorithm>
#include <sstream>

#include "host/chassis.h"
#include "module_fixture.h"
#include "voice/service/ngndb.h"

namespace {

std::vector<std::string> split(const std::string& text, char by) {
  std::vector<std::string> parts;
  std::istringstream from(text);
  for (std::string part; std::getline(from, part, by);) parts.push_back(part);
  return parts;
}

// A command with % for the word, and how a line of what is shown ends, with % for what stands for it; blanks do not
// count. Where nothing is said, the same words are shown.
struct Words {
  const char* command;
  const char* typed;
  const char* show;
  const char* line;
  const char* shown = nullptr;
};
// clang-format off
constexpr Words words[] = {
    {"set cid mode %", "fsk|dtmf", "show cid mode", "CID Mode: %", "FSK|DTMF"},
    {"set dsp profile id 1 default code % mute enable echo cancel enable", "711u|711a|723|729", "show dsp profile id 1", "Default Coder: %", "G.711u|G.711A|G.723|G.729"},
    {"set dsp profile id 1 default code 711u mute % echo cancel enable", "enable|disable", "show dsp profile id 1", "Mute: %", "Enable|Disable"},
    {"set dsp profile id 1 default code 711u mute enable echo cancel %", "enable|disable", "show dsp profile id 1", "Echo Cancel: %", "Enable|Disable"},
    {"set dsp profile id 1 dtmf mode %", "transparent|2833|2833redun|outband", "show dsp profile id 1", "DTMF Mode: %", "Transparent|RFC2833|RFC2833 Redundance|Outband"},
    {"set dsp profile id 1 jitter buffer 1 fax jitter buffer 1 packet interval %", "10|20|30|40|50|60", "show dsp profile id 1", "Packet Interval(ms): %"},
    {"set dsp profile id 1 fax rate %", "2400|4800|7200|9600|12000|14400", "show dsp profile id 1", "Fax Rate(bps): %"},
    {"set sip user call profile id 1 call-id type %", "disable|sdmf|mdmf|dtmf", "show sip user call profile id 1", "Call ID Type: %", "Disable|FSK-SDMF|FSK-MDMF|DTMF"},
    {"set fax mode %", "t38|t30", "show fax parameter", "Fax Mode: %", "T.38|T.30 Transparent"},
    {"set fax event notify enable type %", "normal|only_v21|all_v21", "show fax parameter", "Fax Event Notify Type: %", "Normal|Only V21|All V21"},
    {"set fax encode mode %", "default|711u|711a", "show fax parameter", "Encode Mode: %", "Default|G.711U|G.711A"},
    {"set fax packet interval tx % rx 20", "10|20|30|40|50|60", "show fax parameter", "Tx Packet Interval(ms): %"},
    {"set fax packet interval tx 20 rx %", "10|20|30|40|50|60", "show fax parameter", "Rx Packet Interval(ms): %"},
    {"set fax sdp media type % control mode ss", "single|multiple", "show fax parameter", "SDP Media Type: %", "Single Media|Multiple Media"},
    {"set fax sdp media type single control mode %", "passthrough|ss|auto", "show fax parameter", "Control Mode: %", "Passthrough|SS|Auto VBD"},
    {"set voice transport protocol % local port 5 encode compact", "udp|tcp", "show voice basic configuration", "Transport Protocol Type: %", "UDP|TCP"},
    {"set voice transport protocol tcp local port 5 encode %", "compact|uncompacted", "show voice basic configuration", "Protocol Encode Type: %", "Compact|Uncompacted"},
    {"set voice ip configuration mode %", "static|dhcp|dhcp_v6|pppoe_v6|pppoe", "show voice ip", "IP Configuration Mode: %", "Static|DHCP|DHCP V6|PPPoE V6|PPPoE"},
    {"set voice pppoe operation %", "disconnect", "show voice ip", "PPPoE Operation: %", "Disconnect"},
    {"set voice ip configuration mode %", "dhcp", "show voice ip", "IP Configuration Mode: %", "DHCP"},
    {"set voice dhcp operation %", "disable|enable", "show voice ip", "DHCP Operation: %", "Disable|Enable"},
    {"set voice dhcp operation enable option60 %", "disable", "show voice ip", "DHCP Option60: %", "Disable"},
    {"set sip call-waiting-conference mode % sharp escape enable caller-id head from", "normal|info1|info2|other", "show sip advanced configuration", "CW/CONF Mode: %", "Common|Info 1|Info 2|Other"},
    {"set sip server heartbeat % interval 5 timeouts 6 mode bydevice", "initiative|passive", "show sip server", "Heartbeat: %", "Initiative|Passive"},
    {"set sip server heartbeat passive interval 5 timeouts 6 mode %", "bydevice|byport", "show sip server", "Heartbeat Mode: %", "By Device|By Port"},
    {"set mgc heartbeat % interval 5 timeouts 6 format notify", "initiative|passive", "show mgc configuration", "Heartbeat: %", "Initiative|Passive"},
    {"set mgc heartbeat passive interval 5 timeouts 6 format %", "notify|servicechange", "show mgc configuration", "Heartbeat Format: %", "Notify|ServiceChange"},
    {"set roh timeout procession % terminal service status keep", "not_unregister|unregister", "show roh timeout procession", "ROH Timeout Operation: %", "Not Unregister|Unregister"},
    {"set roh timeout procession unregister terminal service status %", "keep|over", "show roh timeout procession", "Terminal Service Status: %", "Keep Service|Service Over"},
    {"set pots general para bill type % pulse voltage 20", "12kc|16kc", "show pots general para configuration", "Bill Type: %", "12KC|16KC"},
    {"set pots general para impedance mode %", "560|600|680", "show pots general para configuration", "POTS Impedance Mode(Ohm): %"},
    {"add pots telephone number %", "1 type a|2 type b|3 type c|4 type d|5 type e|6 type f|7 type g|8 type h", "show pots telephone number", "%", "A|B|C|D|E|F|G|H"},
    {"set card work_mode slot 5 mode %", "local|remote|ces", "show card work_mode slot 5", "mode: %.", "local|remote|CES"},
    {"set adsl transmode %", "adpt|gdmt|adsl_2|adsl2+|t1413", "show adslLine profile id 7", "transmode %", "0|1|2|3|4"},
    {"set adsl UpRateMode %", "StartAdpt|fixed|RunAdpt", "show adslLine profile id 7", "UpRateMode %", "2|1|3"},
    {"set adsl DownRateMode %", "StartAdpt|fixed|RunAdpt", "show adslLine profile id 7", "DownRateMode %", "2|1|3"},
    {"set adsl LineType %", "none|fastOnly|interleave|FastOrInter|FastAndInter", "show adslLine profile id 7", "LineType %", "1|2|3|4|5"},
    {"set adsl PowerMode %", "L0Mode|L3Mode|L2Mode|L2AndL3", "show adslLine profile id 7", "PowerMode %", "0|1|2|3"},
    {"set vdslline para portmode %", "atm|ptm|self-adaption", "show vdslLine profile id 7", "portmode %"},
    {"set vdslline para stdPrf %", "8a|8b|8c|8d|12a|12b|17a|30a|all", "show vdslLine profile id 7", "Standard Profile %", "1|2|4|8|16|32|64|128|255"},
    {"set vdslser para rateMode up % dn %", "adaptatstart|adaptatruntime|fixed", "show vdslser profile id 7", "upRateMode %"},
    {"set vdslginp para dnReMode % upReMode test dnMaxDelay 1 upMaxDelay 1 dnMinInp 1 upMinInp 1", "forbid|first|force|test", "show vdslginp profile id 7", "dn Retran Mode %"},
};
// clang-format on

std::string replaced(std::string text, const std::string& by) {
  for (std::size_t at; (at = text.find('%')) != text.npos;) text.replace(at, 1, by);
  return text;
}
std::string withoutBlanks(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == '\r'; });
  return text;
}

class WordsTest : public ModuleTest {
 protected:
  WordsTest() {
    host::authorise(5, *host::findCardType("ces32"));
    db_set_ngn_protocol_type(kSip);
    typed(CONFIG_NODE, "set dsp profile 1 name a");
    typed(CONFIG_NODE, "set sip user call profile 1 name a");
    for (const std::string kind : {"adslLine", "vdslLine", "vdslser", "vdslginp"}) {
      typed(CONFIG_NODE, "add " + kind + " profile a id 7");
      typed(CONFIG_NODE, "set " + kind + " profile id 7");
    }
  }
  ~WordsTest() override { host::clearChassis(); }
};

TEST_F(WordsTest, AreShownAsTheyWereTyped) {
  for (const Words& one : words) {
    const auto typedWords = split(one.typed, '|'), shown = split(one.shown != nullptr ? one.shown : one.typed, '|');
    ASSERT_EQ(typedWords.size(), shown.size()) << one.command;
    for (std::size_t i = 0; i < shown.size(); ++i) {
      const std::string told = typed(CONFIG_NODE, replaced(one.command, typedWords[i]));
      const std::string seen = typed(CONFIG_NODE, one.show);
      const auto lines = split(withoutBlanks(seen), '\n');
      const std::string end = withoutBlanks(replaced(one.line, shown[i]));
      EXPECT_TRUE(std::ranges::any_of(lines, [&](const std::string& line) { return line.ends_with(end); }))
          << one.command << ": " << told << seen;
    }
  }
}

// Names and numbers that an operator may mean are offered, behind what is to be typed.
TEST_F(WordsTest, AreOfferedForWhatThereIs) {
  typed(CONFIG_NODE, "add pots telephone number 12 type a");
  typed(CONFIG_NODE, "add ipt telephone number 34 type a");
  const auto offered = [](const char* line) {
    std::string all;
    for (const host::Suggestion& one : host::suggestions(CONFIG_NODE, line))
      if (one.word.front() != '<') all += one.word + " " + one.help + "|";
    return all;
  };
  EXPECT_EQ(offered("delete dsp profile id "), "0 Default|1 a|2 p2|3 p3|4 p4|5 p5|6 p6|7 p7|8 p8|9 p9|");
  EXPECT_EQ(offered("delete sip user call profile name "), "Default 0|a 1|");
  EXPECT_EQ(offered("set voice port telephone number "), "12 |34 |");
}

}  // namespace
