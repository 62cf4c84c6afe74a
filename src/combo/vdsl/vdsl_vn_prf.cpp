// The VDSL profile of virtual noise: points of a tone and a level for each direction.

#include "combo/vdsl/vdsl_points.h"
#include "common/commands.h"
#include "common/obj_attributes.h"

i16 g_vdsl_vn_prftype = -1;
i16 g_vdsl_vn_prf_cfgid = -1;

#pragma pack(push, 1)
struct VnPoint {
  u16 tone;
  i16 level;  // -140 to -40, by a manager to 40
  u8 zero[3];
  u8 valid;
};
struct VdslVnPrfItem {
  u16 upVnNum;
  VnPoint up[16];
  u8 zero1[4];
  u16 dnVnNum;
  VnPoint dn[32];
  u8 zero2[8];
};
#pragma pack(pop)
using Item = VdslVnPrfItem;
static_assert(sizeof(Item) == 400 && offsetof(Item, dnVnNum) == 134);

// clang-format off
static constexpr ValueRange kLevel{-140, 40}, kTypedLevel{-140, -40};
static constexpr ProfileField upFields[] = {
    {ITEM_FIELD(VnPoint, tone), .allowed = {{7, 32}, {880, 1196}, {1981, 2773}}, .code = vdslCode(-103), .error = "VD_VN_TONE_UP_ERROR", .label = "Tone"},
    {ITEM_FIELD(VnPoint, level), .isSigned = true, .allowed = {kLevel}, .code = vdslCode(-104), .error = "VD_VN_LEVEL_UP_ERROR", .label = "Level"},
};
static constexpr ProfileField dnFields[] = {
    {ITEM_FIELD(VnPoint, tone), .allowed = {{33, 859}, {1216, 1961}, {2793, 4081}}, .code = vdslCode(-106), .error = "VD_VN_TONE_DN_ERROR", .label = "Tone"},
    {ITEM_FIELD(VnPoint, level), .isSigned = true, .allowed = {kLevel}, .code = vdslCode(-107), .error = "VD_VN_LEVEL_DN_ERROR", .label = "Level"},
};
static constexpr ProfileTable up{.at = offsetof(Item, up), .most = 16, .entry = sizeof(VnPoint), .fields = upFields, .valid = offsetof(VnPoint, valid), .title = "VN US No"};
static constexpr ProfileTable dn{.at = offsetof(Item, dn), .most = 32, .entry = sizeof(VnPoint), .fields = dnFields, .valid = offsetof(VnPoint, valid), .title = "VN DS  No"};
// A manager can't give a single point; an operator begins with one.
static constexpr ProfileField fields[] = {
    {ITEM_FIELD(Item, upVnNum), .allowed = {{0, 0}, {2, 16}}, .code = vdslCode(-102), .early = true, .late = false, .table = &up, .label = "VN Up num"},
    {ITEM_FIELD(Item, dnVnNum), .gap = 4, .allowed = {{0, 0}, {2, 32}}, .code = vdslCode(-105), .early = true, .late = false, .table = &dn, .label = "VN Dn num"},
};
// clang-format on
static constexpr ProfileShape shape{
    .itemSize = sizeof(Item), .headGap = 4, .tail = sizeof(Item::zero2), .fields = fields};
static_assert(shape.mostBody() == 400);

static constexpr PointCommand upPoints{"set vdslvn para up", "level", &fields[0], kTypedLevel, "level para error!"};
static constexpr PointCommand dnPoints{"set vdslvn para dn", "level", &fields[1], kTypedLevel, "level para error!"};

static constexpr ProfileTexts texts{
    .idRange = kVdslIdRange,
    .addFailed = "Add vdsl vn profile failed,and errcode is ",
    .deleteFailedById = "Delete vdsl VN profine failed,and errcode is ",
    .deleteFailedByName = "Delete vdsl VN profine failed,and errcode is ",
    .readFailedById = "get_vdsl_vn_prf profile failed,and errcode is ",
    .readFailedByName = "get_vdsl_vn_prf failed,and errcode is ",
    .flushName = "flush_vdsl_vn_prf",
    .writeName = "snmp_set_vdsl_vn_prf",
    .selectFailedById = "set_vdsl_vn_prf_cfgid failed,error.code is ",
    .selectFailedByName = "set_vdsl_vn_prf_cfgid failed,error.code is ",
    .attachFailed = "attach_vdsl_vn_prf failed,err_info.code is ",
    .badInterface = "Please input correct if_str",
    .printTitle = "\r\n!vdsl vn prf config --------\r\n",
};

constexpr ProfileKind vdslVnKind{
    .writeId = 34809,
    .attachId = 2857,
    .mostId = kMostVdslProfile,
    .attribute = kVdslVnAttribute,
    .portTypes = vdslPortTypes,
    .shape = shape,
    .defaultName = "DEFVDVN",
    .word = "vdslvn",
    .attachWord = "vdslvn",
    .attachTail = 4,
    .type = g_vdsl_vn_prftype,
    .selected = g_vdsl_vn_prf_cfgid,
    .reportsAttachment = true,
    .texts = texts,
    .write = writeEach,
    .printLines = printPointLines<upPoints, dnPoints>,
};

// clang-format off
static constexpr Command commands[] = {
    PROFILE_COMMANDS(vdslVnKind, "vdslvn", "VDSL virtual noise"),
    command(CONFIG_NODE, "set vdslvn para up index <1-16> tone [<7-32>|<880-1196>|<1981-2773>] level <value>", pointCommand<vdslVnKind, upPoints>, "a point of the upstream noise: -140 to -40"),
    command(CONFIG_NODE, "set vdslvn para dn index <1-32> tone [<33-859>|<1216-1961>|<2793-4081>] level <value>", pointCommand<vdslVnKind, dnPoints>, "a point of the downstream noise: -140 to -40"),
};
// clang-format on

void install_vdsl_vn_cmd() { installCommands(commands); }
