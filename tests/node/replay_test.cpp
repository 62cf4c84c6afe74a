// The running configuration, executed again, gives itself and sends the cards the same: whatever profiles there are and
// wherever they are attached, and whatever the data ports of all types of cards have. Left out is what is known not to
// come back: ADSL margins that are not whole dB, the number and order of circuits, a circuit at 8/35 beside the first,
// hundredths that are cut when they are read, slots with a profile of their own, policies of VDSL ports as a whole.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "scenario/modes.h"

namespace {

class Dice {
 public:
  explicit Dice(u32 seed) : engine_(seed) {}
  u32 upTo(u32 most) { return static_cast<u32>(engine_() % (u64{most} + 1)); }
  u32 from(u32 least, u32 most) { return least + upTo(most - least); }
  bool coin() { return upTo(1) == 1; }
  std::string word(std::initializer_list<const char*> words) {
    return *(words.begin() + upTo(static_cast<u32>(words.size()) - 1));
  }

 private:
  std::mt19937 engine_;
};

using Text = std::string;

void cli(Text& text, const std::string& line) { text += "cli " + line + "\n"; }

void adslLine(Dice& dice, Text& text) {
  if (dice.coin()) cli(text, "set adsl transmode " + dice.word({"adpt", "gdmt", "adsl_2", "adsl2+", "t1413"}));
  if (dice.coin()) cli(text, "set adsl UpRateMode " + dice.word({"StartAdpt", "fixed", "RunAdpt"}));
  if (dice.coin()) cli(text, "set adsl DownRateMode " + dice.word({"StartAdpt", "fixed", "RunAdpt"}));
  if (dice.coin()) {
    cli(text, "set adsl LineType " + dice.word({"none", "fastOnly", "interleave", "FastOrInter", "FastAndInter"}));
  }
  for (const char* direction : {"down", "up"}) {
    cli(text, fmt::format("set adsl SnrmMargin {} {}", direction, dice.upTo(31)));
    cli(text, fmt::format("set adsl MaxInterLeaveDelay {} {}", direction, dice.upTo(63)));
    cli(text, fmt::format("set adsl MinInp {} {}", direction, dice.from(1, 18)));
    cli(text, fmt::format("set adsl BitSwap {} {}", direction, dice.word({"enable", "disable"})));
    const u32 most = dice.upTo(31);
    cli(text, fmt::format("set adsl Snrm {} MaxSnrm {} MinSnrm {}", direction, most, dice.upTo(most)));
    cli(text, fmt::format("set adsl MinRate {} {}", direction, dice.upTo(100000)));
  }
  cli(text, "set adsl PowerMode " + dice.word({"L0Mode", "L3Mode", "L2Mode", "L2AndL3"}));
  cli(text, fmt::format("set adsl PmL0Time {}", dice.upTo(65534)));
  cli(text, fmt::format("set adsl PmL2Time {}", dice.upTo(65534)));
  cli(text, fmt::format("set adsl PmL2Atprt {}", dice.upTo(15)));
  cli(text, fmt::format("set adsl PmL2Rate {}", dice.upTo(1024)));
  const u32 tones = dice.upTo(16);
  std::string line = fmt::format("set adsl toneblackout number {}", tones);
  for (u32 i = 0; i < tones; ++i) line += fmt::format(" {} start {} end {}", i, dice.upTo(511), dice.upTo(511));
  cli(text, line);
}

void pvcs(Dice& dice, Text& text) {
  // All VCIs differ, and none is the first circuit's 35.
  for (u32 i = 0; i < 8; ++i) {
    if (dice.coin())
      cli(text, fmt::format("set adsl pvcNo {} vpi {} vci {}", i, dice.upTo(255), 40 + i * 20 + dice.upTo(19)));
  }
}

void vdslLine(Dice& dice, Text& text) {
  cli(text, "set vdslline para portmode " + dice.word({"atm", "ptm", "self-adaption"}));
  cli(text, "set vdslline para stdPrf " + dice.word({"8a", "8b", "8c", "8d", "12a", "12b", "17a", "30a", "all"}));
  cli(text, fmt::format("set vdslline para psd {}", dice.upTo(42)));
  cli(text, fmt::format("set vdslline para maxTxPowerDn {:.1f}", dice.upTo(255) / 10.0));
  cli(text, fmt::format("set vdslline para maxTxPowerUp {:.1f}", dice.upTo(202) / 10.0));
  const auto ranges = [&](const char* word, u32 count) {
    std::string line = fmt::format("set vdslline para {}", word);
    for (u32 i = 0; i < count; ++i) {
      const u32 end = dice.upTo(4095);
      line += fmt::format(" start {} end {}", dice.upTo(end), end);
    }
    cli(text, line);
  };
  ranges("rfi", dice.upTo(16));
  ranges("tone", dice.upTo(8));
}

void vdslService(Dice& dice, Text& text) {
  const std::string mode = dice.word({"fixed", "adaptatstart", "adaptatruntime"});
  cli(text, fmt::format("set vdslser para rateMode up {} dn {}", mode, mode));
  for (const char* direction : {"dn", "up"}) {
    const u32 most = dice.upTo(310);
    const std::string limits = fmt::format("userdefine max {:.1f} min {:.1f}", most / 10.0, dice.upTo(most) / 10.0);
    cli(text, fmt::format("set vdslser para tsnrm {} {:.1f} mode {}", direction, dice.upTo(310) / 10.0,
                          dice.coin() ? limits : "infinity"));
  }
  cli(text, fmt::format("set vdslser para rate upMin {} dnMin {}", dice.upTo(200000), dice.upTo(200000)));
  cli(text, fmt::format("set vdslser para delay up {} dn {}", dice.upTo(63), dice.upTo(63)));
  cli(text, fmt::format("set vdslser para min inp up {} dn {}", dice.upTo(18), dice.upTo(18)));
}

// A number that is read as what it is printed of.
std::string decimals(Dice& dice, int least, int most, int digits) {
  const double scale = std::pow(10, digits);
  for (;;) {
    const int value = least + static_cast<int>(dice.upTo(static_cast<u32>(most - least)));
    const std::string text = fmt::format("{:.{}f}", value / scale, digits);
    const volatile double again = std::stod(text) * scale;  // rounded, as the module has it
    if (static_cast<int>(again) == value) return text;
  }
}

void vdslPbo(Dice& dice, Text& text) {
  std::string bands;
  for (const char* band : {"us0", "us1", "us2", "us3"}) {
    bands += fmt::format(" {}a {} {}b {}", band, decimals(dice, 4000, 8095, 2), band, decimals(dice, 0, 4095, 2));
  }
  if (dice.coin()) {
    cli(text, "set vdslpbo para pboModeup auto" + bands);
  } else if (dice.coin()) {
    cli(text, "set vdslpbo para pboModeup manual" + bands + " elec-len " + decimals(dice, 0, 2555, 1));
  }
  const auto scalar = [&] { return decimals(dice, -100000000, 150000000, 8); };
  cli(text, fmt::format("set vdslpbo para elec-len {} scalara {} scalarb {} scalarc {} mus {} minfreq {} maxfreq {}",
                        decimals(dice, 0, 2555, 1), scalar(), scalar(), scalar(), decimals(dice, -1275, 0, 1),
                        dice.upTo(2048), dice.from(2048, 6956)));
}

void vdslCpsd(Dice& dice, Text& text) {
  for (u32 i = 1, most = dice.upTo(16); i <= most; ++i)
    cli(text, fmt::format("set vdslcpsd para up index {} tone {} value {}", i, dice.from(880, 1196),
                          decimals(dice, -1200, 0, 1)));
  for (u32 i = 1, most = dice.upTo(40); i <= most; ++i)
    cli(text, fmt::format("set vdslcpsd para dn index {} tone {} value {}", i, dice.from(2793, 4081),
                          decimals(dice, -1200, 0, 1)));
}

void vdslVn(Dice& dice, Text& text) {
  for (u32 i = 1, most = dice.upTo(16); i <= most; ++i)
    cli(text, fmt::format("set vdslvn para up index {} tone {} level -{}", i, dice.from(7, 32), dice.from(40, 140)));
  for (u32 i = 1, most = dice.upTo(32); i <= most; ++i)
    cli(text, fmt::format("set vdslvn para dn index {} tone {} level -{}", i, dice.from(33, 859), dice.from(40, 140)));
}

void vdslExtra(Dice& dice, Text& text) {
  std::string line =
      fmt::format("set vdslextra para vectEnable {} annexUs0 {} pmsf {}", dice.word({"enable", "disable"}),
                  dice.word({"annexa", "annexb", "annexc"}), dice.word({"enable", "disable"}));
  for (const char* direction : {"dn", "up"}) {
    const u32 margin = dice.upTo(310), time = dice.upTo(16383);
    line +=
        fmt::format(" {}NMFlr {:.1f} {}NMTop {:.1f} {}AdaTimeFlr {} {}AdaTimeTop {}", direction,
                    dice.upTo(margin) / 10.0, direction, margin / 10.0, direction, dice.upTo(time), direction, time);
  }
  cli(text, line);
}

void vdslGinp(Dice& dice, Text& text) {
  const auto mode = [&] { return dice.word({"forbid", "first", "force", "test"}); };
  cli(text, fmt::format("set vdslginp para dnReMode {} upReMode {} dnMaxDelay {} upMaxDelay {} dnMinInp {} upMinInp {}",
                        mode(), mode(), dice.upTo(63), dice.upTo(63), decimals(dice, 0, 1270, 1),
                        decimals(dice, 0, 1270, 1)));
  if (dice.coin()) {
    cli(text, fmt::format("set vdslginp para rein enable dnREINFreq {} dnREININPmin {} upREINFreq {} upREININPmin {}",
                          dice.upTo(1), decimals(dice, 0, 70, 1), dice.upTo(1), decimals(dice, 0, 70, 1)));
  }
  std::string line = "set vdslginp para";
  for (const char* direction : {"dn", "up"}) {
    const u32 most = dice.from(64, 512000);
    line += fmt::format(" {}ETRmin {} {}ETRmax {} {}NDRmax {}", direction, dice.from(64, most), direction, most,
                        direction, dice.from(64, 512000));
  }
  cli(text, line + fmt::format(" dnROC {} upROC {} dnROCInpMin {} upROCInpMin {} dnMsgMin {} upMsgMin {}",
                               dice.upTo(31), dice.upTo(31), decimals(dice, 0, 160, 1), decimals(dice, 0, 160, 1),
                               dice.from(4, 236), dice.from(4, 236)));
}

struct Kind {
  const char* word;
  u32 mostId;
  std::initializer_list<const char*> slots;
  void (*edit)(Dice&, Text&);
};
const Kind kinds[] = {
    {"adslLine", 1023, {"3", "4"}, adslLine}, {"pvc", 128, {"3", "4", "5"}, pvcs}, {"vdslLine", 1023, {"5"}, vdslLine},
    {"vdslser", 32, {"5"}, vdslService},      {"vdslpbo", 32, {"5"}, vdslPbo},     {"vdslcpsd", 32, {"5"}, vdslCpsd},
    {"vdslextra", 32, {"5"}, vdslExtra},      {"vdslginp", 32, {"5"}, vdslGinp},   {"vdslvn", 32, {"5"}, vdslVn}};

// Some profiles of each kind, and some ports of its cards that use them.
Text randomConfiguration(Dice& dice) {
  Text text = "card 3 auth adsl16\ncard 4 auth adsl32-pots\ncard 5 auth vdsl16\n";
  for (const Kind& kind : kinds) {
    const u32 first = dice.from(1, kind.mostId - 5);
    for (u32 id = first; id < first + 5; ++id) {
      cli(text, fmt::format("add {} profile {}-{} id {}", kind.word, kind.word, id, id));
      cli(text, fmt::format("set {} profile id {}", kind.word, id));
      kind.edit(dice, text);
    }
    for (u32 i = 0; i < 8; ++i) {
      cli(text, fmt::format("attach {} profile id {} interface {}/{}", kind.word, dice.from(first, first + 4),
                            dice.word(kind.slots), dice.from(1, 16)));
    }
  }
  return text;
}

// The messages of the DSL area among the records of a card that came up.
std::vector<std::string> sent(const scenario::Played& played) {
  std::vector<std::string> lines;
  for (const std::string& line : played.record) {
    if (line.starts_with("gpon")) lines.push_back(line);
  }
  return lines;
}

// The first line that differs, and what stands in its place; nothing if they are equal.
std::string difference(const std::vector<std::string>& before, const std::vector<std::string>& after) {
  const auto [was, is] = std::ranges::mismatch(before, after);
  if (was == before.end() && is == after.end()) return "";
  return fmt::format("{}\n{}", was == before.end() ? "end" : *was, is == after.end() ? "end" : *is);
}

std::vector<scenario::Played> play(const std::string& text) {
  std::vector<scenario::Problem> problems;
  const auto read = scenario::readScenario("replay", text, problems);
  EXPECT_TRUE(problems.empty());
  return scenario::playAll(MSAN_MODULE, read);
}

TEST(ProfileReplay, GivesTheSameTextAndTheSameBytes) {
  constexpr std::string_view look = "card 3 up\ncard 4 up\ncard 5 up\nrunning-config\n";
  constexpr std::size_t kLooks = 4;
  for (u32 seed = 1; seed <= 12; ++seed) {
    SCOPED_TRACE(seed);
    Dice dice(seed);
    const std::string text = randomConfiguration(dice) + std::string(look) + "save\nrestart\n" + std::string(look);
    const auto played = play(text);
    const std::size_t after = played.size() - kLooks;
    const std::size_t before = after - 2 - kLooks;
    for (std::size_t i = 0; i < before; ++i) ASSERT_EQ(played[i].record.back(), "= 0") << i;
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_GE(sent(played[before + i]).size(), 2u);
      EXPECT_EQ(difference(sent(played[before + i]), sent(played[after + i])), "");
    }
    EXPECT_EQ(difference(played[before + 3].record, played[after + 3].record), "");
    EXPECT_THAT(played[after + 3].record, testing::Contains(testing::HasSubstr("attach vdslline profile")));
    EXPECT_THAT(played[after + 3].record, testing::Contains(testing::HasSubstr("attach vdslvn profile")));
    // No line of the startup configuration was refused, but for those of the voice side that never are taken.
    const auto voice = testing::AnyOf(testing::HasSubstr("configurable"), testing::HasSubstr("incomplete"),
                                      testing::HasSubstr("set voice"), testing::MatchesRegex("\\| [0-9]+:"));
    for (const std::string& line : played[after - 1].record)
      EXPECT_THAT(line, testing::AnyOf(testing::Not(testing::StartsWith("|")), voice));
  }
}

struct Card {
  u32 slot;
  const char* type;
  u32 ports;
  const char* pvc;  // words of a row that its ports have: of a PVC, or of the one; null without rows
};
const Card cards[] = {{1, "adsl16", 16, " pvc 3"},
                      {2, "adsl32", 32, " pvc 3"},
                      {3, "adsl64", 64, " pvc 3"},
                      {4, "vdsl16", 16, ""},
                      {5, "vdsl32", 32, ""},
                      {6, "vdsl64", 64, ""},
                      {7, "dsl16", 16, nullptr},
                      {8, "eth8", 8, nullptr},
                      {11, "eth16", 16, nullptr},
                      {12, "eth24", 24, nullptr},
                      {13, "adsl32-pots", 32, " pvc 3"},
                      {14, "vdsl32-pots", 32, ""},
                      {15, "pots32", 0, nullptr},
                      {16, "pots64", 0, nullptr},
                      {17, "pots32-data", 32, nullptr},
                      {18, "ces32", 32, nullptr}};

std::string chassis(const char* what) {
  Text text;
  for (const Card& card : cards)
    text += fmt::format("card {} {}{}\n", card.slot, what, std::string_view(what) == "auth " ? card.type : "");
  return text;
}

// What there is to be set on the data ports of a card.
void configure(const Card& card, Text& text) {
  const std::string all = fmt::format("{}/1-{}", card.slot, card.ports);
  cli(text, fmt::format("attach rate-limit profile id 3 interface {}", all));
  cli(text, fmt::format("set queue schedule interface {} mode wrr 1 2 3 4 5 6 7 8", all));
  cli(text, fmt::format("set loop detect enable auto-recovery disable interface {}", all));
  cli(text, fmt::format("set storm-suppression broadcast enable rate 7 multicast enable rate 9 unknown disable rate 11 "
                        "interface {}",
                        card.slot));
  cli(text, fmt::format("set isolation disable interface {}", card.slot));
  if (card.pvc != nullptr) {
    cli(text, fmt::format("attach vlan profile triple interface {}{}", all, card.pvc));
    cli(text, fmt::format("set mac limit enable number 5 interface {}{}", all, card.pvc));
    for (const u32 pvc : {0, 7}) {
      cli(text, fmt::format("attach policy interface {} pvc {} up 1 5 down 1 0 up 1 0 down 0 0", all, pvc));
    }
  }
  if (card.pvc != nullptr && *card.pvc != '\0')
    cli(text, fmt::format("attach policy interface {} up 1 5 down 1 0", all));
}

Text dataPorts() {
  Text text =
      "flow-rule 5 video \"video\":22 0100 0100020003000400 aa*16 bb*16 00*280\n"
      "flow-policy 1 gold \"gold\":24 cc*73\n";
  cli(text, "set rate-limit id 3 name gold us-status enable us-cir 1000 ds-status enable ds-cir 2000");
  cli(text, "create vlan profile triple");
  cli(text, "enter vlan profile triple");
  cli(text, "set tls enable tpid 34984 vid 7 cos 1 copy-inner-cos enable");
  cli(text, "add unicast tag cvlan tpid 33024 vid 100 cos 3 rule video");
  cli(text, "add multicast tag cvlan tpid 33024 vid 200 cos 4 rule null");
  for (const Card& card : cards) {
    if (card.ports != 0) configure(card, text);
  }
  cli(text, "set dsl mpair id 9 slot 4 mport 3 sport 4");
  cli(text, "set card work_mode slot 18 mode remote");
  cli(text, "set ces service slot 18 port 32 dstmac aabbcc001122 dstport 7 jitterbuf 64");
  return text;
}

std::string rowsOfAllTables() {
  Text text;
  for (const char* table : {"PortService", "ServiceCfg", "PortRateBind", "Maclimit", "QueueSchedule",
                            "M_QOS_PRF_ATT_RELATION", "M_PORT_QOS_PRF_ATT_RELATION", "LOOP_DETECT_ENTRY_CFG",
                            "StormSupp", "PortISolation", "DSLmPair", "CardWorkMode", "CESSerCfg"}) {
    text += fmt::format("rows {}\n", table);
  }
  return text;
}

std::vector<std::vector<std::string>> lastRecords(const std::vector<scenario::Played>& played, std::size_t count,
                                                  std::size_t behind = 0) {
  std::vector<std::vector<std::string>> records;
  for (std::size_t i = played.size() - behind - count; i < played.size() - behind; ++i) {
    records.push_back(played[i].record);
  }
  return records;
}

// Rows of policies of a port as a whole stay, without bindings.
bool isEmptyPolicy(const std::string& row) { return row.ends_with(" atInfo=00*66"); }

TEST(DataReplay, EverythingOnAFullChassisComesBackAndGoesWithItsCard) {
  const std::string up = chassis("up");
  const std::string tables = rowsOfAllTables();
  const std::size_t count = std::size(cards);
  const auto fresh = play(chassis("auth ") + up + tables);
  const auto set = play(chassis("auth ") + dataPorts() + up + "running-config\nsave\nrestart\n" + up +
                        "running-config\n" + tables + chassis("unauth") + chassis("auth ") + up + tables);
  const std::size_t rows = 13;
  const std::size_t again = rows + 3 * count;  // what is behind the second running configuration
  for (std::size_t i = 0; i < set.size() - 2 * again - 3; ++i) {
    const auto& record = set[i].record;
    EXPECT_TRUE(record.empty() || record.back() == "= 0") << i;
  }
  const auto before = lastRecords(set, count + 1, again + rows + count + 1 + 2);
  const auto after = lastRecords(set, count + 1, again + rows);
  for (std::size_t i = 0; i <= count; ++i) EXPECT_EQ(difference(before[i], after[i]), "") << i;
  const auto printed = [&](const char* words) {
    return std::ranges::count_if(before[count], [&](const auto& line) { return line.find(words) != line.npos; });
  };
  EXPECT_EQ(printed("attach rate-limit profile id 3"), 416);
  EXPECT_EQ(printed("attach policy interface"), 2 * 288 + 144);
  for (const auto& table : lastRecords(set, rows, again)) EXPECT_FALSE(table.empty());

  const auto bare = lastRecords(fresh, count + rows);
  auto left = lastRecords(set, count + rows);
  for (auto& record : left) std::erase_if(record, isEmptyPolicy);
  for (std::size_t i = 0; i < count + rows; ++i) EXPECT_EQ(difference(bare[i], left[i]), "") << i;
}

}  // namespace
