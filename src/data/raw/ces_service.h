#pragma once
// Where the packets of a CES card's ports go.

#include "data/raw/raw_record.h"

struct Vty;

inline constexpr u16 kCesPorts = 32;        // of a card, whatever it says of itself
inline constexpr u16 kAllCesPorts = 65535;  // in a SET: all of them; as the other end's port: none in particular

struct CesServiceRecord {
  Le16 slot = 0;
  Le16 port = 0;
  u8 reserved[16] = {};
  u8 srcMac[6] = {};  // the card's own, filled in on reading
  u8 dstMac[6] = {};
  Le16 dstPort = kAllCesPorts;
  Le16 jitterBuf = 32;
  u8 reserved2[32] = {};
};
static_assert(sizeof(CesServiceRecord) == 68);

void snmp_reg_ces_service();
void install_ces_service();
void showrun_ces_service(Vty* vty);
void hotplug_ces_service(u16 slot);
void card_unauth_ces_service(u16 slot);

// 0 or a code: the card, the ports, the buffer.
int check_ces_service(const CesServiceRecord& record);

// The store. A port without a row has the defaults. 0 or -900.
int set_ces_service_db(const CesServiceRecord* record);  // of all ports in one transaction
int get_ces_service_db(CesServiceRecord* record);        // of its slot and port
void del_ces_service_db(u16 slot);
