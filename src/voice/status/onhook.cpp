#include "voice/status/onhook.h"

#include <array>
#include <cstring>

#include "common/answer.h"
#include "common/commands.h"
#include "common/memory.h"
#include "common/msan_obj.h"
#include "platform/cards.h"
#include "platform/objects.h"
#include "platform/wrappers.h"
#include "voice/common/voice_packets.h"

static constexpr u16 kOnhookMessage = 2849;
static constexpr u32 kAskedPort = 8, kAnsweredPort = 24, kState = 20;  // bytes, and an offset

// Numbers of this exchange stand as the processor keeps them.
static void putHost(u8* at, u16 value) { std::memcpy(at, &value, sizeof value); }

// The ports that a card of `amount` of them can be asked for: one, or all for none. False if it has no such port.
static bool choosePorts(const char* word, u16 amount, u16* first, u16* count) {
  *first = 1;
  *count = amount;
  if (word == nullptr) return true;
  const int port = bep_atoiEx(word);
  if (port < 1 || port > amount) return false;
  *first = static_cast<u16>(port);
  *count = 1;
  return true;
}

static int show(Vty* vty, u16 slot, WireIn answer) {
  const u32 count = static_cast<u32>(numberIn(answer, 0, 2, ByteOrder::host));
  if (answer.size() != count * kAnsweredPort + 2) {
    vty_out(vty, "receive length error receiveLength= %d\r\n", static_cast<int>(answer.size()));
    vty_out(vty, "need length = %d\r\n", static_cast<int>(count * kAnsweredPort + 2));
    return -1;
  }
  vty_out(vty, "\r\n show onhook state of slot %d\r\n", slot);
  vty_out(vty, "%-10s%-10s\r\n", "port", "state");
  for (u32 at = 2; at < answer.size(); at += kAnsweredPort) {
    const int port = static_cast<int>(numberIn(answer, at + 2, 2, ByteOrder::host));
    vty_out(vty, "%-10d%-10s\r\n", port, answer[at + kState] != 0 ? "on" : "off");
  }
  return 0;
}

// Asks the card for ports from the first on, and shows its answer.
static int ask(Vty* vty, u16 slot, u16 first, u16 count) {
  u8* request = nullptr;
  const u32 length = 2 + kAskedPort * count;
  if (vMemAlloc(&request, static_cast<i32>(length)) != 0) return -1;
  const PoolBytes owner(request);
  putHost(request, count);
  for (u16 i = 0; i < count; ++i) {
    putHost(request + 2 + kAskedPort * i, slot);
    putHost(request + 4 + kAskedPort * i, static_cast<u16>(first + i));
  }
  std::array<u8, 2000> answer{};
  u32 answered = answer.size();
  const int result =
      gpon_send_and_wait_for_response_copy(slot, kOnhookMessage, 0, request, length, answer.data(), &answered, 0);
  if (result < 0) {
    vty_out(vty, "gpon_send_and_wait_for_response_copy = %d\r\n", result);
    return -1;
  }
  return show(vty, slot, WireIn(answer).first(answered));
}

static int cli_show_onhook_state_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  const int slot = bep_atoiEx(argv[0]);
  u16 type = 0, subtype = 0;
  if (slot < 1 || slot > 65535 || sysGetSlotAuthedType(static_cast<u16>(slot), &type, &subtype) != 0) {
    vty_out(vty, "Get slot %d card type fail!\r\n", slot);
    return -1;
  }
  if (caCheckCardTypeIsMsanCard(type) != 0) {
    vty_out(vty, "slot %d does not support this command\r\n", slot);
    return -1;
  }
  u16 amount = 0;
  if (const int result = ddGetBoardServePortAmountByType(type, &amount); result != 0) {
    vty_out(vty, "ddGetBoardServePortAmountByType = %d \r\n", result);
    return -1;
  }
  u16 first = 0, count = 0;
  if (!choosePorts(argc > 1 ? argv[1] : nullptr, amount, &first, &count)) {
    vty_out(vty, "Invalid port No %d!\r\n", bep_atoiEx(argv[1]));
    return -1;
  }
  return ask(vty, static_cast<u16>(slot), first, count);
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show onhook state slot <slotNo> {port <portNo>}*1", cli_show_onhook_state_func,
            "which phones are on the hook"),
};

void installOnhookCommand() { installCommands(commands); }
