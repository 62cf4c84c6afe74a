#include "voice/profiles/dsp_channels.h"

#include <cstring>

#include "common/answer.h"
#include "common/card_exchange.h"
#include "common/commands.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "platform/objects.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_packets.h"

static constexpr u16 kStatusMessage = 2844;
static constexpr u32 kHead = 40;                  // of the reply, with the count of slots
static constexpr u32 kBlock = 22, kChannel = 19;  // bytes of a slot, and of a channel
static constexpr u32 kMostChannels = 256, kMostSlots = 16;
static constexpr u32 kAnswer = kBlock + kChannel * kMostChannels;
static constexpr u32 kCountAt = 24, kChannelsAt = 26;  // in a card's answer

static int failed(SnmpErrInfo* err, u16 code) {
  vSetErrorInfo(code, err);
  return -1;
}

static void putHost(u8* at, u16 value) { std::memcpy(at, &value, sizeof value); }

static bool isPotsSlot(u16 slot) {
  const int card = get_config_card_type(slot);
  return card > 0 && caCheckCardTypeIsMsanPotsCard(static_cast<u16>(card)) == 0;
}

// A card's answer in the zeroed buffer; its length, 0 if there is none that can be read.
static u32 askCard(u16 slot, WireOut answer) {
  const OnePortRequest request(slot, 0);
  std::memset(answer.data(), 0, answer.size());
  u32 length = static_cast<u32>(answer.size());
  const int result = get_gepon_slot_msan_state_base(static_cast<u8>(gModuleId_Msan), slot, kStatusMessage,
                                                    request.bytes, sizeof request.bytes, answer.data(), &length);
  return result < 0 ? 0 : length;
}

// Appends a slot's block. False if the answer does not hold what it counts.
static bool putSlot(Writer& out, u16 slot, WireIn answer, u32 length) {
  const u32 count = static_cast<u32>(numberIn(answer, kCountAt, 2, ByteOrder::host));
  if (length < kBlock || count > kMostChannels || length < kBlock + kChannel * count) return false;
  u8* block = out.skip(kBlock + kChannel * count);
  if (block == nullptr) return false;
  std::memset(block, 0, kBlock + kChannel * count);
  putHost(block, slot);
  putHost(block + 20, static_cast<u16>(count));
  for (u32 i = 0; i < count; ++i) {
    const u32 from = kChannelsAt + kChannel * i;  // of the last channel an answer may lack the bytes that nobody reads
    std::memcpy(block + kBlock + kChannel * i, answer.data() + from, 3);
  }
  return true;
}

int get_dsp_channel_status(WireOut out, u32* length, SnmpErrInfo* err) {
  u32 slots[100];
  u32 count = 0, maximum = 0;
  if (ddGetServeSlotList(slots, 100, &count) != 0 || ddGetMaxSlotNum(&maximum) != 0) return failed(err, kStepFailed);
  if (count > maximum) return failed(err, 65534);
  u8* memory = nullptr;
  if (vMemAlloc(&memory, kAnswer + kChannel) != 0) return failed(err, kStepFailed);
  const PoolBytes owner(memory);
  const WireOut answer(memory, kAnswer);
  Writer to(out);
  u8* head = to.skip(kHead);
  u32 answered = 0;
  for (u32 i = 0; i < count && answered < kMostSlots; ++i) {
    const u16 slot = static_cast<u16>(slots[i]);
    if (!isPotsSlot(slot)) continue;
    const u32 got = askCard(slot, answer);
    if (got != 0 && putSlot(to, slot, answer, got)) ++answered;
  }
  if (head == nullptr) return failed(err, kStepFailed);
  std::memset(head, 0, kHead);
  putNumber(head, 4, 1);
  std::memcpy(head + 36, &answered, sizeof answered);
  *length = to.length();
  return 0;
}

static int snmp_get_dsp_channel_status(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, last, data, length, reply, replyLen};
  const Where where = Where::here();
  if (beginRequest(kStatusMessage, call, Asks::nothing, where) != 0) return -1;
  SnmpErrInfo err;
  u32 bytes = 0;
  if (get_dsp_channel_status(WireOut(reply, kDspStatus), &bytes, &err) != 0)
    return answerError(call, err, "get DSP channel status failed", where);
  return answerSuccess(call, bytes - 4);
}

// The slots of a status, one to a line. 0, or -1 behind a line that says what is wrong with it.
static int showSlots(Vty* vty, WireIn status) {
  const u32 slots = static_cast<u32>(numberIn(status, 36, 4, ByteOrder::host));
  if (slots > kMostSlots) {
    vty_out(vty, "\r\n get dsp channels status failed. Item(%d) err \r\n", static_cast<int>(slots));
    return -1;
  }
  u32 at = kHead;
  for (u32 i = 0; i < slots; ++i) {
    const int slot = static_cast<int>(numberIn(status, at, 2, ByteOrder::host));
    const u32 channels = static_cast<u32>(numberIn(status, at + 20, 2, ByteOrder::host));
    u32 served = 0;
    if (ddIsServeBoardSlot(static_cast<u32>(slot), &served) != 0) {
      vty_out(vty, "\r\n get dsp channels status failed. slot(%d) err! \r\n", slot);
      return -1;
    }
    vty_out(vty, "\r\n slot: %d", slot);
    if (channels > kMostChannels) return refuse(vty, "get dsp channels status failed");
    at += kBlock + kChannel * channels;
  }
  return 0;
}

static int cli_show_dsp_channels_status_func(const CommandElement*, Vty* vty, int, char**) {
  u8* status = nullptr;
  if (vMemAlloc(&status, kDspStatus) != 0) return refuse(vty, "get dsp channels status failed");
  const PoolBytes owner(status);
  vty_out(vty, "\r\n DSP Channels Status");
  vty_out(vty, "\r\n ---------------------");
  vty_out(vty, "\r\n Channel   Status");
  vty_out(vty, "\r\n -------  --------");
  SnmpErrInfo err;
  u32 length = 0;
  if (get_dsp_channel_status(WireOut(status, kDspStatus), &length, &err) != 0) {
    vty_out(vty, "\r\n get dsp channels status failed(%d). \r\n", static_cast<i16>(err.errCode));
    return -1;
  }
  if (showSlots(vty, WireIn(status, length)) != 0) return -1;
  vty_out(vty, "\r\n get dsp channels status successfully. \r\n");
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show dsp channels status", cli_show_dsp_channels_status_func,
            "cards whose DSP channels answer"),
};
void installDspChannels() { installCommands(commands); }

static constexpr SnmpMsgReg message{kStatusMessage,          {0, 0}, nullptr, snmp_get_dsp_channel_status, 4890,
                                    "Get DSP channel status"};
void registerDspChannels() { registerMessage(message); }
