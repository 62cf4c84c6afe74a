#include "voice/status/node_views.h"

#include <cstring>

#include "voice/common/voice_public.h"

static constexpr u32 kRest = 512;  // bytes that a manager's form keeps for later

// --- Registration ---

static constexpr Word registerWords[] = {{"Registering", 1}, {"Register Success", 2}, {"Register Failure", 3}};
static constexpr ShownField deviceFields[] = {
    shownWord("\r\n %-17s%-20s", "Register Status: ", 0, 2, registerWords, "Invalid Status"),
    shownText("\r\n %-17s%-64s", "Server IP: ", 2, 64),
    shownText("\r\n %-17s%-64s\r\n", "Proxy Server IP: ", 66, 64),
};
constexpr NodeView deviceStatus = {
    .id = 3096,
    .names = {.stem = "device_status",
              .showStem = "voice_device_status",
              .title = "Voice Device Status",
              .dashes = 37,
              .words = "voice device status",
              .text = "Get voice device status"},
    .bytes = 578,
    .mostReply = 602,
    .fields = deviceFields,
};

// --- Addresses ---

// clang-format off
static constexpr Word modeWords[] = {{"Static", 0}, {"PPPoE", 1}, {"DHCP", 2}, {"PPPoE V6", 3}, {"DHCP V6", 4}};
static constexpr Word resultWords[] = {{"Success", 1}, {"Failure", 0}};
static constexpr ShownField ipFields[] = {
    shownMac("\r\n %-26s%02X:%02X:%02X:%02X:%02X:%02X", "IAD MAC Address: ", 0),
    shownWord("\r\n %-26s%-10s", "IP Config Mode: ", 6, 2, modeWords),
    shownWord("\r\n %-26s%-10s", "Get IP Result: ", 8, 1, resultWords),
    shownAddress("\r\n %-14s%-4s%-8s%-16s/%d", "Signalling IP(", 9, true),
    shownAddress("\r\n %-19s%-4s%-3s%-16s", "Signalling Gateway(", 33, false),
    shownAddress("\r\n %-7s%-4s%-15s%-16s/%d", "RTP IP(", 57, true),
    shownAddress("\r\n %-12s%-4s%-10s%-16s", "RTP Gateway(", 81, false),
    shownAddress("\r\n %-12s%-4s%-10s%-16s", "Primary DNS(", 105, false),
    shownAddress("\r\n %-14s%-4s%-8s%-16s", "Secondary DNS(", 129, false),
    shownAddress("\r\n %-13s%-4s%-9s%-16s/%d", "PPPoE Server(", 191, true),
    shownAddress("\r\n %-12s%-4s%-10s%-16s/%d", "DHCP Server(", 153, true),
    shownDate("\r\n %-28s%04d-%02d-%02d %02d:%02d:%02d", "DHCP Lease Begin(hhmmss): ", 177),
    shownDate("\r\n %-28s%04d-%02d-%02d %02d:%02d:%02d\r\n", "DHCP Lease Expired(hhmmss): ", 184),
};
// clang-format on

// Addresses follow each other from `at` on. What is left of `out`; empty when it does not hold them.
static WireOut putGeneralIps(WireIn record, u32 at, u32 addresses, WireOut out) {
  for (u32 i = 0; i < addresses; ++i) {
    u32 length = 0;
    if (nParseLocalIP2GeneralIP(record.subspan(at + i * kLocalIP), out, &length) != 0) return {};
    out = out.subspan(length);
  }
  return out;
}

int build_voice_ip_status_packet(WireIn record, WireOut out, u32* length) {
  constexpr u32 kHead = 9, kDates = 177, kPppoe = 191, kRecord = kPppoe + kLocalIP;
  constexpr u32 kForm = kHead + 8 * 28 + (kPppoe - kDates) + kRest;  // at most
  if (record.data() == nullptr || length == nullptr || record.size() < kRecord || out.size() < kForm) return -1;
  std::memcpy(out.data(), record.data(), kHead);
  WireOut rest = putGeneralIps(record, kHead, 7, out.subspan(kHead));
  std::memcpy(rest.data(), record.data() + kDates, kPppoe - kDates);
  rest = putGeneralIps(record, kPppoe, 1, rest.subspan(kPppoe - kDates));
  *length = static_cast<u32>(out.size() - rest.size()) + kRest;
  return 0;
}

constexpr NodeView voiceIpStatus = {
    .id = 3097,
    .names = {.stem = "voice_ip_status",
              .showStem = "voice_ip_status",
              .title = "Voice IP Status",
              .dashes = 50,
              .words = "voice IP status",
              .text = "Get voice IP status"},
    .bytes = 727,
    .build = build_voice_ip_status_packet,
    .mostReply = 751,
    .fields = ipFields,
    .showsSilence = true,
};

// --- Signalling ---

static constexpr ShownField signallingFields[] = {
    shownNumber("\r\n %-28s%-16u", "NGN Request Packets Rx: ", 0),
    shownNumber("  %s%-10u", "Tx: ", 4),
    shownNumber("\r\n %-28s%-16u", "NGN Confirm Packets Rx: ", 8),
    shownNumber("  %s%-10u", "Tx: ", 12),
    shownNumber("\r\n %-28s%-10u", "Loss Signalling Packets: ", 16),
    shownNumber("\r\n %-28s%-10u", "ReTrans Signalling Packets: ", 20),
    shownNumber("\r\n %-28s%-10u", "Wrong Signalling Packets: ", 24),
    shownNumber("\r\n %-28s%-10u", "Unknown Signalling Packets: ", 28),
    shownNumber("\r\n %-28s%-16u", "RTP Stream Packets Rx: ", 32),
    shownNumber("  %s%-10u", "Tx: ", 36),
    shownNumber("\r\n %-28s%-16llu", "RTP Stream Bytes Rx: ", 40, 8),
    shownNumber("  %s%-16llu", "Tx: ", 48, 8),
    shownNumber("\r\n %-28s%-10u", "Loss Packets Ratio(%): ", 56),
    shownNumber("\r\n %-28s%-10u", "Average Network Delay(ms): ", 60),
    shownNumber("\r\n %-28s%-10u", "Average Jitter Delay(ms): ", 64),
    shownNumber("\r\n %-28s%-10u\r\n", "Bandwidth Usage(Kbps): ", 68),
};

int build_sgn_packet_stats_packet(WireIn record, WireOut out, u32* length) {
  constexpr u32 kReceived = 40, kSent = 48, kBehind = 56, kRecord = 584;
  if (record.data() == nullptr || length == nullptr || record.size() < kRecord) return -1;
  Writer to(out);
  to.bytes(record.first(kReceived));
  putFloat10(to, record.subspan(kReceived, 8));
  putFloat10(to, record.subspan(kSent, 8));
  to.bytes(record.subspan(kBehind, kRecord - kBehind));
  to.skip(kRest);
  *length = to.length();
  return to.failed() ? -1 : 0;
}

constexpr NodeView signallingStats = {
    .id = 3098,
    .names = {.stem = "sgn_packet_stats",
              .showStem = "signalling_packets_statistics_info",
              .title = "Signalling Packets Statistics Information",
              .dashes = 56,
              .words = "signalling packets statistics info",
              .text = "Get signalling packets statistics information"},
    .bytes = 584,
    .build = build_sgn_packet_stats_packet,
    .mostReply = 608,
    .fields = signallingFields,
    .showsSilence = true,
};

// --- Calls ---

static constexpr ShownField callFields[] = {
    shownNumber("\r\n %-24s%-10u", "Voice Jitter Delay(ms): ", 0),
    shownNumber("\r\n %-24s%-10u", "Transport Delay(ms): ", 4),
    shownNumber("\r\n %-24s%-10u", "Packets Loss Ratio(%): ", 8),
    shownNumber("\r\n %-24s%-10u", "Up Stream Rate(Kbps): ", 12),
    shownNumber("\r\n %-24s%-10u\r\n", "Down Stream Rate(Kbps): ", 16),
};
constexpr NodeView callStats = {
    .id = 3099,
    .names = {.stem = "call_stats",
              .showStem = "call_statistics_info",
              .title = "Call Statistics Information",
              .dashes = 31,
              .words = "call statistics info",
              .text = "Get calling statistics information"},
    .bytes = 532,
    .mostReply = 556,
    .fields = callFields,
};

// --- Lists ---

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show voice device status", viewShow<deviceStatus>, "registration of the voice side"),
    command(CONFIG_NODE, "show voice ip status", viewShow<voiceIpStatus>, "addresses that the voice side got"),
    command(CONFIG_NODE, "show signalling packets statistics information", viewShow<signallingStats>,
            "signalling and stream counters of the node"),
    command(CONFIG_NODE, "show call statistics information", viewShow<callStats>, "delay, loss and rates of all calls"),
};
static constexpr SnmpMsgReg messages[] = {viewMessage<deviceStatus>(), viewMessage<voiceIpStatus>(),
                                          viewMessage<signallingStats>(), viewMessage<callStats>()};

void installNodeViews() { installCommands(commands); }

void registerNodeViews() {
  for (const SnmpMsgReg& message : messages) registerMessage(message);
}
