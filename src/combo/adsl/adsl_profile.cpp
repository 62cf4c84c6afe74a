#include "combo/adsl/adsl_profile.h"

#include "combo/adsl/adsl_config_aux.h"
#include "combo/adsl/adsl_words.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "platform/command_line.h"
#include "platform/log.h"

i16 adslPrfType = -1;
i16 adslPrfCfgId = -1;
SemaphoreId adsl_prf_config_mux = 0;

static constexpr u16 code(int number) { return static_cast<u16>(number); }

static constexpr FieldOrder snrmOrders[] = {
    {ITEM_ORDER(AdslPrfItem, MinSnrmDn, MaxSnrmDn), .code = code(-101)},
    {ITEM_ORDER(AdslPrfItem, MinSnrmUp, MaxSnrmUp), .code = code(-101)},
};

// clang-format off
static constexpr ProfileField toneFields[] = {
    {ITEM_FIELD(ToneBlackout, start), .allowed = {{0, 511}}, .code = code(-93), .label = "ToneBlackoutInfo start"},
    {ITEM_FIELD(ToneBlackout, end),   .allowed = {{0, 511}}, .code = code(-94), .label = "ToneBlackoutInfo end"},
};
static constexpr ProfileTable tones{.at = offsetof(AdslPrfItem, tones), .most = 16, .entry = sizeof(ToneBlackout),
                                    .fields = toneFields, .title = "ToneBlackoutInfo no"};

static constexpr ProfileField fields[] = {
    {ITEM_FIELD(AdslPrfItem, transmode), .words = transmodeWords, .code = code(-73), .label = "transmode", .line = "set adsl transmode"},
    {ITEM_FIELD(AdslPrfItem, UpRateMode), .initial = 2, .words = rateModeWords, .code = code(-74), .label = "UpRateMode", .line = "set adsl UpRateMode"},
    {ITEM_FIELD(AdslPrfItem, DownRateMode), .initial = 2, .words = rateModeWords, .code = code(-75), .label = "DownRateMode", .line = "set adsl DownRateMode"},
    {ITEM_FIELD(AdslPrfItem, AdslLineType), .initial = 3, .words = lineTypeWords, .code = code(-76), .label = "LineType", .line = "set adsl LineType"},
    {ITEM_FIELD(AdslPrfItem, SnrmDn.zero), .gap = 8, .allowed = {{0, 0}}, .code = code(-79), .early = true},
    {ITEM_FIELD(AdslPrfItem, SnrmDn.decimals), .initial = 1, .allowed = {{1, 1}}, .code = code(-79)},
    {ITEM_FIELD(AdslPrfItem, SnrmDn.value), .initial = 60, .allowed = {{0, 310}}, .code = code(-79), .label = "SnrmDn", .shown = Shown::timesTen, .line = "set adsl SnrmMargin down"},
    {ITEM_FIELD(AdslPrfItem, SnrmUp.zero), .allowed = {{0, 0}}, .code = code(-80), .early = true},
    {ITEM_FIELD(AdslPrfItem, SnrmUp.decimals), .initial = 1, .allowed = {{1, 1}}, .code = code(-80)},
    {ITEM_FIELD(AdslPrfItem, SnrmUp.value), .initial = 60, .allowed = {{0, 310}}, .code = code(-80), .label = "SnrmUp", .shown = Shown::timesTen, .line = "set adsl SnrmMargin up"},
    {ITEM_FIELD(AdslPrfItem, MaxInterLeaveDelayDn), .initial = 16, .allowed = {{0, 63}}, .code = code(-81), .label = "MaxInterLeaveDelayDn", .line = "set adsl MaxInterLeaveDelay down"},
    {ITEM_FIELD(AdslPrfItem, MaxInterLeaveDelayUp), .initial = 16, .allowed = {{0, 63}}, .code = code(-82), .label = "MaxInterLeaveDelayUp", .line = "set adsl MaxInterLeaveDelay up"},
    {ITEM_FIELD(AdslPrfItem, MinInpDn), .initial = 1, .allowed = {{1, 18}}, .code = code(-83), .label = "MinInpDn", .line = "set adsl MinInp down"},
    {ITEM_FIELD(AdslPrfItem, MinInpUp), .initial = 1, .allowed = {{1, 18}}, .code = code(-84), .label = "MinInpUp", .line = "set adsl MinInp up"},
    {ITEM_FIELD(AdslPrfItem, BitSwapDn), .words = enableWords, .code = code(-85), .label = "BitSwapDn", .line = "set adsl BitSwap down"},
    {ITEM_FIELD(AdslPrfItem, BitSwapUp), .words = enableWords, .code = code(-86), .label = "BitSwapUp", .line = "set adsl BitSwap up"},
    {ITEM_FIELD(AdslPrfItem, PowerMode), .words = powerModeWords, .code = code(-87), .label = "PowerMode", .line = "set adsl PowerMode"},
    {ITEM_FIELD(AdslPrfItem, PmL0Time), .initial = 300, .allowed = {{0, 65534}}, .code = code(-88), .label = "PmL0Time", .line = "set adsl PmL0Time"},
    {ITEM_FIELD(AdslPrfItem, PmL2Time), .initial = 30, .allowed = {{0, 65534}}, .code = code(-89), .label = "PmL2Time", .line = "set adsl PmL2Time"},
    {ITEM_FIELD(AdslPrfItem, PmL2Atprt), .initial = 3, .allowed = {{0, 15}}, .code = code(-90), .label = "PmL2Atprt", .line = "set adsl PmL2Atprt"},
    {ITEM_FIELD(AdslPrfItem, PmL2Rate), .initial = 32, .allowed = {{0, 1024}}, .code = code(-91), .label = "PmL2Rate", .line = "set adsl PmL2Rate"},
    {ITEM_FIELD(AdslPrfItem, MaxSnrmDn), .initial = 31, .allowed = {{0, 31}}, .code = code(-95), .label = "MaxSnrmDn"},
    {ITEM_FIELD(AdslPrfItem, MaxSnrmUp), .initial = 31, .allowed = {{0, 31}}, .code = code(-96), .label = "MaxSnrmUp"},
    {ITEM_FIELD(AdslPrfItem, MinSnrmDn), .allowed = {{0, 31}}, .code = code(-97), .label = "MinSnrmDn"},
    {ITEM_FIELD(AdslPrfItem, MinSnrmUp), .allowed = {{0, 31}}, .code = code(-98), .orders = snrmOrders, .label = "MinSnrmUp"},
    {ITEM_FIELD(AdslPrfItem, ToneBlackoutNum), .allowed = {{0, 16}}, .code = code(-92), .early = true, .table = &tones, .label = "ToneBlackoutNum"},
    {ITEM_FIELD(AdslPrfItem, MinRateDn), .allowed = {{0, 100000}}, .code = code(-99), .label = "MinRateDn", .line = "set adsl MinRate down"},
    {ITEM_FIELD(AdslPrfItem, MinRateUp), .allowed = {{0, 100000}}, .code = code(-100), .label = "MinRateUp", .line = "set adsl MinRate up"},
};
// clang-format on

// Places in the list where a show or print leaves the order of the fields.
static constexpr ProfileFields all(fields);
static constexpr std::size_t kUpRate = 1, kDownRate = 2, kMaxSnrm = 21, kTones = 25;
static_assert(fields[kMaxSnrm].at == offsetof(AdslPrfItem, MaxSnrmDn) && fields[kTones].table == &tones);

static constexpr ProfileShape shape{
    .itemSize = sizeof(AdslPrfItem), .headGap = 0, .tail = sizeof(AdslPrfItem::zero), .fields = fields};
static_assert(shape.mostBody() == 260);

static const AdslPrfItem* itemFrom(const void* item) { return static_cast<const AdslPrfItem*>(item); }

static void show_adsl_line_prf(Vty* vty, const void* item) {
  showFields(vty, all.subspan(0, kUpRate), item);
  showFields(vty, all.subspan(kDownRate, 1), item);
  showFields(vty, all.subspan(kUpRate, 1), item);
  showFields(vty, all.subspan(kDownRate + 1), item);
}

static void printSnrm(Vty* vty, const char* direction, u16 most, u16 least) {
  if (most == 31 && least == 0) return;
  vty_out(vty, "set adsl Snrm %s MaxSnrm %d MinSnrm %d%s", direction, most, least, "\r\n");
}

static void printLines(Vty* vty, const void* blob) {
  const auto* item = itemFrom(blob);
  printFields(vty, all.first(kMaxSnrm), item);
  printSnrm(vty, "down", item->MaxSnrmDn, item->MinSnrmDn);
  printSnrm(vty, "up", item->MaxSnrmUp, item->MinSnrmUp);
  printFields(vty, all.subspan(kTones), item);
  if (item->ToneBlackoutNum == 0) return;
  vty_out(vty, "set adsl toneblackout number %d ", item->ToneBlackoutNum);
  for (int i = 0; i < item->ToneBlackoutNum && i < 16; ++i) {
    vty_out(vty, "%d start %d end %d ", i, item->tones[i].start, item->tones[i].end);
  }
  vty_out(vty, "%s", "\r\n");
}

static constexpr u16 portTypes[] = {kAdslPort, kAdslPotsPort};

static constexpr ProfileTexts texts{
    .idRange = "Profile's id must between 1 and 64",
    .addFailed = "Add adsl line profine failed,and errcode is ",
    .deleteFailedById = "Delete adsl line profine failed,and errcode is ",
    .deleteFailedByName = "Delete adsl line profine failed,and errcode is ",
    .readFailedById = "get_adsl_line_prf profile failed,and errcode is ",
    .readFailedByName = "get_adsl_line_prf failed,and errcode is ",
    .flushFailed = "flush_adsl_prf adsl line profine failed",
    .flushName = "flush_adsl_prf",
    .writeName = "snmp_set_adsl_prf",
    .selectFailedById = "set_adsl_prf_cfg_id failed,error.code is ",
    .selectFailedByName = "set_adsl_prf_cfg_id failed,error.code is ",
    .attachFailed = "attach_adsl_line_prf failed,errInfo.code is ",
    .portColumn = "portNo",
};

constexpr ProfileKind adslLineKind{
    .writeId = 34661,
    .attachId = 2837,
    .mostId = 1023,
    .attribute = kAdslLineAttribute,
    .portTypes = portTypes,
    .shape = shape,
    .defaultName = "defaultAdslPrf",
    .word = "adslLine",
    .attachWord = "adslLine",
    .attachTail = 4,
    .type = adslPrfType,
    .selected = adslPrfCfgId,
    .lock = &adsl_prf_config_mux,
    .texts = texts,
    .write = writeBatch,
    .show = show_adsl_line_prf,
    .printLines = printLines,
};

void adsl_create_dft_prf() { createDefault(adslLineKind); }
int get_adsl_prf(AdslPrfRecord* record, u16 id) { return readProfile(adslLineKind, record, id); }
int get_adsl_line_prf(SnmpErrInfo* err, AdslPrfRecord* record, u16 id) {
  return getProfile(adslLineKind, err, record, id);
}
int get_adsl_prf_id_by_name(SnmpErrInfo*, u16* id, const char* name) { return idByName(adslLineKind, name, id); }
int set_adsl_line_prf(SnmpErrInfo* err, AdslPrfRecord* records, u16 count) {
  return writeBatch(adslLineKind, err, records, count);
}
int del_spc_adsl_line_prf(SnmpErrInfo* err, const u16* ids, u16 count) {
  return deleteBatch(adslLineKind, err, ids, count);
}
int attach_adsl_line_prf(SnmpErrInfo* err, LIST* nodes, u16 count) {
  return attachPorts(adslLineKind, err, nodes, count);
}
int attach_adsl_prf_adapt(LIST* nodes, u16 count) { return sendToCards(adslLineKind, nodes, count); }
int flush_adsl_prf(SnmpErrInfo* err, u16 id, int) { return flushProfile(adslLineKind, err, id); }
int check_adsl_prf_attached(SnmpErrInfo* err, u16 id) { return isAttached(adslLineKind, err, id); }
void hotplug_ad_prf_attach(u16 slot) { hotplugProfiles(adslLineKind, slot); }
int clr_adsl_prf_attach(u16 slot) { return clearAttached(adslLineKind, slot); }
int adsl_att_dft_prf(u16 slot) { return clr_adsl_prf_attach(slot); }
void adsl_line_prf_showrun(Vty* vty) { printProfiles(adslLineKind, vty); }
void ad_prf_attach_showrun(Vty* vty) { printAttached(adslLineKind, vty); }

// --- Edit ---

// By selector.
static constexpr ItemPart parts[] = {
    {},
    ITEM_PART(AdslPrfItem, transmode),
    ITEM_PART(AdslPrfItem, UpRateMode),
    ITEM_PART(AdslPrfItem, DownRateMode),
    ITEM_PART(AdslPrfItem, AdslLineType),
    ITEM_PART(AdslPrfItem, SnrmDn),
    ITEM_PART(AdslPrfItem, SnrmUp),
    ITEM_PART(AdslPrfItem, MaxInterLeaveDelayDn),
    ITEM_PART(AdslPrfItem, MaxInterLeaveDelayUp),
    ITEM_PART(AdslPrfItem, MinInpDn),
    ITEM_PART(AdslPrfItem, MinInpUp),
    ITEM_PART(AdslPrfItem, BitSwapDn),
    ITEM_PART(AdslPrfItem, BitSwapUp),
    ITEM_PART(AdslPrfItem, PowerMode),
    ITEM_PART(AdslPrfItem, PmL0Time),
    ITEM_PART(AdslPrfItem, PmL2Time),
    ITEM_PART(AdslPrfItem, PmL2Atprt),
    ITEM_PART(AdslPrfItem, PmL2Rate),
    {offsetof(AdslPrfItem, ToneBlackoutNum), sizeof(AdslPrfItem::ToneBlackoutNum) + sizeof(AdslPrfItem::tones)},
    ITEM_PART(AdslPrfItem, tones),
    {},
    ITEM_PART(AdslPrfItem, MaxSnrmDn),
    ITEM_PART(AdslPrfItem, MaxSnrmUp),
    ITEM_PART(AdslPrfItem, MinSnrmDn),
    ITEM_PART(AdslPrfItem, MinSnrmUp),
    ITEM_PART(AdslPrfItem, MinRateDn),
    ITEM_PART(AdslPrfItem, MinRateUp),
};

void setAdslField(AdslPrfItem* item, u32 selector, u32 value) {
  const ItemPart part = parts[selector];
  setField({.at = part.at, .width = static_cast<u8>(part.size)}, item, value);
}

int modify_spc_adsl_prf_para(SnmpErrInfo* err, const AdslPrfRecord* values, u32 selector) {
  if (err == nullptr || values == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: input parameter error!\r\n", __func__);
    return -1;
  }
  if (selector >= std::size(parts) || parts[selector].size == 0) return -1;
  return editSelected(adslLineKind, err, [&](void* item) {
    replacePart(parts[selector], item, &values->item);
    return true;
  });
}
