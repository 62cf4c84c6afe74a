#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <tuple>

#include "common/msan_snmp.h"
#include "host/agent.h"
#include "messages/layout.h"
#include "module_fixture.h"
#include "ppda/volt_current.h"
#include "voice/common/voice_packets.h"
#include "voice/globals/cidMode.h"
#include "voice/globals/phoneNumber.h"
#include "voice/globals/rfc2833.h"
#include "voice/globals/voiceMD5.h"

namespace {

class VoiceMD5Test : public ModuleTest {};

// What the command line's grammar lets nobody type.
TEST_F(VoiceMD5Test, HandlersRefuseWhatTheGrammarWouldNotPass) {
  const auto call = [](const VoiceItem& item, std::size_t command, std::vector<std::string> words) {
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    Vty vty;
    const int result =
        item.commands[command].element.handler(nullptr, &vty, static_cast<int>(argv.size()), argv.data());
    return vty.text + std::to_string(result);
  };
  const std::string quantity = "\r\n invalid parameter quantity. \r\n-1";
  EXPECT_EQ(call(cidMode, 0, {}), quantity);
  EXPECT_EQ(call(cidMode, 0, {"pulse"}), "\r\n invalid CID mode. \r\n-1");
  EXPECT_EQ(call(cidMode, 2, {"erase", "now"}), quantity);
  EXPECT_EQ(call(cidMode, 2, {"drop"}), "\r\n invalid configuration operation. \r\n-1");
  EXPECT_EQ(call(rfc2833, 0, {"auto", "97", "auto"}), quantity);
  EXPECT_EQ(call(rfc2833, 0, {"auto", "97", "often", "97"}), "\r\n invalid RFC2198 negotiation. \r\n-1");
  EXPECT_EQ(call(voiceMD5, 0, {"open", "1", "2", "3", "4", "5"}), quantity);
  EXPECT_EQ(call(voiceMD5, 0, {"ajar"}), "\r\n invalid MD5 authentication switch. \r\n-1");
}

TEST(PotsFeed, EdgesOfBothValues) {
  for (const auto& [voltage, current, code] : {std::tuple<u32, u32, u16>{37, 18, 0},
                                               {51, 49, 0},
                                               {36, 18, 65375},
                                               {52, 49, 65375},
                                               {37, 17, 65374},
                                               {51, 50, 65374}}) {
    const PotsFeed feed{3, 1, {}, voltage, current, {}};
    SnmpErrInfo err;
    EXPECT_EQ(vcheck_pots_voltcurrent(&feed, &err), code == 0 ? 0 : -1) << voltage << " " << current;
    EXPECT_EQ(err.errCode, code) << voltage << " " << current;
  }
}

TEST_F(VoiceMD5Test, NumbersAreEqualInAllTwentyCharacters) {
  PHNNumber one;
  std::memcpy(one.phnNumber, "01234567890123456789", sizeof one.phnNumber);
  PHNNumber other = one;
  other.phnNumber[19] = '8';
  DataList list;
  nSetDataList(&one, sizeof one, list);
  nSetDataList(&other, sizeof other, list);
  char number[20] = {};
  EXPECT_EQ(nIsPHNNumberDuplicate(list, number), 0) << "they differ in the last one";
  nSetDataList(&one, sizeof one, list);
  EXPECT_EQ(nIsPHNNumberDuplicate(list, number), 1);
  EXPECT_EQ(std::string(number, 20), "01234567890123456789");
}

// What a manager and an operator find, in its order: a message by its id, longest reply, option bytes and text. Every
// one is described, too.
TEST_F(VoiceMD5Test, Catalogue) {
  std::string found;
  for (const host::Announced& message : host::announcedMessages()) {
    SnmpMsgEntry row;
    ASSERT_EQ(getSnmpMsgInfo(message.id, &row), 0);
    const u32 numbers[] = {message.id, row.maxReplyLen, row.option[0], row.option[1]};
    found += "message";
    for (const u32 number : numbers) found += " " + std::to_string(number);
    found += " " + message.text + "\n";
    EXPECT_NE(messages::book().find(message.id), nullptr) << message.id << " is described";
  }
  for (const host::InstalledCommand& command : host::installedCommands())
    found += "command " + std::to_string(command.node) + " " + command.syntax + "\n";
  std::ifstream file(MSAN_UNIT_DATA "/catalogue.txt");
  const std::string told(std::istreambuf_iterator<char>(file), {});
  EXPECT_EQ(told, found);
}

}  // namespace
