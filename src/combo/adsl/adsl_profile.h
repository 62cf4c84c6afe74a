#pragma once
// The ADSL line profile.

#include "combo/profile/profile_kind.h"

#pragma pack(push, 1)
struct ToneBlackout {
  u16 start;
  u16 end;  // both 0 to 511
  u8 zero[4];
};

struct AdslPrfItem {
  u16 transmode;
  u16 UpRateMode;
  u16 DownRateMode;
  u16 AdslLineType;
  ScaledValue SnrmDn;  // tenths of a dB
  ScaledValue SnrmUp;
  u16 MaxInterLeaveDelayDn;  // ms
  u16 MaxInterLeaveDelayUp;
  u16 MinInpDn;
  u16 MinInpUp;
  u8 BitSwapDn;
  u8 BitSwapUp;
  u16 PowerMode;
  u16 PmL0Time;
  u16 PmL2Time;
  u16 PmL2Atprt;  // dB
  u32 PmL2Rate;   // kbit/s
  u16 MaxSnrmDn;  // dB
  u16 MaxSnrmUp;
  u16 MinSnrmDn;  // not above the maximum
  u16 MinSnrmUp;
  u16 ToneBlackoutNum;
  ToneBlackout tones[16];
  u32 MinRateDn;  // kbit/s
  u32 MinRateUp;
  u8 zero[64];
};
#pragma pack(pop)
using AdslPrfRecord = ProfileRecord<AdslPrfItem>;
static_assert(sizeof(AdslPrfItem) == 252 && sizeof(AdslPrfRecord) == 282);
static_assert(offsetof(AdslPrfItem, tones) == 52 && offsetof(AdslPrfItem, MinRateDn) == 180);

extern const ProfileKind adslLineKind;
extern i16 adslPrfType;
extern i16 adslPrfCfgId;
extern SemaphoreId adsl_prf_config_mux;

void adsl_create_dft_prf();
int get_adsl_prf(AdslPrfRecord* record, u16 id);
int get_adsl_line_prf(SnmpErrInfo* err, AdslPrfRecord* record, u16 id);
int get_adsl_prf_id_by_name(SnmpErrInfo* err, u16* id, const char* name);
int set_adsl_line_prf(SnmpErrInfo* err, AdslPrfRecord* records, u16 count);
int del_spc_adsl_line_prf(SnmpErrInfo* err, const u16* ids, u16 count);
// Changes one field of the selected profile to what it is in `values`. Selectors 1 to 26, of which 20 is none.
int modify_spc_adsl_prf_para(SnmpErrInfo* err, const AdslPrfRecord* values, u32 selector);
// Puts a value where a selector of a single number has its field.
void setAdslField(AdslPrfItem* item, u32 selector, u32 value);
int attach_adsl_line_prf(SnmpErrInfo* err, LIST* nodes, u16 count);
int attach_adsl_prf_adapt(LIST* nodes, u16 count);
int flush_adsl_prf(SnmpErrInfo* err, u16 id, int flag);
int check_adsl_prf_attached(SnmpErrInfo* err, u16 id);
void hotplug_ad_prf_attach(u16 slot);
// Bind all ADSL ports of a slot to the default profile; nothing is sent.
int clr_adsl_prf_attach(u16 slot);
int adsl_att_dft_prf(u16 slot);
void adsl_line_prf_showrun(Vty* vty);
void ad_prf_attach_showrun(Vty* vty);
