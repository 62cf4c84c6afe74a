// The running configuration, executed again, gives itself and sends the cards the same, whatever the data ports of all
// types of cards have. Left out are slots with a profile of their own and policies of VDSL ports as a whole.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "scenario/modes.h"

namespace {

using Text = std::string;

void cli(Text& text, const std::string& line) { text += "cli " + line + "\n"; }

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
