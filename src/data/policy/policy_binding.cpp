#include "data/policy/policy_binding.h"

#include <algorithm>

#include "common/report.h"
#include "platform/flow_store.h"
#include "platform/objects.h"

// --- Wire ---

static constexpr u32 kLocationReserved = 16;
static constexpr u32 kBindingIds = 8;    // bytes of a binding's four ids
static constexpr u32 kPolicyBegin = 24;  // of a packed policy: what a card gets of it begins here

int findPolicyPlace(u16 slot, u16 port, ObjIndex* object) {
  u32 id = 0;
  if (findObject(slot, port, object) != 0) return -1;
  return (port == 0 ? omSlot2ObjId(slot, &id) : omOltport2ObjId(slot, port, &id)) == 0 ? 0 : -1;
}

int selectPolicyPlace(u16 slot, u16 port, ObjIndex* object, SnmpErrInfo* err) {
  const bool whole = port == 0;  // of the node, too
  const int code = whole ? findObject(slot, port, object) : findPolicyPlace(slot, port, object);
  return code == 0 ? 0 : reject(err, kNoPolicyPlace, {slot, port});
}

void parsePolicies(Reader& in, u32 reserved, BoundPolicies* bound) {
  bound->bindNum = static_cast<u16>(in.number(2));
  const u16 kept = std::min(bound->bindNum, kMostBindings);
  for (PolicyBinding& binding : std::span(bound->bindings).first(kept)) {
    binding.upPId = static_cast<u16>(in.number(2));
    binding.downPId = static_cast<u16>(in.number(2));
    binding.upRId = static_cast<u16>(in.number(2));
    binding.downRId = static_cast<u16>(in.number(2));
    in.skip(reserved);
  }
  in.skip((kBindingIds + reserved) * static_cast<u32>(bound->bindNum - kept));
}

void answerPolicies(const BoundPolicies& bound, u32 reserved, Writer& out) {
  out.number(2, bound.bindNum);
  for (const PolicyBinding& binding : bound.counted()) {
    out.number(2, binding.upPId);
    out.number(2, binding.downPId);
    out.number(2, binding.upRId);
    out.number(2, binding.downRId);
    out.zeros(reserved);
  }
}

void writePolicyPlace(const PolicyRecord& record, Writer& out) {
  out.number(2, record.object.addr[1]);
  out.number(2, record.object.addr[2]);
  out.zeros(kLocationReserved);
}

// A direction without a policy ends behind its mark, whatever its rule. The rule's count and entries keep the store's
// order of bytes.
static int encodeDirection(u16 policyId, u16 ruleId, Writer& out) {
  out.number(1, policyId != 0 ? 1 : 0);
  if (policyId == 0) return 0;
  u8 policy[kFlowPolicyPack] = {};
  u32 length = 0;
  FlowRule rule;
  if (fpGetSpcPrfPack(policy, &length, static_cast<i16>(policyId)) < 0) return -1;
  if (flowRuleGetPrfInfo(static_cast<i16>(ruleId), &rule) < 0 || rule.count > kFlowEntries) return -1;
  out.bytes(WireIn(policy).subspan(kPolicyBegin));
  out.bytes({reinterpret_cast<const u8*>(&rule.count), sizeof rule.count});
  out.bytes({reinterpret_cast<const u8*>(rule.entries), rule.count * sizeof rule.entries[0]});
  return 0;
}

int encodePolicies(const BoundPolicies& bound, Writer& out) {
  out.number(2, bound.bindNum);
  for (const PolicyBinding& binding : bound.counted()) {
    if (encodeDirection(binding.upPId, binding.upRId, out) != 0) return -1;
    if (encodeDirection(binding.downPId, binding.downRId, out) != 0) return -1;
  }
  return 0;
}

// --- Check ---

// What there is not has no name: zeros stand in its place.
static int checkFlow(int code, u16 id, u16 slot, u16 port, SnmpErrInfo* err, int (*exists)(i16 id)) {
  if (exists(static_cast<i16>(id)) == 1) return 0;
  reject(err, code, {slot, port, id});
  err->errDataLen += kFlowName;
  return -1;
}

int check_fp_para_error(u16 id, u16 slot, u16 port, SnmpErrInfo* err) {
  return checkFlow(kNoFlowPolicy, id, slot, port, err, flowPolicyIsPrfExist);
}

int check_fr_para_error(u16 id, u16 slot, u16 port, SnmpErrInfo* err) {
  return checkFlow(kNoFlowRule, id, slot, port, err, flowRuleIsPrfExist);
}

int checkPolicies(const PolicyRecord& record, const BoundPolicies& bound, SnmpErrInfo* err) {
  const u16 slot = record.object.addr[1], port = record.object.addr[2];
  for (const PolicyBinding& binding : bound.counted()) {
    if (binding.upPId == 0) continue;
    if (check_fp_para_error(binding.upPId, slot, port, err) != 0) return -1;
    if (check_fr_para_error(binding.upRId, slot, port, err) != 0) return -1;
    if (binding.downPId == 0) continue;
    if (check_fp_para_error(binding.downPId, slot, port, err) != 0) return -1;
    if (check_fr_para_error(binding.downRId, slot, port, err) != 0) return -1;
  }
  return 0;
}

void reportPolicies(LIST* records, u16, int origin) {
  static constexpr u16 kReported = 2847;
  u16 last = 0;
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    const u16 slot = dataOf<const ObjIndex>(cell)->addr[1];
    if (slot != last) reportChange(slot, kReported, origin);
    last = slot;
  }
}

// --- Commands ---

int readPolicyPorts(Vty* vty, const char* interfaces, LIST* addresses) {
  return CliInputConvertObjIndex(interfaces, addresses) == 0 ? 0 : refuse(vty, "Interface is error.\r\n");
}

int readPolicyPort(Vty* vty, const char* interfaces, LIST* addresses) {
  if (readPolicyPorts(vty, interfaces, addresses) != 0) return -1;
  return lstCount(addresses) == 1 ? 0 : refuse(vty, "Number of interface is more than one.\r\n");
}

static Gathered addPort(Vty* vty, const DataItem& item, const CliAddr& address, PolicyRecord* record, LIST* records,
                        SnmpErrInfo* err) {
  if (findPolicyPlace(address.slot, address.port, &record->object) != 0) {
    refuse(vty, "The slot (%d) port (%d) is invalid.\r\n", address.slot, address.port);
    return Gathered::badAddress;
  }
  if (item.get(record, err) != 0) return Gathered::refused;
  return appendRecord(&record->object, records) == 0 ? Gathered::all : Gathered::noMemory;
}

// A record of what is stored for each address; one that is none is told.
static Gathered readPorts(Vty* vty, const DataItem& item, LIST* addresses, LIST* records, SnmpErrInfo* err) {
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    auto* record = newRecord<PolicyRecord>();
    const Gathered result =
        record == nullptr ? Gathered::noMemory : addPort(vty, item, *dataOf<const CliAddr>(cell), record, records, err);
    if (result == Gathered::all) continue;
    mpuFree(record);
    if (result == Gathered::noMemory) reject(err, kNoMemory);
    return result;
  }
  return Gathered::all;
}

// Changes the row of each port. A bad address has been told, for what is refused or has no memory `err` is filled.
template <class Change>
static Gathered changePorts(Vty* vty, const DataItem& item, LIST* addresses, SnmpErrInfo* err, Change change) {
  ObjList records;
  const Gathered read = readPorts(vty, item, addresses, records, err);
  if (read != Gathered::all) return read;
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) change(dataOf<PolicyRecord>(cell));
  if (setRecords(item, records, err) != 0) return Gathered::refused;
  reportRecords(item, records, kByOperator);
  return Gathered::all;
}

static int codeOf(const SnmpErrInfo& err) { return static_cast<i16>(err.errCode); }

int attachPolicies(Vty* vty, const DataItem& item, LIST* addresses, u16 row, std::span<char*> words) {
  const std::size_t groups = words.size() / 4;
  if (groups > kMostBindings || static_cast<u32>(lstCount(addresses)) > kMostRecords) return -1;
  const auto take = [&](PolicyRecord* record) {
    BoundPolicies& bound = record->rows[row];
    bound.bindNum = static_cast<u16>(groups);
    for (std::size_t i = 0; i < groups; ++i) {
      const auto group = words.subspan(4 * i, 4);
      bound.bindings[i] = {.upPId = cutNumber(group[0]),
                           .downPId = cutNumber(group[2]),
                           .upRId = cutNumber(group[1]),
                           .downRId = cutNumber(group[3])};
    }
  };
  SnmpErrInfo err;
  const Gathered result = changePorts(vty, item, addresses, &err, take);
  if (result == Gathered::all) return 0;
  return result == Gathered::badAddress ? -1 : refuse(vty, "attach policy interface is fail %d.\r\n", codeOf(err));
}

int detachPolicies(Vty* vty, const DataItem& item, const char* interfaces, LIST* addresses, u16 row) {
  SnmpErrInfo err;
  const auto clear = [row](PolicyRecord* record) { record->rows[row].bindNum = 0; };
  const Gathered result = changePorts(vty, item, addresses, &err, clear);
  if (result == Gathered::all) return 0;
  return result == Gathered::badAddress
             ? -1
             : refuse(vty, "attach policy interface %s fail %d.\r\n", interfaces, codeOf(err));
}

void printBindings(Vty* vty, std::span<const PolicyBinding> bindings, const char* ahead) {
  for (const PolicyBinding& binding : bindings) {
    vty_out(vty, "%sup %d %d down %d %d ", ahead, binding.upPId, binding.upRId, binding.downPId, binding.downRId);
  }
}

int showPolicies(Vty* vty, const DataItem& item, const char* interfaces, PrintPolicies* print) {
  static constexpr char kStars[] = "\r\n*******************************\r\n";
  ObjList addresses, records;
  if (readPolicyPorts(vty, interfaces, addresses) != 0) return -1;
  SnmpErrInfo err;
  const Gathered read = readPorts(vty, item, addresses, records, &err);
  if (read == Gathered::badAddress) return -1;
  if (read != Gathered::all) return refuse(vty, "\r\nThe Obj is not authed.\r\n");
  vty_out(vty, "%s", kStars);
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    const auto& record = *dataOf<const PolicyRecord>(cell);
    vty_out(vty, " slot   port   \r\n  %d     %d  \r\n", record.object.addr[1], record.object.addr[2]);
    print(vty, record);
    vty_out(vty, "%s", kStars);
  }
  return 0;
}

// --- Running configuration, cards that return ---

void showrunPolicies(Vty* vty, const DataItem& item, std::span<const u16> types, PrintPolicies* print) {
  ObjList ports;
  if (walkObjects(types, 0, ports) != 0 || lstFirst(ports) == nullptr) return;
  for (NODE* cell = lstFirst(ports); cell != nullptr; cell = lstNext(cell)) {
    PolicyRecord record{*dataOf<const ObjIndex>(cell), {}};
    SnmpErrInfo err;
    if (item.get(&record, &err) == 0) print(vty, record);
  }
}

// A port without bindings is told that, too.
void recoverPolicies(const DataItem& item, u16 slot) {
  static constexpr u16 types[] = {621, 116, 622, 699, 56, 817, 818};
  ObjList ports;
  if (walkObjects(types, slot, ports) != 0) return;
  tellStored(item, ports);
}
