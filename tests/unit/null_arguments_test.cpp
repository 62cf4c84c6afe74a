// What shared functions give for arguments that none of today's callers hands them, and those that wait for a caller.

#include <algorithm>
#include <cstring>

#include "combo/adsl/adsl_profile.h"
#include "combo/port/port_enable_config.h"
#include "combo/profile/profile_kind.h"
#include "combo/pvc/pvc_profile.h"
#include "common/answer.h"
#include "common/card_exchange.h"
#include "common/debug_control.h"
#include "common/interface_list.h"
#include "common/msan_obj.h"
#include "common/msan_snmp.h"
#include "common/obj_attributes.h"
#include "host/chassis.h"
#include "module_fixture.h"
#include "ppda/volt_current.h"
#include "voice/alarm/ngn_alarm_prof.h"
#include "voice/common/voice_msc.h"
#include "voice/common/voice_obj.h"
#include "voice/common/voice_public.h"
#include "voice/common/voice_snmp.h"

namespace {

// Slot 3 POTS with 32 ports, slot 5 the combined card 12 with 32; the voice area traces.
class NullArguments : public ModuleTest {
 protected:
  NullArguments() {
    host::authorise(3, *host::findCardType("pots32"));
    host::authorise(5, *host::findCardType("adsl32-pots"));
    msanSetDebugControl(5, 0, 65535);
  }
  ~NullArguments() override {
    msanSetDebugControl(5, 0, 0);
    host::clearChassis();
  }

  // How many of the results are -1, and how many lines were traced.
  std::string refused(const std::vector<int>& results) {
    std::size_t lines = 0;
    for (std::size_t at = 0; (at = recorder_.printed.find(". \r\n", at)) != std::string::npos; ++at) ++lines;
    recorder_.printed.clear();
    return std::to_string(std::ranges::count(results, -1)) + "/" + std::to_string(lines);
  }

  struct : Recorder {
    void log(i32, std::string_view text) override { lines.emplace_back(text); }
  } recorder_;
  host::CaptureOutput capture_;
  DataList list_;
  ObjList objects_;
  SnmpErrInfo err_;
};

TEST_F(NullArguments, OfTheMessageListsAreTracedAndRefused) {
  const MscSlotInfo pairs[] = {{3, 2}};
  const u16 slots[] = {3};
  const u8 payload[] = {1, 2, 3, 4};
  MscSlotInfo out[kMscSlots] = {};
  u16 count = 0;
  u8* memory = nullptr;
  EXPECT_EQ(refused({vCreateDataNode(nullptr, 1, 4),
                     vCreatePortDataNode(nullptr, 0, 3, 1, 4),
                     vCreatePortDataNode(list_, 0, 3, 0, 4),
                     vCreatePortDataNode(list_, 0, 3, 1, 3),
                     vCreateSlotDataNode(nullptr, pairs, 1, 1),
                     vCreateSlotDataNode(list_, nullptr, 1, 1),
                     vCreateSlotDataNode(list_, pairs, 0, 1),
                     vCreateSlotDataNode(list_, pairs, 1, 0),
                     nSetDataList(nullptr, 4, list_),
                     nSetDataList(payload, 4, nullptr),
                     nSetDataList(payload, 0, list_),
                     vMemAlloc(nullptr, 4),
                     vMemAlloc(&memory, 0),
                     vBuildMscPacketND(nullptr, 1, 0, list_),
                     vBuildMscPacketS(3, 1, 0, nullptr, 4, list_),
                     vBuildMscPacketI(3, 1, 0, nullptr, 4, list_),
                     vBuildMscPacketSX(3, 1, 0, payload, 3, list_),
                     vBuildMscPacketD(nullptr, 1, 1, 0, payload, 4, list_),
                     vBuildMscPacketD(slots, 1, 1, 0, nullptr, 4, list_),
                     vBuildMscPacketD(slots, 1, 1, 0, payload, 0, list_),
                     vSetMscSlotInfo(nullptr, out, &count),
                     vSetMscSlotInfo(list_, nullptr, &count),
                     vSetMscSlotInfo(list_, out, nullptr),
                     vRecvMscPacket(nullptr, list_),
                     vRecvMscPacket(list_, nullptr)}),
            "25/25");
  EXPECT_EQ(lstCount(list_), 0);
  EXPECT_EQ(vFreeMem(nullptr) + vFreeMem(&memory) + vFreeMscRecvList(nullptr) + vFreeMscRecvList(list_), 0);
  vFreeDataNode(list_, nullptr);
  vFreeDataList(nullptr);
  ASSERT_EQ(vMemAlloc(&memory, 1), 0);
  EXPECT_EQ(vFreeMem(&memory), 0);
  EXPECT_EQ(memory, nullptr);
  ASSERT_EQ(vCreateSlotDataNode(list_, pairs, 1, 5), 0);
  EXPECT_EQ(recordOf<u8>(lstFirst(list_))[45], 0);
  EXPECT_EQ(static_cast<DataNode*>(lstFirst(list_))->dataLen, 32 + 4 + 2 * 5U);
  EXPECT_EQ(vCreatePortDataNode(list_, 0, 3, 1, 4), 0) << "room for the location alone";
  for (const u32 failing : {1, 2, 3}) {  // the node, its data, and the second node
    host::failNth(host::Fault::alloc, failing);
    EXPECT_EQ(refused({vCreatePortDataNode(list_, 0, 3, 2, 4)}), "1/1");
    host::clearFaults();
  }
}

TEST_F(NullArguments, OfThePortListsAreTracedAndRefused) {
  const std::vector<u8> wire(24, 1);
  const Location location{3, 7};
  std::vector<u8> out(24);
  Location parsed;
  u32 count = 0, length = 0;
  EXPECT_EQ(refused({nSetPortObjList(nullptr, 267, 4, list_),
                     nSetPortObjDataList(nullptr, list_),
                     nSetPortObjDataList(wire.data(), nullptr),
                     vExtendPOTSPortList(nullptr, 600),
                     nExtendPortObjList(nullptr),
                     nParsePortLocation(WireIn(wire).first(19), &parsed),
                     vParsePOTSPortLocationCode(wire, nullptr),
                     vParsePOTSPortLocation(WireIn(wire).first(3), 600, &count, list_),
                     nParsePortLocationHandle(wire, 267, 4, nullptr, list_),
                     nParsePortLocationHandle(wire, 267, 4, &count, nullptr),
                     nEncodePortLocation(nullptr, out, &length),
                     nEncodePortLocation(&location, out, nullptr),
                     nEncodePortLocation(&location, WireOut(out).first(19), &length),
                     nEncodePortLocationHandle(nullptr, out, &length),
                     nEncodePortLocationHandle(list_, out, nullptr),
                     nEncodePortLocationHandle(list_, WireOut(out).first(3), &length),
                     vCheckPOTSPortLocation(2839, 61, nullptr, &err_),
                     vCheckPOTSPortLocationHandle(2839, 61, nullptr, &err_),
                     nCheckPortLocationHandle(nullptr, 3092, &err_),
                     nGetCurrentVoiceSlotNo(3092, nullptr, nullptr)}),
            "20/20");
  EXPECT_EQ(vIsOBJMValid(2839, 61, 3, 1, nullptr), 0);
  EXPECT_EQ(refused({vSetObjManageData(0, nullptr), vGetObjManageData(0, nullptr), nSetObjManageData(0, 0, nullptr),
                     nGetObjManageData(0, 0, nullptr), vGetObjManageDataUnit(3, 1, 600, 267, 0, 4, nullptr),
                     vGetObjManageDataHandle(0, 267, 4, nullptr, list_)}),
            "6/7");
  EXPECT_EQ(
      refused({vGetSlotObjManageDataHandle(4, 267, 4, list_), vGetSlotObjManageDataHandleEx(4, 600, 267, 4, list_),
               nGetSlotObjManageDataHandle(4, 267, 0, 4, list_)}),
      "3/3");
  EXPECT_EQ(vParsePOTSPortLocationCode(wire, &parsed), 0);
  EXPECT_EQ(parsed.slot, 0x0101);
  EXPECT_EQ(nGetCurrentVoicePortList(3100, 267, 4, list_), -1) << "no card is up";
  ASSERT_EQ(nGetCurrentVoicePortList(3092, 267, 4, list_), 0);
  EXPECT_EQ(lstCount(list_), 64);
  EXPECT_EQ(static_cast<DataNode*>(lstLast(list_))->slot * 100 + static_cast<DataNode*>(lstLast(list_))->port, 532);
}

TEST_F(NullArguments, OfTheFeedValuesAreRefused) {
  const std::vector<u8> wire(64);
  std::vector<u8> out(64);
  PotsFeed feed;
  u32 count = 0, length = 0;
  EXPECT_EQ(
      refused({vparse_pots_voltcurrent_code(WireIn(wire).first(59), &feed), vparse_pots_voltcurrent_code(wire, nullptr),
               vmsc_encode_pots_voltcurrent(nullptr, out, &length), vmsc_encode_pots_voltcurrent(&feed, out, nullptr),
               vmsc_encode_pots_voltcurrent(&feed, WireOut(out).first(59), &length),
               vencode_pots_voltcurrent(nullptr, out, &length),
               vparse_set_pots_voltcurrent(WireIn(wire).first(3), &count, list_),
               vparse_set_pots_voltcurrent(wire, nullptr, list_), vparse_set_pots_voltcurrent(wire, &count, nullptr),
               vencode_pots_voltcurrent_handle(nullptr, out, &length),
               vencode_pots_voltcurrent_handle(list_, out, nullptr),
               vencode_pots_voltcurrent_handle(list_, WireOut(out).first(3), &length),
               vcheck_pots_voltcurrent(nullptr, &err_), vcheck_pots_voltcurrent(&feed, nullptr),
               vcheck_pots_voltcurrent_handle(nullptr, &err_)}),
      "15/0");
}

// A write of records or ports: no error to fill; no list, or none of it; more records than a request may have.
TEST_F(NullArguments, OfWritesAreRefused) {
  u16 id = 3;
  EXPECT_EQ(set_data_port_enable(nullptr, objects_, 0) + set_data_port_enable(&err_, nullptr, 1), -2);
  EXPECT_EQ(set_data_port_enable(&err_, nullptr, kNoCount), 0);
  EXPECT_EQ(attachPorts(adslLineKind, nullptr, objects_, 0) + attachPorts(adslLineKind, &err_, nullptr, 1), -2);
  EXPECT_EQ(attachPorts(adslLineKind, &err_, nullptr, kNoCount), 0);
  // The default profile, which is checked and stays as it is.
  std::vector<AdslPrfRecord> records(1026);
  for (AdslPrfRecord& record : records) fillDefaults(adslLineKind, &record);
  EXPECT_EQ(writeBatch(adslLineKind, nullptr, records.data(), 1) + writeBatch(adslLineKind, &err_, nullptr, 1) +
                writeEach(adslLineKind, nullptr, records.data(), 1) + writeEach(adslLineKind, &err_, nullptr, 1) +
                writeBatch(adslLineKind, &err_, records.data(), 1026) +
                writeEach(adslLineKind, &err_, records.data(), 1026),
            -6);
  EXPECT_EQ(
      writeBatch(adslLineKind, &err_, records.data(), 1025) + writeEach(adslLineKind, &err_, records.data(), 1025), 0);
  EXPECT_EQ(writeBatch(adslLineKind, &err_, records.data(), kNoCount) +
                writeEach(adslLineKind, &err_, records.data(), kNoCount),
            0);
  EXPECT_EQ(deleteBatch(adslLineKind, nullptr, &id, 1) + deleteBatch(adslLineKind, &err_, nullptr, 1), -2);
  EXPECT_EQ(deleteBatch(adslLineKind, &err_, &id, kNoCount), 0);
  std::vector<AlarmPrfRecord> alarms(22);
  for (AlarmPrfRecord& alarm : alarms) fill_alarm_prf_dft_para(&alarm);
  EXPECT_EQ(set_alarm_prf(nullptr, alarms.data(), 1) + set_alarm_prf(&err_, nullptr, 1) +
                set_alarm_prf(&err_, alarms.data(), 22) + delete_spc_alarm_prf(nullptr, &id, 1) +
                delete_spc_alarm_prf(&err_, nullptr, 1),
            -5);
  EXPECT_EQ(set_alarm_prf(&err_, alarms.data(), 21), 0);
  EXPECT_EQ(set_alarm_prf(&err_, nullptr, kNoCount), 0);
}

TEST_F(NullArguments, TheOptionOfACheckIsTheMessages) {
  std::string options;
  for (const u16 id : std::initializer_list<u16>{2838, 2839, 2840, 2841, 2842, 2843, 2844, 2848}) {
    u32 option = 0;
    options += vSetObjCheckOption(id, &option) == 0 ? option == 0x10000000   ? "a"
                                                      : option == 0x60000000 ? "u"
                                                                             : "?"
                                                    : "-";
  }
  for (const u16 id : std::initializer_list<u16>{3072, 3073, 3092, 3093, 3094, 3095, 3096, 3108, 3109, 2843, 2844}) {
    u32 option = 0;
    options += nSetObjCheckOption(id, &option) == 0 ? option == 0x10000000   ? "a"
                                                      : option == 0x60000000 ? "u"
                                                                             : "?"
                                                    : "-";
  }
  EXPECT_EQ(options,
            "-a-auu-u"
            "-aauu-uu--u");
  EXPECT_EQ(vSetObjCheckOption(2839, nullptr) + nSetObjCheckOption(3092, nullptr), -2);
  EXPECT_EQ(vCheckSlotNoX(3, 62), 0);
  EXPECT_EQ(vCheckSlotNoX(3, 63), -1);
}

TEST_F(NullArguments, OfTheObjectModelAreRefused) {
  ObjIndex port, father;
  ASSERT_EQ(SlotNoPortConvertObjIndex(3, 7, 0, &port), 0);
  EXPECT_EQ(isObjTypeExist(600), 1);
  ASSERT_EQ(GetFatherIndexForSonIndex(&port, &father), 0);
  EXPECT_EQ(father.level * 100 + father.addr[1] * 10 + father.addr[2], 230);
  ASSERT_EQ(GetFatherIndexForSonIndex(&father, &port), 0);
  EXPECT_EQ(port.level, 1);
  EXPECT_EQ(GetFatherIndexForSonIndex(&port, &father), -1) << "the system has none";
  EXPECT_EQ(GetFatherIndexForSonIndex(nullptr, &father) + GetFatherIndexForSonIndex(&father, nullptr), -2);
  u16 amount = 0, slot = 0, other = 0, type = 0;
  EXPECT_EQ(getSlotPortNumberByType(62, 0, 600, nullptr), -1);
  EXPECT_EQ(getSlotPortNumberByType(62, 1, 600, &amount), -1);
  EXPECT_EQ(getSlotPortNumberByType(62, 0, 601, &amount), -1);
  EXPECT_EQ(getSlotPortNumberByType(9999, 0, 600, &amount), -1);
  EXPECT_EQ(getSnmpCardMaxPortNumberByType(62, 600, nullptr), -1);
  EXPECT_EQ(getSnmpCardMaxPortNumberByType(62, 601, &amount), -1);
  EXPECT_EQ(getSnmpCardMaxPortNumberByType(9999, 600, &amount), -1);
  EXPECT_EQ(getSnmpCardMaxPortNumberByType(63, 600, &amount), 0);
  EXPECT_EQ(amount, 64);
  EXPECT_EQ(IsPortNoValidForCardType(9999, 0, 1) + IsPortNoValidForCardType(62, 0, 33), 0);
  EXPECT_EQ(IsPortNoValidForCardType(62, 1, 32), 1);
  EXPECT_EQ(sysGetSlotAuthedType(3, nullptr, &other), -1);
  EXPECT_EQ(ObjIndexConvertSlotNoPort(&slot, &other, &type, nullptr), -2);
  EXPECT_EQ(isObjAuthed(nullptr), 0);
  std::string authorised;
  for (const ObjIndex& object : std::initializer_list<ObjIndex>{
           {1, 1, {1}}, {62, 2, {1, 3}}, {62, 2, {1, 4}}, {600, 3, {1, 3, 1}}, {600, 3, {1, 4, 1}}, {62, 4, {1, 3}}}) {
    authorised += std::to_string(isObjAuthed(&object)) + std::to_string(isObjAndTypeMatch(&object, 62)) + " ";
  }
  EXPECT_EQ(authorised, "1-1 10 0-1 1-1 0-1 0-1 ");
  const ObjIndex ofNoCard{600, 3, {1, 4, 1}}, unlevelled{1, 4, {1}};
  EXPECT_EQ(GetFatherIndexForSonIndex(&ofNoCard, &father), -1);
  EXPECT_EQ(InCheckObjBaseErr(nullptr, 0, &err_) + InCheckObjBaseErr(&ofNoCard, 0, nullptr) +
                InCheckObjExtErr(1, 1, nullptr, 0, &err_) + InCheckObjExtErr(1, 1, &ofNoCard, 0, nullptr) +
                checkObjErr(1, 1, nullptr, 0, &err_) + checkObjErr(1, 1, &ofNoCard, 0, nullptr) +
                checkObjErr(1, 1, &unlevelled, 0, &err_) + parseSection("1", nullptr) +
                CliInputConvertObjIndex(nullptr, objects_) + CliInputConvertObjIndex("1", nullptr) +
                insert_sort_list(nullptr, objects_, CliAddrFun) + insert_sort_list(&port, nullptr, CliAddrFun) +
                insert_sort_list(&port, objects_, nullptr),
            -13);
  const CliAddr addresses[] = {{3, 3, 7, 1}, {3, 3, 7, 2}, {3, 3, 8, 0}, {3, 5, 1, 0}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(CliAddrFun(&addresses[i], &addresses[i + 1]), -1);
    EXPECT_EQ(CliAddrFun(&addresses[i + 1], &addresses[i]), 1);
  }
  Vty vty;
  const CliAddr slot4{1, 4, 0, 0}, third{3, 3, 1, 1};
  EXPECT_EQ(trans_cli_addr_2objlabel(&vty, nullptr, &port) + trans_cli_addr_to_obj_label(&vty, &slot4, nullptr) +
                trans_cli_addr_2objlabel(&vty, &third, &port) + trans_cli_addr_2objlabel(&vty, &slot4, &port),
            -4);
  EXPECT_EQ(vty.text,
            "data or objIndex is NULL.\r\ndata or objIndex is NULL.\r\nlevel 3 err.\r\n"
            "func trans_cli_addr_2objlabel SlotNoPortConvertObjIndex err.\r\n");
  const u16 types[] = {600};
  ObjIndex bad{0, 0, {1}};
  EXPECT_EQ(ForEachTargetTree(nullptr, objects_, 0, types, 1) + ForEachTargetTree(&port, nullptr, 0, types, 1) +
                ForEachTargetTree(&port, objects_, 0, nullptr, 1) + ForEachTargetTree(&bad, objects_, 0, types, 1),
            -4);
  bad.level = 4;
  EXPECT_EQ(ForEachTargetTree(&bad, objects_, 0, types, 1), -1);
  EXPECT_EQ(InForEachTargetTree(nullptr, objects_, 0, types, 1), -1);
  EXPECT_EQ(ForEachTargetTree(&port, objects_, 0, types, 0), 0);
  EXPECT_EQ(lstCount(objects_), 2 + 64) << "no types: both slots, and all ports";
  EXPECT_EQ(recorder_.take().size(), 8U) << "log lines";
}

TEST_F(NullArguments, OfListsAndFramesAreRefused) {
  const ObjIndex low{600, 3, {1, 3, 7}}, high{600, 3, {1, 3, 8}}, other{600, 3, {1, 5, 1}};
  EXPECT_EQ(compare_adsl_slot_no(nullptr, &low) + compare_adsl_slot_no(&low, nullptr), -2);
  EXPECT_EQ(compare_adsl_slot_no(&high, &low) * 100 + compare_adsl_slot_no(&low, &high) * 10 +
                compare_adsl_slot_no(&other, &high) - compare_adsl_slot_no(&low, &low),
            101);
  ObjIndex target;
  ASSERT_EQ(SlotNoPortConvertObjIndex(3, 0, 0, &target), 0);
  const u16 types[] = {600};
  ASSERT_EQ(ForEachTargetTree(&target, objects_, 0, types, 1), 0);
  const Comparator differs = [](const void* key, const void* cell) {
    return std::memcmp(key, cell, sizeof(ObjIndex)) == 0 ? 0 : 1;
  };
  NODE* cell = find_list_custom(&low, objects_, differs);
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(static_cast<ObjIndex*>(GetNextObj(&cell))->addr[2], 8);
  EXPECT_EQ(find_list_custom(&other, objects_, differs), nullptr);
  EXPECT_EQ(find_list_custom(&low, nullptr, differs), nullptr);
  EXPECT_EQ(find_list_custom(&low, objects_, nullptr), nullptr);
  cell = lstLast(objects_);
  EXPECT_EQ(GetNextObj(&cell), nullptr);
  EXPECT_EQ(GetNextObj(nullptr), nullptr);
  EXPECT_EQ(insert_sort_list_by_index(nullptr, objects_), -2);

  u8 bytes[32] = {};
  char text[16];
  u32 length = sizeof bytes;
  u32 address = 0;
  LocalIP ip;
  EXPECT_EQ(get_value_float_to_int(nullptr, text) + get_value_float_to_int(bytes, nullptr), -48);
  EXPECT_EQ(get_gepon_slot_msan_state_base(0, 3, 2825, nullptr, 0, bytes, &length) +
                get_gepon_slot_msan_state_base(0, 3, 2825, bytes, 32, bytes, nullptr) +
                get_gepon_slot_msan_state_base_ex(0, 3, 2825, bytes, 32, nullptr, &length),
            -3);
  EXPECT_EQ(SnmpMsgRegister(nullptr) + getSnmpMsgInfo(3087, nullptr) + setSnmpMsgFragInfo(3087, nullptr), -3);
  SnmpMsgEntry entry;
  EXPECT_EQ(getSnmpMsgInfo(1, &entry) + setSnmpMsgFragInfo(1, &entry) + clearSnmpMsgFragInfo(1), -3);
  EXPECT_EQ(getSnmpMsgInfo(3087, &entry) + setSnmpMsgFragInfo(3087, &entry) + clearSnmpMsgFragInfo(3087), 0);
  buildSnmpErrRetPkt(nullptr, &length, 1, &err_);
  buildSnmpErrRetPkt(bytes, nullptr, 1, &err_);
  EXPECT_EQ(recorder_.take().size(), 12U) << "log lines";
  EXPECT_EQ(refused({nStringIP2ULongIP(nullptr, &address), nStringIP2ULongIP("1.2.3.4", nullptr),
                     nULongIP2StringIP(1, nullptr), nParseGeneralIP2LocalIP(bytes, nullptr, &length),
                     nParseLocalIP2GeneralIP(bytes, WireOut(), &length), nEncodeLocalIP(nullptr, bytes, &length),
                     nEncodeLocalIP2GeneralIP(&ip, bytes, nullptr), nULongLong2Float10(1, nullptr)}),
            "8/8");
  EXPECT_EQ(nParseGeneralIP2LocalIP(WireIn(bytes).first(11), &ip, &length), -1);
  EXPECT_EQ(nParseLocalIP2GeneralIP(WireIn(bytes).first(23), bytes, &length), -1);
  EXPECT_EQ(refused({nCheckMSCCfmLength(nullptr, 0, 1), nCheckMSCCfmLength(list_, 0, 0),
                     nBuildSnmpCfmPacket(list_, 0, bytes, &length), nBuildSnmpCfmPacketEx(list_, 1, 0, bytes, &length),
                     vBuildSnmpCfmPacketS(list_, 0, bytes, &length)}),
            "5/5");
}

// Profiles of ports as the platform may ask for them: what is attached is noticed, and cleared with its card.
TEST_F(NullArguments, AttachmentsOfASlotAreCleared) {
  ObjIndex port;
  ASSERT_EQ(SlotNoPortConvertObjIndex(5, 2, 0, &port), 0);
  const u16 four = 4;
  for (const auto& [attribute, clear] :
       {std::pair<u32, int (*)(u16)>{281, clr_adsl_prf_attach}, {282, pvc_att_dft_prf}}) {
    ASSERT_EQ(setObjAttrDataByCondition(&port, attribute, &four, 0, 2), 0);
    EXPECT_EQ(clear(4), -1) << "no card";
    EXPECT_EQ(clear(5), 0);
    u16 id = 9;
    EXPECT_EQ(getObjAttrDataByCondition(&port, attribute, &id, 0, 2, 0), 0);
    EXPECT_EQ(id, 0);
  }
  SnmpErrInfo err;
  u16 id = 0;
  EXPECT_EQ(check_adsl_prf_attached(&err, 4) + check_pvc_prf_attached(&err, 4), 0);
  EXPECT_EQ(get_adsl_prf_id_by_name(&err, &id, "none"), -1);
}

}  // namespace
