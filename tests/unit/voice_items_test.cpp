#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "host/agent.h"
#include "messages/layout.h"
#include "module_fixture.h"
#include "ppda/volt_current.h"
#include "voice/common/voice_packets.h"
#include "voice/globals/cidMode.h"
#include "voice/globals/phoneNumber.h"
#include "voice/globals/potsGeneral.h"
#include "voice/globals/rfc2833.h"
#include "voice/globals/voiceMD5.h"

namespace {

// The code that an item's check gives a record, 0 when it passes.
template <class R>
u16 codeFor(const VoiceItem& item, const R& cfg) {
  SnmpErrInfo err;
  return checkItem(item, &cfg, &err) == 0 ? 0 : err.errCode;
}
template <class R>
u16 codeFor(int (*check)(const R*, SnmpErrInfo*), const R& cfg) {
  SnmpErrInfo err;
  return check(&cfg, &err) == 0 ? 0 : err.errCode;
}

TEST(CidMode, TwoModes) {
  for (const u16 mode : std::initializer_list<u16>{0, 1, 2, 3}) {
    EXPECT_EQ(codeFor(cidMode, CIDMode{mode}), mode == 1 || mode == 2 ? 0 : 65416) << mode;
  }
}

TEST(Rfc2833, PayloadTypesLeaveOutOneTo95) {
  for (const auto& [value, good] :
       {std::pair<u16, bool>{0, true}, {1, false}, {95, false}, {96, true}, {127, true}, {128, false}}) {
    EXPECT_EQ(codeFor(rfc2833, RFC2833{0, 1, value, 96}), good ? 0 : 65414) << value;
    EXPECT_EQ(codeFor(rfc2833, RFC2833{0, 1, 96, value}), good ? 0 : 65413) << value;
  }
  EXPECT_EQ(codeFor(rfc2833, RFC2833{2, 2, 1, 1}), 65416) << "the first bad field alone";
  EXPECT_EQ(codeFor(rfc2833, RFC2833{1, 2, 1, 1}), 65415);
}

// The edges of each field, with the others good; the field's own code just outside.
TEST(PotsGeneral, EdgesAndRelations) {
  const PotsGeneral good{40, 60, 90, 0, 20, 0, 20, 200, 0, -35};
  EXPECT_EQ(codeFor(potsGeneral, good), 0);
  const auto with = [good](auto member, auto value) {
    PotsGeneral cfg = good;
    cfg.*member = value;
    return codeFor(potsGeneral, cfg);
  };
  using G = PotsGeneral;
  EXPECT_EQ(with(&G::pulseWidth, u16{29}), 65385);
  EXPECT_EQ(with(&G::pulseWidth, u16{50}), 0);
  EXPECT_EQ(with(&G::pulseWidth, u16{51}), 65375);
  EXPECT_EQ(with(&G::pulseInterval, u16{2501}), 65384);
  EXPECT_EQ(with(&G::flashWidth, u16{89}), 65383);
  EXPECT_EQ(with(&G::flashWidth, u16{199}), 0);
  EXPECT_EQ(with(&G::flashWidth, u16{200}), 65383);
  EXPECT_EQ(with(&G::billType, u16{3}), 65382);
  EXPECT_EQ(with(&G::billPulseVoltage, u32{31}), 65381);
  EXPECT_EQ(with(&G::POTSImpMode, u16{3}), 65380);
  EXPECT_EQ(with(&G::offHookCheckTime, u16{9}), 65379);
  EXPECT_EQ(with(&G::offHookCheckTime, u16{401}), 65379);
  EXPECT_EQ(with(&G::onHookCheckTime, u16{2501}), 65378);
  EXPECT_EQ(with(&G::sendCODECGain, 101), 65377);
  EXPECT_EQ(with(&G::sendCODECGain, -1), 65377);
  EXPECT_EQ(with(&G::recvCODECGain, -100), 0);
  EXPECT_EQ(with(&G::recvCODECGain, -101), 65376);
  EXPECT_EQ(with(&G::recvCODECGain, 1), 65376);
}

class VoiceMD5Test : public ModuleTest {};

TEST_F(VoiceMD5Test, KeysCountWhileTheSwitchIsOn) {
  VoiceMD5 cfg;
  std::memset(cfg.exchangedBase, 'x', sizeof cfg.exchangedBase);
  cfg.authSwitch = 2;
  EXPECT_EQ(codeFor(voiceMD5, cfg), 65416);
  cfg.authSwitch = 0;
  EXPECT_EQ(codeFor(voiceMD5, cfg), 0);
  cfg.authSwitch = 1;
  SnmpErrInfo err;
  EXPECT_EQ(checkItem(voiceMD5, &cfg, &err), -1);
  EXPECT_EQ(err.errCode, 65412);
  EXPECT_EQ(host::hexText({err.errData, err.errDataLen}), "78*16");
  std::memset(cfg.exchangedBase, 'f', sizeof cfg.exchangedBase);
  EXPECT_EQ(codeFor(voiceMD5, cfg), 0) << "a text that fills its field";
  cfg.exchangedPrime[0] = 'g';
  EXPECT_EQ(codeFor(voiceMD5, cfg), 65410);
  host::failNth(host::Fault::alloc, 1);
  EXPECT_EQ(codeFor(voiceMD5, cfg), 65426) << "no memory to check with";
}

TEST_F(VoiceMD5Test, UnitOnTheWire) {
  VoiceMD5 cfg;
  cfg.authSwitch = 1;
  std::memcpy(cfg.MGID, "gw", 2);
  std::memset(cfg.sharedKey, 'k', sizeof cfg.sharedKey);
  cfg.exchangedBase[0] = 'b';
  cfg.exchangedPrime[255] = 'p';
  DataList list;
  nSetDataList(&cfg, sizeof cfg, list);
  std::vector<u8> wire(849, 0xEE);
  Writer out(wire);
  ASSERT_EQ(encodeArea(voiceMD5, list, out), 0);
  // Switch, 32 bytes of id, 32 of key, 16 of base, 256 of prime, 512 that are left alone.
  EXPECT_EQ(host::hexText(wire), "016777 00*30 6b*32 62 00*270 70 ee*512");
  DataList again;
  ASSERT_EQ(parseUnits(voiceMD5, wire, again), 0);
  EXPECT_EQ(std::memcmp(&cfg, recordOf<VoiceMD5>(lstFirst(again)), sizeof cfg), 0);
  EXPECT_EQ(parseUnits(voiceMD5, WireIn(wire).first(848), again), -1);
  Writer narrow(WireOut(wire).first(848));
  EXPECT_EQ(encodeArea(voiceMD5, list, narrow), -1);
}

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
    EXPECT_EQ(codeFor(vcheck_pots_voltcurrent, PotsFeed{3, 1, {}, voltage, current, {}}), code)
        << voltage << " " << current;
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

// All that is registered so far, by hand: what a manager and an operator find.
TEST_F(VoiceMD5Test, Catalogue) {
  std::string messages;
  for (const host::Announced& message : host::announcedMessages()) {
    messages += std::to_string(message.id) + " " + message.text + "\n";
    EXPECT_NE(messages::book().find(message.id), nullptr) << message.id << " is described";
  }
  EXPECT_EQ(messages,
            "34661 test\n34662 test\n2837 test\n34664 test\n34665 test\n2838 test\n2860 test\n"
            "34801 set vdsl line profile\n34802 delete vdsl line profile\n2862 attach vdsl line profile\n"
            "2839 Set POTS port feed voltage & current parameters\n"
            "2846 port vlan config msg\n"
            "3087 Set CIDMode configuration\n"
            "3083 Set POTS telephone number\n"
            "3084 Set IPT telephone number\n"
            "3082 Set RFC2833\n"
            "3086 Set off-hook warning timeout procession\n"
            "3085 Set signal tone timeout period\n"
            "3081 Set voice md5 authentication\n"
            "3080 Set voice timers\n"
            "3093 Control MGC registration\n"
            "3094 Control NGN user registration\n2848 112 test\n"
            "2842 Get test 112 outline result\n2843 Get test 112 inline result\n"
            "3073 Set MGC configuration\n2841 Set POTS general parameters\n"
            "3096 Get voice device status\n3097 Get voice IP status\n"
            "3098 Get signalling packets statistics information\n3099 Get calling statistics information\n"
            "3100 Get NGN user port status\n3101 Get voice stream port statistics information\n"
            "3102 Get port calling statistics information\n"
            "3103 Start call in simulation\n3104 Get call in simulation information\n3105 Stop call in simulation\n"
            "3106 Start call out simulation\n3107 Get call out simulation information\n"
            "3108 Stop call out simulation\n");
  std::string commands;
  for (const host::InstalledCommand& command : host::installedCommands()) {
    commands += std::to_string(command.node) + " " + command.syntax + "\n";
  }
  EXPECT_EQ(
      commands,
      "10 show snmp msg info <msgtype>\n"
      "10 set msan debug [on|off] {[module|level|cmdid] <input>}*3\n"
      "10 show msan debug print\n"
      "50 add adslLine profile <name> {id <id>}*1\n"
      "50 delete adslLine profile [id|name] <idOrName>\n"
      "50 show adslLine profile [id|name|all] {<idOrName>}*1\n"
      "50 flush adslLine profile [id|name] <idOrName>\n"
      "50 set adslLine profile [id|name] <idOrName>\n"
      "50 set adsl transmode [adpt|gdmt|adsl_2|adsl2+|t1413]\n"
      "50 set adsl UpRateMode [StartAdpt|fixed|RunAdpt]\n"
      "50 set adsl DownRateMode [StartAdpt|fixed|RunAdpt]\n"
      "50 set adsl LineType [none|fastOnly|interleave|FastOrInter|FastAndInter]\n"
      "50 set adsl SnrmMargin [down|up] <value>\n"
      "50 set adsl MaxInterLeaveDelay [down|up] <value>\n"
      "50 set adsl MinInp [down|up] <value>\n"
      "50 set adsl BitSwap [down|up] [enable|disable]\n"
      "50 set adsl PowerMode [L0Mode|L3Mode|L2Mode|L2AndL3]\n"
      "50 set adsl PmL0Time <value>\n"
      "50 set adsl PmL2Time <value>\n"
      "50 set adsl PmL2Atprt <value>\n"
      "50 set adsl PmL2Rate <value>\n"
      "50 set adsl Snrm [down|up] MaxSnrm <value1> MinSnrm <value2>\n"
      "50 set adsl MinRate [down|up] <value>\n"
      "50 set adsl toneblackout number <number> {<no> start <value1> end <value2>}*8 {<no> start <value3> end "
      "<value4>}*8\n"
      "50 attach adslLine profile [id|name] <idOrName> interface <ifStr>\n"
      "50 show adslLine profile attach interface <ifStr>\n"
      "50 add pvc profile <name> {id <id>}*1\n"
      "50 delete pvc profile [id|name] <idOrName>\n"
      "50 show pvc profile [id|name|all] {<idOrName>}*1\n"
      "50 attach pvc profile [id|name] <idOrName> interface <ifStr>\n"
      "50 show pvc profile attach interface <ifStr>\n"
      "50 flush pvc profile [id|name] <idOrName>\n"
      "50 set pvc profile [id|name] <idOrName>\n"
      "50 set adsl pvcNo <value1> vpi <value2> vci <value3>\n"
      "50 add vdslLine profile <name> {id <id>}*1\n"
      "50 delete vdslLine profile [id|name] <idOrName>\n"
      "50 show vdslLine profile [id|name|all] {<idOrName>}*1\n"
      "50 attach vdslLine profile [id|name] <idOrName> interface <ifStr>\n"
      "50 show vdslLine profile attach interface <ifStr>\n"
      "50 set vdslLine profile [id|name] <idOrName>\n"
      "50 set vdslline para portmode [atm|ptm|self-adaption]\n"
      "50 set vdslline para stdPrf [8a|8b|8c|8d|12a|12b|17a|30a|all]\n"
      "50 set vdslline para psd <0-42>\n"
      "50 set vdslline para maxTxPowerDn <value>\n"
      "50 set vdslline para maxTxPowerUp <value>\n"
      "50 set vdslline para rfi {start <0-4095> end <0-4095>}*8 {start <0-4095> end <0-4095>}*8\n"
      "50 set vdslline para tone {start <0-4095> end <0-4095>}*8\n"
      "50 set pots port feed voltage <feedVoltage> current <feedCurrent> interface <ifStr>\n"
      "50 show slot <slotNo> pots port feed voltage and current configuration\n"
      "50 erase slot <slotNo> pots port feed voltage and current configuration\n"
      "50 [create|destroy] vlan profile <name>\n"
      "50 enter vlan profile <name>\n"
      "50 set tls [enable|disable] {tpid [<tpid>] vid [<vid>] cos [<cos>] copy-inner-cos [enable|disable]}*1\n"
      "50 delete vlan service profile <name> service <serviceid>\n"
      "50 add unicast tag cvlan tpid <tpid> vid <vid> cos <cos> rule [<name>|null] {qinq tpid <tpid> vid <vid> cos "
      "<cos> rule [<name>|null]}*1\n"
      "50 add unicast transparent cvlan tpid <tpid> vid [<vid>|all] cos [<cos>|null] rule [<name>|null] {qinq tpid "
      "<tpid> vid <vid> cos <cos> rule [<name>|null]}*1\n"
      "50 add unicast translation cvlan tpid <tpid> vid <vid> cos [<cos>|null] outvlan tpid <tpid> vid <vid> cos "
      "[<cos>|null] rule [<name>|null] {qinq tpid <tpid> vid <vid> cos <cos> rule [<name>|null]}*1\n"
      "50 add multicast tag cvlan tpid <tpid> vid [<cvid>|all] cos <cos> rule [<name>|null] {qinq tpid <tpid> vid "
      "<vid> cos <cos> rule [<name>|null]}*1\n"
      "50 add multicast transparent cvlan tpid <tpid> vid [<vid>|all] cos [<cos>|null] rule [<name>|null] {qinq tpid "
      "<tpid> vid <vid> cos <cos> rule [<name>|null]}*1\n"
      "50 add multicast translation cvlan tpid <tpid> vid <vid> cos [<cos>|null] outvlan tpid <tpid> vid <vid> cos "
      "[<cos>|null] rule [<name>|null] {qinq tpid <tpid> vid <vid> cos <cos> rule [<name>|null]}*1\n"
      "50 show vlan profile <name> {service <serviceid>}*1\n"
      "50 attach vlan profile <name> interface <ifStr> {pvc <pvcindex>}*1\n"
      "50 detach vlan profile interface <ifStr> {pvc <pvcindex>}*1\n"
      "50 clear vlan service interface <ifStr>\n"
      "50 show service vlan interface <ifStr> {pvc <pvcindex>}*1\n"
      "50 add vlan service {[type|mode|tpid|vid|cos|crule|qrule|interface] <value>}*8\n"
      "50 set cid mode [fsk|dtmf]\n"
      "50 show cid mode\n"
      "50 [distribute|erase] cid mode\n"
      "50 show pots telephone number\n"
      "50 add pots telephone number <phoneNumber> type [a|b|c|d|e|f|g|h]\n"
      "50 [distribute|erase] pots telephone number\n"
      "50 show ipt telephone number\n"
      "50 add ipt telephone number <phoneNumber> type [a|b|c|d|e|f|g|h]\n"
      "50 [distribute|erase] ipt telephone number\n"
      "50 set rfc2833 negotiation [auto|manul] default pt <default2833PT> rfc2198 negotiation [auto|manul] default pt "
      "<default2198PT>\n"
      "50 show rfc2833 configuration\n"
      "50 [distribute|erase] rfc2833 configuration\n"
      "50 set roh timeout procession [not_unregister|unregister] terminal service status [keep|over]\n"
      "50 show roh timeout procession\n"
      "50 [distribute|erase] roh timeout procession\n"
      "50 set signal tone timeout busy <busyTimeout> dial <dialTimeout> roh <rohTimeout> call-waiting "
      "<calWaitTimeout>\n"
      "50 set signal tone timeout ring <ringTimeout> ring-back <ringBackTimeout> no-answer <noAnswerTimeout> "
      "interval-dial <intDialTimeout>\n"
      "50 show signal tone timeout configuration\n"
      "50 [distribute|erase] signal tone timeout configuration\n"
      "50 set voice md5 authentication [open|close] {mg id <mgID>}*1 {shared key <sharedKey>}*1 {exchanged base "
      "<xBase>}*1 {prime <xPrime>}*1\n"
      "50 show voice md5 authentication\n"
      "50 [distribute|erase] voice md5 authentication\n"
      "50 set voice timer waiting time <maxWaitTime> start-timer <startTimer> long-timer <longTimer> short-timer "
      "<shortTimer> notify-immediately [yes|no]\n"
      "50 show voice timer\n"
      "50 [distribute|erase] voice timer\n"
      "50 show onhook state slot <slotNo> {port <portNo>}*1\n"
      "50 showrun msan ngn\n"
      "50 set mgc [primary|secondary] [register|unregister]\n"
      "50 set ngn user [register|unregister] interface <ifStr>\n"
      "50 show test 112 outline result slot <slot_no> port <port_no>\n"
      "50 show test 112 inline result interface slotNo <slot_no> portNo <port_no>\n"
      "50 set test 112 mode [inline|outline] type [force|unforce] interface <ifStr>\n"
      "50 show mgc configuration\n"
      "50 set mgc primary <primaryAddr> port <primaryPort> {secondary <secondaryAddr> port <secondaryPort>}*1\n"
      "50 set mgc heartbeat [disable|initiative|passive] {interval <bInterval> timeouts <bTimeouts> format "
      "[notify|servicechange]}*1\n"
      "50 [distribute|erase] mgc configuration\n"
      "50 show voice device status\n50 show voice ip status\n"
      "50 show signalling packets statistics information\n50 show call statistics information\n"
      "50 show ngn user port status interface <ifStr>\n"
      "50 show voice stream port statistics information interface <ifStr>\n"
      "50 show port call statistics information interface <ifStr>\n"
      "50 start call in simulation timeout <simTimeout> interface <ifStr>\n"
      "50 stop call in simulation interface <ifStr>\n"
      "50 start call out simulation timeout <simTimeout> telephone number <startNumber> step <numberStep> interface "
      "<ifStr>\n"
      "50 stop call out simulation interface <ifStr>\n"
      "50 show call in simulation status interface <ifStr>\n"
      "50 show call out simulation status interface <ifStr>\n"
      "50 set pots general para pulse width <pulseWidth> interval <pulseInterval> flash width <flashWidth>\n"
      "50 set pots general para bill type [12kc|16kc|anc] pulse voltage <billPulseVoltage>\n"
      "50 set pots general para impedance mode [560|600|680]\n"
      "50 set pots general para off hooktime <offHookcheckTime> on hooktime <onHookcheckTime>\n"
      "50 set pots general para codec gain send <sendCodecGain> receive <recvCodecGain>\n"
      "50 show pots general para configuration\n"
      "50 erase pots general para configuration\n"
      "50 distribute slot <slotNo> pots general para configuration\n");
}

}  // namespace
