// What cards answer about DSL lines, field by field, and how a terminal shows it.

#include "combo/port/combo_port_state.h"
#include "common/card_exchange.h"
#include "common/msan_init.h"
#include "platform/log.h"

// --- The line's state ---

#define LINE_OF(dashes) dashes "\r\n"
static constexpr char kStatusEnd[] =
    LINE_OF("-------------------------------------------------------------------------");
static constexpr char kTonesBegin[] = LINE_OF("---------------------------------------------------------------------");
#undef LINE_OF

// clang-format off
static constexpr ShownField statusPlace[] = {shownPlace("%s%-10d%-10d\r\n", "slotOut   portNo    \r\n")};
static constexpr ShownField statusFields[] = {
    shownNumber("%-30s%-20d\r\n", "PortMode", 20, 2),
    shownNumber("%-30s%-20d\r\n", "State", 22, 2),
    shownNumber("%-30s%-20d\r\n", "Standard", 24, 2),
    shownNumber("%-30s0x%-20x\r\n", "Standard Profile", 26, 2),
    shownNumber("%-30s%-20d\r\n", "loopbackResultMode", 28, 2),
    shownScaled("%-30s%-16s\r\n", "US snrMargin", 30),
    shownScaled("%-30s%-16s\r\n", "DS snrMargin", 36),
    shownScaled("%-30s%-16s\r\n", "US outputPower", 42),
    shownScaled("%-30s%-16s\r\n", "DS outputPower", 48),
    shownNumber("%-30s%-20d\r\n", "US LineBitRate", 54),
    shownNumber("%-30s%-20d\r\n", "DS LineBitRate", 58),
    shownNumber("%-30s%-20d\r\n", "US attainableBitRate", 62),
    shownNumber("%-30s%-20d\r\n", "DS attainableBitRate", 66),
    shownNumber("%-30s%-20d\r\n", "US delay", 70, 2),
    shownNumber("%-30s%-20d\r\n", "DS delay", 72, 2),
    shownScaled("%-30s%-16s\r\n", "US INP", 74),
    shownScaled("%-30s%-16s\r\n", "DS INP", 80),
    shownNumber("%-30s%-20d\r\n", "US NET DATA RATE", 86),
    shownNumber("%-30s%-20d\r\n", "DS NET DATA RATE", 90),
    shownNumber("%-30s%-20d\r\n", "Agg Ln Atten Ds", 94, 2),
    shownNumber("%-30s%-20d\r\n", "Agg Ln Atten Us", 96, 2),
};
static constexpr ShownField toneFields[] = {shownNumber("%-30s%-20d\r\n", "Servicenum", 20, 2)};
static constexpr ShownField dropPlace[] = {
    shownPlace("%s%-10d%-10d", "slotOut   portNo    dropNum   \r\n"),
    shownNumber("%s%-10d\r\n", "", 20, 2),
};
// clang-format on

static void showGain(Vty* vty, u32, WireIn entry) {
  vty_out(vty, "%-30s : %s \r\n", "gain", ScaledText(entry, 0).text);
}

static void showBits(Vty* vty, u32, WireIn entry) {
  vty_out(vty, "%-30s%-20d\r\n", "Bit Alloaction", static_cast<int>(getNumber(&entry[0], 2)));
}

// clang-format off
static constexpr const char* gDropReasonStr[] = {
    "NONE", "CPE_L3_TRIGGER", "LOM_US_TRIGGER_DRA", "LOM_DS_TRIGGER_DRA", "CPE_NEVER_ANSWER_OAM", "CPE_NO_MORE_ANSWER_OAM",
    "PERSISTENT_NCD_US", "PERSISTENT_NCD_DS", "PERSISTENT_LCD_US", "PERSISTENT_LCD_DS",
    "L2_PROBLEM_CO_DROP", "L2_PROBLEM_CPE_DROP", "BITSWAP_REFUSED_US_CO_DROP", "BITSWAP_REFUSED_US_CPE_DROP",
    "CHANNEL_CHANGE_US_CO_DROP", "CHANNEL_CHANGE_US_CPE_DROP", "NOISE_INCREASE_US_CO_DROP", "NOISE_INCREASE_US_CPE_DROP",
    "BITSWAP_REFUSED_DS_CO_DROP", "BITSWAP_REFUSED_DS_CPE_DROP", "CHANNEL_CHANGE_DS_CO_DROP", "CHANNEL_CHANGE_DS_CPE_DROP",
    "NOISE_INCREASE_DS_CO_DROP", "NOISE_INCREASE_DS_CPE_DROP", "LOM_US_CO_DROP", "LOM_US_CPE_DROP", "LOM_DS_CO_DROP",
    "LOM_DS_CPE_DROP", "SRA_PROBLEM_US_CO_DROP", "SRA_PROBLEM_US_CPE_DROP", "SRA_FAILED_US_CO_DROP", "SRA_FAILED_US_CPE_DROP",
    "SRA_PROBLEM_DS_CO_DROP", "SRA_PROBLEM_DS_CPE_DROP", "SRA_REJECTED_DS_CO_DROP", "SRA_REJECTED_DS_CPE_DROP",
    "BITSWAP_PROBLEM_US_CO_DROP", "BITSWAP_PROBLEM_US_CPE_DROP", "BITSWAP_FAILED_US_CO_DROP", "BITSWAP_FAILED_US_CPE_DROP",
    "BITSWAP_PROBLEM_DS_CO_DROP", "BITSWAP_PROBLEM_DS_CPE_DROP", "BITSWAP_REJECTED_DS_CO_DROP", "BITSWAP_REJECTED_DS_CPE_DROP",
    "CPE_SWITCHED_OFF", "CPE_LOST", "CO_RESET", "CO_STOP",
};
// clang-format on
static_assert(std::size(gDropReasonStr) == 48);

const char* get_dropreason_str_byindex(u32 index) {
  if (index < std::size(gDropReasonStr)) return gDropReasonStr[index];
  ulogPrintf(gModuleId_Msan, kLogDebug, "input index %d is out of range.\r\n", static_cast<int>(index));
  return "";
}

static void showDrop(Vty* vty, u32 number, WireIn entry) {
  vty_out(vty, "reason %d: drop at %-8lu seconds ago,because of %-30s \r\n", static_cast<int>(number),
          static_cast<unsigned long>(getNumber(&entry[0], 4)), get_dropreason_str_byindex(getNumber(&entry[4], 2)));
}

// --- Line tests ---

// clang-format off
static constexpr Word testStates[] = {
    {"NOT_CONFIG", 0}, {"CONFIG", 1}, {"INIT", 2}, {"TRAINING", 3}, {"SHOWTIME", 4}, {"L2", 5}, {"DM_INIT", 6}, {"DM_FETCH", 7},
    {"DM_DONE", 8}, {"DM_FAILED", 9}, {"SELT_RUN", 10}, {"SELT_DONE", 11}, {"SELT_FAILED", 12}, {"MANUF_TEST", 13},
    {"SIGNAL_TEST", 14}, {"L3", 15}};
static constexpr Word loopTypes[] = {{"PE 0.4mm", 0}, {"PE 0.5mm", 1}};
static constexpr Word terminations[] = {{"Open circuit", 0}, {"Short circuit", 1}};

static constexpr ShownField deltPlace[] = {shownPlace("%sslot:%-4d, port: %-4d \r\n", "")};
static constexpr ShownField deltFields[] = {
    shownScaled("%s: %s dB , ", "Agg Ln Atten Us", 20),
    shownScaled("%s: %s dB \r\n", "Agg Ln Atten Ds", 26),
    shownScaled("%s: %s dB , ", "Act Atp Us", 38),
    shownScaled("%s: %s dB  \r\n", "Act Atp Ds", 32),
    shownNumber("%s: %d bit/s, ", "Attainable Rate Ds", 44),
    shownNumber("%s: %d bit/s \r\n", "Us", 48),
    shownScaled("%s: %s dB, ", "Agg Sig Atten Us", 58),
    shownScaled("%s: %s dB \r\n", "Agg Sig Atten Ds", 52),
    shownScaled("%s: %s dB , ", "SNRM Up", 70),
    shownScaled("%s: %s dB \r\n", "SNRM Dn", 64),
    shownNumber("%s: %d -- ", "cur state", 76, 2),
    shownWord("%s%s \r\n", "", 76, 2, testStates, "UNKNOWN"),
    shownNumber("%s: %d  \r\n", "band num", 80, 2),
};
static constexpr ShownField deltTonesPlace[] = {
    shownPlace("%sslotOut:%-4d, portNo:%-4d, ", ""),
    shownNumber("%s:%-4d.\r\n", "Num", 20, 2),
};
static constexpr ShownField seltPlace[] = {shownPlace("%sslot: %-4d, port: %-4d, SELT Test Result: \r\n", "")};
static constexpr ShownField seltFields[] = {
    shownNumber("%s: %d m  \r\n", "Loop Length", 20, 2),
    shownScaled("%s: %s dB \r\n", "Atn@180kHz", 22),
    shownScaled("%s: %s dB \r\n", "Atn@300kHz", 28),
    shownNumber("%s: %d -- ", "Loop type", 34, 2),
    shownWord("%s%s \r\n", "", 34, 2, loopTypes, "unknown"),
    shownNumber("%s: %d -- ", "state", 36, 2),
    shownWord("%s%s \r\n", "", 36, 2, testStates, "UNKNOWN"),
    shownNumber("%s: %d -- ", "Termination", 40, 2),
    shownWord("%s%s \r\n", "", 40, 2, terminations, "unknown"),
    shownNumber("%s: %d kbps \r\n", "Downstream capacity", 42),
    shownNumber("%s: %d kbps \r\n", "Upstream capacity", 46),
    shownScaled("%s: %s dBm/Hz \r\n", "Quiet line noise", 50),
};
// clang-format on

static void showBand(Vty* vty, u32 number, WireIn entry) {
  u32 at = 0;
  for (const char* value : {"LATN", "SATN", "SNRM"}) {
    vty_out(vty, "seqNo %d : %s: %s dB \r\n", static_cast<int>(number), value, ScaledText(entry, at).text);
    at += 6;
  }
}

static void showHlog(Vty* vty, u32 number, WireIn entry) {
  vty_out(vty, "seqNo %d: Hlog Us: %s dB ,Hlog Ds: %s dB \r\n", static_cast<int>(number), ScaledText(entry, 0).text,
          ScaledText(entry, 6).text);
}

static void showQln(Vty* vty, u32 number, WireIn entry) {
  vty_out(vty, "seqNo %d: QLN Us: %s dB ,QLN Ds: %s dB \r\n", static_cast<int>(number), ScaledText(entry, 0).text,
          ScaledText(entry, 6).text);
}

static void showHlin(Vty* vty, u32 number, WireIn entry) {
  const auto value = [&](u32 at) { return static_cast<int>(static_cast<i16>(getNumber(&entry[at], 2))); };
  vty_out(vty, "%-5d:  %-10d  %-10d  %-10d  %-10d \r\n", static_cast<int>(number), value(0), value(2), value(4),
          value(6));
}

static void showSnrUp(Vty* vty, u32 number, WireIn entry) {
  vty_out(vty, "seqNo %d: SNR Us: %s dB \r\n", static_cast<int>(number), ScaledText(entry, 0).text);
}

static void showSnrDown(Vty* vty, u32 number, WireIn entry) {
  vty_out(vty, "seqNo %d: SNR Ds: %s dB \r\n", static_cast<int>(number), ScaledText(entry, 0).text);
}

// --- The questions ---

// clang-format off
static constexpr PortBlock statusBlock{.fixed = 102, .place = statusPlace, .fields = statusFields, .closing = kStatusEnd};
static constexpr PortBlock bitBlock{
    .fixed = 22, .countAt = 20, .entry = 4, .opening = kTonesBegin, .place = statusPlace, .fields = toneFields, .show = showBits};
static constexpr PortBlock gainBlock{
    .fixed = 22, .countAt = 20, .entry = 22, .opening = kTonesBegin, .place = statusPlace, .fields = toneFields, .show = showGain};
static constexpr PortBlock dropBlock{.fixed = 22, .countAt = 20, .entry = 8, .place = dropPlace, .show = showDrop};
static constexpr PortBlock deltBlock{
    .fixed = 82, .countAt = 80, .entry = 20, .place = deltPlace, .fields = deltFields, .show = showBand};
static constexpr PortBlock hlogBlock{.fixed = 22, .countAt = 20, .entry = 14, .place = deltTonesPlace, .show = showHlog};
static constexpr PortBlock hlinBlock{
    .fixed = 22, .countAt = 20, .entry = 10, .place = deltTonesPlace,
    .heading = "seqNo:  HlinRealUs  HlinImagUs  HlinRealDs  HlinImagDs \r\n", .show = showHlin};
static constexpr PortBlock qlnBlock{.fixed = 22, .countAt = 20, .entry = 14, .place = deltTonesPlace, .show = showQln};
static constexpr PortBlock snrUpBlock{.fixed = 22, .countAt = 20, .entry = 8, .place = deltTonesPlace, .show = showSnrUp};
static constexpr PortBlock snrDownBlock{.fixed = 22, .countAt = 20, .entry = 8, .place = deltTonesPlace, .show = showSnrDown};
static constexpr PortBlock seltBlock{.fixed = 178, .place = seltPlace, .fields = seltFields};

constexpr PortRead dslStatus{2825, "DSL port status", 400000, get_gepon_slot_msan_state_base, statusBlock};
constexpr PortRead bitAlloc{2826, "Port bit alloc", 1050024, get_gepon_slot_msan_state_base_ex, bitBlock};
constexpr PortRead gainMap{2827, "Port gain map", 5768616, get_gepon_slot_msan_state_base_ex, gainBlock};
constexpr PortRead dropReason{2828, "Port drop reason", 400000, get_gepon_slot_msan_state_base, dropBlock};
constexpr PortRead deltStatus{2830, "Port DELT test", 400000, get_gepon_slot_msan_state_base, deltBlock};
constexpr PortRead deltHlog{2831, "Port DELT Hlog", 460200, get_gepon_slot_msan_state_base, hlogBlock};
constexpr PortRead deltHlin{2832, "Port DELT Hlin", 400000, get_gepon_slot_msan_state_base, hlinBlock};
constexpr PortRead deltQln{2833, "Port DELT Qln", 460200, get_gepon_slot_msan_state_base, qlnBlock};
constexpr PortRead deltSnrUp{2834, "Port DELT SnrUp", 400000, get_gepon_slot_msan_state_base, snrUpBlock};
constexpr PortRead deltSnrDown{2835, "Port DELT SnrDs", 400000, get_gepon_slot_msan_state_base, snrDownBlock};
constexpr PortRead seltResult{2836, "Port SELT test", 400000, get_gepon_slot_msan_state_base, seltBlock};
// clang-format on

// --- Blocks ---

static void tooShort(WireIn answer) {
  ulogPrintf(gModuleId_Msan, kLogDebug, "the input len %d is small than real legnth.\r\n",
             static_cast<int>(answer.size()));
}

// The first block of the rest with its entries; empty if it is not all there, or if as many blocks of its size as the
// answer counts would be more than the answer.
static WireIn takeBlock(const PortBlock& block, WireIn rest, u32 count, std::size_t answer) {
  if (rest.size() < block.fixed) return {};
  const u32 entries = block.countAt != 0 ? getNumber(&rest[block.countAt], 2) : 0;
  const u32 length = block.fixed + entries * block.entry;
  return u64{count} * length <= answer && length <= rest.size() ? rest.first(length) : WireIn{};
}

void showPortBlocks(Vty* vty, const PortBlock& block, WireIn answer) {
  Reader in(answer);
  const u32 count = in.number(4);
  if (in.failed() || u64{count} * block.fixed > answer.size()) return tooShort(answer);
  u64 last = ~u64{0};  // no place
  for (u32 i = 0; i < count; ++i) {
    const WireIn at = takeBlock(block, in.rest(), count, answer.size());
    if (at.empty()) return tooShort(answer);
    in.skip(at.size());
    const u32 place = getNumber(&at[0], 4);
    vty_out(vty, "%s", block.opening);
    if (place != last) showFields(vty, block.place, at, ByteOrder::big);
    last = place;
    showFields(vty, block.fields, at, ByteOrder::big);
    vty_out(vty, "%s", block.heading);
    u32 number = 0;
    for (WireIn entries = at.subspan(block.fixed); !entries.empty(); entries = entries.subspan(block.entry))
      block.show(vty, ++number, entries.first(block.entry));
    vty_out(vty, "%s", block.closing);
  }
}
