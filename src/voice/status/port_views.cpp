#include "voice/status/port_views.h"

#include "voice/common/voice_obj.h"

// --- Line ---

// clang-format off
static constexpr Word portWords[] = {
    {"Default", 65535}, {"Registering", 1}, {"Idle", 2}, {"Off Hook", 3}, {"Dialing", 4}, {"Ringing", 5}, {"Ringing Back", 6},
    {"Connecting", 7}, {"Connected", 8}, {"Releasing", 9}, {"Register Failed", 10}, {"Inactive", 11}, {"Line Failure", 12},
    {"Busy", 13}};
static constexpr Word serviceWords[] = {{"Local Abort", 0}, {"Remote Abort", 1}, {"Auto Abort", 2}, {"Normal", 3}};
static constexpr Word codecWords[] = {{"G.711A", 0}, {"G.729", 1}, {"G.711u", 2}, {"G.723", 3}, {"G.726", 4}, {"T.38", 5}};
static constexpr Word echoWords[] = {{"Enable", 0}, {"Disable", 1}};
static constexpr Word polarityWords[] = {{"Enable", 0}};
static constexpr ShownField userFields[] = {
    shownPlace("\r\n %-24s%2d/%2d", "Slot No./Port No.: "),
    shownWord(" %23s%-15s", "Status: ", 20, 2, portWords),
    shownText("\r\n %-24s%-20s", "TID/SIP Telephone No.: ", 22, 20),
    shownText("\r\n %-24s%-10s", "RTP Resource Name: ", 42, 16),
    shownNumber(" %18s%-6d", "RTP Port: ", 58, 2),
    shownWord("\r\n %-24s%-10s", "Service Status: ", 60, 2, serviceWords),
    shownWord("\r\n %-24s%-10s", "Codec Mode: ", 62, 2, codecWords),
    shownWord("\r\n %-24s%-10s", "Echo Cancel: ", 64, 2, echoWords),
    shownWord(" %18s%-10s", "Reverse Polarity: ", 66, 2, polarityWords),
    shownNumber("\r\n %-24s%-10d", "Rx Gain(dB): ", 68),
    shownNumber(" %18s%-10d\r\n", "Tx Gain(dB): ", 72),
};
// clang-format on
constexpr PortView userPortStatus = {
    .id = 3100,
    .names = {.stem = "nuser_port_status",
              .showStem = "ngn_user_port_status",
              .title = "NGN User Port Status",
              .dashes = 70,
              .words = "NGN user port status",
              .text = "Get NGN user port status"},
    .unit = 108,
    .gap = 464,
    .mostReply = 585732,
    .fields = userFields,
};

// --- Voice stream ---

static constexpr u32 kStreamUnit = 98;
static constexpr ShownField streamFields[] = {
    shownPlace("\r\n %-25s%d/%d", "Slot No./Port No.: "),
    shownNumber("\r\n %-25s%-16u", "RTP Stream Packets Rx: ", 20),
    shownNumber("   %s%-10u", "Tx: ", 24),
    shownNumber("\r\n %-25s%-16llu", "RTP Stream Bytes Rx: ", 28, 8),
    shownNumber("   %s%-16llu", "Tx: ", 36, 8),
    shownNumber("\r\n %-25s%-16u", "Jitter Delay(ms): ", 44),
    shownNumber("  %-23s%-10u", "Loss Packets Ratio(%): ", 62),
    shownDate("\r\n %-25s%04d-%02d-%02d %02d:%02d:%02d", "Last Call Begin(hhmmss): ", 48),
    shownDate("\r\n %-25s%04d-%02d-%02d %02d:%02d:%02d\r\n", "Last Call End(hhmmss): ", 55),
};

int build_stream_port_stats_packet(WireIn answer, WireOut out, u32* length) {
  constexpr u32 kReceived = 28, kSent = 36, kBehind = 44, kReserved = 66;
  constexpr u32 kForm = 578, kGap = 508;  // bytes of a port, and those of them that are left as they are
  const auto units = unitsOf(answer, kStreamUnit, kMaxLocations);
  if (!units || length == nullptr || units->size() / kStreamUnit * kForm + 4 > out.size()) return -1;
  Writer to(out);
  to.bytes(answer.first(4));
  for (WireIn rest = *units; !rest.empty(); rest = rest.subspan(kStreamUnit)) {
    to.bytes(rest.first(kReceived));
    putFloat10(to, rest.subspan(kReceived, 8));
    putFloat10(to, rest.subspan(kSent, 8));
    to.bytes(rest.subspan(kBehind, kReserved - kBehind));
    to.skip(kGap);
  }
  *length = to.length();
  return 0;
}

constexpr PortView streamPortStats = {
    .id = 3101,
    .names = {.stem = "stream_port_stats",
              .showStem = "voice_stream_port_stats_info",
              .title = "Voice Stream Port Statistics Information",
              .dashes = 68,
              .words = "voice stream port statistics info",
              .text = "Get voice stream port statistics information"},
    .unit = kStreamUnit,
    .build = build_stream_port_stats_packet,
    .mostReply = 102404,
    .fields = streamFields,
};

// --- Calls ---

static constexpr ShownField callFields[] = {
    shownPlace("\r\n %-23s%d/%d", "Slot No./Port No.: "),
    shownNumber("\r\n %-23s%-6u", "The Last Call Time(s): ", 20),
    shownNumber("\r\n %-23s%-6u", "Total Call Time(s): ", 24),
    shownNumber("  %16s%-6u", "Total Calls: ", 28),
    shownNumber("\r\n %-23s%-6u", "Total Off-Hooks: ", 32),
    shownNumber("  %16s%-6u\r\n", "Total On-Hooks: ", 36),
};
constexpr PortView portCallStats = {
    .id = 3102,
    .names = {.stem = "port_call_stats",
              .showStem = "port_call_stats_info",
              .title = "Port Call Statistics Information",
              .dashes = 55,
              .words = "port call statistics info",
              .text = "Get port calling statistics information"},
    .unit = 72,
    .gap = 480,
    .mostReply = 565252,
    .fields = callFields,
};

// --- Lists ---

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show ngn user port status interface <ifStr>", viewShow<userPortStatus>,
            "state of POTS lines on the voice side"),
    command(CONFIG_NODE, "show voice stream port statistics information interface <ifStr>", viewShow<streamPortStats>,
            "counters of POTS ports' voice streams"),
    command(CONFIG_NODE, "show port call statistics information interface <ifStr>", viewShow<portCallStats>,
            "call counters of POTS ports"),
};
static constexpr SnmpMsgReg messages[] = {viewMessage<userPortStatus>(), viewMessage<streamPortStats>(),
                                          viewMessage<portCallStats>()};

void installPortViews() { installCommands(commands); }

void registerPortViews() {
  for (const SnmpMsgReg& message : messages) registerMessage(message);
}
