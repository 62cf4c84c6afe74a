// What an operator and a manager are told when the store fails under a request, item by item.

#include "host/agent.h"
#include "host/chassis.h"
#include "module_fixture.h"
#include "msan/entries.h"
#include "voice/service/ngndb.h"

namespace {

using host::Fault;

// The N-th operation of the kind fails under a line; the words among what is printed, and the result.
struct Failing {
  Fault fault;
  u32 n;
  const char* line;
  const char* words;
  int result = -1;
};

// clang-format off
constexpr Failing lines[] = {
    {Fault::connect, 1, "set pots general para pulse width 40 interval 60 flash width 90", "get POTS general para failed"},
    {Fault::connect, 2, "set pots general para pulse width 40 interval 60 flash width 90", "involves pulse failed(-107)"},
    {Fault::connect, 1, "show pots general para configuration", "get POTS general para configuration failed"},
    {Fault::connect, 1, "distribute slot 3 pots general para configuration", "distribute slot 3 POTS general para configuration failed"},
    {Fault::alloc, 1, "distribute slot 3 pots general para configuration", "distribute slot 3 POTS general para configuration failed"},
    {Fault::connect, 1, "erase pots general para configuration", "erase POTS general para configuration failed"},
    {Fault::connect, 2, "erase pots general para configuration", "erase POTS general para configuration failed"},
    {Fault::connect, 1, "add pots telephone number 12 type a", "get POTS telephone number configuration failed"},
    {Fault::connect, 11, "add ipt telephone number 12 type a", "IPT telephone number configuration failed(-107)"},
    {Fault::alloc, 23, "add pots telephone number 12 type a", "POTS telephone number configuration failed(-110)"},
    {Fault::alloc, 21, "add ipt telephone number 12 type a", "set IPT telephone number list failed"},
    {Fault::connect, 1, "distribute pots telephone number", "distribute POTS telephone number configuration failed"},
    {Fault::connect, 1, "erase ipt telephone number", "erase IPT telephone number configuration failed"},
    {Fault::connect, 1, "set voice port telephone number 1 step 0 interface 3/1", "get voice port configuration failed"},
    {Fault::connect, 2, "set voice port telephone number 1 step 0 interface 3/1", "set voice port configuration failed(-110)"},
    {Fault::alloc, 1, "set voice port telephone number 1 step 0 interface 3/1", "parse interface string 3/1 failed"},
    {Fault::alloc, 3, "set voice port telephone number 1 step 0 interface 3/1", "set port OBJM list failed"},
    {Fault::connect, 1, "set voice port enable interface 3/1", "set voice port enable configuration failed(-107)"},
    {Fault::connect, 2, "set voice port enable interface 3/1", "set voice port enable configuration failed(-107)"},
    {Fault::alloc, 1, "set voice port enable interface 3/1", "parse interface string 3/1 failed"},
    {Fault::alloc, 3, "set voice port enable interface 3/1", "set port OBJM list failed"},
    {Fault::connect, 1, "show voice port configuration interface 3/1", "get voice port configuration failed"},
    {Fault::connect, 2, "erase voice port configuration slot 3", "erase slot 3 voice port configuration failed"},
    {Fault::connect, 1, "set voice_self_switch enable", "db_set_voice_self_switch = -900"},
    {Fault::connect, 1, "show voice_self_switch", "db_get_voice_self_switch = -900"},
    {Fault::connect, 2, "set voice_self_port_cfg slot 3 port 1 phone 5", "setObjAttrDataByCondition = -900 error"},
    {Fault::connect, 1, "show voice_self_port_cfg slot 3 port 1", "getObjAttrDataByCondition = -900 error"},
    {Fault::connect, 1, "show ngn_protocol_type", "db_get_ngn_protocol_type = -900"},
    {Fault::connect, 1, "set ngn_protocol_type sip", "db_get_ngn_protocol_type = -900"},
    {Fault::connect, 1, "set fax mode t30", "get fax parameter configuration failed"},
    {Fault::connect, 2, "set fax mode t30", "set fax parameter configuration failed(-107)"},
    {Fault::connect, 1, "set fax event notify enable type normal", "get fax parameter configuration failed"},
    {Fault::connect, 1, "set fax encode mode 711a", "get fax parameter configuration failed"},
    {Fault::connect, 1, "set fax packet interval tx 10 rx 60", "get fax parameter configuration failed"},
    {Fault::connect, 1, "set fax sdp media type single control mode ss", "get fax parameter configuration failed"},
    {Fault::connect, 1, "erase fax parameter", "erase fax parameter configuration failed"},
    {Fault::alloc, 1, "erase fax parameter", "erase fax parameter configuration failed"},
    {Fault::connect, 1, "set voice vlan signalling service name 150", "get voice VLAN 0 configuration failed"},
    {Fault::connect, 1, "set voice rtpstream svlan tpid 33024 vid 9 cos 1", "get voice VLAN 1 configuration failed"},
    {Fault::connect, 2, "show voice vlan", "get voice VLAN 1 configuration failed"},
    {Fault::connect, 1, "erase voice vlan", "erase voice VLAN configuration failed"},
    {Fault::connect, 1, "set voice domain name example.net", "get voice basic configuration failed"},
    {Fault::connect, 2, "set voice domain name example.net", "set voice basic configuration failed(-107)"},
    {Fault::connect, 1, "set voice transport protocol tcp local port 5 encode compact", "get voice basic configuration failed"},
    {Fault::connect, 1, "set voice signalling ip ipv4 10.0.0.5 mask 24", "get voice IP configuration failed"},
    {Fault::connect, 4, "set voice signalling ip ipv4 10.0.0.5 mask 24", "set voice signalling IP configuration failed(-107)"},
    {Fault::connect, 1, "distribute voice ip", "distribute voice IP configuration failed"},
    {Fault::connect, 1, "set mgc primary 10.0.0.1 port 2944", "get current MGC configuration failed"},
    {Fault::connect, 1, "set mgc heartbeat disable", "get current MGC configuration failed"},
    {Fault::connect, 1, "set mgc primary register", "get current MGC configuration failed"},
    {Fault::connect, 1, "set roh timeout procession unregister terminal service status keep", "ROH timeout procession configuration failed(-107)"},
    {Fault::connect, 1, "set signal tone timeout busy 1 dial 2 roh 3 call-waiting 4", "get signal tone timeout configuration failed"},
    {Fault::connect, 1, "set voice md5 authentication close", "get voice MD5 authentication configuration failed"},
    {Fault::alloc, 1, "set voice md5 authentication open mg id g shared key ab exchanged base 1F", "MD5 authentication configuration failed(-110)"},
    {Fault::alloc, 2, "set sip digital map x.", "set SIP digital map configuration failed(-110)"},
    {Fault::alloc, 1, "set sip call-waiting-conference mode refer conference uri c sharp escape enable caller-id head from", "set SIP advanced configuration failed(-110)"},
    {Fault::connect, 1, "set sip server address s1 port 5060", "get current SIP server configuration failed"},
    {Fault::connect, 1, "set sip call-waiting-conference mode info1 sharp escape enable caller-id head from", "get current SIP advanced configuration failed"},
    {Fault::connect, 1, "set dsp profile id 1 fax rate 2400", "get DSP profile 1 configuration failed"},
    {Fault::connect, 1, "set dsp profile name p1 fax rate 2400", "get DSP profile p1 configuration failed"},
    {Fault::connect, 1, "show dsp profile id 1", "get DSP profile 1 configuration failed"},
    {Fault::connect, 1, "set sip user call profile id 1 call-id type dtmf", "get SIP user call profile 1 configuration failed"},
    {Fault::connect, 1, "set sip user call profile id 1 call-waiting enable busy-forward enable ring-forward enable force-forward enable", "get SIP user call profile 1 configuration failed"},
    {Fault::connect, 1, "set sip user call profile id 1 call-conference enable reverse-polarity enable", "get SIP user call profile 1 configuration failed"},
    {Fault::connect, 1, "set sip user call profile id 1 call-forward telephone-number 1", "get SIP user call profile 1 configuration failed"},
    {Fault::alloc, 1, "distribute dsp profile", "distribute DSP profile configuration failed"},
    {Fault::alloc, 2, "show dsp channels status", "get dsp channels status failed(-110)"},
    {Fault::connect, 1, "delete dsp profile id 1", "delete DSP profile 1 configuration failed(-110)"},
    {Fault::connect, 1, "erase dsp profile", "erase DSP profile configuration failed"},
    {Fault::connect, 1, "set card work_mode slot 5 mode local", "set_card_work_mode_db error"},
    {Fault::connect, 1, "show card work_mode slot 5", "get_card_work_mode_db error"},
    {Fault::connect, 1, "set pots port feed voltage 42 current 22 interface 3/1", "configuration failed(-107)"},
    {Fault::alloc, 1, "set pots port feed voltage 42 current 22 interface 3/1", "parse interface string 3/1 failed"},
    {Fault::connect, 3, "erase slot 3 pots port feed voltage and current configuration", "erase slot 3 POTS port feed voltage & current configuration failed"},
    {Fault::connect, 1, "show loop detect interface 1/1", "getLoopDetect err"},
    {Fault::alloc, 1, "show loop detect interface 1/1", "invalid interface 1/1"},
    {Fault::alloc, 3, "show loop detect interface 1/1", "malloc fail!"},
    {Fault::alloc, 1, "set loop detect enable auto-recovery enable interface 1/1", "invalid interface 1/1"},
    {Fault::connect, 1, "attach rate-limit profile id 0 interface 1/1", "attach profile error: -1"},
    {Fault::alloc, 1, "attach rate-limit profile id 0 interface 1/1", "invalid interface 1/1"},
    {Fault::connect, 1, "detach policy interface 1/1 pvc 3", "attach policy interface 1/1 fail 0"},
    {Fault::alloc, 4, "detach policy interface 1/1", "attach policy interface 1/1 fail -19"},
    {Fault::alloc, 5, "set isolation disable interface 1", "set port isolate config error"},
    {Fault::connect, 1, "detach vlan profile interface 1/1 pvc 0", "getObjAttrData fail!"},
    {Fault::alloc, 4, "detach vlan profile interface 1/1 pvc 0", "malloc fail!"},
    {Fault::alloc, 4, "clear vlan service interface 1/1", "insert_sort_list_by_index err.\r\nclear vlan service fail."},
    {Fault::alloc, 5, "clear vlan service interface 1/1", "errCode:0"},
    {Fault::alloc, 4, "add vlan service type unicast mode tag vid 1 interface 1/1/0", "malloc fail!"},
};

// Two settings of the same thing. `late`: a line without memory may say nothing, and one that fails behind the storing
// has stored.
struct Settings {
  const char *one, *other;
  bool late = false;
};
constexpr Settings settings[] = {
    {"set cid mode dtmf", "set cid mode fsk"},
    {"set roh timeout procession unregister terminal service status keep", "set roh timeout procession unregister terminal service status over"},
    {"set rfc2833 negotiation auto default pt 97 rfc2198 negotiation auto default pt 98", "set rfc2833 negotiation manul default pt 97 rfc2198 negotiation auto default pt 98"},
    {"set signal tone timeout busy 1 dial 2 roh 3 call-waiting 4", "set signal tone timeout busy 1 dial 2 roh 3 call-waiting 5"},
    {"set voice md5 authentication open shared key ab", "set voice md5 authentication close"},
    {"set pots general para pulse width 40 interval 60 flash width 90", "set pots general para pulse width 40 interval 60 flash width 91"},
    {"set mgc primary 10.0.0.1 port 2944", "set mgc primary 10.0.0.2 port 2944"},
    {"set voice port enable interface 3/1", "set voice port disable interface 3/1"},
    {"set voice port user name a start 0 step 0 interface 3/1", "set voice port user name b start 0 step 0 interface 3/1"},
    {"set voice_self_switch enable", "set voice_self_switch disable"},
    {"set voice_self_port_cfg slot 3 port 1 phone 5", "set voice_self_port_cfg slot 3 port 1 phone 6"},
    {"set fax mode t30", "set fax mode t38"},
    {"set voice vlan signalling service name 150", "set voice vlan signalling service name 149"},
    {"set voice domain name a", "set voice domain name b"},
    {"set sip server address s1 port 5060", "set sip server address s1 port 5061"},
    {"set sip digital map x.", "set sip digital map xx."},
    {"set dsp profile id 1 fax rate 2400", "set dsp profile id 1 fax rate 9600"},
    {"set sip user call profile 1 name a", "set sip user call profile 1 name b"},
    {"set pots port feed voltage 42 current 22 interface 3/1", "set pots port feed voltage 43 current 22 interface 3/1"},
    {"set storm-suppression broadcast enable rate 5 interface 1", "set storm-suppression broadcast enable rate 6 interface 1", true},
    {"set isolation disable interface 1", "set isolation enable interface 1", true},
    {"set interface 1/1 enable", "set interface 1/1 disable"},
    {"set mac limit enable number 5 interface 1/1 pvc 3", "set mac limit disable interface 1/1 pvc 3"},
    {"set queue schedule interface 1/1 mode wrr 1 2 3 4 5 6 7 8", "set queue schedule interface 1/1 mode wrr 2 2 3 4 5 6 7 8"},
    {"set loop detect enable auto-recovery enable interface 1/1", "set loop detect enable auto-recovery disable interface 1/1"},
    {"set card work_mode slot 5 mode local", "set card work_mode slot 5 mode ces"},
    {"set ces service slot 5 port 1 dstmac 123456abcdef dstport 7 jitterbuf 64", "set ces service slot 5 port 1 dstmac 123456abcdef dstport 8 jitterbuf 64"},
    {"set voice timer waiting time 4 start-timer 1 long-timer 2 short-timer 3 notify-immediately yes", "set voice timer waiting time 4 start-timer 1 long-timer 2 short-timer 3 notify-immediately no"},
    {"set voice transport protocol tcp local port 5 encode compact", "set voice transport protocol udp local port 5 encode compact"},
    {"set sip call-waiting-conference mode info1 sharp escape enable caller-id head from", "set sip call-waiting-conference mode info1 sharp escape disable caller-id head from"},
    {"set mgc heartbeat initiative interval 5 timeouts 6 format notify", "set mgc heartbeat initiative interval 7 timeouts 6 format notify"},
    {"set sip user call profile id 1 call-id type dtmf", "set sip user call profile id 1 call-id type sdmf"},
    {"set dsp profile id 1 input gain 1 output gain 2", "set dsp profile id 1 input gain 1 output gain 3"},
    {"set voice port telephone number 1 step 0 interface 3/1", "set voice port telephone number 2 step 0 interface 3/1"},
    {"set voice port sip authentication user u password p interface 3/1", "set voice port sip authentication user v password p interface 3/1"},
    {"set voice port dsp profile id 1 interface 3/1", "set voice port dsp profile id 0 interface 3/1"},
    {"attach vdslLine profile id 7 interface 2/1", "attach vdslLine profile id 0 interface 2/1"},
    {"attach vdslser profile id 7 interface 2/1", "attach vdslser profile id 0 interface 2/1"},
    {"attach vdslpbo profile id 7 interface 2/1", "attach vdslpbo profile id 0 interface 2/1"},
    {"attach vdslcpsd profile id 7 interface 2/1", "attach vdslcpsd profile id 0 interface 2/1"},
    {"attach vdslvn profile id 7 interface 2/1", "attach vdslvn profile id 0 interface 2/1"},
    {"set rate-limit id 1 name g us-status enable us-cir 1000 ds-status enable ds-cir 2000", "set rate-limit id 1 name g us-status enable us-cir 1000 ds-status enable ds-cir 3000"},
    {"attach adslLine profile id 7 interface 1/1", "attach adslLine profile id 0 interface 1/1"},
    {"attach pvc profile id 3 interface 1/1", "attach pvc profile id 0 interface 1/1"},
    {"attach alarm profile id 7 interface 1/1", "attach alarm profile id 0 interface 1/1", true},
    {"attach rate-limit profile id 1 interface 1/1", "attach rate-limit profile id 0 interface 1/1"},
    {"add vlan service type unicast mode tag vid 100 interface 1/1/3", "clear vlan service interface 1/1", true},
};

// A message that is asked for, or set with the bytes behind its envelope, and the code of the answer.
struct Refused {
  Fault fault;
  u32 n;
  u16 message;
  std::vector<u8> set;
  u16 code;
};
const std::vector<u8> feed{0, 0, 0, 1, 0, 3, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                           0, 0, 0, 42, 0, 0, 0, 22, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                           0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
const Refused messages[] = {
    {Fault::connect, 1, 2841, {}, 65426}, {Fault::connect, 1, 3088, {}, 65426}, {Fault::connect, 1, 3079, {}, 65426},
    {Fault::connect, 1, 3076, {}, 65426}, {Fault::connect, 1, 3075, {}, 65426}, {Fault::connect, 1, 3080, {}, 65426},
    {Fault::alloc, 1, 3080, {}, 65426},
    {Fault::connect, 1, 2839, feed, 65426}, {Fault::alloc, 1, 2839, feed, 65426},
};
// clang-format on

class FailingStores : public ModuleTest {
 protected:
  FailingStores() {
    host::clearChassis();
    for (const auto& [slot, type] :
         {std::pair<u16, const char*>{1, "adsl16"}, {2, "vdsl32"}, {3, "pots32"}, {5, "ces32"}}) {
      host::authorise(slot, *host::findCardType(type));
      msan_card_auth_init_db(slot);
    }
  }
  ~FailingStores() override { host::clearChassis(); }
  Recorder recorder_;
};

TEST_F(FailingStores, AreToldToAnOperator) {
  for (const Failing& one : lines) {
    host::failNth(one.fault, one.n);
    const std::string told = typed(CONFIG_NODE, one.line);
    EXPECT_NE(told.find(one.words), std::string::npos) << one.line << ": " << told;
    EXPECT_TRUE(told.ends_with(" = " + std::to_string(one.result))) << one.line << ": " << told;
    EXPECT_FALSE(host::faultPending(one.fault)) << one.line;
    host::clearFaults();
  }
}

// Whatever fails, a line that succeeds has stored what it says, and one that fails has left what was there.
TEST_F(FailingStores, LeaveWhatWasThereUnlessALineSucceeds) {
  db_set_ngn_protocol_type(kSip);
  typed(CONFIG_NODE, "add adslLine profile a id 7");
  typed(CONFIG_NODE, "add pvc profile a id 3");
  for (const std::string kind : {"alarm", "vdslLine", "vdslser", "vdslpbo", "vdslcpsd", "vdslvn"})
    typed(CONFIG_NODE, "add " + kind + " profile a id 7");
  typed(CONFIG_NODE, "set rate-limit id 1 name g us-status enable us-cir 1000 ds-status enable ds-cir 2000");
  for (const auto& [line, otherLine, late] : settings) {
    EXPECT_TRUE(typed(CONFIG_NODE, line).ends_with(" = 0")) << line;
    const std::string one = storedRows();
    EXPECT_TRUE(typed(CONFIG_NODE, otherLine).ends_with(" = 0")) << otherLine;
    const std::string other = storedRows();
    EXPECT_NE(one, other) << line;
    for (const Fault fault : {Fault::connect, Fault::start, Fault::find, Fault::create, Fault::commit, Fault::alloc}) {
      bool failed = fault != Fault::alloc || !late;
      for (u32 n = 1; failed; ++n) {
        host::failNth(fault, n);
        const bool told = typed(CONFIG_NODE, line).ends_with(" = 0");
        failed = !host::faultPending(fault);
        host::clearFaults();
        const std::string now = storedRows();
        EXPECT_TRUE(now == (told ? one : other) || (late && now == one)) << line << ": " << n << " of " << int(fault);
        typed(CONFIG_NODE, otherLine);
      }
    }
  }
}

TEST_F(FailingStores, AreToldToAManager) {
  for (const Refused& one : messages) {
    std::vector<u8> frame(32);
    frame.insert(frame.end(), one.set.begin(), one.set.end());
    host::failNth(one.fault, one.n);
    const host::Answer answer =
        one.set.empty() ? host::agentGet(one.message, &frame) : host::agentSet(one.message, true, &frame);
    ASSERT_TRUE(answer.reply && answer.reply->size() == 16) << one.message;
    EXPECT_EQ((*answer.reply)[10] << 8 | (*answer.reply)[11], one.code) << one.message;
    EXPECT_FALSE(host::faultPending(one.fault)) << one.message;
    host::clearFaults();
  }
}

}  // namespace
