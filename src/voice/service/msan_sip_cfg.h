#pragma once
// The SIP side of the voice service: its servers, the map that ends a dial string, and how waiting calls and
// conferences are signalled.

#include "voice/common/voice_item.h"

struct SipServer {
  char proxyServer[64] = {};
  u32 proxyServPort = 0;  // 1025 to 65535, as all ports
  char bakProxyServ[64] = {};
  u32 bakProxyServPort = 0;
  char proxyServReg[64] = {};
  u32 proxyServRegPort = 0;
  char bakProxyServReg[64] = {};
  u32 bakProxyServRegPort = 0;
  u32 regInterval = 0;        // s, 60 to 3600
  u8 heartbeat = 0;           // 0 disable, 1 initiative, 2 passive
  u16 heartbeatInterval = 0;  // s, 1 to 43200; with a heartbeat alone
  u16 heartbeatTimeOuts = 0;  // 1 to 120; with a heartbeat alone
  u8 heartbeatMode = 0;       // 0 by device, 1 by port
};

struct SipDigitMap {
  char map[2048] = {};  // not empty; without an end when full
};

struct SipAdvanced {
  u16 CWCONFMode = 0;           // 0 normal, 1 refer, 2 info1, 3 info2, 4 other
  char conferenceURI[64] = {};  // in mode refer alone
  u8 sharpCharEscape = 0;       // 1 disable, 0 enable: the reverse of other switches
  u8 callerIDHeadField = 0;     // 0 P-Asserted-ID, 1 From
};

extern const VoiceItem sipServer, sipDigitMap, sipAdvanced;

inline constexpr StepNames sipServerNames =
    serviceItem("db_set_sip_serv_cfg", "db_get_sip_serv_cfg", "sipcfg_regsnmpcmdhandle");
inline constexpr StepNames sipDigitMapNames =
    serviceItem("db_set_sip_digitmap_cfg", "db_get_sip_digitmap_cfg", "sipcfg_regsnmpcmdhandle", "ninit_sip_digitmap");
inline constexpr StepNames sipAdvancedNames =
    serviceItem("db_set_sipadvance_cfg", "db_get_sipadvance_cfg", "sipcfg_regsnmpcmdhandle", "ninit_sip_advanced");
