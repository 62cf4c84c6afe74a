#include "data/rate/port_rate_bind.h"

#include <algorithm>
#include <cstdio>

#include "common/obj_attributes.h"
#include "common/store.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "platform/tables.h"

enum BindError : int { kNoPlace = -7, kValueLength = -9, kNoProfile = -14 };
static constexpr int kOtherDirection = -9;

// --- Wire ---
//
// A manager's: u16 slot, u16 port, 16 zeros, u16 profile, 32 zeros. A card's has the profile's values in its place.

static constexpr u32 kLocationReserved = 16;
static constexpr u32 kEndReserved = 32;

static int parse(Reader& in, PortRateBinding* record, SnmpErrInfo*) {
  const auto slot = static_cast<u16>(in.number(2));
  const auto port = static_cast<u16>(in.number(2));
  in.skip(kLocationReserved);
  record->value.prfId = static_cast<u16>(in.number(2));
  in.skip(kEndReserved);
  placeObject(slot, port, &record->object);
  return 0;
}

static void writePlace(const PortRateBinding* record, Writer& out) {
  out.number(2, record->object.addr[1]);
  out.number(2, record->object.addr[2]);
  out.zeros(kLocationReserved);
}

static int answer(const PortRateBinding* record, Writer& out) {
  writePlace(record, out);
  out.number(2, record->value.prfId);
  out.zeros(kEndReserved);
  return 0;
}

// A profile that is no more has no values.
static int encode(const PortRateBinding* record, Writer& out) {
  PortRatePrf profile;
  if (get_rate_limit_profile_byid(record->value.prfId, &profile) != 0) return -1;
  writePlace(record, out);
  writeRates(profile, out);
  return 0;
}

// --- Check ---

static int check_set_port_rate_limit_prf_attach_paraerror(PortRateBinding* record, SnmpErrInfo* err) {
  const u16 slot = record->object.addr[1];
  const u16 port = record->object.addr[2];
  const u16 id = record->value.prfId;
  if (const int code = findObject(slot, port, &record->object)) return reject(err, code);
  if (checkObject(portRateBind, record, err) != 0) return -1;
  if (rate_limit_prf_is_valid(id)) return 0;
  return rejectAs(err, id > kMostRateProfile ? int{kRateId} : int{kNoProfile}, {slot, port, id});
}

// --- Store ---

static int checkAccess(const void* value, u32 offset, u32 length) {
  if (value == nullptr) return kRateNull;
  return offset != 0 || length != sizeof(PortRateBindRecord) ? kValueLength : 0;
}

int set_port_rate_limit_prf_attach_dbapi(u32 objectId, const void* value, u32 offset, u32 length) {
  if (const int code = checkAccess(value, offset, length)) return code;
  static constexpr WholeTable<PortRateBind, PortRateBind_fixed> table{
      "PortRateBind",        "treeidx", PortRateBind_treeidx_find, PortRateBind_new, PortRateBind_fixed_put,
      PortRateBind_fixed_get};
  return storeWhole(table, objectId, {objectId, static_cast<const PortRateBindRecord*>(value)->prfId});
}

int get_port_rate_limit_prf_attach_dbapi(u32 objectId, void* value, u32 offset, u32 length) {
  if (const int code = checkAccess(value, offset, length)) return code;
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  PortRateBind row;
  PortRateBind_fixed fields{objectId, 0};
  int code = PortRateBind_treeidx_find(transaction, objectId, &row);
  if (code == 0) code = PortRateBind_fixed_get(&row, &fields);
  if (code != 0 && code != DB_NOT_FOUND) return kStoreFailed;
  *static_cast<PortRateBindRecord*>(value) = {};
  static_cast<PortRateBindRecord*>(value)->prfId = static_cast<u16>(fields.prfId);
  return 0;
}

int del_port_rate_limit_prf_attach_dbapi(u32 objectId) {
  Transaction transaction(Access::write);
  PortRateBind row;
  if (!transaction || PortRateBind_treeidx_find(transaction, objectId, &row) != 0 || PortRateBind_delete(&row) != 0) {
    return kStoreFailed;
  }
  return transaction.commit();
}

static int save(const PortRateBinding* record) {
  const bool stored =
      isDataCard(record->object.addr[1]) && setObjAttrDataByCondition(&record->object, kRateAttribute, &record->value,
                                                                      0, static_cast<i32>(sizeof record->value)) == 0;
  return stored ? 0 : -1;
}

// --- Ports ---

static int select(u16 slot, u16 port, ObjIndex* object, SnmpErrInfo* err) {
  if (isSlotAuthed(slot) != 1) return reject(err, kNoSlot, {slot});
  if (findObject(slot, port, object) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "Function:%s, Line:%d The slot (%d) port (%d) is invalid.\r\n",
               "snmp_get_port_rate_limit_prf_attach", __LINE__, slot, port);
    return reject(err, kNoPlace, {slot, port});
  }
  return checkObject(portRateBind, object, err);
}

// Calls `visit` with each port of the node that is bound to the profile, until it gives something else than 0. That,
// or 0; -1 or kNoMemory when ports can't be walked or read.
template <class Visit>
static int forEachBound(u16 id, Visit visit) {
  ObjList ports;
  if (walkObjects(portRateBind, 0, ports) != 0) return kNoMemory;
  for (NODE* cell = lstFirst(ports); cell != nullptr; cell = lstNext(cell)) {
    PortRateBinding port{*dataOf<const ObjIndex>(cell), {}};
    if (readRecord(portRateBind, &port) != 0) return -1;
    if (port.value.prfId != id) continue;
    if (const int result = visit(port)) return result;
  }
  return 0;
}

int port_rate_profile_is_bind(u16 id, bool* bound) {
  *bound = false;
  if (id > kMostRateProfile) return kRateId;
  const int result = forEachBound(id, [](const PortRateBinding&) { return 1; });
  *bound = result == 1;
  return std::min(result, 0);
}

int addCopy(const PortRateBinding& record, LIST* records) {
  auto* copy = newRecord<PortRateBinding>();
  if (copy == nullptr) return kNoMemory;
  *copy = record;
  if (appendRecord(&copy->object, records) == 0) return 0;
  mpuFree(copy);
  return kNoMemory;
}

void updata_port_rate_limit_prf_bind(u16 id) {
  if (inRecoverConfProcess() == 1 || id == 0 || id == 65535) return;
  ObjList records;
  u32 room = kMostRecords;
  const auto add = [&](const PortRateBinding& port) { return room-- != 0 ? addCopy(port, records) : 1; };
  if (forEachBound(id, add) < 0) return;
  sendRecords(portRateBind, records);
}

// A port that is not bound is told nothing.
void recover_port_rate_limit_attach_cfg(u16 slot) {
  u16 ports = 0;
  const int card = get_config_card_type(slot);
  if (card <= 0 || ddGetBoardServePortAmountByType(static_cast<u16>(card), &ports) != 0 || ports == 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "Function:%s, Line:%d, slot %d usport 0.\r\n", __func__, __LINE__, slot);
    return;
  }
  ObjList records;
  for (u16 port = 1; port <= ports; ++port) {
    PortRateBinding binding;
    placeObject(slot, port, &binding.object);
    if (readRecord(portRateBind, &binding) != 0) return;
    if (binding.value.prfId != 0 && addCopy(binding, records) != 0) return;
  }
  sendRecords(portRateBind, records);
}

int get_port_rate_limit_info(u16 slot, u16 port, int direction, u32* rate) {
  if (rate == nullptr) return kRateNull;
  if (direction != kRateUpstream && direction != kRateDownstream) return kOtherDirection;
  PortRateBinding binding;
  PortRatePrf profile;
  placeObject(slot, port, &binding.object);
  int code = readRecord(portRateBind, &binding);
  if (code == 0) code = get_rate_limit_profile_byid(binding.value.prfId, &profile);
  if (code != 0) return code < 0 ? code : -1;
  const bool up = direction == kRateUpstream;
  const PortRatePrf off;
  const u32 limit = up ? profile.usCir : profile.dsCir;
  *rate = (up ? profile.usStatus : profile.dsStatus) == 1 ? limit : u32{off.usCir};
  return 0;
}

// --- Commands ---

// The profile that two words of a command name. 0, or -1 with a line.
static int readProfile(Vty* vty, char** argv, u16* id) {
  int found = 0;
  if (bep_StrCmp(argv[0], "name") == 0) {
    const std::size_t length = bep_StrLen(argv[1]);
    if (length == 0 || length > kRateName) return refuse(vty, "name is too long.\r\n");
    found = StdSnmpGetRatePrfIdByName(argv[1]);
    if (found < 0) return refuse(vty, "the profile name %s is not exit.\r\n", argv[1]);
  } else if (bep_StrCmp(argv[0], "id") == 0) {
    found = bep_atoiEx(argv[1]);
  } else {
    return refuse(vty, "unknown command.\r\n");
  }
  *id = static_cast<u16>(found);
  return rate_limit_prf_is_valid(*id) ? 0 : refuse(vty, "profile index %d is not exist\"\r\n", *id);
}

// Binds the ports of an interface string. 0, or -1 or a code with a line.
static int bindPorts(Vty* vty, const char* interfaces, u16 id, const char* done, const char* failed) {
  ObjList addresses, records;
  if (readInterfaces(vty, interfaces, addresses) != 0) return -1;
  PortRateBinding binding;
  binding.value.prfId = id;
  int code = placeRecords(addresses, records, binding);
  if (code == kNoMemory) return code;
  SnmpErrInfo err;
  if (code == 0) code = setRecords(portRateBind, records, &err);
  if (code != 0) {
    vty_out(vty, "%s error: %d\r\n", failed, code);
    return code;
  }
  reportRecords(portRateBind, records, kByOperator);
  vty_out(vty, "%s\r\n", done);
  return 0;
}

static CommandHandler cli_attach_rate_limit_prf_func;
int cli_attach_rate_limit_prf_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 3) return refuse(vty, "unknown command.\r\n");
  u16 id = 0;
  if (readProfile(vty, argv, &id) != 0) return -1;
  return bindPorts(vty, argv[2], id, "attach profile ok!", "attach profile");
}

static CommandHandler cli_detach_rate_limit_prf_func;
int cli_detach_rate_limit_prf_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "unknown command.\r\n");
  return bindPorts(vty, argv[0], 0, "detach profile ok", "detach profile");
}

static void showBinding(Vty* vty, const PortRateBinding& binding) {
  PortRatePrf profile;
  const u16 id = binding.value.prfId;
  if (get_rate_limit_profile_byid(id, &profile) != 0) return;
  char place[16];
  std::snprintf(place, sizeof place, "%d/%d", binding.object.addr[1], binding.object.addr[2]);
  vty_out(vty, "%-12s%-12d%-.20s\r\n", place, id, id != 0 ? profile.name : "--");
}

static CommandHandler cli_show_rate_limit_attach_func;
int cli_show_rate_limit_attach_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "unknown command.\r\n");
  ObjList addresses, records;
  if (readInterfaces(vty, argv[0], addresses) != 0) return -1;
  int code = placeRecords(addresses, records, PortRateBinding{});
  for (NODE* cell = lstFirst(records); code == 0 && cell != nullptr; cell = lstNext(cell)) {
    code = readRecord(portRateBind, dataOf<PortRateBinding>(cell));
  }
  if (code != 0) return refuse(vty, "get profilr error:%d.", code);
  vty_out(vty, "%-12s%-12s%-20s\r\n", "interface", "profile id", "profile name");
  for (NODE* cell = lstFirst(records); cell != nullptr; cell = lstNext(cell)) {
    showBinding(vty, *dataOf<const PortRateBinding>(cell));
  }
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "attach rate-limit profile [name|id] <name_or_id> interface <if_list>",
            cli_attach_rate_limit_prf_func, "bind ports to a rate-limit profile"),
    command(CONFIG_NODE, "detach rate-limit-profile interface <if_list>", cli_detach_rate_limit_prf_func,
            "take the rate limit of ports away"),
    command(CONFIG_NODE, "show port rate-limit-profile-binding interface <if_list>", cli_show_rate_limit_attach_func,
            "the rate-limit profiles of ports"),
};

static void showrun(Vty* vty, const PortRateBinding* record) {
  const u16 id = record->value.prfId;
  if (id == 0) return;
  vty_out(vty, "attach rate-limit profile id %d interface %d/%d \r\n", id, record->object.addr[1],
          record->object.addr[2]);
}

// --- Row ---

static constexpr u16 types[] = {621, 116, 622, 699, 56, 817, 818, 264};

constexpr DataItem portRateBind = {
    .id = 2820,
    .stem = "port_rate_limit",
    .attribute = kRateAttribute,
    .kept = kept<&PortRateBinding::value>(),
    .objectTypes = types,
    .work = Work::array,
    .wholeSlot = 0,
    .encodedBytes = 74,
    .parse = onRecord<parse>,
    .encode = onRecord<encode>,
    .answer = onRecord<answer>,
    .check = onRecord<check_set_port_rate_limit_prf_attach_paraerror>,
    .save = onRecord<save>,
    .select = select,
    .reaches = reachesRunningCard,
    .report = reportRuns,
    .sendFailed = untold,
    .buildFailed = untold,
    .showrun = onRecord<showrun>,
    .commands = commands,
    .message = setAndGet<portRateBind>(55332, "port rate bind"),
};
