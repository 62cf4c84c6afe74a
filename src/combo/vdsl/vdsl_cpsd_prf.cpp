// The VDSL profile of the mask of power spectral density: points of a tone and a level for each direction.

#include "combo/vdsl/vdsl_points.h"
#include "common/commands.h"
#include "common/obj_attributes.h"

i16 g_vdsl_cpsd_prftype = -1;
i16 g_vdsl_cpsd_prf_cfgid = -1;

#pragma pack(push, 1)
struct CpsdPoint {
  u16 tone;
  ScaledValue value;  // tenths of a dBm/Hz, -1200 to 0
  u8 zero[3];
  u8 valid;
};
struct VdslCpsdPrfItem {
  u16 upPsdNum;
  CpsdPoint up[16];
  u8 zero1[4];
  u16 dnPsdNum;
  CpsdPoint dn[40];
  u8 zero2[8];
};
#pragma pack(pop)
using Item = VdslCpsdPrfItem;
static_assert(sizeof(Item) == 688 && offsetof(Item, dnPsdNum) == 198);

// clang-format off
static constexpr ValueRange kLevel{-1200, 0};
static constexpr ProfileField upFields[] = {
    {ITEM_FIELD(CpsdPoint, tone), .allowed = {{7, 32}, {880, 1196}, {1981, 2773}}, .code = vdslCode(-103), .error = "VD_PSD_TONE_UP_ERROR", .label = "Tone"},
    {SCALED_FIELD(CpsdPoint, value, 1), .allowed = {kLevel}, .code = vdslCode(-104), .error = "VD_PSD_VALUE_UP_ERROR", .label = "Value"},
};
static constexpr ProfileField dnFields[] = {
    {ITEM_FIELD(CpsdPoint, tone), .allowed = {{33, 859}, {1216, 1961}, {2793, 4081}}, .code = vdslCode(-106), .error = "VD_PSD_TONE_DN_ERROR", .label = "Tone"},
    {SCALED_FIELD(CpsdPoint, value, 1), .allowed = {kLevel}, .code = vdslCode(-107), .error = "VD_PSD_VALUE_DN_ERROR", .label = "Value"},
};
static constexpr ProfileTable up{.at = offsetof(Item, up), .most = 16, .entry = sizeof(CpsdPoint), .fields = upFields, .valid = offsetof(CpsdPoint, valid), .title = "Up PSD No"};
static constexpr ProfileTable dn{.at = offsetof(Item, dn), .most = 40, .entry = sizeof(CpsdPoint), .fields = dnFields, .valid = offsetof(CpsdPoint, valid), .title = "Dn PSD No"};
static constexpr ProfileField fields[] = {
    {ITEM_FIELD(Item, upPsdNum), .allowed = {{0, 16}}, .code = vdslCode(-102), .error = "VD_PSD_NUM_UP_ERROR", .early = true, .table = &up, .label = "Up PSD num"},
    {ITEM_FIELD(Item, dnPsdNum), .gap = 4, .allowed = {{0, 40}}, .code = vdslCode(-105), .error = "VD_PSD_NUM_DN_ERROR", .early = true, .table = &dn, .label = "Dn PSD num"},
};
// clang-format on
static constexpr ProfileShape shape{
    .itemSize = sizeof(Item), .headGap = 4, .tail = sizeof(Item::zero2), .fields = fields};
static_assert(shape.mostBody() == 688);

// Upstream levels are left to the check.
static constexpr PointCommand upPoints{"set vdslcpsd para up", "value", &fields[0]};
static constexpr PointCommand dnPoints{"set vdslcpsd para dn", "value", &fields[1], kLevel, "psd value error!"};

static constexpr ProfileTexts texts{
    .idRange = kVdslIdRange,
    .addFailed = "Add vdsl cpsd profile failed,and errcode is ",
    .deleteFailedById = "Delete vdsl CPSD profine failed,and errcode is ",
    .deleteFailedByName = "Delete vdsl CPSD profine failed,and errcode is ",
    .readFailedById = "get_vdsl_cpsd_prf profile failed,and errcode is ",
    .readFailedByName = "get_vdsl_cpsd_prf failed,and errcode is ",
    .flushName = "flush_vdsl_cpsd_prf",
    .writeName = "snmp_set_vdsl_cpsd_prf",
    .selectFailedById = "set_vdsl_cpsd_prf_cfgid failed,error.code is ",
    .selectFailedByName = "set_vdsl_cpsd_prf_cfgid failed,error.code is ",
    .attachFailed = "attach_vdsl_cpsd_prf failed,err_info.code is ",
    .badInterface = "Please input correct if_str",
    .printTitle = "\r\n!vdsl cpsd prf config --------\r\n",
};

constexpr ProfileKind vdslCpsdKind{
    .writeId = 34807,
    .attachId = 2856,
    .mostId = kMostVdslProfile,
    .attribute = kVdslCpsdAttribute,
    .portTypes = vdslPortTypes,
    .shape = shape,
    .defaultName = "DEFVDPSD",
    .word = "vdslcpsd",
    .attachWord = "vdslcpsd",
    .attachTail = 4,
    .type = g_vdsl_cpsd_prftype,
    .selected = g_vdsl_cpsd_prf_cfgid,
    .reportsAttachment = true,
    .texts = texts,
    .write = writeEach,
    .printLines = printPointLines<upPoints, dnPoints>,
};

// clang-format off
static constexpr Command commands[] = {
    PROFILE_COMMANDS(vdslCpsdKind, "vdslcpsd", "VDSL spectral mask"),
    command(CONFIG_NODE, "set vdslcpsd para up index <1-16> tone [<7-32>|<880-1196>|<1981-2773>] value <value>", pointCommand<vdslCpsdKind, upPoints>, "a point of the upstream mask, dBm/Hz: -120.0 to 0.0"),
    command(CONFIG_NODE, "set vdslcpsd para dn index <1-40> tone [<33-859>|<1216-1961>|<2793-4081>] value <value>", pointCommand<vdslCpsdKind, dnPoints>, "a point of the downstream mask, dBm/Hz: -120.0 to 0.0"),
};
// clang-format on

void install_vdsl_cpsd_cmd() { installCommands(commands); }
