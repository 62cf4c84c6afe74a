// Rate-limit profiles in the store, and what is asked of one that is written.

#include "data/rate/port_rate_profile.h"

#include <algorithm>
#include <cstring>

#include "common/msan_init.h"
#include "data/rate/port_rate_bind.h"
#include "platform/common_profile_store.h"
#include "platform/log.h"
#include "platform/profile_store.h"

static constexpr u32 kLeastRate = 64, kMostRate = 1000000;

// Ports are asked ahead of a deletion, with an answer of their own for a failure.
static int is_port_rate_profile_bind_obj(const CommProfile*) { return 0; }

static CommProfile g_port_rate_limit_prf;
static PortRatePrf g_port_rate_default_prf;

// What a call of the store takes. Each has one of its own, since calls of several doors overlap.
static CommProfile descriptorOf(u16 id, PortRatePrf* profile = nullptr) {
  CommProfile descriptor = g_port_rate_limit_prf;
  descriptor.id = id;
  descriptor.data = profile;
  return descriptor;
}

void init_port_rate_profile_type() {
  g_port_rate_limit_prf = {};
  g_port_rate_limit_prf.moduleId = gModuleId_Msan;
  g_port_rate_limit_prf.ids = kMostRateProfile + 1;
  g_port_rate_limit_prf.items = 1;
  g_port_rate_limit_prf.recordSize = g_port_rate_limit_prf.storedSize = sizeof(PortRatePrf);
  g_port_rate_limit_prf.isBound = is_port_rate_profile_bind_obj;
  if (init_comm_profile_type(&g_port_rate_limit_prf) == 0) return;
  ulogPrintf(gModuleId_Msan, kLogError, "%s: register rate limit profile type failed!\r\n", __func__);
}

void init_port_rate_default_prf() {
  g_port_rate_default_prf = {};
  std::memcpy(g_port_rate_default_prf.name, kDefaultRateName, sizeof kDefaultRateName);
}

static bool isStored(u16 id) {
  const CommProfile descriptor = descriptorOf(id);
  return is_comm_profile_exist(&descriptor) == 1;
}

bool rate_limit_prf_is_valid(u32 id) { return id <= kMostRateProfile && (id == 0 || isStored(static_cast<u16>(id))); }

int get_rate_limit_profile_byid(u32 id, PortRatePrf* out) {
  if (id > kMostRateProfile) return kRateId;
  if (out == nullptr) return kRateNull;
  if (id == 0) {
    *out = g_port_rate_default_prf;
    return 0;
  }
  CommProfile descriptor = descriptorOf(static_cast<u16>(id), out);
  return find_comm_profile_by_id(&descriptor) == 0 ? 0 : -1;
}

u16 nextRateProfile(u16 id, PortRatePrf* out) {
  const CommProfile descriptor = descriptorOf(0);
  const int most = get_comm_profile_max_id(&descriptor);
  for (u32 next = id + 1U; static_cast<int>(next) <= most; ++next) {
    if (get_rate_limit_profile_byid(next, out) == 0) return static_cast<u16>(next);
  }
  return 0;
}

int StdSnmpGetRatePrfIdByName(const char* name) {
  return name != nullptr ? prfGetPrfIdByName(g_port_rate_limit_prf.type, name) : int{kRateNull};
}

bool port_rate_prf_is_modify(u16 id, const PortRatePrf& profile) {
  PortRatePrf stored;
  if (id == 0 || get_rate_limit_profile_byid(id, &stored) != 0) return false;
  return stored.usStatus != profile.usStatus || stored.dsStatus != profile.dsStatus || stored.usCir != profile.usCir ||
         stored.dsCir != profile.dsCir;
}

static bool isRate(u32 rate) { return rate >= kLeastRate && rate <= kMostRate; }

// The last failure counts. Id 65535 is left to the store to refuse.
static int checkProfile(const PortRatePrf& profile) {
  if (!isRate(profile.usCir)) return kRateUp;
  if (!isRate(profile.dsCir)) return kRateDown;
  if (strnlen(profile.name, sizeof profile.name) > kRateName) return kRateNameLength;
  return profile.id > kMostRateProfile && profile.id != 65535 ? int{kRateId} : 0;
}

int gpon_set_port_rate_profile_base(const PortRatePrf& profile, bool modified) {
  if (const int code = checkProfile(profile)) return code;
  const bool tells = modified && isStored(profile.id);
  PortRatePrf record = profile;
  CommProfile descriptor = descriptorOf(profile.id, &record);
  std::memcpy(descriptor.name, profile.name, sizeof profile.name);
  if (const int code = add_comm_profile_base(&descriptor); code < 0) return code;
  if (tells) updata_port_rate_limit_prf_bind(profile.id);
  return 0;
}

int deleteRateProfile(u16 id) {
  bool bound = false;
  if (const int code = port_rate_profile_is_bind(id, &bound)) return code;
  if (bound) return kRateBound;
  const CommProfile descriptor = descriptorOf(id);
  return std::min(del_comm_profile_base(&descriptor), 0);
}

// --- Wire ---

void writeRates(const PortRatePrf& profile, Writer& out) {
  out.number(1, profile.usStatus);
  out.number(4, profile.usCir);
  out.zeros(sizeof profile.usReserved);
  out.number(1, profile.dsStatus);
  out.number(4, profile.dsCir);
  out.zeros(sizeof profile.dsReserved);
}

void writeRateProfile(const PortRatePrf& profile, Writer& out) {
  out.number(2, profile.id);
  out.bytes({reinterpret_cast<const u8*>(profile.name), kRateName});
  writeRates(profile, out);
}
