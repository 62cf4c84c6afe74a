#pragma once
// The profiles that a VDSL line has beside its line profile, one of each kind, and what the kinds share.

#include "combo/adsl/adsl_config_aux.h"
#include "combo/profile/profile_kind.h"

inline constexpr u16 vdslPortTypes[] = {kVdslPort, kVdslPotsPort};
inline constexpr u16 kMostVdslProfile = 32;  // of all kinds but the line profile
inline constexpr const char* kVdslIdRange = "Profile's id must between 1 and 32 ";

constexpr u16 vdslCode(int number) { return static_cast<u16>(number); }

extern const ProfileKind
    vdslServiceKind;  // rate adaptation, noise margins, least rates, delay, impulse noise protection
extern i16 g_vdsl_service_prf_type;
extern i16 g_vdsl_service_prf_cfg_id;
void install_vdsl_ser_cmd();

extern const ProfileKind vdslPboKind;  // power back-off
extern i16 g_vdsl_pbo_prf_type;
extern i16 g_vdsl_pbo_prf_cfg_id;
void install_vdsl_pbo_cmd();

extern const ProfileKind vdslCpsdKind;  // points of the power spectral density
extern i16 g_vdsl_cpsd_prftype;
extern i16 g_vdsl_cpsd_prf_cfgid;
void install_vdsl_cpsd_cmd();

extern const ProfileKind vdslExtraKind;  // vectoring, annex, rate adaptation
extern i16 g_vdsl_extra_prftype;
extern i16 g_vdsl_extra_prf_cfgid;
void install_vdsl_extra_cmd();

extern const ProfileKind vdslGinpKind;  // retransmission
extern i16 g_vdsl_ginp_prftype;
extern i16 g_vdsl_ginp_prf_cfgid;
void install_vdsl_ginp_cmd();

extern const ProfileKind vdslVnKind;  // points of virtual noise
extern i16 g_vdsl_vn_prftype;
extern i16 g_vdsl_vn_prf_cfgid;
void install_vdsl_vn_cmd();
