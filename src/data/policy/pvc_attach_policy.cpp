#include "data/policy/pvc_attach_policy.h"

#include <algorithm>

#include "common/obj_attributes.h"
#include "common/store.h"
#include "platform/flow_store.h"
#include "platform/module_registry.h"
#include "platform/objects.h"
#include "platform/tables.h"

// --- Wire ---
//
// A manager's: u16 slot, u16 port, 16 zeros, u16 8, and for each PVC u16 index, u16 count, and the bindings. A card's
// has contents in their place.

static constexpr u32 kHeadReserved = 18;  // with the number of PVCs, which is not read
static constexpr u32 kBindingReserved = 4;

static int parse(Reader& in, PolicyRecord* record, SnmpErrInfo* err) {
  const auto slot = static_cast<u16>(in.number(2));
  const auto port = static_cast<u16>(in.number(2));
  in.skip(kHeadReserved);
  if (findPolicyPlace(slot, port, &record->object) != 0) return reject(err, kNoPolicyPlace, {slot, port});
  for (u32 i = 0; i < kPvcRows; ++i) {
    const auto pvc = static_cast<u16>(in.number(2));
    BoundPolicies bound;
    parsePolicies(in, kBindingReserved, &bound);
    if (pvc >= kPvcRows) return reject(err, kNoSuchPvc, {slot, port, pvc});
    record->rows[pvc] = bound;
  }
  return 0;
}

template <class WriteRow>
static int write(const PolicyRecord* record, Writer& out, WriteRow writeRow) {
  writePolicyPlace(*record, out);
  out.number(2, kPvcRows);
  for (u16 pvc = 0; pvc < kPvcRows; ++pvc) {
    out.number(2, pvc);
    if (writeRow(record->rows[pvc]) != 0) return -1;
  }
  return 0;
}

static int answer(const PolicyRecord* record, Writer& out) {
  return write(record, out, [&](const BoundPolicies& bound) {
    answerPolicies(bound, kBindingReserved, out);
    return 0;
  });
}

static int encode(const PolicyRecord* record, Writer& out) {
  return write(record, out, [&](const BoundPolicies& bound) { return encodePolicies(bound, out); });
}

// --- Check ---

static int check_pvc_plc_at_para_error(PolicyRecord* record, SnmpErrInfo* err) {
  const u16 slot = record->object.addr[1], port = record->object.addr[2];
  for (const BoundPolicies& bound : record->rows) {
    if (bound.bindNum > kMostBindings) return reject(err, kTooManyBindings, {slot, port, kPvcRows});
    if (checkPolicies(*record, bound, err) != 0) return -1;
  }
  return 0;
}

// --- Store ---

// Calls `visit(row, stored)` with each row of the port until it gives something else than 0. That, or 0; -900.
template <class Visit>
static int eachRow(mco_trans_h transaction, u32 objectId, Visit visit) {
  mco_cursor_t cursor;
  int code = M_QOS_PRF_ATT_RELATION_reTree_index_cursor(transaction, &cursor);
  if (code == 0) code = M_QOS_PRF_ATT_RELATION_reTree_search(transaction, &cursor, DB_EQUAL, objectId);
  for (; code == 0; code = mco_cursor_next(transaction, &cursor)) {
    int order = 0;
    M_QOS_PRF_ATT_RELATION row;
    PvcPolicyRow stored;
    code = M_QOS_PRF_ATT_RELATION_reTree_compare(transaction, &cursor, objectId, &order);
    if (code != 0 || order != 0) break;
    code = M_QOS_PRF_ATT_RELATION_from_cursor(transaction, &cursor, &row);
    if (code == 0) code = M_QOS_PRF_ATT_RELATION_atInfo_get_range(&row, 0, sizeof stored, &stored);
    if (code != 0) break;
    if (const int result = visit(&row, stored)) return result;
  }
  return code == 0 || code == DB_END || code == DB_NOT_FOUND ? 0 : kStoreFailed;
}

static constexpr int kFound = 1;

static int removeRow(M_QOS_PRF_ATT_RELATION* row, int result) {
  return M_QOS_PRF_ATT_RELATION_delete(row) == 0 ? result : kStoreFailed;
}

static int addRow(mco_trans_h transaction, u32 objectId, const PvcPolicyRow& value) {
  M_QOS_PRF_ATT_RELATION row;
  if (const int code = M_QOS_PRF_ATT_RELATION_new(transaction, &row)) {
    logNew(Where::here("set_plc_prf_att_dbapi"), "M_QOS_PRF_ATT_RELATION", code);
    return kStoreFailed;
  }
  int code = M_QOS_PRF_ATT_RELATION_ulObjId_put(&row, objectId);
  if (code == 0) code = M_QOS_PRF_ATT_RELATION_atInfo_put_range(&row, 0, sizeof value, &value);
  return code == 0 ? 0 : kStoreFailed;
}

static bool isWhole(const void* value, u32 offset, u32 length) {
  return value != nullptr && offset == 0 && length == sizeof(PvcPolicyRow);
}

int set_plc_prf_att_dbapi(u32 objectId, const void* value, u32 offset, u32 length) {
  if (!isWhole(value, offset, length)) return kStoreFailed;
  if (hss_IsSmuMaster() != 1) return 0;
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  const auto& wanted = *static_cast<const PvcPolicyRow*>(value);
  const auto remove = [&](M_QOS_PRF_ATT_RELATION* row, const PvcPolicyRow& stored) {
    return stored.pvcIndex == wanted.pvcIndex ? removeRow(row, kFound) : 0;
  };
  if (eachRow(transaction, objectId, remove) < 0) return kStoreFailed;
  if (wanted.bound.bindNum != 0 && addRow(transaction, objectId, wanted) != 0) return kStoreFailed;
  return transaction.commit();
}

int get_plc_prf_att_dbapi(u32 objectId, void* value, u32 offset, u32 length) {
  if (!isWhole(value, offset, length)) return kStoreFailed;
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  auto& wanted = *static_cast<PvcPolicyRow*>(value);
  const auto copy = [&](M_QOS_PRF_ATT_RELATION*, const PvcPolicyRow& stored) {
    if (stored.pvcIndex != wanted.pvcIndex) return 0;
    wanted = stored;
    return kFound;
  };
  return eachRow(transaction, objectId, copy) >= 0 ? 0 : kStoreFailed;
}

int clr_pvc_plc_attach_cfg_dbapi(u32 objectId) {
  if (hss_IsSmuMaster() != 1) return 0;
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  const auto remove = [](M_QOS_PRF_ATT_RELATION* row, const PvcPolicyRow&) { return removeRow(row, 0); };
  return eachRow(transaction, objectId, remove) == 0 ? transaction.commit() : kStoreFailed;
}

// What can't be stored is not told: the card then gets what there is.
static int save(const PolicyRecord* record) {
  for (u16 pvc = 0; pvc < kPvcRows; ++pvc) {
    const PvcPolicyRow row{pvc, record->rows[pvc]};
    setObjAttrDataByCondition(&record->object, kPvcPolicyAttribute, &row, 0, sizeof row);
  }
  return 0;
}

static int get(PolicyRecord* record, SnmpErrInfo*) {
  for (u16 pvc = 0; pvc < kPvcRows; ++pvc) {
    PvcPolicyRow row{pvc, {}};
    if (getObjAttrDataByCondition(&record->object, kPvcPolicyAttribute, &row, 0, sizeof row) != 0) return -1;
    record->rows[pvc] = row.bound;
  }
  return 0;
}

// --- The flow store's questions ---

// Whether the id stands in one of two members of a binding that counts.
static int isAttached(u16 id, u16 PolicyBinding::*up, u16 PolicyBinding::*down) {
  ObjList ports;
  if (walkObjects(pvcPolicy, 0, ports) != 0 || lstFirst(ports) == nullptr) return -1;
  const auto names = [=](const PolicyBinding& binding) { return binding.*up == id || binding.*down == id; };
  for (NODE* cell = lstFirst(ports); cell != nullptr; cell = lstNext(cell)) {
    PolicyRecord record{*dataOf<const ObjIndex>(cell), {}};
    SnmpErrInfo err;
    if (get(&record, &err) != 0) return -1;
    for (const BoundPolicies& bound : record.rows) {
      if (std::ranges::any_of(bound.counted(), names)) return 1;
    }
  }
  return 0;
}

int check_fp_attached_pvc(u16 id) { return isAttached(id, &PolicyBinding::upPId, &PolicyBinding::downPId); }
int check_fr_attached_pvc(u16 id) { return isAttached(id, &PolicyBinding::upRId, &PolicyBinding::downRId); }

int pvc_bind_fr_check_func(i16 type, u16 id) { return flowRulePrfTypeCheck(type) < 0 ? -1 : check_fr_attached_pvc(id); }

int pvc_bind_fp_check_func(i16 type, u16 id) {
  return flowPolicyPrfTypeCheck(type) < 0 ? -1 : check_fp_attached_pvc(id);
}

void init_pvc_attach_plc() {
  flowRuleRegBindCheck(pvc_bind_fr_check_func);
  flowPolicyRegBindCheck(pvc_bind_fp_check_func);
}

// --- Commands ---

static CommandHandler msan_cli_attach_policy_func;
int msan_cli_attach_policy_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc <= 3) return refuse(vty, "Must input policyid and direct!\r\n");
  ObjList addresses;
  if (readPolicyPorts(vty, argv[0], addresses) != 0) return -1;
  const u16 pvc = cutNumber(argv[1]);
  if (pvc >= kPvcRows) return refuse(vty, "The Pvc Id must input 0~7.\r\n");
  return attachPolicies(vty, pvcPolicy, addresses, pvc, std::span(argv, static_cast<u32>(argc)).subspan(2));
}

static CommandHandler msan_cli_detach_policy_func;
int msan_cli_detach_policy_func(const CommandElement*, Vty* vty, int, char** argv) {
  ObjList addresses;
  if (readPolicyPort(vty, argv[0], addresses) != 0) return -1;
  const u16 pvc = cutNumber(argv[1]);
  if (pvc >= kPvcRows) return refuse(vty, "pvc id error (0~7).\r\n");
  return detachPolicies(vty, pvcPolicy, argv[0], addresses, pvc);
}

// All bindings of a row are shown, those that don't count as well.
static void show(Vty* vty, const PolicyRecord& record) {
  for (u16 pvc = 0; pvc < kPvcRows; ++pvc) {
    const BoundPolicies& bound = record.rows[pvc];
    vty_out(vty, " pvc :  %d  \r\n", pvc);
    if (bound.bindNum == 0) continue;
    printBindings(vty, bound.bindings, " ");
    vty_out(vty, "\r\n");
  }
}

static CommandHandler msan_cli_show_pvc_policy_attach_info_func;
int msan_cli_show_pvc_policy_attach_info_func(const CommandElement*, Vty* vty, int, char** argv) {
  return showPolicies(vty, pvcPolicy, argv[0], show);
}

static constexpr Command commands[] = {
    command(CONFIG_NODE,
            "attach policy interface <interface> pvc <pvc>  {up <upPId> <upRId> down <downPId> <downRId>}*8 ",
            msan_cli_attach_policy_func, "bind flow policies and rules to a PVC"),
    command(CONFIG_NODE, "detach policy interface <interface> pvc <pvc> ", msan_cli_detach_policy_func,
            "take the flow policies and rules of a PVC away"),
    command(CONFIG_NODE, "show pvc_policy_binding interface <interface> ", msan_cli_show_pvc_policy_attach_info_func,
            "the flow policies and rules of PVCs"),
};

// --- Running configuration, cards that return ---

static void showrun(Vty* vty, const PolicyRecord& record) {
  for (u16 pvc = 0; pvc < kPvcRows; ++pvc) {
    const BoundPolicies& bound = record.rows[pvc];
    if (bound.bindNum == 0) continue;
    vty_out(vty, "attach policy interface %d/%d pvc %d ", record.object.addr[1], record.object.addr[2], pvc);
    printBindings(vty, bound.counted(), " ");
    vty_out(vty, "\r\n");
  }
}

void showrun_pvc_plc_attach(Vty* vty) { showrunPolicies(vty, pvcPolicy, kPolicyPortTypes, showrun); }

void res_pvc_plc_attach_cfg(u16 slot) {
  const int card = get_card_type(slot);
  if (card == 579 || card == 580) recoverPolicies(pvcPolicy, slot);
}

// --- Row ---

constexpr DataItem pvcPolicy = policyItem({
    .id = 2847,
    .stem = "pvc_plc_at",
    .attribute = kPvcPolicyAttribute,
    .kept = kept<&PolicyRecord::rows>(),
    .objectTypes = kPolicyPortTypes,
    .encodedBytes = kMostPolicyMessage,
    .parse = onRecord<parse>,
    .encode = onRecord<encode>,
    .answer = onRecord<answer>,
    .check = onRecord<check_pvc_plc_at_para_error>,
    .save = onRecord<save>,
    .get = onRecord<get>,
    .commands = commands,
    .message = setAndGet<pvcPolicy>(563236, "SET Policy."),
});
