#pragma once
// The VDSL line profile.

#include "combo/profile/profile_kind.h"

#pragma pack(push, 1)
struct ToneRange {
  u16 start;  // not above the end
  u16 end;    // both 0 to 4095
  u8 zero[4];
};

struct VdslLinePrfItem {
  u16 portMode;            // 1 ATM, 2 PTM, 3 what the line finds
  u16 stPrf;               // one band's bit, or 255 for all
  u16 psdShape;            // 0 to 42
  ScaledValue maxTxPwrDn;  // tenths of a dB, 0 to 255
  ScaledValue maxTxPwrUp;  // 0 to 202
  u16 rfiNum;
  ToneRange rfi[16];
  u16 tbNum;
  ToneRange tones[8];
  u8 zero[8];
};
#pragma pack(pop)
using VdslLinePrfRecord = ProfileRecord<VdslLinePrfItem>;
static_assert(sizeof(VdslLinePrfItem) == 222 && sizeof(VdslLinePrfRecord) == 252);
static_assert(offsetof(VdslLinePrfItem, tbNum) == 148 && offsetof(VdslLinePrfItem, tones) == 150);

extern const ProfileKind vdslLineKind;
extern i16 g_vdsl_line_prf_type;
extern i16 g_vdsl_line_prf_cfg_id;

int get_vdsl_line_prf_base(SnmpErrInfo* err, VdslLinePrfRecord* record, u16 id);
// Changes what a selector (1 to 7) names in the selected profile to what it is in `values`. The profile is checked if
// that makes a difference, and written in any case.
int modify_spc_vdsl_line_prf_para(SnmpErrInfo* err, const VdslLinePrfRecord* values, u32 selector);

void install_vdsl_line_cmd();
