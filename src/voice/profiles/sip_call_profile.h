#pragma once
// SIP user call profiles: the supplementary services of a POTS port.

#include "voice/common/voice_profile.h"

struct SipCallProfile : VoiceProfileHead {
  u16 callIDType = 0;  // 0 disable, 1 FSK-SDMF, 2 FSK-MDMF, 3 DTMF
  u8 callWaiting = 0;  // 0 disable, 1 enable, as all switches
  u8 busyFWD = 0;
  u8 ringFWD = 0;
  u8 forceFWD = 0;
  char fwdNumber[32] = {};  // may be empty
  u8 callConference = 0;
  u8 polarityReverse = 0;
};

extern const VoiceProfiles sipCallProfiles;

int nget_sipcallprofile_ex(const char* name, SipCallProfile* profile);  // by name: 0 or -1
void init_sipcallprofile();
void ndistrib_sipcallprofile();
int nshowrun_sipcallprofile(Vty* vty);
void registerSipCallProfiles();
void ninstall_sipcallprf_cfgline();
