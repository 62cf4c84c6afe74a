#include "voice/status/msan_112test.h"

#include <cstring>

#include "common/card_exchange.h"
#include "common/interface_list.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "platform/cards.h"
#include "platform/log.h"
#include "voice/common/ngn_view.h"
#include "voice/common/port_units.h"
#include "voice/common/voice_packets.h"

// --- The order ---

static constexpr u16 kOrderMessage = 2848;

static constexpr Field fields[] = {
    field<&Test112::mode>({.offset = 0, .allowed = {{0, 1}}, .code = 65345, .complaint = "invalid 112 test mode: %d"}),
    field<&Test112::type>({.offset = 1}),
};
static constexpr Record shape(66, fields);

int vcheck_test112(const Test112* record, SnmpErrInfo* err) {
  if (checkRecord(fields, record, err) != 0) return -1;
  if (record->type < 2) return 0;
  const u16 type = record->type;  // told in two bytes
  vSetErrorInfo(65344, &type, sizeof type, err);
  trace("invalid 112 test type: %d", type);
  return -1;
}

static constexpr PortUnits ports = {.id = kOrderMessage,
                                    .shape = &shape,
                                    .bytes = sizeof(Test112),
                                    .valid = vIsOBJMValid,
                                    .check = onRecord<vcheck_test112>};

int vbuild_test112_mscpacket(LIST* list) {
  if (list == nullptr) {
    trace("snmp parse list para is NULL");
    return -1;
  }
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    u8 order[4 + kLocation + 66] = {};
    putNumber(order, 4, 1);
    putNumber(order + 4, 2, node->slot);
    putNumber(order + 6, 2, node->port);
    encodeRecord(fields, node->data, order + 4 + kLocation);
    const int result = dm_MakeCmdPkt_GEPON(node->slot, kOrderMessage, order, sizeof order);
    if (result == 0) continue;
    ulogPrintf(gModuleId_Msan, kLogDebug, "encode test 112 para failed. ret=%d dmpkglen =%d", result,
               static_cast<int>(sizeof order));
    return -1;
  }
  return 0;
}

static int vsnmp_test112(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, nullptr, data, length, reply, replyLen};
  const Where where = Where::here();
  if (beginRequest(kOrderMessage, call, Asks::orders, where) != 0) return -1;
  SnmpErrInfo err;
  WireIn area;
  DataList list;
  if (checkPortsFrame(ports, data, length, area, &err) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  if (parsePorts(ports, area, list) != 0) return answerFailed(call, "parse configuration failed", where);
  if (checkPorts(ports, list, &err) != 0) return answerError(call, err, "check configuration failed", where);
  if (vbuild_test112_mscpacket(list) != 0) return answerFailed(call, "build MSC msg 0x%04X failed", where);
  return answerSuccess(call, 0);
}

// From an operator's list of addresses on; the ports are checked during recovery, too. 0, or -1 with the failure's
// code.
static int vdistrib_test112(LIST* addresses, const Test112* record, SnmpErrInfo* err) {
  DataList list;
  if (nSetPortObjList(addresses, kOrderMessage, sizeof *record, list) != 0 || nSetPortObjDataList(record, list) != 0 ||
      checkPorts(ports, list, err) != 0)
    return -1;
  if (vbuild_test112_mscpacket(list) == 0) return 0;
  vSetErrorInfo(kBuildFailed, err);
  return -1;
}

static int say(Vty* vty, const char* words) {
  vty_out(vty, " \r\n %s. \r\n", words);
  return -1;
}

static int cli_ctrl_test_112_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr Word modes[] = {{"inline", 1}, {"outline", 0}};
  static constexpr Word types[] = {{"force", 1}, {"unforce", 0}};
  if (argc != 3) return say(vty, "invalid parameter quantity");
  const auto mode = valueOf(modes, argv[0]);
  if (!mode) return say(vty, "invalid test 112 mode option");
  const auto type = valueOf(types, argv[1]);
  if (!type) return say(vty, "invalid test 112 mode type option");
  const Test112 record{static_cast<u8>(*mode), static_cast<u8>(*type)};
  ObjList addresses;
  if (CliInputConvertObjIndex(argv[2], addresses) != 0) {
    vty_out(vty, "\r\n parse interface string %s failed. \r\n", argv[2]);
    return -1;
  }
  SnmpErrInfo err;
  if (vdistrib_test112(addresses, &record, &err) != 0) {
    vty_out(vty, "\r\n control TEST 112 failed(%d). \r\n", static_cast<i16>(err.errCode));
    return -1;
  }
  vty_out(vty, "\r\n control TEST 112 successfully. \r\n");
  return 0;
}

// --- The results ---

// Numbers of an answer are shown as the processor keeps them; a manager gets all of it as it came.
struct TestResult {
  u16 id;
  const char* handler;
  const char* text;
  const char* title;
  char rule, separator;  // below the title, below the port
  u32 width;             // of both
  bool placeAnswered;    // the port is shown as it was answered, not as it was asked for
  u32 record;            // bytes of a port's result
  std::span<const ShownField> fields;
  const char* words;

  constexpr u32 mostReply() const { return 4 + ports.maximum * record; }
};

// clang-format off
static constexpr Word typeWords[] = {{"No Force", 0}, {"Force", 1}};
static constexpr Word statusWords[] = {{"Waiting", 1}, {"Testing", 2}, {"Finish", 3}};
static constexpr Word resultWords[] = {{"Success", 0}, {"Refused", 1}, {"N/A", 255}};
static constexpr Word reasonWords[] = {
    {"Another port is being tested", 1}, {"No POTS card", 2}, {"No KORA card", 3}, {"N/A", 65535}};
static constexpr Word portWords[] = {
    {"Normal", 0}, {"Bad line insulation", 49}, {"Line broken", 50}, {"Line Mixed", 51}, {"Line ground", 52}, {"Line seton", 53},
    {"Current leak", 54}, {"Phone not hang up", 55}, {"Short circuit", 56}, {"N/A", 65535}};
static constexpr Word normalWords[] = {{"Normal", 0}, {"Abnormal", 1}, {"N/A", 255}};

static constexpr ShownField headFields[] = {
    shownWord("\r\n %-15s %-8s", "Test Type:", 20, 1, typeWords, "Invalid test type"),
    shownWord("\r\n %-15s %-8s", "Test Status:", 21, 2, statusWords, "Invalid test status"),
    shownWord("\r\n %-15s %-8s", "Test Result:", 23, 1, resultWords, "Invalid test result"),
    shownWord("\r\n %-15s %-35s", "Refuse Reason:", 24, 2, reasonWords, "Invalid refuse reason"),
};
static constexpr ShownField outlineFields[] = {
    shownWord("\r\n %-15s %-20s\r\n", "Port Status:", 26, 2, portWords, "Invalid port status"),
    shownText("\r\n %-39s %-16s", "A->GND DC Voltage(V):", 28, 16),
    shownText("\r\n %-39s %-16s", "B->GND DC Voltage(V):", 44, 16),
    shownText("\r\n %-39s %-16s", "A->B DC Voltage(V):", 60, 16),
    shownText("\r\n %-39s %-16s", "A->GND Insulation Resistance(Ohm):", 76, 16),
    shownText("\r\n %-39s %-16s", "B->GND Insulation Resistance(Ohm):", 92, 16),
    shownText("\r\n %-39s %-16s", "A->B Insulation Resistance(Ohm):", 108, 16),
    shownText("\r\n %-39s %-16s", "A->B Polarity Reversal Resistance(Ohm):", 124, 16),
    shownText("\r\n %-39s %-16s", "A->GND Capacitance(pF):", 140, 16),
    shownText("\r\n %-39s %-16s", "B->GND Capacitance(pF):", 156, 16),
    shownText("\r\n %-39s %-16s", "A->B Capacitance(pF):", 172, 16),
    shownText("\r\n %-39s %-16s", "A->GND AC Voltage(V):", 188, 16),
    shownText("\r\n %-39s %-16s", "B->GND AC Voltage(V):", 204, 16),
    shownText("\r\n %-39s %-16s", "A->B AC Voltage(V):", 220, 16),
    shownText("\r\n %-39s %-16s \r\n", "A->B Loop Resistance(Ohm):", 236, 16),
};
static constexpr ShownField inlineFields[] = {
    shownWord("\r\n\r\n %-28s %-10s", "Signal Tone Status:", 26, 1, normalWords, "Invalid signal tone status"),
    shownWord("\r\n %-28s %-10s", "Feeder Voltage Status:", 27, 1, normalWords, "Invalid feeder voltage status"),
    shownWord("\r\n %-28s %-10s", "Loop Current Status:", 28, 1, normalWords, "Invalid loop current status"),
    shownText("\r\n %-28s %-16s", "Loop Current(A):", 29, 16),
    shownText("\r\n %-28s %-16s", "Feeder Voltage(V):", 45, 16),
    shownText("\r\n %-28s %-16s", "Signal Tone Volume(dB):", 61, 16),
    shownText("\r\n %-28s %-16s", "Signal Tone Frequency(Hz):", 77, 16),
    shownText("\r\n %-28s %-16s", "Ringing Current Voltage(V):", 93, 16),
    shownWord("\r\n %-28s %-10s \r\n", "Ringing Current Status:", 109, 2, normalWords, "Invalid ringing current status"),
};
// clang-format on

static constexpr TestResult outlineResult = {
    .id = 2842,
    .handler = "vsnmp_get_test112result_outline",
    .text = "Get test 112 outline result",
    .title = "Outline Test 112 Result",
    .rule = '=',
    .separator = '-',
    .width = 56,
    .placeAnswered = false,
    .record = 316,
    .fields = outlineFields,
    .words = "get outline test 112 result successfully",
};
static constexpr TestResult inlineResult = {
    .id = 2843,
    .handler = "vsnmp_get_test112result_inline",
    .text = "Get test 112 inline result",
    .title = "Inline Test 112 Result",
    .rule = '=',
    .separator = '-',
    .width = 46,
    .placeAnswered = true,
    .record = 173,
    .fields = inlineFields,
    .words = "get inline test 112 result successfully",
};

static void showRule(Vty* vty, char letter, u32 width) {
  vty_out(vty, "\r\n ");
  while (width-- > 0) vty_out(vty, "%c", letter);
}

static void show(Vty* vty, const TestResult& result, int slot, int port, WireIn record) {
  if (result.placeAnswered) {
    slot = static_cast<int>(numberIn(record, 0, 2, ByteOrder::host));
    port = static_cast<int>(numberIn(record, 2, 2, ByteOrder::host));
  }
  vty_out(vty, "\r\n %s", result.title);
  showRule(vty, result.rule, result.width);
  vty_out(vty, "\r\n Slot No: %d, Port No: %d", slot, port);
  showRule(vty, result.separator, result.width);
  showFields(vty, headFields, record, ByteOrder::host);
  showFields(vty, result.fields, record, ByteOrder::host);
  vty_out(vty, "\r\n %s. \r\n", result.words);
}

// Null behind a line that says which buffer there is no memory for.
static PoolBytes bufferOf(u32 size, const char* which, Vty* vty) {
  u8* memory = nullptr;
  if (vMemAlloc(&memory, static_cast<i32>(size)) != 0) vty_out(vty, "\r\n malloc %s error \r\n", which);
  return PoolBytes(memory);
}

static int showResult(const TestResult& result, Vty* vty, int argc, char** argv) {
  if (argc != 2) return say(vty, "invalid parameter quantity");
  const int slot = bep_atoiEx(argv[0]);
  const int port = bep_atoiEx(argv[1]);
  const OnePortRequest asked(static_cast<u16>(slot), static_cast<u16>(port));
  u32 length = 4 + result.record;
  const PoolBytes request = bufferOf(sizeof asked.bytes, "inbuf", vty);
  if (request == nullptr) return -1;
  const PoolBytes answer = bufferOf(length, "outbuf", vty);
  if (answer == nullptr) return -1;
  std::memcpy(request.get(), asked.bytes, sizeof asked.bytes);
  const WireIn record(answer.get() + 4, result.record);
  const int code = get_gepon_slot_msan_state_base(static_cast<u8>(gModuleId_Msan), static_cast<u16>(slot), result.id,
                                                  request.get(), sizeof asked.bytes, answer.get(), &length);
  if (code != 0) {
    vty_out(vty, "\r\n get_gepon_slot_msan_state_base error ret = %d!", code);
    return -1;
  }
  show(vty, result, slot, port, record);
  return 0;
}

static int snmpResult(const TestResult& result, const SnmpCall& call) {
  constexpr u32 kArea = 32, kSlot = 36, kAnswer = 36;
  if (beginRequest(result.id, call, Asks::something, {result.handler, __FILE__, __LINE__}) != 0) return -1;
  const u32 frame = call.length > 0 ? static_cast<u32>(call.length) : 0;
  const WireIn request = WireIn(call.data, frame).subspan(frame > kArea ? kArea : frame);
  const u16 slot = frame >= kSlot + 2 ? static_cast<u16>(getNumber(call.data + kSlot, 2)) : u16{0};
  u32 length = 4 + kMaxLocations * result.record;
  const int code = get_gepon_slot_msan_state_base(static_cast<u8>(gModuleId_Msan), slot, result.id, request.data(),
                                                  static_cast<u32>(request.size()), call.reply + kAnswer, &length);
  if (code < 0) {
    SnmpErrInfo err;
    vSetErrorInfo(65532, &slot, sizeof slot, &err);
    buildSnmpErrRetPkt(call.reply, call.replyLen, call.id, &err);
    return -1;
  }
  putNumber(call.reply, 4, 1);
  std::memset(call.reply + 4, 0, kAnswer - 4);
  *call.replyLen = kAnswer + length;
  return 0;
}

// --- Lists ---

template <const TestResult& result>
static int resultGet(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpResult(result, {id, last, data, length, reply, replyLen});
}
template <const TestResult& result>
static int resultShow(const CommandElement*, Vty* vty, int argc, char** argv) {
  return showResult(result, vty, argc, argv);
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show test 112 outline result slot <slot_no> port <port_no>", resultShow<outlineResult>,
            "electrical values of a POTS pair"),
    command(CONFIG_NODE, "show test 112 inline result interface slotNo <slot_no> portNo <port_no>",
            resultShow<inlineResult>, "values of the service on a POTS line"),
    command(CONFIG_NODE, "set test 112 mode [inline|outline] type [force|unforce] interface <ifStr>",
            cli_ctrl_test_112_func, "start a test of POTS lines"),
};
void install_msan_112test_defun() { installCommands(commands); }

static constexpr SnmpMsgReg messages[] = {
    {kOrderMessage, {0, 0}, vsnmp_test112, nullptr, 0, "112 test"},
    {outlineResult.id, {0, 0}, nullptr, resultGet<outlineResult>, outlineResult.mostReply(), outlineResult.text},
    {inlineResult.id, {0, 0}, nullptr, resultGet<inlineResult>, inlineResult.mostReply(), inlineResult.text},
};
void test112_regsnmp_cmdhandle() {
  for (const SnmpMsgReg& message : messages) registerMessage(message);
}
