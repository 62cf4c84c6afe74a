// The flow policies and rules of ports and PVCs, for standard MIBs.

#include <algorithm>

#include "combo/port/dsl_port_mode.h"
#include "data/policy/port_attach_policy.h"
#include "data/policy/pvc_attach_policy.h"
#include "platform/flow_store.h"
#include "platform/objects.h"
#include "standard_mib/ports.h"

static constexpr int kNoVdslCard = -102;
static constexpr u16 kVdslPort = 56, kDsl16Port = 621;
static constexpr u16 kPacketMode = 3;  // in which a line of dsl16 would have PVCs

// --- Names ---

// Appends ":"-ended names to a text of the caller's.
class NameList {
 public:
  NameList(char* text, u32* length) : text_(text), length_(length) {
    *text_ = '\0';
    *length_ = 0;
  }

  void add(u16 id, int (*nameOf)(char* name, u8* length, i16 id)) {
    char name[kFlowName];
    u8 length = kFlowName;
    if (id == 0 || nameOf(name, &length, static_cast<i16>(id)) < 0) return;
    if (*length_ + length + 2 > kPolicyNames) return;
    char* end = std::copy_n(name, length, text_ + *length_);
    *end++ = ':';
    *end = '\0';
    *length_ = static_cast<u32>(end - text_);
  }

 private:
  char* text_;
  u32* length_;
};

struct Direction {
  u16 PolicyBinding::*policy;
  u16 PolicyBinding::*rule;
};
static constexpr Direction kUp{&PolicyBinding::upPId, &PolicyBinding::upRId};
static constexpr Direction kDown{&PolicyBinding::downPId, &PolicyBinding::downRId};

// The strings of a caller.
struct Names {
  char* policies;
  u32* policiesLength;
  char* rules;
  u32* rulesLength;

  explicit operator bool() const {
    return policies != nullptr && policiesLength != nullptr && rules != nullptr && rulesLength != nullptr;
  }
};

static bool isInMode(const ObjIndex& object, u16 vdsl, u16 dsl16) {
  if (object.type != kVdslPort && object.type != kDsl16Port) return true;
  u16 mode = 0;
  return get_dsl_obj_mode(&object, &mode) == 0 && mode == (object.type == kVdslPort ? vdsl : dsl16);
}

static bool hasPvcs(const ObjIndex& object) { return isInMode(object, kAtmMode, kPacketMode); }
static bool isWhole(const ObjIndex& object) { return isInMode(object, kPtmMode, kAtmMode); }

static int getNames(u16 slot, u16 port, const DataItem& item, u16 row, bool (*fits)(const ObjIndex&),
                    const Direction& direction, const Names& names) {
  if (!names) return kNullArgument;
  PolicyRecord record;
  SnmpErrInfo err;
  placeObject(slot, port, &record.object);
  if (checkObject(item, &record, &err) != 0 || !fits(record.object) || item.get(&record, &err) != 0) return -1;
  NameList policies(names.policies, names.policiesLength);
  NameList rules(names.rules, names.rulesLength);
  for (const PolicyBinding& binding : record.rows[row].counted()) {
    policies.add(binding.*direction.policy, flowPolicyGetNameById);
    rules.add(binding.*direction.rule, flowRuleGetNameById);
  }
  return 0;
}

int std_snmp_get_port_upstream_policy_attach(u16 slot, u16 port, char* policyNames, u32* policyLength, char* ruleNames,
                                             u32* ruleLength) {
  return getNames(slot, port, portPolicy, 0, isWhole, kUp, {policyNames, policyLength, ruleNames, ruleLength});
}

int std_snmp_get_port_downstream_policy_attach(u16 slot, u16 port, char* policyNames, u32* policyLength,
                                               char* ruleNames, u32* ruleLength) {
  return getNames(slot, port, portPolicy, 0, isWhole, kDown, {policyNames, policyLength, ruleNames, ruleLength});
}

int std_snmp_get_pvc_upstream_policy_attach(u16 slot, u16 port, u16 pvc, char* policyNames, u32* policyLength,
                                            char* ruleNames, u32* ruleLength) {
  if (pvc >= kPvcRows) return -1;
  return getNames(slot, port, pvcPolicy, pvc, hasPvcs, kUp, {policyNames, policyLength, ruleNames, ruleLength});
}

int std_snmp_get_pvc_downstream_policy_attach(u16 slot, u16 port, u16 pvc, char* policyNames, u32* policyLength,
                                              char* ruleNames, u32* ruleLength) {
  if (pvc >= kPvcRows) return -1;
  return getNames(slot, port, pvcPolicy, pvc, hasPvcs, kDown, {policyNames, policyLength, ruleNames, ruleLength});
}

// --- The walk over the ports of VDSL cards ---

int std_snmp_first_policy_port_get(u16* slot, u16* port) {
  if (slot == nullptr || port == nullptr) return kNullArgument;
  const ServiceSlots slots;
  return firstPortOf(slots.list(), isVdslCard, slot, port);
}

int std_snmp_next_policy_port_get(u16* slot, u16* port) {
  if (slot == nullptr || port == nullptr) return kNullArgument;
  const u16 ports = isVdslCard(*slot) ? dataPorts(*slot) : u16{0};
  return ports != 0 ? nextPortOf(ports, isVdslCard, slot, port) : kNoVdslCard;
}

int std_snmp_policy_first_port_get(u16* slot, u16* port) {
  return std_snmp_first_policy_port_get(slot, port) == 0 ? 0 : -1;
}

int std_snmp_policy_next_port_get(u16 slot, u16 port, u16* nextSlot, u16* nextPort) {
  if (nextSlot == nullptr || nextPort == nullptr || std_snmp_next_policy_port_get(&slot, &port) != 0) return -1;
  *nextSlot = slot;
  *nextPort = port;
  return 0;
}

// --- The walk over PVCs ---

// From a port on, that one included, to the first one whose line can have PVCs.
static int findPvcPort(u16* slot, u16* port) {
  for (;;) {
    ObjIndex object;
    if (findPolicyPlace(*slot, *port, &object) != 0) return -1;
    if (hasPvcs(object)) return 0;
    if (std_snmp_next_dsl_port_get(slot, port) != 0) return -1;
  }
}

int std_snmp_policy_first_next_pvc_get(u16 slot, u16 port, u16 pvc, u16* nextSlot, u16* nextPort, u16* nextPvc) {
  if (nextSlot == nullptr || nextPort == nullptr || nextPvc == nullptr) return kNullArgument;
  const bool start = slot == 0 && port == 0 && pvc == kNoPvc;
  if (!start && (slot == 0 || port == 0 || (pvc >= kPvcRows && pvc != kNoPvc))) return -1;
  int code = 0;
  if (start) code = std_snmp_first_dsl_port_get(&slot, &port);
  if (pvc == kPvcRows - 1) code = std_snmp_next_dsl_port_get(&slot, &port);
  const u16 askedSlot = slot, askedPort = port;
  if (code != 0 || findPvcPort(&slot, &port) != 0) return -1;
  const bool same = slot == askedSlot && port == askedPort;
  *nextSlot = slot;
  *nextPort = port;
  *nextPvc = same && pvc < kPvcRows - 1 ? static_cast<u16>(pvc + 1) : u16{0};
  return 0;
}

int std_snmp_policy_first_pvc_get(u16* slot, u16* port, u16* pvc) {
  return std_snmp_policy_first_next_pvc_get(0, 0, kNoPvc, slot, port, pvc);
}

int std_snmp_policy_next_pvc_get(u16 slot, u16 port, u16 pvc, u16* nextSlot, u16* nextPort, u16* nextPvc) {
  if (pvc >= kPvcRows) return -1;
  return std_snmp_policy_first_next_pvc_get(slot, port, pvc, nextSlot, nextPort, nextPvc);
}
