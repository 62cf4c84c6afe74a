// The VDSL service profile: how the line adapts its rate, its noise margins, least rates, delay, and protection from
// impulse noise.

#include "combo/vdsl/vdsl_kinds.h"
#include "common/commands.h"
#include "common/obj_attributes.h"

i16 g_vdsl_service_prf_type = -1;
i16 g_vdsl_service_prf_cfg_id = -1;

#pragma pack(push, 1)
struct VdslServicePrfItem {
  u16 upRateMode;
  u16 dnRateMode;       // the same
  ScaledValue dnTSNRM;  // target margin, tenths of a dB; all margins 0 to 310
  u8 dnMaxSNRMMODE;     // 1: no limits
  ScaledValue dnMaxSNRM;
  ScaledValue dnMinSNRM;
  ScaledValue upTSNRM;
  u8 upMaxSNRMMODE;
  ScaledValue upMaxSNRM;
  ScaledValue upMinSNRM;
  u8 zero1[4];
  u32 dnMinRate;  // kbit/s, 0 to 200000
  u8 zero2[4];
  u32 upMinRate;
  u16 dnMaxDelay;  // ms, 0 to 63
  u16 upMaxDelay;
  u16 dnMinINP;  // 0 to 18
  u16 upMinINP;
  u8 zero3[8];
};
#pragma pack(pop)
using Item = VdslServicePrfItem;
static_assert(sizeof(Item) == 74);

static constexpr Word rateModeWords[] = {{"fixed", 1}, {"adaptatstart", 2}, {"adaptatruntime", 3}};
static constexpr Word limitWords[] = {{"userdefine", 0}, {"infinity", 1}};

static constexpr ValueRange kMargin{0, 310}, kRate{0, 200000}, kDelay{0, 63}, kInp{0, 18};
static constexpr FieldIs kDnLimited ITEM_IS(Item, dnMaxSNRMMODE, 0, 0), kUpLimited ITEM_IS(Item, upMaxSNRMMODE, 0, 0);

static constexpr u16 kModesDiffer = vdslCode(-121), kLeastAboveMost = vdslCode(-120);
static constexpr FieldOrder sameModes[] = {
    {ITEM_ORDER(Item, upRateMode, dnRateMode), .code = kModesDiffer, .error = "VD_RATE_MODE_NOT_SAME_ERROR"},
    {ITEM_ORDER(Item, dnRateMode, upRateMode), .code = kModesDiffer, .error = "VD_RATE_MODE_NOT_SAME_ERROR"}};
static constexpr FieldOrder dnMargins[] = {{ITEM_ORDER(Item, dnMinSNRM.value, dnMaxSNRM.value), .code = kLeastAboveMost,
                                            .error = "VD_MIN_MORE_THAN_MAX_ERROR"}};
static constexpr FieldOrder upMargins[] = {{ITEM_ORDER(Item, upMinSNRM.value, upMaxSNRM.value), .code = kLeastAboveMost,
                                            .error = "VD_MIN_MORE_THAN_MAX_ERROR"}};

// clang-format off
static constexpr ProfileField fields[] = {
    {ITEM_FIELD(Item, upRateMode), .initial = 2, .words = rateModeWords, .code = vdslCode(-102), .error = "VD_RATE_MODE_UP_ERROR", .orders = sameModes, .label = "upRateMode", .shown = Shown::word},
    {ITEM_FIELD(Item, dnRateMode), .initial = 2, .words = rateModeWords, .code = vdslCode(-103), .error = "VD_RATE_MODE_DN_ERROR", .label = "downRateMode", .shown = Shown::word},
    {SCALED_FIELD(Item, dnTSNRM, 1), .initial = 60, .allowed = {kMargin}, .code = vdslCode(-104), .error = "VD_TSNRM_DN_ERROR", .label = "Target SNRM Dn", .unit = " dB"},
    {ITEM_FIELD(Item, dnMaxSNRMMODE), .words = limitWords, .code = vdslCode(-105), .error = "VD_MAX_SNRM_MODE_DN_ERROR", .label = "MaxSNRMDnMode"},
    {SCALED_FIELD(Item, dnMaxSNRM, 1), .initial = 310, .allowed = {kMargin}, .code = vdslCode(-106), .error = "VD_MAX_SNRM_DN_ERROR", .when = kDnLimited, .uses = kWhenChecked, .label = "Max SNRM Dn", .unit = " dB"},
    {SCALED_FIELD(Item, dnMinSNRM, 1), .allowed = {kMargin}, .code = vdslCode(-107), .error = "VD_MIN_SNRM_DN_ERROR", .when = kDnLimited, .uses = kWhenChecked, .orders = dnMargins, .label = "Min SNRM Dn", .unit = " dB"},
    {SCALED_FIELD(Item, upTSNRM, 1), .initial = 60, .allowed = {kMargin}, .code = vdslCode(-108), .error = "VD_TSNRM_UP_ERROR", .label = "Target SNRM Up", .unit = " dB"},
    {ITEM_FIELD(Item, upMaxSNRMMODE), .words = limitWords, .code = vdslCode(-109), .error = "VD_MAX_SNRM_MODE_UP_ERROR", .label = "MaxSNRMUpMode"},
    {SCALED_FIELD(Item, upMaxSNRM, 1), .initial = 310, .allowed = {kMargin}, .code = vdslCode(-110), .error = "VD_MAX_SNRM_UP_ERROR", .when = kUpLimited, .uses = kWhenChecked, .label = "Max SNRM Up", .unit = " dB"},
    {SCALED_FIELD(Item, upMinSNRM, 1), .allowed = {kMargin}, .code = vdslCode(-111), .error = "VD_MIN_SNRM_UP_ERROR", .when = kUpLimited, .uses = kWhenChecked, .orders = upMargins, .label = "Min SNRM Up", .unit = " dB"},
    {ITEM_FIELD(Item, dnMinRate), .gap = 4, .initial = 64, .allowed = {kRate}, .code = vdslCode(-113), .error = "VD_MIN_RATE_DN_ERROR", .label = "Min Rate Dn", .unit = " kbit/s"},
    {ITEM_FIELD(Item, upMinRate), .gap = 4, .initial = 64, .allowed = {kRate}, .code = vdslCode(-115), .error = "VD_MIN_RATE_UP_ERROR", .label = "Min Rate Up", .unit = " kbit/s"},
    {ITEM_FIELD(Item, dnMaxDelay), .initial = 16, .allowed = {kDelay}, .code = vdslCode(-116), .error = "VD_MAX_INT_DELAY_DN_ERROR", .label = "Max Interleave Delay Dn", .unit = " ms"},
    {ITEM_FIELD(Item, upMaxDelay), .initial = 16, .allowed = {kDelay}, .code = vdslCode(-117), .error = "VD_MAX_INT_DELAY_UP_ERROR", .label = "Max InterleaveDelay Up", .unit = " ms"},
    {ITEM_FIELD(Item, dnMinINP), .initial = 1, .allowed = {kInp}, .code = vdslCode(-118), .error = "VD_MIN_INP_DN_ERROR", .label = "Min INP Dn"},
    {ITEM_FIELD(Item, upMinINP), .initial = 1, .allowed = {kInp}, .code = vdslCode(-119), .error = "VD_MIN_INP_UP_ERROR", .label = "Min INP Up"},
};
static constexpr ProfileShape shape{.itemSize = sizeof(Item), .headGap = 0, .tail = sizeof(Item::zero3), .fields = fields};
static_assert(shape.mostBody() == 74);

#define ROW(member) rowAt(fields, offsetof(Item, member))
static constexpr const char* kSurplus = "snrm mode is infinity can not config max or min snrm value";
static constexpr const char* kMissing = "snrm mode is userdefine must config max or min snrm value";
static constexpr const char* kWrongMost = "max value is wrong";
static constexpr const char* kWrongLeast = "min value is wrong";
static constexpr LineValue rateModeValues[] = {{"up", ROW(upRateMode), rateModeWords}, {"dn", ROW(dnRateMode), rateModeWords}};
static constexpr LineValue dnMarginValues[] = {
    {"dn", ROW(dnTSNRM), {}, "dnTsnrm para is wrong"},
    {"mode", ROW(dnMaxSNRMMODE), limitWords},
    {"max", ROW(dnMaxSNRM), {}, kWrongMost, kMissing, kSurplus},
    {"min", ROW(dnMinSNRM), {}, kWrongLeast, kMissing, kSurplus}};
static constexpr LineValue upMarginValues[] = {
    {"up", ROW(upTSNRM), {}, "upTsnrm para is wrong"},
    {"mode", ROW(upMaxSNRMMODE), limitWords},
    {"max", ROW(upMaxSNRM), {}, kWrongMost, kMissing, kSurplus},
    {"min", ROW(upMinSNRM), {}, kWrongLeast, kMissing, kSurplus}};
static constexpr LineValue rateValues[] = {
    {"upMin", ROW(upMinRate), {}, "value must be [0-200000]"}, {"dnMin", ROW(dnMinRate), {}, "value must be [0-200000]"}};
static constexpr LineValue delayValues[] = {
    {"up", ROW(upMaxDelay), {}, "value must be [0-63]"}, {"dn", ROW(dnMaxDelay), {}, "value must be [0-63]"}};
static constexpr LineValue inpValues[] = {
    {"up", ROW(upMinINP), {}, "value must be [0-18]"}, {"dn", ROW(dnMinINP), {}, "value must be [0-18]"}};
// clang-format on

namespace {
enum Line { kRateMode, kDnMargin, kUpMargin, kRateLine, kDelayLine, kInpLine };
}  // namespace
static constexpr ProfileLine lines[] = {
    {.head = "set vdslser para rateMode",
     .values = rateModeValues,
     .orders = sameModes,
     .orderRefusal = "up and dn ratemode must be the same"},
    {.head = "set vdslser para tsnrm",
     .values = dnMarginValues,
     .orders = dnMargins,
     .orderRefusal = "maxValue should be >= minValue ",
     .always = true},
    {.head = "set vdslser para tsnrm",
     .values = upMarginValues,
     .orders = upMargins,
     .orderRefusal = "maxValue should be >= minValue ",
     .always = true},
    {.head = "set vdslser para rate", .values = rateValues},
    {.head = "set vdslser para delay", .values = delayValues},
    {.head = "set vdslser para min inp", .values = inpValues},
};

// Downstream goes first, unlike the order of the fields.
static int check_vdsl_ser_prf_para(SnmpErrInfo* err, const ProfileHead* record) {
  constexpr ProfileFields all(fields);
  const void* item = itemOf(record);
  if (checkFields(all.subspan(1, 1), item, err) != 0 || checkFields(all.first(1), item, err) != 0) return -1;
  return checkFields(all.subspan(2), item, err);
}

// The upstream mode is printed for both directions.
static void printLines(Vty* vty, const void* blob) {
  Item item = *static_cast<const Item*>(blob);
  item.dnRateMode = item.upRateMode;
  for (const ProfileLine& line : lines) printLine(line, vty, &item);
}

static constexpr ProfileTexts texts{
    .idRange = kVdslIdRange,
    .addFailed = "Add vdsl service profile failed,and errcode is ",
    .deleteFailedById = "Delete vdsl ser profine failed,and errcode is ",
    .deleteFailedByName = "Delete vdsl ser profine failed,and errcode is ",
    .readFailedById = "get_vdsl_ser_prf_base profile failed,and errcode is ",
    .readFailedByName = "get_vdsl_ser_prf_base failed,and errcode is ",
    .flushName = "flush_vdsl_ser_prf",
    .writeName = "snmp_set_vdsl_ser_prf",
    .selectFailedById = "set_vdsl_ser_prf_cfg_id failed,error.code is ",
    .selectFailedByName = "set_vdsl_ser_prf_cfg_id failed,error.code is ",
    .attachFailed = "attach_vdsl_ser_prf_base failed,err_info.code is ",
    .printTitle = "\r\n!vdsl service prf config --------\r\n",
};

constexpr ProfileKind vdslServiceKind{
    .writeId = 34803,
    .attachId = 2863,
    .mostId = kMostVdslProfile,
    .attribute = kVdslServiceAttribute,
    .portTypes = vdslPortTypes,
    .shape = shape,
    .defaultName = "DEFVDSERVICE",
    .word = "vdslser",
    .attachWord = "vdslser",
    .attachTail = 4,
    .type = g_vdsl_service_prf_type,
    .selected = g_vdsl_service_prf_cfg_id,
    .reportsAttachment = true,
    .editsUnchanged = false,
    .texts = texts,
    .lines = lines,
    .write = writeBatch,
    .check = check_vdsl_ser_prf_para,
    .printLines = printLines,
};

// clang-format off
static constexpr Command commands[] = {
    PROFILE_COMMANDS(vdslServiceKind, "vdslser", "VDSL service"),
    command(CONFIG_NODE, "set vdslser para rateMode up [fixed|adaptatstart|adaptatruntime] dn [fixed|adaptatstart|adaptatruntime]", editCommand<vdslServiceKind, kRateMode>, "when the rates adapt"),
    command(CONFIG_NODE, "set vdslser para tsnrm dn <value> mode [userdefine|infinity] {max <value>  min <value>}", editCommand<vdslServiceKind, kDnMargin>, "downstream noise margins, dB: 0.0 to 31.0"),
    command(CONFIG_NODE, "set vdslser para tsnrm up <value> mode [userdefine|infinity] {max <value>  min <value>}", editCommand<vdslServiceKind, kUpMargin>, "upstream noise margins, dB: 0.0 to 31.0"),
    command(CONFIG_NODE, "set vdslser para rate upMin <value> dnMin <value>", editCommand<vdslServiceKind, kRateLine>, "least rates, kbit/s: 0 to 200000"),
    command(CONFIG_NODE, "set vdslser para delay up <0-63> dn <0-63>", editCommand<vdslServiceKind, kDelayLine>, "longest interleave delays, ms"),
    command(CONFIG_NODE, "set vdslser para min inp up <value> dn <value>", editCommand<vdslServiceKind, kInpLine>, "least impulse noise protection: 0 to 18"),
};
// clang-format on

void install_vdsl_ser_cmd() { installCommands(commands); }
