// The VDSL profile of what has no other: vectoring, the annex of US0, PMSF, and where rate adaptation shifts down and
// up.

#include "combo/vdsl/vdsl_kinds.h"
#include "common/commands.h"
#include "common/obj_attributes.h"

i16 g_vdsl_extra_prftype = -1;
i16 g_vdsl_extra_prf_cfgid = -1;

#pragma pack(push, 1)
struct VdslExtraPrfItem {
  ScaledValue dnNMFlr;  // noise margins, tenths of a dB, 0 to 310; floors not above tops
  ScaledValue dnNMTop;
  ScaledValue upNMFlr;
  ScaledValue upNMTop;
  u16 vectEnable;
  u16 annexUs0;
  u16 pmsf;
  u16 dnAdaTimeFlr;  // s, 0 to 16383
  u16 dnAdaTimeTop;
  u16 upAdaTimeFlr;
  u16 upAdaTimeTop;
  u8 zero[64];
};
#pragma pack(pop)
using Item = VdslExtraPrfItem;
static_assert(sizeof(Item) == 102);

static constexpr Word enableWords[] = {{"disable", 0}, {"enable", 1}};
static constexpr Word annexWords[] = {{"annexA", 0}, {"annexB", 1}, {"annexC", 2}};
static constexpr Word shownAnnexWords[] = {{"annexA(G.992.5)", 0}, {"annexB(G.992.5)", 1}, {"annexC(G.992.5)", 2}};

static constexpr ValueRange kMargin{0, 310}, kTime{0, 16383};
static constexpr const char* kFloorAboveTop = "VD_DNSHIFT_MORE_THAN_UPSHIFT_ERROR";
static constexpr FieldOrder dnOrders[] = {
    {ITEM_ORDER(Item, dnNMFlr.value, dnNMTop.value), .code = vdslCode(-112), .error = kFloorAboveTop},
    {ITEM_ORDER(Item, dnAdaTimeFlr, dnAdaTimeTop), .code = vdslCode(-112), .error = kFloorAboveTop}};
static constexpr FieldOrder upOrders[] = {
    {ITEM_ORDER(Item, upNMFlr.value, upNMTop.value), .code = vdslCode(-112), .error = kFloorAboveTop},
    {ITEM_ORDER(Item, upAdaTimeFlr, upAdaTimeTop), .code = vdslCode(-112), .error = kFloorAboveTop}};

// The order on the wire is not that of the item.
// clang-format off
static constexpr ProfileField fields[] = {
    {ITEM_FIELD(Item, vectEnable), .initial = 1, .words = enableWords, .code = vdslCode(-101), .error = "VD_VECT_ENABLE_ERROR", .label = "Vectoring Enable", .shown = Shown::word},
    {ITEM_FIELD(Item, annexUs0), .words = shownAnnexWords, .code = vdslCode(-102), .error = "VD_US0_TYPE_ERROR", .label = "annexUs0", .shown = Shown::word},
    {ITEM_FIELD(Item, pmsf), .words = enableWords, .code = vdslCode(-103), .error = "VD_PMSF_ENABLE_ERROR", .label = "PMSF", .shown = Shown::word},
    {SCALED_FIELD(Item, dnNMFlr, 1), .initial = 30, .allowed = {kMargin}, .code = vdslCode(-104), .error = "VD_SRA_NM_FLOOR_DN_ERROR", .label = "dn NM floor", .unit = " dB "},
    {ITEM_FIELD(Item, dnAdaTimeFlr), .initial = 30, .allowed = {kTime}, .code = vdslCode(-105), .error = "VD_SRA_RATEADA_FLOOR_DN_ERROR", .label = "dn Rate AdaInt floor", .unit = " s "},
    {SCALED_FIELD(Item, dnNMTop, 1), .initial = 90, .allowed = {kMargin}, .code = vdslCode(-106), .error = "VD_SRA_NM_TOP_DN_ERROR", .label = "dn NM top", .unit = " dB"},
    {ITEM_FIELD(Item, dnAdaTimeTop), .initial = 30, .allowed = {kTime}, .code = vdslCode(-107), .error = "VD_SRA_RATEADA_TOP_DN_ERROR", .orders = dnOrders, .label = "dn Rate AdaInt top", .unit = " s "},
    {SCALED_FIELD(Item, upNMFlr, 1), .initial = 30, .allowed = {kMargin}, .code = vdslCode(-108), .error = "VD_SRA_NM_FLOOR_UP_ERROR", .label = "up NM floor", .unit = " dB "},
    {ITEM_FIELD(Item, upAdaTimeFlr), .initial = 30, .allowed = {kTime}, .code = vdslCode(-109), .error = "VD_SRA_RATEADA_FLOOR_UP_ERROR", .label = "up Rate AdaInt floor", .unit = " s "},
    {SCALED_FIELD(Item, upNMTop, 1), .initial = 90, .allowed = {kMargin}, .code = vdslCode(-110), .error = "VD_SRA_NM_TOP_UP_ERROR", .label = "up NM top", .unit = " dB"},
    {ITEM_FIELD(Item, upAdaTimeTop), .initial = 30, .allowed = {kTime}, .code = vdslCode(-111), .error = "VD_SRA_RATEADA_TOP_UP_ERROR", .orders = upOrders, .label = "up Rate AdaInt top", .unit = " s "},
};
// clang-format on
static constexpr ProfileShape shape{
    .itemSize = sizeof(Item), .headGap = 0, .tail = sizeof(Item::zero), .fields = fields};
static_assert(shape.mostBody() == 102);

#define ROW(member) rowAt(fields, offsetof(Item, member))
// clang-format off
static constexpr LineValue values[] = {
    {"vectenable", ROW(vectEnable), enableWords},
    {"annexus0", ROW(annexUs0), annexWords},
    {"pmsf", ROW(pmsf), enableWords},
    {"dnNMFlr", ROW(dnNMFlr)}, {"dnNMTop", ROW(dnNMTop)},
    {"dnAdaTimeFlr", ROW(dnAdaTimeFlr)}, {"dnAdaTimeTop", ROW(dnAdaTimeTop)},
    {"upNMFlr", ROW(upNMFlr)}, {"upNMTop", ROW(upNMTop)},
    {"upAdaTimeFlr", ROW(upAdaTimeFlr)}, {"upAdaTimeTop", ROW(upAdaTimeTop)}};
// clang-format on
static constexpr ProfileLine lines[] = {{.head = "set vdslextra para", .values = values, .always = true, .end = "  "}};

static constexpr ProfileTexts texts{
    .idRange = kVdslIdRange,
    .addFailed = "Add vdsl extra profile failed,and errcode is ",
    .deleteFailedById = "Delete vdsl extra profine failed,and errcode is ",
    .deleteFailedByName = "Delete vdsl extra profine failed,and errcode is ",
    .readFailedById = "get_vdsl_extra_prf profile failed,and errcode is ",
    .readFailedByName = "get_vdsl_extra_prf failed,and errcode is ",
    .flushName = "flush_vdsl_extra_prf",
    .writeName = "snmp_set_vdsl_extra_prf",
    .selectFailedById = "set_vdsl_extra_prf_cfgid failed,error.code is ",
    .selectFailedByName = "setVdslExtraPrfCfgId failed,error.code is ",
    .attachFailed = "attach_vdsl_extra_prf failed,err_info.code is ",
    .badInterface = "Please input correct if_str",
    .printTitle = "\r\n!vdsl extra prf config --------\r\n",
};

constexpr ProfileKind vdslExtraKind{
    .writeId = 34820,
    .attachId = 2858,
    .mostId = kMostVdslProfile,
    .attribute = kVdslExtraAttribute,
    .portTypes = vdslPortTypes,
    .shape = shape,
    .defaultName = "DEFVDEXTRA",
    .word = "vdslextra",
    .attachWord = "vdslextra",
    .attachTail = 32,
    .type = g_vdsl_extra_prftype,
    .selected = g_vdsl_extra_prf_cfgid,
    .reportsAttachment = true,
    .texts = texts,
    .lines = lines,
    .write = writeEach,
};

// clang-format off
static constexpr Command commands[] = {
    PROFILE_COMMANDS(vdslExtraKind, "vdslextra", "VDSL extra"),
    command(CONFIG_NODE, "set vdslextra para vectEnable [enable|disable] annexUs0 [annexa|annexb|annexc] pmsf [enable|disable] dnNMFlr <value> dnNMTop <value> dnAdaTimeFlr <value> dnAdaTimeTop <value> upNMFlr <value> upNMTop <value> upAdaTimeFlr <value> upAdaTimeTop <value>", editCommand<vdslExtraKind, 0>, "vectoring, annex, PMSF, and floors and tops of noise margins, 0.0 to 31.0 dB, and of times, 0 to 16383 s"),
};
// clang-format on

void install_vdsl_extra_cmd() { installCommands(commands); }
