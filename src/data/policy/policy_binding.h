#pragma once
// Flow policies and flow rules that are bound to the PVCs of a port, or to a port as a whole: what the two items have
// in common. A binding names a policy and a rule for each direction; 0 is none. A card gets their contents, as they
// are stored, a message for each port.

#include <span>

#include "common/msan_obj.h"
#include "data/common/data_item.h"
#include "data/port_rows.h"

inline constexpr u16 kMostBindings = 8;

struct PolicyBinding {
  u16 upPId = 0;
  u16 downPId = 0;
  u16 upRId = 0;
  u16 downRId = 0;
};

// What is stored of a port, and with its index ahead of a PVC. Bindings behind `bindNum` don't count.
struct BoundPolicies {
  u16 bindNum = 0;
  PolicyBinding bindings[kMostBindings];

  std::span<const PolicyBinding> counted() const { return std::span(bindings).first(bindNum); }
};
static_assert(sizeof(BoundPolicies) == 66);

// A port: a row for each PVC, or the first one for the port as a whole.
struct PolicyRecord {
  ObjIndex object;
  BoundPolicies rows[kPvcRows];
};

enum PolicyError : int {
  kOtherCard = -5,
  kNoPolicyPlace = -7,
  kNoFlowPolicy = -14,
  kNoFlowRule = -15,
  kNoSuchPvc = -102,
  kTooManyBindings = -103,
};

// The port types of DSL lines: those whose bindings a manager, the running configuration and the flow store ask for.
inline constexpr u16 kPolicyPortTypes[] = {116, 621, 56, 817, 818};

// --- Steps, for the rows of the two items ---

// The object of a place that can have a row. 0 or -1.
int findPolicyPlace(u16 slot, u16 port, ObjIndex* object);
int selectPolicyPlace(u16 slot, u16 port, ObjIndex* object, SnmpErrInfo* err);

// A count and the bindings, each with `reserved` bytes behind it. Of more than there may be, the first ones are kept.
void parsePolicies(Reader& in, u32 reserved, BoundPolicies* bound);
void answerPolicies(const BoundPolicies& bound, u32 reserved, Writer& out);
void writePolicyPlace(const PolicyRecord& record, Writer& out);
// The contents of what the bindings name, as the flow store has them. 0, or -1 when it does not have one.
int encodePolicies(const BoundPolicies& bound, Writer& out);
inline constexpr u32 kMostPolicyMessage = 55000;

// Whether the flow store has what the bindings name. One without a policy upstream is not looked at. 0 or -1.
int checkPolicies(const PolicyRecord& record, const BoundPolicies& bound, SnmpErrInfo* err);
int check_fp_para_error(u16 id, u16 slot, u16 port, SnmpErrInfo* err);
int check_fr_para_error(u16 id, u16 slot, u16 port, SnmpErrInfo* err);

// Both items are reported under one id, at each change of the slot.
void reportPolicies(LIST* records, u16 id, int origin);

// --- Commands, the running configuration and a card that returns ---

// The ports of an interface string, and the one of a string that may name no more. 0, or -1 with a line.
int readPolicyPorts(Vty* vty, const char* interfaces, LIST* addresses);
int readPolicyPort(Vty* vty, const char* interfaces, LIST* addresses);

// What a handler ends with. `words`: four numbers for each binding.
int attachPolicies(Vty* vty, const DataItem& item, LIST* addresses, u16 row, std::span<char*> words);
int detachPolicies(Vty* vty, const DataItem& item, const char* interfaces, LIST* addresses, u16 row);

using PrintPolicies = void(Vty* vty, const PolicyRecord& record);
int showPolicies(Vty* vty, const DataItem& item, const char* interfaces, PrintPolicies* print);
void printBindings(Vty* vty, std::span<const PolicyBinding> bindings, const char* ahead);  // of each one

void showrunPolicies(Vty* vty, const DataItem& item, std::span<const u16> types, PrintPolicies* print);
void recoverPolicies(const DataItem& item, u16 slot);

// --- Rows ---

// What the rows of both items say: a request names ports and, with port 0, slots; a card is told what is stored.
constexpr DataItem policyItem(DataItem item) {
  item.work = Work::array;
  item.minimum = 0;
  item.wholeSlot = 0;
  item.mostMessage = kMostPolicyMessage;
  item.tellsStored = true;
  item.checksReplay = true;
  item.select = selectPolicyPlace;
  item.report = reportPolicies;
  item.sendFailed = untold;
  item.option = 1;
  return item;
}
