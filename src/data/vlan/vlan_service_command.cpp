#include "data/vlan/vlan_service_command.h"

#include <algorithm>

#include "common/commands.h"
#include "data/common/data_item.h"
#include "data/vlan/port_vlan.h"
#include "platform/wrappers.h"

static constexpr u32 kLongestTags = 64;  // characters of a word of tags

// The keywords, in the order in which their values are read.
enum Key : u32 { kTypeKey, kModeKey, kTpidKey, kVidKey, kCosKey, kCruleKey, kQruleKey, kInterfaceKey, kKeys };
static constexpr Word keyWords[] = {
    {"type", kTypeKey}, {"mode", kModeKey},   {"tpid", kTpidKey},   {"vid", kVidKey},
    {"cos", kCosKey},   {"crule", kCruleKey}, {"qrule", kQruleKey}, {"interface", kInterfaceKey}};

namespace {
// What the command says: its values as they were typed, and the service that they make.
struct Request {
  const char* texts[kKeys] = {};
  TagValues tpid, vid, cos;
  VlanService service;  // of the first port
};
}  // namespace

static int readPairs(Vty* vty, int argc, char** argv, Request* request) {
  if (argc < 1 || argc > 16 || argc % 2 != 0) return refuse(vty, "unknown command.\r\n");
  for (int i = 0; i < argc; i += 2) {
    const auto key = valueOf(keyWords, argv[i]);
    if (!key) return refuse(vty, "unknown command.\r\n");
    request->texts[*key] = argv[i + 1];
    const bool ofTags = *key == kTpidKey || *key == kVidKey || *key == kCosKey;
    if (ofTags && bep_StrLen(argv[i + 1]) > kLongestTags) return refuse(vty, "input %s error\r\n", keyWords[*key].text);
  }
  return 0;
}

static int readValues(Vty* vty, Request* request) {
  const char* const* texts = request->texts;
  VlanService& service = request->service;
  if (cli_parse_vlan_service_type(texts[kTypeKey], &service.serviceType) != 0) {
    return refuse(vty, "unknown service type.\r\n");
  }
  if (cli_parse_vlan_mode(texts[kModeKey], &service.vlanMode) != 0) return refuse(vty, "unknown cvlan mode.\r\n");
  if (cli_parse_tag(texts[kTpidKey], kTpidOfTags, &request->tpid) != 0) return refuse(vty, "unknown tpid.\r\n");
  if (cli_parse_tag(texts[kVidKey], kVidOfTags, &request->vid) != 0) return refuse(vty, "unknown vid.\r\n");
  if (cli_parse_tag(texts[kCosKey], kCosOfTags, &request->cos) != 0) return refuse(vty, "unknown cos.\r\n");
  if (cli_parse_vlan_rule(texts[kCruleKey], 6, &service) != 0) {
    return refuse(vty, "invalid cvlan rule \"%s\"\r\n", texts[kCruleKey]);
  }
  if (cli_parse_vlan_rule(texts[kQruleKey], 7, &service) != 0) {
    return refuse(vty, "invalid qinq rule \"%s\"\r\n", texts[kQruleKey]);
  }
  return texts[kInterfaceKey] != nullptr ? 0 : refuse(vty, "please input interface.\r\n");
}

static void makeService(Request* request) {
  VlanService& s = request->service;
  s.entryState = kInUse;
  s.cvlanTpid = request->tpid.cvlan.base;
  s.cvlanVid = request->vid.cvlan.base;
  s.cvlanCos = request->cos.cvlan.base;
  s.transTpid = request->tpid.trans.base;
  s.transVid = request->vid.trans.base;
  s.transCos = request->cos.trans.base;
  if (!request->vid.hasQinq) return leaveQinq(&s);
  s.qinqEnable = 1;
  s.qinqTpid = request->tpid.qinq.base;
  s.qinqVid = request->vid.qinq.base;
  s.qinqCos = request->cos.qinq.base;
}

// The next address gets the next vids.
static void step(Request* request) {
  VlanService& s = request->service;
  const TagValues& vid = request->vid;
  s.cvlanVid = static_cast<u16>(s.cvlanVid + vid.cvlan.step);
  s.transVid = static_cast<u16>(s.transVid + vid.trans.step);
  if (vid.hasQinq) s.qinqVid = static_cast<u16>(s.qinqVid + vid.qinq.step);
}

// Finds the port of an address, or its slot, on the work list. Addresses come in its order, so what is looked for is at
// the end or nowhere. 0, or -1 where there is none.
static int is_obj_node_exist(const CliAddr& address, LIST* records, PortVlanRecord** record, Vty* vty) {
  if (address.level > 3) return refuse(vty, "level %d invalid.\r\n", address.level);
  for (NODE* cell = lstLast(records); cell != nullptr; cell = lstPrevious(cell)) {
    auto* at = dataOf<PortVlanRecord>(cell);
    const u16 slot = at->object.addr[1];
    const u16 port = address.level == 1 ? address.port : at->object.addr[2];
    if (slot == address.slot && port == address.port) {
      *record = at;
      return 0;
    }
    if (slot < address.slot || (slot == address.slot && port < address.port)) break;
  }
  return -1;
}

static int get_port_vlan_service_id(const VlanItem& row, u16* id) {
  const auto free = std::ranges::find_if_not(row.services, isInUse);
  if (free == std::end(row.services)) return -1;
  *id = static_cast<u16>(free - row.services);
  return 0;
}

// The record of an address's port, read from the store when it is met first; null with a line.
static PortVlanRecord* recordOf(Vty* vty, const CliAddr& address, LIST* records) {
  PortVlanRecord* record = nullptr;
  if (is_obj_node_exist(address, records, &record, vty) == 0) return record;
  record = newRecord<PortVlanRecord>();
  int result =
      record != nullptr ? transCliAddr2ObjIndex(vty, &address, &record->object) : refuse(vty, "malloc fail!\r\n");
  if (result == 0 && readRecord(portVlan, record) != 0) result = refuse(vty, "getObjAttrData fail!\r\n");
  if (result == 0 && insert_sort_list_by_index(&record->object, records) != 0) result = refuse(vty, "malloc fail!\r\n");
  if (result == 0) return record;
  mpuFree(record);
  return nullptr;
}

// Adds the service to the row that an address names. 0, or -1 with a line.
static int addService(Vty* vty, const CliAddr& address, const VlanService& service, LIST* records) {
  if (address.level != 2 && address.level != 3) return refuse(vty, "error address level.\r\n");
  const bool ofPvc = address.level == 3;
  const u16 pvc = ofPvc ? address.sub : u16{0};
  if (pvc >= kPvcRows) return refuse(vty, "Invalid pvc index %d.\r\n", pvc);
  PortVlanRecord* record = recordOf(vty, address, records);
  if (record == nullptr) return -1;
  PortVlanTable& table = record->table;
  table.pvcNum = ofPvc ? kPvcRows : u16{1};
  u32 services = 0;
  for (u16 i = 0; i < table.pvcNum; ++i) services += table.rows[i].serviceNum;
  VlanItem& row = table.rows[pvc];
  u16 id = 0;
  if (services >= kVlanServices || get_port_vlan_service_id(row, &id) != 0) {
    return refuse(vty, "can not add more service to %d/%d/%d\r\n", address.slot, address.port, pvc);
  }
  row.services[id] = service;
  ++row.serviceNum;
  return 0;
}

static CommandHandler cli_add_service_vlan_new_func;
int cli_add_service_vlan_new_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  Request request;
  ObjList addresses, records;
  if (readPairs(vty, argc, argv, &request) != 0 || readValues(vty, &request) != 0 ||
      readInterfaces(vty, request.texts[kInterfaceKey], addresses) != 0) {
    return -1;
  }
  makeService(&request);
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell), step(&request)) {
    if (addService(vty, *dataOf<const CliAddr>(cell), request.service, records) != 0) return -1;
  }
  SnmpErrInfo err;
  if (setRecords(portVlan, records, &err) != 0) {
    vty_out(vty, "set port vlan fail, ");
    vty_err_info(vty, err);
    return -1;
  }
  reportRecords(portVlan, records, kByOperator);
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "add vlan service {[type|mode|tpid|vid|cos|crule|qrule|interface] <value>}*8",
            cli_add_service_vlan_new_func, "add a VLAN service to ports"),
};

void installAddVlanService() { installCommands(commands); }
