#include "combo/port/combo_port_state.h"

#include <cstring>

#include "common/card_exchange.h"
#include "common/commands.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "platform/log.h"
#include "platform/wrappers.h"

static constexpr u32 kArea = 32, kItems = 36;  // of a request: where its count and its ports stand
static constexpr u32 kAnswer = 36;             // of a reply: where the card's answer stands
static constexpr u32 kShownAnswer = 400000;    // room for an answer that is shown

enum PortReadError : int { kNoRoom = -22, kTooManyPorts = -32, kTooFewBytes = -33 };

// --- Managers ---

static int answerCode(const SnmpCall& call, int code) {
  SnmpErrInfo err;
  reject(&err, code);
  return answerError(call.id, err, call.reply, call.replyLen);
}

static int snmpRead(const PortRead& read, const SnmpCall& call) {
  if (call.lastFlagOut == nullptr || call.data == nullptr || call.reply == nullptr || call.replyLen == nullptr)
    return -1;
  const WireIn frame(call.data, call.length > 0 ? static_cast<u32>(call.length) : 0);
  if (frame.size() < kItems) return answerCode(call, kTooFewBytes);
  const u32 count = getNumber(&frame[kArea], 4);
  if (count > kMostAskedPorts) return answerCode(call, kTooManyPorts);
  // The slot is read from the first port also when none is counted.
  if (frame.size() < kItems + 2 || frame.size() - kItems < kAskedPort * count) return answerCode(call, kTooFewBytes);
  const u16 slot = static_cast<u16>(getNumber(&frame[kItems], 2));
  u32 length = read.mostReply - kAnswer;
  // What a card leaves of the room is nothing that was there before. A buffer for pieces is zeroed by the gateway.
  std::memset(call.reply, 0, read.mostReply <= kMaxPacket ? read.mostReply : kAnswer);
  const int code = read.exchange(static_cast<u8>(gModuleId_Msan), slot, call.id, &frame[kArea], 4 + kAskedPort * count,
                                 call.reply + kAnswer, &length);
  if (code < 0) {
    SnmpErrInfo err;
    reject(&err, code, {slot});
    return answerError(call.id, err, call.reply, call.replyLen);
  }
  putNumber(call.reply, 4, 1);
  *call.replyLen = kAnswer + length;
  return 0;
}

// --- Operators ---

// A line's state at a terminal. Slot and port are numbers of a command, cut to their width.
static int showRead(const PortRead& read, Vty* vty, const char* slotWord, const char* portWord) {
  const u16 slot = static_cast<u16>(bep_atoiEx(slotWord));
  const OnePortRequest request(slot, static_cast<u16>(bep_atoiEx(portWord)));
  const PoolBytes answer(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, kShownAnswer, __FILE__, __LINE__)));
  if (answer == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "OMS_MALLOC  outbuf(0x%08x) failed!\r\n", kShownAnswer);
    return kNoRoom;
  }
  std::memset(answer.get(), 0, kShownAnswer);
  u32 length = kShownAnswer;
  const int code = get_gepon_slot_msan_state_base(static_cast<u8>(gModuleId_Msan), slot, read.id, request.bytes,
                                                  sizeof request.bytes, answer.get(), &length);
  if (code != 0) {
    vty_out(vty, "get status failed, ret = %d.\r\n", code);
    return -1;
  }
  showPortBlocks(vty, read.block, WireIn(answer.get(), length));
  return 0;
}

// What a word of a command asks for.
struct ReadWord {
  const char* word;
  const PortRead& read;
};

static int showWord(std::span<const ReadWord> words, Vty* vty, int argc, char** argv) {
  if (argc != 3) return -1;
  for (const ReadWord& row : words) {
    if (bep_StrNCmp(argv[0], row.word, bep_StrLen(row.word)) == 0) return showRead(row.read, vty, argv[1], argv[2]);
  }
  vty_out(vty, "Not include this function.\n\r");
  return 0;
}

static int show_combo_port_state_fun(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr ReadWord words[] = {
      {"bit_alloc", bitAlloc}, {"gain_map", gainMap}, {"dsl_status", dslStatus}, {"drop_reason", dropReason}};
  return showWord(words, vty, argc, argv);
}

static int show_combo_port_deltTest_fun(const CommandElement*, Vty* vty, int argc, char** argv) {
  static constexpr ReadWord words[] = {{"status", deltStatus}, {"hlog", deltHlog},    {"hlin", deltHlin},
                                       {"qln", deltQln},       {"snr_us", deltSnrUp}, {"snr_ds", deltSnrDown}};
  return showWord(words, vty, argc, argv);
}

static int show_combo_port_seltResult_fun(const CommandElement*, Vty* vty, int argc, char** argv) {
  return argc == 2 ? showRead(seltResult, vty, argv[0], argv[1]) : -1;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show port [bit_alloc|gain_map|dsl_status|drop_reason]slot <slotno> port <portNo>",
            show_combo_port_state_fun, "state of a DSL line, asked of its card"),
    command(CONFIG_NODE, "show port DELT_TEST [status|hlog|hlin|qln|snr_us|snr_ds] slot <slotno> port <portNo>",
            show_combo_port_deltTest_fun, "result of a line test from both ends"),
    command(CONFIG_NODE, "show port SELT_test_result slot [<slotno>] port <portNo>", show_combo_port_seltResult_fun,
            "result of a line test from this end"),
};
void install_gepon_msan_port_get_state_element() { installCommands(commands); }

// --- Registration ---

template <const PortRead& read>
static int readGet(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpRead(read, {id, last, data, length, reply, replyLen});
}

template <const PortRead&... reads>
static int registerReads() {
  for (const SnmpMsgReg& message :
       {SnmpMsgReg{reads.id, {0, 0}, nullptr, readGet<reads>, reads.mostReply, reads.name}...}) {
    if (SnmpMsgRegister(&message) != 0)
      ulogPrintf(gModuleId_Msan, kLogDebug, "register %s failed!\r\n", message.description);
  }
  return 0;
}

void register_portstate_msg_snmp() { registerReads<dslStatus, bitAlloc, gainMap, dropReason>(); }
void register_portdelt_test_msg_snmp() {
  registerReads<deltStatus, deltHlog, deltHlin, deltQln, deltSnrUp, deltSnrDown>();
}
void register_portselt_test_msg_snmp() { registerReads<seltResult>(); }
