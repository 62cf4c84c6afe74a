// The VDSL profile of power back-off, upstream and downstream.

#include "combo/vdsl/vdsl_kinds.h"
#include "common/commands.h"
#include "common/obj_attributes.h"

i16 g_vdsl_pbo_prf_type = -1;
i16 g_vdsl_pbo_prf_cfg_id = -1;

#pragma pack(push, 1)
struct VdslPboPrfItem {
  u16 upPBOMode;        // 0 disable, 1 auto, 2 manual
  ScaledValue forceEL;  // electrical length of manual mode, tenths of a dB, 0 to 2555
  ScaledValue us0A;     // of the upstream bands A, hundredths of a dBm/Hz, 4000 to 8095, and B, 0 to 4095
  ScaledValue us0B;
  ScaledValue us1A;
  ScaledValue us1B;
  ScaledValue us2A;
  ScaledValue us2B;
  ScaledValue us3A;
  ScaledValue us3B;
  ScaledValue el;    // downstream: electrical length, 0 to 2555
  ScaledValue scrA;  // scalars with eight decimals, -1.0 to 1.5
  ScaledValue scrB;
  ScaledValue scrC;
  ScaledValue mus;  // least signal that can be used, tenths of a dBm/Hz, -1275 to 0
  u16 minSPANFrq;   // tones: 0 to 2048, not above
  u16 maxSPANFrq;   // 32 to 6956
  u8 zero[32];
};
#pragma pack(pop)
using Item = VdslPboPrfItem;
static_assert(sizeof(Item) == 122 && offsetof(Item, zero) == 90);

static constexpr Word modeWords[] = {{"disable", 0}, {"auto", 1}, {"manual", 2}};
static constexpr ValueRange kLength{0, 2555}, kA{4000, 8095}, kB{0, 4095}, kScalar{-100000000, 150000000};
static constexpr FieldIs kInUse ITEM_IS(Item, upPBOMode, 1, 2), kManual ITEM_IS(Item, upPBOMode, 2, 2);
static constexpr FieldOrder span[] = {
    {ITEM_ORDER(Item, minSPANFrq, maxSPANFrq), .code = vdslCode(-119), .error = "VD_MIN_FREQ_MORE_THAN_MAX_ERROR"}};

// The bands are checked in every mode.
// clang-format off
static constexpr ProfileField fields[] = {
    {ITEM_FIELD(Item, upPBOMode), .words = modeWords, .code = vdslCode(-102), .error = "VD_UPBO_MODE_UP_ERROR", .label = "upPBOMode", .shown = Shown::word},
    {SCALED_FIELD(Item, forceEL, 1), .allowed = {kLength}, .code = vdslCode(-103), .error = "VD_FORCE_EL_ERROR", .when = kManual, .uses = kWhenShown, .label = "forceElectricalLength", .unit = " dB"},
    {SCALED_FIELD(Item, us0A, 2), .initial = 4000, .allowed = {kA}, .code = vdslCode(-104), .error = "VD_US0A_ERROR", .when = kInUse, .uses = kWhenShown, .label = "US0 A", .unit = " dBm/Hz"},
    {SCALED_FIELD(Item, us0B, 2), .allowed = {kB}, .code = vdslCode(-105), .error = "VD_US0B_ERROR", .when = kInUse, .uses = kWhenShown, .label = "US0 B", .unit = " dBm/Hz"},
    {SCALED_FIELD(Item, us1A, 2), .initial = 5650, .allowed = {kA}, .code = vdslCode(-106), .error = "VD_US1A_ERROR", .when = kInUse, .uses = kWhenShown, .label = "US1 A", .unit = " dBm/Hz"},
    {SCALED_FIELD(Item, us1B, 2), .initial = 1020, .allowed = {kB}, .code = vdslCode(-107), .error = "VD_US1B_ERROR", .when = kInUse, .uses = kWhenShown, .label = "US1 B", .unit = " dBm/Hz"},
    {SCALED_FIELD(Item, us2A, 2), .initial = 5650, .allowed = {kA}, .code = vdslCode(-108), .error = "VD_US2A_ERROR", .when = kInUse, .uses = kWhenShown, .label = "US2 A", .unit = " dBm/Hz"},
    {SCALED_FIELD(Item, us2B, 2), .initial = 615, .allowed = {kB}, .code = vdslCode(-109), .error = "VD_US2B_ERROR", .when = kInUse, .uses = kWhenShown, .label = "US2 B", .unit = " dBm/Hz"},
    {SCALED_FIELD(Item, us3A, 2), .initial = 5650, .allowed = {kA}, .code = vdslCode(-110), .error = "VD_US3A_ERROR", .when = kInUse, .uses = kWhenShown, .label = "US3 A", .unit = " dBm/Hz"},
    {SCALED_FIELD(Item, us3B, 2), .initial = 615, .allowed = {kB}, .code = vdslCode(-111), .error = "VD_US3B_ERROR", .when = kInUse, .uses = kWhenShown, .label = "US3 B", .unit = " dBm/Hz"},
    {SCALED_FIELD(Item, el, 1), .allowed = {kLength}, .code = vdslCode(-112), .error = "VD_DPBO_EL_ERROR", .label = "DPBO esel", .unit = " dB"},
    {SCALED_FIELD(Item, scrA, 8), .initial = 2734375, .allowed = {kScalar}, .code = vdslCode(-113), .error = "VD_SCRA_ERROR", .label = "DPBO Scalar A", .unit = " "},
    {SCALED_FIELD(Item, scrB, 8), .initial = 98828125, .allowed = {kScalar}, .code = vdslCode(-114), .error = "VD_SCRB_ERROR", .label = "DPBO Scalar B", .unit = " "},
    {SCALED_FIELD(Item, scrC, 8), .initial = 1953125, .allowed = {kScalar}, .code = vdslCode(-115), .error = "VD_SCRC_ERROR", .label = "DPBO Scalar C", .unit = " "},
    {SCALED_FIELD(Item, mus, 1), .initial = -900, .allowed = {{-1275, 0}}, .code = vdslCode(-116), .error = "VD_MUS_ERROR", .label = "DPBO MUS", .unit = " dBm/Hz"},
    {ITEM_FIELD(Item, minSPANFrq), .allowed = {{0, 2048}}, .code = vdslCode(-117), .error = "VD_MIN_SPAN_FRQ_ERROR", .label = "DPBO Span Min Frequency", .unit = " tone"},
    {ITEM_FIELD(Item, maxSPANFrq), .initial = 511, .allowed = {{32, 6956}}, .code = vdslCode(-118), .error = "VD_MAX_SPAN_FRQ_ERROR", .orders = span, .label = "DPBO Span Max  Frequency", .unit = " tone"},
};
static constexpr ProfileShape shape{.itemSize = sizeof(Item), .headGap = 0, .tail = sizeof(Item::zero), .fields = fields};
static_assert(shape.mostBody() == 122);

#define ROW(member) rowAt(fields, offsetof(Item, member))
#define BAND(member, typed, range) \
  {.word = typed, .field = ROW(member), .refusal = typed " should be [" range "]!", .surplus = "pbo disable mode,forbid config other para!", .otherwise = Otherwise::kept}
static constexpr LineValue upstream[] = {
    {"pboModeup", ROW(upPBOMode), modeWords, "mode para error!"},
    BAND(us0A, "us0a", "40.00-80.95"), BAND(us0B, "us0b", "0.00-40.95"),
    BAND(us1A, "us1a", "40.00-80.95"), BAND(us1B, "us1b", "0.00-40.95"),
    BAND(us2A, "us2a", "40.00-80.95"), BAND(us2B, "us2b", "0.00-40.95"),
    BAND(us3A, "us3a", "40.00-80.95"), BAND(us3B, "us3b", "0.00-40.95"),
    {.word = "elec-len", .field = ROW(forceEL), .refusal = "forceElectricalLength should be [0.0-255.5]!",
     .missing = "pbo manual mode,must config electric length!", .surplus = "pbo auto mode,electric length can not config!",
     .otherwise = Otherwise::kept}};
static constexpr LineValue downstream[] = {
    {"elec-len", ROW(el), {}, "ElectricalLength should be [0.0-255.5]!"},
    {"scalara", ROW(scrA), {}, "DPBO Scalar A should be [-1.0-1.5]!"},
    {"scalarb", ROW(scrB), {}, "DPBO Scalar B should be [-1.0-1.5]!"},
    {"scalarc", ROW(scrC), {}, "DPBO Scalar C should be [-1.0-1.5]!"},
    {"mus", ROW(mus), {}, "DPBO MUS should be [-127.5-0.0]!"},
    {"minfreq", ROW(minSPANFrq)},
    {"maxfreq", ROW(maxSPANFrq)}};
// clang-format on

namespace {
enum Line { kUpstreamLine, kDownstreamLine };
}  // namespace
static constexpr ProfileLine lines[] = {
    {.head = "set vdslpbo para", .values = upstream, .end = " "},
    {.head = "set vdslpbo para", .values = downstream, .always = true, .end = " "},
};

static constexpr ProfileTexts texts{
    .idRange = kVdslIdRange,
    .addFailed = "Add vdsl pbo profile failed,and errcode is ",
    .deleteFailedById = "Delete vdsl PBO profine failed,and errcode is ",
    .deleteFailedByName = "Delete vdsl PBO profine failed,and errcode is ",
    .readFailedById = "get_vdsl_pbo_prf_base profile failed,and errcode is ",
    .readFailedByName = "get_vdsl_pbo_prf_base failed,and errcode is ",
    .flushName = "flush_vdsl_pbo_prf",
    .writeName = "snmp_set_vdsl_pbo_prf",
    .selectFailedById = "set_vdsl_pbo_prf_cfg_id failed,error.code is ",
    .selectFailedByName = "set_vdsl_pbo_prf_cfg_id failed,error.code is ",
    .attachFailed = "attach_vdsl_pbo_prf_base failed,err_info.code is ",
    .printTitle = "\r\n!vdsl pbo prf config --------\r\n",
};

constexpr ProfileKind vdslPboKind{
    .writeId = 34805,
    .attachId = 2855,
    .mostId = kMostVdslProfile,
    .attribute = kVdslPboAttribute,
    .portTypes = vdslPortTypes,
    .shape = shape,
    .defaultName = "DEFVDPBO",
    .word = "vdslpbo",
    .attachWord = "vdslpbo",
    .attachTail = 4,
    .type = g_vdsl_pbo_prf_type,
    .selected = g_vdsl_pbo_prf_cfg_id,
    .reportsAttachment = true,
    .editsUnchanged = false,
    .texts = texts,
    .lines = lines,
    .write = writeBatch,
};

// clang-format off
static constexpr Command commands[] = {
    PROFILE_COMMANDS(vdslPboKind, "vdslpbo", "VDSL power back-off"),
    command(CONFIG_NODE, "set vdslpbo para pboModeup [manual|auto|disable] us0a <value> us0b <value> us1a <value> us1b <value>    us2a <value> us2b <value> us3a <value> us3b <value> {elec-len <value>}*1", editCommand<vdslPboKind, kUpstreamLine>, "upstream power back-off: A 40.00 to 80.95 and B 0.00 to 40.95 of each band, the electrical length of manual mode 0.0 to 255.5 dB"),
    command(CONFIG_NODE, "set vdslpbo para elec-len <value> scalara <value> scalarb <value> scalarc <value>    mus <value> minfreq <0-2048> maxfreq <32-6956>", editCommand<vdslPboKind, kDownstreamLine>, "downstream power back-off: electrical length 0.0 to 255.5 dB, scalars -1.0 to 1.5, least signal -127.5 to 0.0 dBm/Hz, tones"),
};
// clang-format on

void install_vdsl_pbo_cmd() { installCommands(commands); }
