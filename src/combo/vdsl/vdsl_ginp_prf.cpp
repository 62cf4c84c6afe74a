// The VDSL profile of retransmission (G.INP).

#include "combo/vdsl/vdsl_kinds.h"
#include "common/commands.h"
#include "common/obj_attributes.h"

i16 g_vdsl_ginp_prftype = -1;
i16 g_vdsl_ginp_prf_cfgid = -1;

#pragma pack(push, 1)
struct VdslGinpPrfItem {
  u16 dnReMode;
  u16 upReMode;
  u16 dnMaxDelay;  // ms, 0 to 63
  u16 upMaxDelay;
  ScaledValue dnMinInp;  // tenths of a symbol, 0 to 1270
  ScaledValue upMinInp;
  u16 reinEnable;  // repetitive impulse noise; without it the four fields behind it are at their defaults
  u16 dnREINFreq;
  ScaledValue dnREININPmin;  // 0 to 70
  u16 upREINFreq;
  ScaledValue upREININPmin;
  u32 dnETRmin;  // rates, kbit/s, 64 to 512000; the least ETR not above the largest
  u32 dnETRmax;
  u32 dnNDRmax;
  u32 upETRmin;
  u32 upETRmax;
  u32 upNDRmax;
  u16 dnROC;  // dB, 0 to 31
  u16 upROC;
  ScaledValue dnROCInpMin;  // 0 to 160
  ScaledValue upROCInpMin;
  u32 dnMsgMin;  // kbit/s, 4 to 236
  u32 upMsgMin;
  u8 zero[64];
};
#pragma pack(pop)
using Item = VdslGinpPrfItem;
static_assert(sizeof(Item) == 150 && offsetof(Item, dnETRmin) == 38);

static constexpr Word modeWords[] = {{"forbid", 0}, {"first", 1}, {"force", 2}, {"test", 3}};
static constexpr Word enableWords[] = {{"disable", 0}, {"enable", 1}};
static constexpr Word frequencyWords[] = {{"100HZ", 0}, {"120HZ", 1}};

static constexpr ValueRange kDelay{0, 63}, kInp{0, 1270}, kReinInp{0, 70}, kRate{64, 512000}, kRoc{0, 31},
    kRocInp{0, 160}, kMessage{4, 236};
static constexpr FieldIs kRein ITEM_IS(Item, reinEnable, 1, 1);
static constexpr u8 kReinUses = kWhenChecked | kWhenShown | kWhenDecoded;
static constexpr FieldOrder dnRates[] = {
    {ITEM_ORDER(Item, dnETRmin, dnETRmax), .code = vdslCode(-124), .error = "VD_MIN_VALUE_MORE_THAN_MAX_ERROR"}};
static constexpr FieldOrder upRates[] = {
    {ITEM_ORDER(Item, upETRmin, upETRmax), .code = vdslCode(-124), .error = "VD_MIN_VALUE_MORE_THAN_MAX_ERROR"}};

// clang-format off
static constexpr ProfileField fields[] = {
    {ITEM_FIELD(Item, dnReMode), .words = modeWords, .code = vdslCode(-101), .error = "VD_RETRAN_MODE_DN_ERROR", .label = "dn Retran Mode", .shown = Shown::word},
    {ITEM_FIELD(Item, upReMode), .words = modeWords, .code = vdslCode(-102), .error = "VD_RETRAN_MODE_UP_ERROR", .label = "up Retran Mode", .shown = Shown::word},
    {ITEM_FIELD(Item, dnMaxDelay), .allowed = {kDelay}, .code = vdslCode(-103), .error = "VD_MAX_DELAY_DN_ERROR", .label = "dn max delay", .unit = " ms"},
    {ITEM_FIELD(Item, upMaxDelay), .allowed = {kDelay}, .code = vdslCode(-104), .error = "VD_MAX_DELAY_UP_ERROR", .label = "up max delay", .unit = " ms"},
    {SCALED_FIELD(Item, dnMinInp, 1), .allowed = {kInp}, .code = vdslCode(-105), .error = "VD_GINP_INP_MIN_DN_ERROR", .label = "G.INP dn INPmin", .unit = " symbol "},
    {SCALED_FIELD(Item, upMinInp, 1), .allowed = {kInp}, .code = vdslCode(-106), .error = "VD_GINP_INP_MIN_UP_ERROR", .label = "G.INP up INPmin", .unit = " symbol "},
    {ITEM_FIELD(Item, reinEnable), .words = enableWords, .code = vdslCode(-107), .error = "VD_REIN_ENABLE_ERROR", .label = "REIN enable", .shown = Shown::word},
    {ITEM_FIELD(Item, dnREINFreq), .words = frequencyWords, .code = vdslCode(-108), .error = "VD_REIN_FREQ_DN_ERROR", .when = kRein, .uses = kReinUses, .label = "dn REIN Frequency", .shown = Shown::word},
    {SCALED_FIELD(Item, dnREININPmin, 1), .allowed = {kReinInp}, .code = vdslCode(-109), .error = "VD_REIN_INP_DN_ERROR", .when = kRein, .uses = kReinUses, .label = "dn REIN INPmin", .unit = " symbol "},
    {ITEM_FIELD(Item, upREINFreq), .words = frequencyWords, .code = vdslCode(-110), .error = "VD_REIN_FREQ_UP_ERROR", .when = kRein, .uses = kReinUses, .label = "up REIN Frequency", .shown = Shown::word},
    {SCALED_FIELD(Item, upREININPmin, 1), .allowed = {kReinInp}, .code = vdslCode(-111), .error = "VD_REIN_INP_UP_ERROR", .when = kRein, .uses = kReinUses, .label = "up REIN INPmin", .unit = " symbol "},
    {ITEM_FIELD(Item, dnETRmin), .initial = 256, .allowed = {kRate}, .code = vdslCode(-112), .error = "VD_MIN_ETR_DN_ERROR", .label = "dn ETRmin", .unit = " Kbps "},
    {ITEM_FIELD(Item, dnETRmax), .initial = 100000, .allowed = {kRate}, .code = vdslCode(-113), .error = "VD_MAX_ETR_DN_ERROR", .label = "dn ETRmax", .unit = " Kbps "},
    {ITEM_FIELD(Item, dnNDRmax), .initial = 100000, .allowed = {kRate}, .code = vdslCode(-114), .error = "VD_MAX_NDR_DN_ERROR", .orders = dnRates, .label = "dn NDRmax", .unit = " Kbps "},
    {ITEM_FIELD(Item, upETRmin), .initial = 256, .allowed = {kRate}, .code = vdslCode(-115), .error = "VD_MIN_ETR_UP_ERROR", .label = "up ETRmin", .unit = " Kbps "},
    {ITEM_FIELD(Item, upETRmax), .initial = 100000, .allowed = {kRate}, .code = vdslCode(-116), .error = "VD_MAX_ETR_UP_ERROR", .label = "up ETRmax", .unit = " Kbps "},
    {ITEM_FIELD(Item, upNDRmax), .initial = 100000, .allowed = {kRate}, .code = vdslCode(-117), .error = "VD_MAX_NDR_UP_ERROR", .orders = upRates, .label = "up NDRmax", .unit = " Kbps "},
    {ITEM_FIELD(Item, dnROC), .allowed = {kRoc}, .code = vdslCode(-118), .error = "VD_MARGIN_ROC_DN_ERROR", .label = "dn ROC Margin", .unit = " dB "},
    {ITEM_FIELD(Item, upROC), .allowed = {kRoc}, .code = vdslCode(-119), .error = "VD_MARGIN_ROC_UP_ERROR", .label = "up ROC Margin", .unit = " dB "},
    {SCALED_FIELD(Item, dnROCInpMin, 1), .allowed = {kRocInp}, .code = vdslCode(-120), .error = "VD_ROC_INP_DN_ERROR", .label = "dn ROC INPmin", .unit = " symbol "},
    {SCALED_FIELD(Item, upROCInpMin, 1), .allowed = {kRocInp}, .code = vdslCode(-121), .error = "VD_ROC_INP_UP_ERROR", .label = "up ROC INPmin", .unit = " symbol "},
    {ITEM_FIELD(Item, dnMsgMin), .initial = 16, .allowed = {kMessage}, .code = vdslCode(-122), .error = "VD_MSG_MIN_DN_ERROR", .label = "dn MSGmin", .unit = " Kbps "},
    {ITEM_FIELD(Item, upMsgMin), .initial = 16, .allowed = {kMessage}, .code = vdslCode(-123), .error = "VD_MSG_MIN_UP_ERROR", .label = "up MSGmin", .unit = " Kbps "},
};
static constexpr ProfileShape shape{.itemSize = sizeof(Item), .headGap = 0, .tail = sizeof(Item::zero), .fields = fields};
static_assert(shape.mostBody() == 150);

#define ROW(member) rowAt(fields, offsetof(Item, member))
#define REIN(member) \
  {.word = #member, .field = ROW(member), .missing = "rein is enable,must config dnREINFreq dnREININPmin upREINFreq upREININPmin", .surplus = "rein is diable,can not config ", .otherwise = Otherwise::initial}
static constexpr LineValue modeValues[] = {
    {"dnReMode", ROW(dnReMode), modeWords}, {"upReMode", ROW(upReMode), modeWords},
    {"dnMaxDelay", ROW(dnMaxDelay)}, {"upMaxDelay", ROW(upMaxDelay)}, {"dnMinInp", ROW(dnMinInp)}, {"upMinInp", ROW(upMinInp)}};
static constexpr LineValue reinValues[] = {
    {"rein", ROW(reinEnable), enableWords}, REIN(dnREINFreq), REIN(dnREININPmin), REIN(upREINFreq), REIN(upREININPmin)};
static constexpr LineValue otherValues[] = {
    {"dnETRmin", ROW(dnETRmin)}, {"dnETRmax", ROW(dnETRmax)}, {"dnNDRmax", ROW(dnNDRmax)},
    {"upETRmin", ROW(upETRmin)}, {"upETRmax", ROW(upETRmax)}, {"upNDRmax", ROW(upNDRmax)},
    {"dnROC", ROW(dnROC)}, {"upROC", ROW(upROC)}, {"dnROCInpMin", ROW(dnROCInpMin)}, {"upROCInpMin", ROW(upROCInpMin)},
    {"dnMsgMin", ROW(dnMsgMin)}, {"upMsgMin", ROW(upMsgMin)}};
// clang-format on

namespace {
enum Line { kModeLine, kReinLine, kOtherLine };
}  // namespace
static constexpr ProfileLine lines[] = {
    {.head = "set vdslginp para", .values = modeValues, .always = true},
    {.head = "set vdslginp para", .values = reinValues, .always = true, .end = " "},
    {.head = "set vdslginp para", .values = otherValues, .always = true, .end = " "},
};

static constexpr ProfileTexts texts{
    .idRange = kVdslIdRange,
    .addFailed = "Add vdsl ginp profile failed,and errcode is ",
    .deleteFailedById = "Delete vdsl GINP profine failed,and errcode is ",
    .deleteFailedByName = "Delete vdsl ginp profine failed,and errcode is ",
    .readFailedById = "get_vdsl_ginp_prf profile failed,and errcode is ",
    .readFailedByName = "get_vdsl_ginp_prf failed,and errcode is ",
    .flushName = "flush_vdsl_ginp_prf",
    .writeName = "snmp_set_vdsl_ginp_prf",
    .selectFailedById = "set_vdsl_ginp_prf_cfgid failed,error.code is ",
    .selectFailedByName = "set_vdsl_ginp_prf_cfgid failed,error.code is ",
    .attachFailed = "attach_vdsl_ginp_prf failed,err_info.code is ",
    .badInterface = "Please input correct if_str",
    .printTitle = "\r\n!vdsl ginp prf config --------\r\n",
};

constexpr ProfileKind vdslGinpKind{
    .writeId = 34822,
    .attachId = 2859,
    .mostId = kMostVdslProfile,
    .attribute = kVdslGinpAttribute,
    .portTypes = vdslPortTypes,
    .shape = shape,
    .defaultName = "DEFVDGINP",
    .word = "vdslginp",
    .attachWord = "vdslginp",
    .attachTail = 32,
    .type = g_vdsl_ginp_prftype,
    .selected = g_vdsl_ginp_prf_cfgid,
    .reportsAttachment = true,
    .texts = texts,
    .lines = lines,
    .write = writeEach,
};

// clang-format off
static constexpr Command commands[] = {
    PROFILE_COMMANDS(vdslGinpKind, "vdslginp", "VDSL retransmission"),
    command(CONFIG_NODE, "set vdslginp para dnReMode [forbid|first|force|test] upReMode [forbid|first|force|test] dnMaxDelay <value> upMaxDelay <value> dnMinInp <value> upMinInp <value>", editCommand<vdslGinpKind, kModeLine>, "retransmission: modes, largest delays 0 to 63 ms, least protection 0.0 to 127.0 symbols"),
    command(CONFIG_NODE, "set vdslginp para rein [enable|disable] {dnREINFreq [0|1] dnREININPmin <value> upREINFreq [0|1] upREININPmin <value>}", editCommand<vdslGinpKind, kReinLine>, "repetitive impulse noise: 0 100 Hz, 1 120 Hz; least protection 0.0 to 7.0 symbols"),
    command(CONFIG_NODE, "set vdslginp para dnETRmin <value> dnETRmax <value> dnNDRmax <value> upETRmin <value> upETRmax <value> upNDRmax <value> dnROC <value> upROC <value> dnROCInpMin <value> upROCInpMin <value> dnMsgMin <value> upMsgMin <value>", editCommand<vdslGinpKind, kOtherLine>, "rates 64 to 512000 kbit/s, ROC margins 0 to 31 dB, its least protection 0.0 to 16.0 symbols, message rates 4 to 236 kbit/s"),
};
// clang-format on

void install_vdsl_ginp_cmd() { installCommands(commands); }
