#pragma once
// Rate-limit profiles: named pairs of committed rates, upstream and downstream, each with a switch of its own. Ports
// are bound to a profile by its id (port_rate_bind.h); a card gets the values alone, so a profile whose values change
// is sent again to every port that is bound to it. Profiles live in the platform's common profile store; profile 0 is
// the default, which is built in and never stored.

#include "common/msan_snmp.h"
#include "common/wire.h"
#include "platform/command_line.h"
#include "platform/types.h"

inline constexpr u16 kMostRateProfile = 256;
inline constexpr u32 kRateName = 20;  // characters
inline constexpr char kDefaultRateName[] = "PORTRATE.PRF";
inline constexpr u16 kRateProfileMessage = 34609, kRateProfileDeletion = 34610;

enum RateError : int {
  kRateId = -10,  // above the highest
  kRateDefault = -16,
  kRateNull = -24,
  kRateCount = -32,
  kRateLength = -33,  // of a request
  kRateNameLength = -52,
  kRateBound = -55,
  kRateUp = -101,
  kRateDown = -104,
};

#pragma pack(push, 1)
// As it is stored.
struct PortRatePrf {
  u16 id = 0;
  char name[kRateName + 1] = {};
  u8 usStatus = 0;  // 1 limited; the rate has to be good either way
  u32 usCir = 64;   // 64 to 1000000
  u8 usReserved[8] = {};
  u8 dsStatus = 0;
  u32 dsCir = 64;
  u8 dsReserved[36] = {};
};
#pragma pack(pop)
static_assert(sizeof(PortRatePrf) == 77);

void init_port_rate_profile_type();  // a failure is logged
void init_port_rate_default_prf();

bool rate_limit_prf_is_valid(u32 id);                       // the default is
int get_rate_limit_profile_byid(u32 id, PortRatePrf* out);  // 0, kRateId, kRateNull, or -1 for none
int StdSnmpGetRatePrfIdByName(const char* name);            // negative for none; the default has no name there

// Whether a profile with this id is stored, and its values are others than these.
bool port_rate_prf_is_modify(u16 id, const PortRatePrf& profile);
// The one way to write a profile: checks, stores, and tells the ports that are bound to it if its values are
// `modified`. 0 or a negative code.
int gpon_set_port_rate_profile_base(const PortRatePrf& profile, bool modified);
// Takes a profile away that no port is bound to. 0, kRateBound, or another negative code.
int deleteRateProfile(u16 id);

// The profile as it stands on the wire.
void writeRateProfile(const PortRatePrf& profile, Writer& out);
// Its values alone, as a card gets them for a port.
void writeRates(const PortRatePrf& profile, Writer& out);
// The next stored profile behind `id`, 0 if there is none.
u16 nextRateProfile(u16 id, PortRatePrf* out);

void register_port_rate_profile_set_snmp();
void register_port_rate_profile_del_snmp();
void install_element_port_rate_profile();
void port_rate_profile_showrun(Vty* vty);
