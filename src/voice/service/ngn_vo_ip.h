#pragma once
// How the voice service reaches the network: addresses of its own, or PPPoE or DHCP.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "voice/common/voice_public.h"

enum VoiceIpMode : u16 { kStatic = 0, kPppoe = 1, kDhcp = 2, kPppoeV6 = 3, kDhcpV6 = 4 };
enum VoiceAddress : u32 { kSigIp, kSigGateway, kRtpIp, kRtpGateway, kPrimaryDns, kSecondaryDns, kAddresses };

struct VoiceIp {
  u16 mode = kStatic;
  LocalIP address[kAddresses];  // IPv4: the first four bytes, in host order
  u8 pppoeOperation = 0;        // 0 disconnect, 1 dial
  char pppoeUser[32] = {};
  char pppoePassword[32] = {};
  u16 pppoeAuthentication = 0;  // 1 pap, 2 chap
  u8 dhcpOperation = 0;         // 0 disable, 1 enable
  u8 option60 = 0;              // the same
  char option60Fixed[32] = {};
  char option60Suffix[32] = {};
};
inline constexpr u32 kVoiceIpUnit = 535;  // bytes of form 1

// The wire has two forms: that of the NGN side, and a manager's with addresses of their own length and longer gaps.
void encode_voice_ip(const VoiceIp& record, int form, Writer& out);
int parse_voice_ip(WireIn general, VoiceIp* record);  // of a manager's; 0 or -1

int check_voice_ip(const VoiceIp* record, SnmpErrInfo* err);
int get_voice_ip(VoiceIp* record);  // 0 or -900
// Takes from the record what its mode owns; the data of other modes stay. 0 or -900.
int set_voice_ip(const VoiceIp* record);
// A command's change. -1 for a failed check, read, store, message or send, which leaves the old row; else 0.
int distrib_voice_ipx(const VoiceIp* record, SnmpErrInfo* err);
int distrib_voice_ip();
int erase_voice_ip();
int init_voice_ip();
int send_rtp_ip_by_slot(u16 slot);
void show_run_voice_ip(Vty* vty);

inline constexpr u16 kVoiceIpRtpMessage = 2850;
void registerVoiceIp();
void installVoiceIp();
