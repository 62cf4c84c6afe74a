#include "combo/vdsl/vdsl_line_func_prf.h"

#include <algorithm>

#include "combo/adsl/adsl_config_aux.h"
#include "combo/vdsl/vdsl_words.h"
#include "common/obj_attributes.h"
#include "platform/command_line.h"

i16 g_vdsl_line_prf_type = -1;
i16 g_vdsl_line_prf_cfg_id = -1;

static constexpr u16 code(int number) { return static_cast<u16>(number); }

static constexpr Range kAnyTone{0, 4095};
static constexpr u16 kStartAboveEnd = code(-119);
static constexpr const char* kStartAboveEndError = "VD_START_MORE_THAN_END_ERROR";

// clang-format off
static constexpr ProfileField rfiFields[] = {
    {ITEM_FIELD(ToneRange, start), .allowed = {kAnyTone}, .code = code(-108), .error = "VD_RFI_START_ERROR", .label = "start"},
    {ITEM_FIELD(ToneRange, end),   .allowed = {kAnyTone}, .code = code(-109), .error = "VD_RFI_END_ERROR", .label = "end"},
};
static constexpr ProfileTable rfi{.at = offsetof(VdslLinePrfItem, rfi), .most = 16, .entry = sizeof(ToneRange),
                                  .fields = rfiFields, .orderCode = kStartAboveEnd, .orderError = kStartAboveEndError, .title = "rfiInfo no"};
static constexpr ProfileField toneFields[] = {
    {ITEM_FIELD(ToneRange, start), .allowed = {kAnyTone}, .code = code(-111), .error = "VD_TB_START_ERROR", .label = "start"},
    {ITEM_FIELD(ToneRange, end),   .allowed = {kAnyTone}, .code = code(-112), .error = "VD_TB_END_ERROR", .label = "end"},
};
static constexpr ProfileTable tones{.at = offsetof(VdslLinePrfItem, tones), .most = 8, .entry = sizeof(ToneRange),
                                    .fields = toneFields, .orderCode = kStartAboveEnd, .orderError = kStartAboveEndError, .title = "tbOutInfo no"};

static constexpr ProfileField fields[] = {
    {ITEM_FIELD(VdslLinePrfItem, portMode), .initial = 2, .words = portModeWords, .code = code(-102), .error = "VD_PORT_MODE_ERROR", .label = "portmode", .shown = Shown::word, .line = "set vdslline para portmode"},
    {ITEM_FIELD(VdslLinePrfItem, stPrf), .initial = 255, .words = stPrfWords, .code = code(-103), .error = "VD_STD_PRF_ERROR", .label = "Standard Profile", .line = "set vdslline para stdPrf"},
    {ITEM_FIELD(VdslLinePrfItem, psdShape), .initial = 21, .allowed = {{0, 42}}, .code = code(-104), .error = "VD_PSD_SHAPE_PRF_ERROR", .label = "Psd Shape", .line = "set vdslline para psd"},
    {ITEM_FIELD(VdslLinePrfItem, maxTxPwrDn.zero)},
    {ITEM_FIELD(VdslLinePrfItem, maxTxPwrDn.decimals), .initial = 1},
    {ITEM_FIELD(VdslLinePrfItem, maxTxPwrDn.value), .initial = 205, .allowed = {{0, 255}}, .code = code(-105), .error = "VD_MAX_TX_PWR_DW_ERROR", .label = "maxTxPowerDn", .shown = Shown::tenths, .line = "set vdslline para maxTxPowerDn"},
    {ITEM_FIELD(VdslLinePrfItem, maxTxPwrUp.zero)},
    {ITEM_FIELD(VdslLinePrfItem, maxTxPwrUp.decimals), .initial = 1},
    {ITEM_FIELD(VdslLinePrfItem, maxTxPwrUp.value), .initial = 145, .allowed = {{0, 202}}, .code = code(-106), .error = "VD_MAX_TX_PWR_UP_ERROR", .label = "maxTxPowerUp", .shown = Shown::tenths, .line = "set vdslline para maxTxPowerUp"},
    {ITEM_FIELD(VdslLinePrfItem, rfiNum), .gap = 4, .allowed = {{0, 16}}, .code = code(-107), .error = "VD_RFI_NUM_ERROR", .early = true, .table = &rfi},
    {ITEM_FIELD(VdslLinePrfItem, tbNum), .gap = 4, .allowed = {{0, 8}}, .code = code(-110), .error = "VD_TB_NUM_ERROR", .early = true, .table = &tones},
};
// clang-format on
static constexpr ProfileShape shape{
    .itemSize = sizeof(VdslLinePrfItem), .headGap = 0, .tail = sizeof(VdslLinePrfItem::zero), .fields = fields};
static_assert(shape.mostBody() == 230);

int check_vdsl_line_prf_para(SnmpErrInfo* err, const ProfileHead* record) {
  return checkFields(fields, itemOf(record), err);
}

static void show_vdsl_line_prf(Vty* vty, const void* item) { showFields(vty, fields, item); }

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

static constexpr u16 portTypes[] = {kVdslPort, kVdslPotsPort};

static constexpr ProfileTexts texts{
    .idRange = "Profile's id must between 1 and 1023 ",
    .addFailed = "Add vdsl line profine failed,and errcode is ",
    .deleteFailedById = "Delete vdsl line profile failed,and errcode is ",
    .deleteFailedByName = "Delete vdsl line profine failed,and errcode is ",
    .deleteDefault = "Default profile cannt be deleted",
    .readFailedById = "get_vdsl_line_prf_base profile failed,and errcode is ",
    .readFailedByName = "get_vdsl_line_prf_base failed,and errcode is ",
    .flushFailed = nullptr,
    .flushName = "flush_vdsl_line_prf",
    .writeName = "snmp_set_vdsl_line_prf",
    .selectDefault = "Default profile cant be modified!",
    .selectFailed = "set_vdsl_line_prf_cfg_id failed,error.code is ",
    .attachFailed = "attach_vdsl_line_prf_base failed,err_info.code is ",
    .portColumn = "port_no",
};

constexpr ProfileKind vdslLineKind{
    .writeId = 34801,
    .attachId = 2862,
    .mostId = 1023,
    .attribute = kVdslLineAttribute,
    .portTypes = portTypes,
    .shape = shape,
    .defaultName = "DEFVDLINE",
    .word = "vdslLine",
    .attachWord = "vdslline",
    .attachTail = 4,
    .type = g_vdsl_line_prf_type,
    .selected = g_vdsl_line_prf_cfg_id,
    .lock = nullptr,
    .reportsAttachment = true,
    .texts = texts,
    .write = writeBatch,
    .check = check_vdsl_line_prf_para,
    .setDefaults = nullptr,
    .show = show_vdsl_line_prf,
    .printLines = printLines,
    .cardMessage = nullptr,
};

int create_vdsl_line_dft_prf() { return createDefault(vdslLineKind); }
int get_vdsl_line_prf_base(SnmpErrInfo* err, VdslLinePrfRecord* record, u16 id) {
  return getProfile(vdslLineKind, err, record, id);
}
int set_vdsl_line_prf_base(SnmpErrInfo* err, VdslLinePrfRecord* records, u16 count) {
  return writeBatch(vdslLineKind, err, records, count);
}
int delete_spc_vdsl_line_prf_base(SnmpErrInfo* err, const u16* ids, u16 count) {
  return deleteBatch(vdslLineKind, err, ids, count);
}
int attach_vdsl_line_prf_base(SnmpErrInfo* err, LIST* nodes, u16 count) {
  return attachPorts(vdslLineKind, err, nodes, count);
}
int attach_vdsl_line_prf_adapt(LIST* nodes, u16 count) { return sendToCards(vdslLineKind, nodes, count); }
int flush_vdsl_line_prf(SnmpErrInfo* err, u16 id, int) { return flushProfile(vdslLineKind, err, id); }
int check_vdsl_line_prf_attached(SnmpErrInfo* err, u16 id) { return isAttached(vdslLineKind, err, id); }
int hotplug_vdsl_line_prf_attach(u16 slot) { return hotplugProfiles(vdslLineKind, slot); }
int vdsl_line_prf_showrun(Vty* vty) {
  vty_out(vty, "\r\n!vdsl line prf config --------\r\n");
  return printProfiles(vdslLineKind, vty);
}
int vdsl_line_prf_attach_showrun(Vty* vty) { return printAttached(vdslLineKind, vty); }

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
  *err = {};
  VdslLinePrfRecord record;
  if (readSelected(vdslLineKind, err, &record) != 0) return -1;
  if (selector == 0 || selector >= std::size(parts)) return -1;
  bool changed = replacePart(parts[selector], &record.item, &values->item);
  // Entries behind the new number stay as they are.
  if (selector == kRfi) changed |= replacePart(entries(rfi, values->item.rfiNum), &record.item, &values->item);
  if (selector == kTone) changed |= replacePart(entries(tones, values->item.tbNum), &record.item, &values->item);
  if (changed && check_vdsl_line_prf_para(err, &record) != 0) return -1;
  return storeProfile(vdslLineKind, &record);
}
