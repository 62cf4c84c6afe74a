// What all handlers hold: those of messages, which give what shows in the gateway's trace alone, and those of commands.

#include <regex>

#include "common/debug_control.h"
#include "common/msan_snmp.h"
#include "common/wire.h"
#include "host/agent.h"
#include "host/chassis.h"
#include "module_fixture.h"
#include "msan/entries.h"

namespace {

// The messages that were handled, as the gateway traces it.
class Handled : public host::Observer {
 public:
  Handled() { host::observe(this); }
  ~Handled() override { host::observe(nullptr); }
  void log(i32, std::string_view text) override { failed = failed || text.find("process failed!") != text.npos; }
  bool failed = false;
};

class Handlers : public ModuleTest {
 protected:
  // The messages of which a request of so many equal bytes is answered with an error by a handler that gives success,
  // or the other way round. Its N-th block of memory may fail; the first may be the
  // gateway's. Profiles of none are an empty reply.
  static std::string differing(u32 bytes, u8 byte, u32 failing = 0) {
    Handled handled;
    std::string ids;
    for (const host::Announced& message : host::announcedMessages()) {
      SnmpMsgEntry row;
      EXPECT_EQ(getSnmpMsgInfo(message.id, &row), 0);
      for (const bool asks : {false, true}) {
        if (asks ? row.msgGetMethod == nullptr : row.msgSetMethod == nullptr) continue;
        std::vector<u8> frame(bytes, byte);
        handled.failed = false;
        if (failing != 0) host::failNth(host::Fault::alloc, failing);
        const auto answer = asks ? host::agentGet(message.id, &frame) : host::agentSet(message.id, true, &frame);
        host::clearFaults();
        const bool told = answer.reply && answer.reply->size() >= 4;
        const u32 head = told ? getNumber(answer.reply->data(), 4) : 0;
        const bool refused = !answer.reply || (asks ? head == 0x41 || (!told && message.id > 2840) : head != 1);
        if (refused != handled.failed) ids += std::to_string(message.id) + (asks ? "? " : " ");
      }
    }
    return ids;
  }
};

TEST_F(Handlers, FailWithWhatTheyRefuse) {
  for (const auto& [slot, type] : {std::pair<u16, const char*>{1, "adsl16"}, {2, "vdsl16"}, {3, "pots32"}}) {
    host::authorise(slot, *host::findCardType(type));
    msan_card_auth_init_db(slot);
  }
  msanSetDebugControl(0, 0, 65535);
  for (const u32 bytes : {3, 33, 36, 57, 100, 3000})
    for (const int byte : {0, 1, 255})
      EXPECT_EQ(differing(bytes, static_cast<u8>(byte)), "") << bytes << " of " << byte;
  for (const u32 failing : {2, 3, 4}) EXPECT_EQ(differing(36, 0, failing), "") << failing;
  msanSetDebugControl(0, 0, 0);
  host::clearChassis();
}

// Of the voice side, which can be called without the gateway: a request, a reply or its length that is not there.
TEST_F(Handlers, OfMessagesRefuseWhatIsNotThere) {
  std::vector<u8> reply(400000);
  for (const host::Announced& message : host::announcedMessages()) {
    if (message.id < 3073 || message.id > 3110) continue;
    SnmpMsgEntry row;
    EXPECT_EQ(getSnmpMsgInfo(message.id, &row), 0);
    for (const int missing : {0, 1, 2}) {
      u8 frame[400] = {}, last = 1;
      u32 bytes = 0;
      u8* const data = missing == 0 ? nullptr : frame;
      u8* const to = missing == 1 ? nullptr : reply.data();
      u32* const length = missing == 2 ? nullptr : &bytes;
      const int set = row.msgSetMethod == nullptr
                          ? -1
                          : row.msgSetMethod(message.id, 1, data, sizeof frame, to, length, nullptr, nullptr);
      const int get = row.msgGetMethod == nullptr
                          ? -1
                          : row.msgGetMethod(message.id, &last, data, sizeof frame, to, length, nullptr, nullptr);
      EXPECT_TRUE(set == -1 && (get == -1 || missing == 0))
          << message.id << ": " << set << " " << get << " without " << missing;
    }
  }
}

// Those without parameters do not count them; a profile's name may be missing, and is not the last word looked at.
TEST_F(Handlers, OfCommandsRefuseANumberOfWordsThatNoLineHas) {
  char word[] = "7";
  std::vector<char*> words(40, word);
  for (const host::InstalledCommand& command : host::installedCommands()) {
    const std::string& syntax = command.syntax;
    const auto holds = [&](const char* part) { return syntax.find(part) != syntax.npos; };
    if (syntax.find_first_of("<[") == syntax.npos || holds("show snmp msg") || holds("show queue") ||
        holds("self_switch"))
      continue;
    Vty vty;
    EXPECT_EQ(command.handler(nullptr, &vty, 0, words.data()), -1) << syntax;
    if (holds(" profile [id|name|all] {") || holds(" profile <name> {id")) continue;
    EXPECT_EQ(command.handler(nullptr, &vty, 40, words.data()), -1) << syntax;
  }
}

// A line of a syntax: of words to choose from the first, without what may be missing.
std::string lineOf(std::string syntax, const char* place) {
  syntax = std::regex_replace(syntax, std::regex(R"(\{[^}]*\}\*\d)"), "");
  syntax = std::regex_replace(syntax, std::regex(R"(\[([^|\]]*)[^\]]*\])"), "$1");
  syntax = std::regex_replace(syntax, std::regex("<(ifStr|interface|if_list)>"), place);
  return std::regex_replace(syntax, std::regex("<[^>]*>"), "1");
}

TEST_F(Handlers, OfCommandsFailForAPlaceThatThereIsNot) {
  u32 run = 0;
  for (const host::InstalledCommand& command : host::installedCommands()) {
    if (lineOf(command.syntax, "x") == lineOf(command.syntax, "y")) continue;
    for (const char* place : {"x", "1/1"}) {
      const std::string line = lineOf(command.syntax, place), told = typed(command.node, line);
      run += told != "not run";
      const bool says = line.find("self_port") != line.npos || line.find("show queue") != line.npos;
      EXPECT_TRUE(says || !told.ends_with(" = 0")) << line << told;
    }
  }
  EXPECT_GE(run, 90U);
}

}  // namespace
