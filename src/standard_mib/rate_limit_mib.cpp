// Rate limits as the standard MIB agent works on them.

#include <cstring>

#include "common/report.h"
#include "data/rate/port_rate_bind.h"
#include "data/rate/port_rate_profile.h"
#include "platform/objects.h"
#include "standard_mib/ports.h"

// --- Profiles ---

int std_snmp_get_first_rate_prf() { return 0; }

int std_snmp_get_next_rate_prf(u16 id) {
  PortRatePrf profile;
  const u16 next = id < kMostRateProfile ? nextRateProfile(id, &profile) : u16{0};
  return next != 0 ? next : -1;
}

// The highest id is never given.
int std_snmp_rate_prf_id_assign() {
  for (u16 id = 1; id < kMostRateProfile; ++id) {
    if (!rate_limit_prf_is_valid(id)) return id;
  }
  return -1;
}

static int write(const PortRatePrf& profile) {
  const int code = gpon_set_port_rate_profile_base(profile, true);
  if (code == 0) reportChange(kNode, kRateProfileMessage, kByOperator);
  return code;
}

static int setName(PortRatePrf* profile, const char* name) {
  if (name == nullptr) return kRateNull;
  const std::size_t length = strnlen(name, kRateName + 1);
  if (length > kRateName) return kRateNameLength;
  std::memset(profile->name, 0, sizeof profile->name);
  std::memcpy(profile->name, name, length);
  return 0;
}

int std_snmp_rate_prf_add(u16 id, const char* name) {
  PortRatePrf profile;
  profile.id = id;
  if (const int code = setName(&profile, name)) return code;
  if (id == 0 || rate_limit_prf_is_valid(id) || StdSnmpGetRatePrfIdByName(profile.name) >= 0) return -1;
  return write(profile);
}

// A profile that can be changed. 0 or a code.
static int readStored(u16 id, PortRatePrf* profile) { return id == 0 ? -1 : get_rate_limit_profile_byid(id, profile); }

int std_snmp_rate_prf_name_mod(u16 id, const char* name) {
  PortRatePrf profile;
  if (const int code = readStored(id, &profile)) return code;
  if (const int code = setName(&profile, name)) return code;
  const int holder = StdSnmpGetRatePrfIdByName(profile.name);
  if (*profile.name == '\0' || (holder >= 0 && holder != id)) return -1;
  write(profile);
  return 0;
}

static bool isDirection(int direction) { return direction == kRateUpstream || direction == kRateDownstream; }

int std_snmp_rate_prf_rate_get(u16 id, int direction) {
  PortRatePrf profile;
  if (!isDirection(direction)) return -1;
  if (const int code = get_rate_limit_profile_byid(id, &profile)) return code;
  const bool up = direction == kRateUpstream;
  const u32 rate = up ? profile.usCir : profile.dsCir;
  return (up ? profile.usStatus : profile.dsStatus) == 1 ? static_cast<int>(rate) : 0;
}

int std_snmp_rate_prf_rate_set(u16 id, int direction, u32 rate) {
  PortRatePrf profile;
  if (!isDirection(direction)) return -1;
  if (const int code = readStored(id, &profile)) return code;
  const u8 status = rate != 0 ? 1 : 0;
  if (direction == kRateUpstream) {
    profile.usStatus = status;
    profile.usCir = rate;
  } else {
    profile.dsStatus = status;
    profile.dsCir = rate;
  }
  write(profile);
  return 0;
}

int std_snmp_rate_prf_delete_by_id(u16 id) {
  if (id == 0 || !rate_limit_prf_is_valid(id)) return -1;
  const int code = deleteRateProfile(id);
  return code == kRateBound ? -1 : code;
}

const char* std_snmp_get_rate_prf_name_by_id(u16 id) {
  static char gRateLimitName[kRateName + 1];
  PortRatePrf profile;
  if (get_rate_limit_profile_byid(id, &profile) != 0) return nullptr;
  std::memcpy(gRateLimitName, profile.name, sizeof gRateLimitName);
  return gRateLimitName;
}

// --- Ports ---

int std_snmp_rate_prf_attach_info_get(u16 slot, u16 port) {
  PortRateBinding binding;
  placeObject(slot, port, &binding.object);
  const int code = readRecord(portRateBind, &binding);
  return code == 0 ? binding.value.prfId : code;
}

int std_snmp_rate_prf_attach_by_id(u16 slot, u16 port, u16 id) {
  if (!rate_limit_prf_is_valid(id)) return -1;
  PortRateBinding binding;
  binding.value.prfId = id;
  placeObject(slot, port, &binding.object);
  ObjList records;
  if (addCopy(binding, records) != 0) return kNoMemory;
  SnmpErrInfo err;
  const int code = setRecords(portRateBind, records, &err);
  if (code == 0) reportRecords(portRateBind, records, kByOperator);
  return code;
}

int std_snmp_rate_prf_attach_by_name(u16 slot, u16 port, const char* name) {
  const int id = StdSnmpGetRatePrfIdByName(name);
  if (id < 0) return -1;
  std_snmp_rate_prf_attach_by_id(slot, port, static_cast<u16>(id));
  return 0;
}

int std_snmp_get_attach_bw_first_prfid(u16* slot, u16* port, u16* id) {
  if (slot == nullptr || port == nullptr || id == nullptr) return kRateNull;
  const ServiceSlots slots;
  for (const u32 number : slots.list()) {
    const auto at = static_cast<u16>(number);
    const u16 ports = dataPorts(at);
    for (u16 i = 1; i <= ports; ++i) {
      const int bound = std_snmp_rate_prf_attach_info_get(at, i);
      if (bound <= 0) continue;
      *slot = at;
      *port = i;
      *id = static_cast<u16>(bound);
      return 0;
    }
  }
  return -1;
}

int std_snmp_get_attach_bw_next_prfid(u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id) {
  if (nextSlot == nullptr || nextPort == nullptr || id == nullptr) return kRateNull;
  if (slot == 0) return std_snmp_get_attach_bw_first_prfid(nextSlot, nextPort, id);
  if (const int code = std_snmp_next_dsl_port_get(&slot, &port)) return code;
  const int bound = std_snmp_rate_prf_attach_info_get(slot, port);
  if (bound < 0) return bound;
  *nextSlot = slot;
  *nextPort = port;
  *id = static_cast<u16>(bound);
  return 0;
}
