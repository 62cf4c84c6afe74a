#include "combo/vdsl/vdsl_line_func_prf.h"

#include <algorithm>

#include "combo/vdsl/vdsl_kinds.h"
#include "combo/vdsl/vdsl_words.h"
#include "common/obj_attributes.h"
#include "platform/command_line.h"

i16 g_vdsl_line_prf_type = -1;
i16 g_vdsl_line_prf_cfg_id = -1;

static constexpr ValueRange kAnyTone{0, 4095};
static constexpr FieldOrder toneOrder[] = {
    {ITEM_ORDER(ToneRange, start, end), .code = vdslCode(-119), .error = "VD_START_MORE_THAN_END_ERROR"}};

// clang-format off
static constexpr ProfileField rfiFields[] = {
    {ITEM_FIELD(ToneRange, start), .allowed = {kAnyTone}, .code = vdslCode(-108), .error = "VD_RFI_START_ERROR", .label = "start"},
    {ITEM_FIELD(ToneRange, end),   .allowed = {kAnyTone}, .code = vdslCode(-109), .error = "VD_RFI_END_ERROR", .orders = toneOrder, .label = "end"},
};
static constexpr ProfileTable rfi{.at = offsetof(VdslLinePrfItem, rfi), .most = 16, .entry = sizeof(ToneRange),
                                  .fields = rfiFields, .title = "rfiInfo no"};
static constexpr ProfileField toneFields[] = {
    {ITEM_FIELD(ToneRange, start), .allowed = {kAnyTone}, .code = vdslCode(-111), .error = "VD_TB_START_ERROR", .label = "start"},
    {ITEM_FIELD(ToneRange, end),   .allowed = {kAnyTone}, .code = vdslCode(-112), .error = "VD_TB_END_ERROR", .orders = toneOrder, .label = "end"},
};
static constexpr ProfileTable tones{.at = offsetof(VdslLinePrfItem, tones), .most = 8, .entry = sizeof(ToneRange),
                                    .fields = toneFields, .title = "tbOutInfo no"};

static constexpr ProfileField fields[] = {
    {ITEM_FIELD(VdslLinePrfItem, portMode), .initial = 2, .words = portModeWords, .code = vdslCode(-102), .error = "VD_PORT_MODE_ERROR", .label = "portmode", .shown = Shown::word, .line = "set vdslline para portmode"},
    {ITEM_FIELD(VdslLinePrfItem, stPrf), .initial = 255, .words = stPrfWords, .code = vdslCode(-103), .error = "VD_STD_PRF_ERROR", .label = "Standard Profile", .line = "set vdslline para stdPrf"},
    {ITEM_FIELD(VdslLinePrfItem, psdShape), .initial = 21, .allowed = {{0, 42}}, .code = vdslCode(-104), .error = "VD_PSD_SHAPE_PRF_ERROR", .label = "Psd Shape", .line = "set vdslline para psd"},
    {SCALED_FIELD(VdslLinePrfItem, maxTxPwrDn, 1), .initial = 205, .allowed = {{0, 255}}, .code = vdslCode(-105), .error = "VD_MAX_TX_PWR_DW_ERROR", .label = "maxTxPowerDn", .line = "set vdslline para maxTxPowerDn"},
    {SCALED_FIELD(VdslLinePrfItem, maxTxPwrUp, 1), .initial = 145, .allowed = {{0, 202}}, .code = vdslCode(-106), .error = "VD_MAX_TX_PWR_UP_ERROR", .label = "maxTxPowerUp", .line = "set vdslline para maxTxPowerUp"},
    {ITEM_FIELD(VdslLinePrfItem, rfiNum), .gap = 4, .allowed = {{0, 16}}, .code = vdslCode(-107), .error = "VD_RFI_NUM_ERROR", .early = true, .table = &rfi},
    {ITEM_FIELD(VdslLinePrfItem, tbNum), .gap = 4, .allowed = {{0, 8}}, .code = vdslCode(-110), .error = "VD_TB_NUM_ERROR", .early = true, .table = &tones},
};
// clang-format on
static constexpr ProfileShape shape{
    .itemSize = sizeof(VdslLinePrfItem), .headGap = 0, .tail = sizeof(VdslLinePrfItem::zero), .fields = fields};
static_assert(shape.mostBody() == 230);

static void printRanges(Vty* vty, const char* word, std::span<const ToneRange> ranges, u32 count) {
  if (count == 0) return;
  vty_out(vty, "set vdslline para %s ", word);
  for (u32 i = 0; i < count && i < ranges.size(); ++i) vty_out(vty, "start %d end %d ", ranges[i].start, ranges[i].end);
  vty_out(vty, "%s", "\r\n");
}

static void printLines(Vty* vty, const void* blob) {
  const auto* item = static_cast<const VdslLinePrfItem*>(blob);
  printFields(vty, fields, item);
  printRanges(vty, "rfi", item->rfi, item->rfiNum);
  printRanges(vty, "tone", item->tones, item->tbNum);
}

static constexpr ProfileTexts texts{
    .idRange = "Profile's id must between 1 and 1023 ",
    .addFailed = "Add vdsl line profine failed,and errcode is ",
    .deleteFailedById = "Delete vdsl line profile failed,and errcode is ",
    .deleteFailedByName = "Delete vdsl line profine failed,and errcode is ",
    .readFailedById = "get_vdsl_line_prf_base profile failed,and errcode is ",
    .readFailedByName = "get_vdsl_line_prf_base failed,and errcode is ",
    .flushName = "flush_vdsl_line_prf",
    .writeName = "snmp_set_vdsl_line_prf",
    .selectFailedById = "set_vdsl_line_prf_cfg_id failed,error.code is ",
    .selectFailedByName = "set_vdsl_line_prf_cfg_id failed,error.code is ",
    .attachFailed = "attach_vdsl_line_prf_base failed,err_info.code is ",
    .printTitle = "\r\n!vdsl line prf config --------\r\n",
};

constexpr ProfileKind vdslLineKind{
    .writeId = 34801,
    .attachId = 2862,
    .mostId = 1023,
    .attribute = kVdslLineAttribute,
    .portTypes = vdslPortTypes,
    .shape = shape,
    .defaultName = "DEFVDLINE",
    .word = "vdslLine",
    .attachWord = "vdslline",
    .attachTail = 4,
    .type = g_vdsl_line_prf_type,
    .selected = g_vdsl_line_prf_cfg_id,
    .reportsAttachment = true,
    .texts = texts,
    .write = writeBatch,
    .printLines = printLines,
};

int get_vdsl_line_prf_base(SnmpErrInfo* err, VdslLinePrfRecord* record, u16 id) {
  return getProfile(vdslLineKind, err, record, id);
}

// --- Edit ---

static constexpr ItemPart parts[] = {
    {},
    ITEM_PART(VdslLinePrfItem, portMode),
    ITEM_PART(VdslLinePrfItem, stPrf),
    ITEM_PART(VdslLinePrfItem, psdShape),
    ITEM_PART(VdslLinePrfItem, maxTxPwrDn),
    ITEM_PART(VdslLinePrfItem, maxTxPwrUp),
    ITEM_PART(VdslLinePrfItem, rfiNum),
    ITEM_PART(VdslLinePrfItem, tbNum),
};
static constexpr u32 kRfi = 6, kTone = 7;

// The part of a table that its first entries take.
static ItemPart entries(const ProfileTable& table, u16 count) {
  return {table.at, static_cast<u16>(std::min(count, table.most) * table.entry)};
}

int modify_spc_vdsl_line_prf_para(SnmpErrInfo* err, const VdslLinePrfRecord* values, u32 selector) {
  if (err == nullptr || values == nullptr) return -1;
  if (selector == 0 || selector >= std::size(parts)) return -1;
  return editSelected(vdslLineKind, err, [&](void* item) {
    bool changed = replacePart(parts[selector], item, &values->item);
    // Entries behind the new number stay as they are.
    if (selector == kRfi) changed |= replacePart(entries(rfi, values->item.rfiNum), item, &values->item);
    if (selector == kTone) changed |= replacePart(entries(tones, values->item.tbNum), item, &values->item);
    return changed;
  });
}
