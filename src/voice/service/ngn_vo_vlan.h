#pragma once
// The VLANs of the voice service, one for the signalling and one for the voice streams.

#include "common/msan_snmp.h"
#include "platform/command_line.h"

inline constexpr u16 kNoVlan = 65535;

struct VoiceVlan {
  u16 type = 0;         // 0 signalling, 1 RTP stream
  u16 serviceName = 0;  // not checked, and not sent
  u16 svlanTpid = 0;    // not 0
  u16 svlanId = 0;      // 1 to 4095, or none
  u16 svlanCos = 0;     // 0 to 7
  u16 cvlanTpid = 0;    // not 0
  u16 cvlanId = 0;      // 1 to 4095, or none
  u16 cvlanCos = 0;     // 0 to 7, or none
};

// A command's change of one row; both are sent. -1 for a failed check, read, store, or a refused send, which leaves the
// old rows; else 0, and a failure shows in `err` alone.
int distrib_voice_vlanx(const VoiceVlan* record, SnmpErrInfo* err);
int distrib_voice_vlan();
int erase_voice_vlan();  // the defaults, without a message
int init_voice_vlan(u16 type);
int send_rtp_vlan_by_slot(u16 slot);
void show_run_voice_vlan(Vty* vty);
void registerVoiceVlan();
void installVoiceVlan();
