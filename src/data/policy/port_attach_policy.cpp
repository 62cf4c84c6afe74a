#include "data/policy/port_attach_policy.h"

#include <cstring>

#include "common/obj_attributes.h"
#include "common/store.h"
#include "platform/log.h"
#include "platform/module_registry.h"
#include "platform/objects.h"
#include "platform/tables.h"

// --- Wire ---
//
// A manager's: u16 slot, u16 port, 16 zeros, u16 count, and the bindings. A card's has contents in their place.

static constexpr u32 kLocationReserved = 16;
static constexpr u32 kBindingReserved = 8;

static int parse(Reader& in, PolicyRecord* record, SnmpErrInfo* err) {
  const auto slot = static_cast<u16>(in.number(2));
  const auto port = static_cast<u16>(in.number(2));
  in.skip(kLocationReserved);
  if (!isVdslCard(slot)) return reject(err, kOtherCard, {slot, static_cast<u16>(get_config_card_type(slot))});
  if (findPolicyPlace(slot, port, &record->object) != 0) return reject(err, kNoPolicyPlace, {slot, port});
  parsePolicies(in, kBindingReserved, &record->rows[0]);
  return 0;
}

static int answer(const PolicyRecord* record, Writer& out) {
  writePolicyPlace(*record, out);
  answerPolicies(record->rows[0], kBindingReserved, out);
  return 0;
}

static int encode(const PolicyRecord* record, Writer& out) {
  writePolicyPlace(*record, out);
  return encodePolicies(record->rows[0], out);
}

// --- Check ---

static int check_port_plc_at_para_error(PolicyRecord* record, SnmpErrInfo* err) {
  const BoundPolicies& bound = record->rows[0];
  if (bound.bindNum > kMostBindings) {
    return reject(err, kTooManyBindings, {record->object.addr[1], record->object.addr[2]});
  }
  return checkPolicies(*record, bound, err);
}

// --- Store ---

static constexpr WholeTable<M_PORT_QOS_PRF_ATT_RELATION, M_PORT_QOS_PRF_ATT_RELATION_fixed> table{
    "M_PORT_QOS_PRF_ATT_RELATION",           "reTree",
    M_PORT_QOS_PRF_ATT_RELATION_reTree_find, M_PORT_QOS_PRF_ATT_RELATION_new,
    M_PORT_QOS_PRF_ATT_RELATION_fixed_put,   M_PORT_QOS_PRF_ATT_RELATION_fixed_get};

static bool isWhole(const void* value, u32 offset, u32 length) {
  return value != nullptr && offset == 0 && length == sizeof(BoundPolicies);
}

int set_port_plc_prf_att_dbapi(u32 objectId, const void* value, u32 offset, u32 length) {
  if (!isWhole(value, offset, length)) return kStoreFailed;
  if (hss_IsSmuMaster() != 1) return 0;
  M_PORT_QOS_PRF_ATT_RELATION_fixed columns{objectId, {}};
  std::memcpy(columns.atInfo, value, sizeof columns.atInfo);
  return storeWhole(table, objectId, columns);
}

int get_port_plc_prf_att_dbapi(u32 objectId, void* value, u32 offset, u32 length) {
  M_PORT_QOS_PRF_ATT_RELATION_fixed columns{};
  if (!isWhole(value, offset, length) || loadWhole(table, objectId, columns) != 0) return kStoreFailed;
  std::memcpy(value, columns.atInfo, sizeof columns.atInfo);
  return 0;
}

int clr_port_plc_attach_cfg_dbapi(u32 objectId) {
  BoundPolicies bound;
  if (get_port_plc_prf_att_dbapi(objectId, &bound, 0, sizeof bound) != 0) return 0;
  bound = {};
  return set_port_plc_prf_att_dbapi(objectId, &bound, 0, sizeof bound);
}

// What can't be stored is not told: the card then gets what there is.
static int save(const PolicyRecord* record) {
  setObjAttrDataByCondition(&record->object, kPortPolicyAttribute, &record->rows[0], 0, sizeof(BoundPolicies));
  return 0;
}

// A port without a row has no bindings.
static int get(PolicyRecord* record, SnmpErrInfo*) {
  getObjAttrDataByCondition(&record->object, kPortPolicyAttribute, &record->rows[0], 0, sizeof(BoundPolicies));
  return 0;
}

// --- Commands ---

static CommandHandler msan_cli_attach_port_policy_func;
int msan_cli_attach_port_policy_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc <= 4) return refuse(vty, "Must input policyid and direct!\r\n");
  ObjList addresses;
  if (readPolicyPorts(vty, argv[0], addresses) != 0) return -1;
  return attachPolicies(vty, portPolicy, addresses, 0, std::span(argv, static_cast<u32>(argc)).subspan(1));
}

static CommandHandler msan_cli_detach_port_policy_func;
int msan_cli_detach_port_policy_func(const CommandElement*, Vty* vty, int, char** argv) {
  ObjList addresses;
  if (readPolicyPort(vty, argv[0], addresses) != 0) return -1;
  return detachPolicies(vty, portPolicy, argv[0], addresses, 0);
}

static void show(Vty* vty, const PolicyRecord& record) {
  if (record.rows[0].bindNum == 0) return;
  printBindings(vty, record.rows[0].counted(), " ");
  vty_out(vty, "\r\n");
}

static CommandHandler msan_cli_show_port_policy_attach_info_func;
int msan_cli_show_port_policy_attach_info_func(const CommandElement*, Vty* vty, int, char** argv) {
  return showPolicies(vty, portPolicy, argv[0], show);
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "attach policy interface <interface> {up <upPId> <upRId> down <downPId> <downRId>}*8 ",
            msan_cli_attach_port_policy_func, "bind flow policies and rules to a port"),
    command(CONFIG_NODE, "detach policy interface <interface> ", msan_cli_detach_port_policy_func,
            "take the flow policies and rules of a port away"),
    command(CONFIG_NODE, "show port_policy_binding interface <interface> ", msan_cli_show_port_policy_attach_info_func,
            "the flow policies and rules of ports"),
};

// --- Running configuration, cards that return ---

static void showrun(Vty* vty, const PolicyRecord& record) {
  if (record.rows[0].bindNum == 0) return;
  vty_out(vty, "attach policy interface %d/%d ", record.object.addr[1], record.object.addr[2]);
  printBindings(vty, record.rows[0].counted(), "");
  vty_out(vty, "\r\n");
}

// Ports of VDSL cards are not printed.
void showrun_port_plc_attach(Vty* vty) {
  static constexpr u16 printed[] = {116, 817};
  showrunPolicies(vty, portPolicy, printed, showrun);
}

void res_port_plc_attach_cfg(u16 slot) {
  const int card = get_card_type(slot);
  if (card > 0 && caCheckCardTypeIsVDSLCard(static_cast<u16>(card)) == 0) {
    recoverPolicies(portPolicy, slot);
    return;
  }
  const Where where = Where::here();
  ulogPrintf(gModuleId_Msan, kLogDebug, "\r\n %s, %s %d, caCheckCardTypeIsVDSLCard error. \r\n", where.function,
             fileName(where), where.line);
}

// --- Row ---

constexpr DataItem portPolicy = policyItem({
    .id = 2861,
    .stem = "port_plc_at",
    .attribute = kPortPolicyAttribute,
    .kept = kept<&PolicyRecord::rows>(),
    .objectTypes = kPolicyPortTypes,
    .encodedBytes = kMostPolicyMessage,
    .parse = onRecord<parse>,
    .encode = onRecord<encode>,
    .answer = onRecord<answer>,
    .check = onRecord<check_port_plc_at_para_error>,
    .save = onRecord<save>,
    .get = onRecord<get>,
    .commands = commands,
    .message = setAndGet<portPolicy>(71716, "Set Port Attach Policy."),
});
