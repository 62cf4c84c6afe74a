#pragma once
// DSP profiles: how a POTS port codes, damps and buffers.

#include "voice/common/voice_profile.h"

struct DspProfile : VoiceProfileHead {
  u16 defaultCode = 0;      // 0 G.711u, 1 G.711A, 2 G.723, 3 G.729
  u8 mute = 0;              // 0 disable, 1 enable
  u8 echoCancel = 0;        // the same
  i16 inputGain = 0;        // dB, -14 to 6
  i16 outputGain = 0;       // dB, -14 to 6
  u16 dtmfMode = 0;         // 0 transparent, 1 RFC 2833, 2 RFC 2833 redundance, 3 outband
  u16 jitterBuffer = 0;     // ms, 1 to 254
  u16 faxJitterBuffer = 0;  // ms, 1 to 254
  u16 packetInterval = 0;   // ms, 10 to 60 in tens
  u16 faxRate = 0;          // bit/s, 2400 to 14400 in steps of 2400
};

extern const VoiceProfiles dspProfiles;

// 1 if the profile has a name, 0 if not, -1 if it can't be read. By name: 0 or -1.
int is_valid_dsp_profile(u16 id);
int get_dsp_profile_ex(const char* name, DspProfile* profile);
int init_dsp();
void distrib_dsp_profile();
void show_run_dsp_profile(Vty* vty);
void registerDspProfiles();
void install_dsp_cmd_line();
