#include "data/vlan/port_vlan.h"

#include "common/obj_attributes.h"
#include "platform/flow_store.h"

// --- Wire ---
//
// A port, in both directions: u16 slot, u16 port, 16 zeros, u16 rows, the rows. A row: u16 PVC index, the outer tag (u8
// on or off, u16 tpid, u16 vid, u16 cos, u8 copy of the inner cos), 8 zeros, u16 services, the services. A service
// differs: a manager cites its rules by their ids, a card gets their entries.

static constexpr u32 kReserved = 8;
static constexpr u32 kLocationReserved = 16;
static constexpr u16 kMostRules = 1024;  // a rule of a higher id has no entries for a card

static u16 readU16(Reader& in) { return static_cast<u16>(in.number(2)); }
static u8 readU8(Reader& in) { return static_cast<u8>(in.number(1)); }

struct Tag {
  u16 tpid, vid, cos;
};

static Tag readTag(Reader& in) {
  Tag tag{};
  tag.tpid = readU16(in);
  tag.vid = readU16(in);
  tag.cos = readU16(in);
  return tag;
}

static void writeTag(Writer& out, const Tag& tag) {
  out.number(2, tag.tpid);
  out.number(2, tag.vid);
  out.number(2, tag.cos);
}

// Values that are not in use are passed over.
static void parseService(Reader& in, VlanService* s) {
  s->serviceType = readU8(in);
  s->vlanMode = readU16(in);
  s->cvlanRuleId = static_cast<i16>(readU16(in));
  const Tag cvlan = readTag(in);
  s->cvlanTpid = cvlan.tpid;
  s->cvlanVid = cvlan.vid;
  s->cvlanCos = cvlan.cos;
  const Tag trans = readTag(in);
  if (s->vlanMode == kTranslation) {
    s->transTpid = trans.tpid;
    s->transVid = trans.vid;
    s->transCos = trans.cos;
  }
  s->qinqEnable = readU8(in);
  const u16 rule = readU16(in);
  const Tag qinq = readTag(in);
  if (s->qinqEnable == 1) {
    s->qinqRuleId = rule;
    s->qinqTpid = qinq.tpid;
    s->qinqVid = qinq.vid;
    s->qinqCos = qinq.cos;
  }
  in.skip(kReserved);
  s->entryState = kInUse;
}

static int parseRow(Reader& in, const ObjIndex& object, VlanItem* row, SnmpErrInfo* err) {
  row->pvcIndex = readU16(in);
  row->tlsEnable = readU8(in);
  const Tag tls = readTag(in);
  const u8 copy = readU8(in);
  if (row->tlsEnable == 1) {
    row->tlsTpid = tls.tpid;
    row->tlsVid = tls.vid;
    row->tlsCos = tls.cos;
    row->tlsCosCopy = copy;
  }
  in.skip(kReserved);
  row->serviceNum = readU16(in);
  if (row->serviceNum > kVlanServices) {
    return reject(err, kServiceCount, {object.addr[1], object.addr[2], row->pvcIndex, row->serviceNum});
  }
  for (u16 i = 0; i < row->serviceNum; ++i) parseService(in, &row->services[i]);
  return 0;
}

static int parse_set_port_vlan(Reader& in, PortVlanRecord* record, SnmpErrInfo* err) {
  const u16 slot = readU16(in);
  const u16 port = readU16(in);
  in.skip(kLocationReserved);
  PortVlanTable& table = record->table;
  table.pvcNum = readU16(in);
  if (!isDataCard(slot)) return reject(err, kNoSlot, {slot});
  if (const int code = findObject(slot, port, &record->object)) return reject(err, code);
  if (table.pvcNum > kPvcRows) return reject(err, kRowCount, {slot, port, table.pvcNum});
  for (u16 i = 0; i < kPvcRows; ++i) {
    init_vlan_item(&table.rows[i], i);
    if (i < table.pvcNum && parseRow(in, record->object, &table.rows[i], err) != 0) return -1;
  }
  return 0;
}

using WriteService = int(const VlanService& service, Writer& out);

// A port with the services in use, as many rows as it has. -1 when it has none, or a service can't be written.
static int writePort(const PortVlanRecord& record, Writer& out, WriteService* writeService) {
  const u16 slot = record.object.addr[1];
  const u16 port = record.object.addr[2];
  u16 rows = 0;
  if (get_pvcnum(slot, port, &rows) != 0) return -1;
  out.number(2, slot);
  out.number(2, port);
  out.zeros(kLocationReserved);
  out.number(2, rows);
  for (u16 i = 0; i < rows; ++i) {
    const VlanItem& row = record.table.rows[i];
    out.number(2, wireIndex(rows, i));
    out.number(1, row.tlsEnable);
    writeTag(out, {row.tlsTpid, row.tlsVid, row.tlsCos});
    out.number(1, row.tlsCosCopy);
    out.zeros(kReserved);
    out.number(2, servicesInUse(row));
    for (const VlanService& service : row.services) {
      if (isInUse(service) && writeService(service, out) != 0) return -1;
    }
  }
  return 0;
}

static int writeForManager(const VlanService& s, Writer& out) {
  out.number(1, s.serviceType);
  out.number(2, s.vlanMode);
  out.number(2, static_cast<u16>(s.cvlanRuleId));
  writeTag(out, {s.cvlanTpid, s.cvlanVid, s.cvlanCos});
  writeTag(out, {s.transTpid, s.transVid, s.transCos});
  out.number(1, s.qinqEnable);
  out.number(2, s.qinqRuleId);
  writeTag(out, {s.qinqTpid, s.qinqVid, s.qinqCos});
  out.zeros(kReserved);
  return 0;
}

// An entry of a rule: its number, the words as they are counted on the wire, the blocks as they are.
static void fill_rule_to_buf(u16 number, const FlowRuleEntry& entry, Writer& out) {
  out.number(2, number);
  for (const u16 word : entry.words) out.number(2, word);
  for (const auto& block : entry.blocks) out.bytes(block);
}

// The count of a rule's entries, and the entries. The rule is asked for even where it has none to give; -1 if there is
// no such rule.
static int writeRule(i16 id, bool wanted, Writer& out) {
  FlowRule rule;
  if (flowRuleGetPrfInfo(id, &rule) < 0) return -1;
  const u16 count = wanted && id != 0 && id <= kMostRules ? rule.count : u16{0};
  if (count > kFlowEntries) return -1;
  out.number(2, count);
  for (u16 i = 0; i < count; ++i) fill_rule_to_buf(static_cast<u16>(i + 1), rule.entries[i], out);
  return 0;
}

static int writeForCard(const VlanService& s, Writer& out) {
  out.number(1, s.serviceType);
  out.number(2, s.vlanMode);
  if (writeRule(s.cvlanRuleId, true, out) != 0) return -1;
  writeTag(out, {s.cvlanTpid, s.cvlanVid, s.cvlanCos});
  writeTag(out, {s.transTpid, s.transVid, s.transCos});
  out.number(1, s.qinqEnable);
  if (writeRule(static_cast<i16>(s.qinqRuleId), s.qinqEnable == 1, out) != 0) return -1;
  writeTag(out, {s.qinqTpid, s.qinqVid, s.qinqCos});
  out.zeros(kReserved);
  return 0;
}

static int build_port_vlan_msc_pkt(const PortVlanRecord* record, Writer& out) {
  return writePort(*record, out, writeForCard);
}

static int build_port_vlan_snmp_pkt(const PortVlanRecord* record, Writer& out) {
  return writePort(*record, out, writeForManager);
}

// --- Steps ---

static int get_port_vlan(PortVlanRecord* record, SnmpErrInfo* err) {
  if (checkObject(portVlan, record, err) != 0) return -1;
  if (!isDataCard(record->object.addr[1])) return reject(err, kServiceCount);
  return readRecord(portVlan, record) == 0 ? 0 : -1;
}

void recover_port_vlan_cfg(u16 slot) {
  if (isDataCard(slot)) recoverSlot(portVlan, slot);
}

// With services that only a replay stores: 16 in each of the eight rows.
static constexpr u32 kLargestPort = 22 + kPvcRows * (20 + kVlanServices * (34 + 2 * kFlowEntries * 42));

constexpr DataItem portVlan = {
    .id = kVlanMessage,
    .stem = "port_vlan",
    .attribute = kVlanAttribute,
    .kept = kept<&PortVlanRecord::table>(),
    .objectTypes = kRowPortTypes,
    .wholeSlot = kWholeSlot,
    .encodedBytes = kLargestPort,
    .mostMessage = 600000,
    .leastSent = 0,
    .parse = onRecord<parse_set_port_vlan>,
    .encode = onRecord<build_port_vlan_msc_pkt>,
    .answer = onRecord<build_port_vlan_snmp_pkt>,
    .check = onRecord<check_port_vlan_cfg>,
    .get = onRecord<get_port_vlan>,
    .holds = hasRows,
    .showrun = onRecord<showrunPortVlan>,
    .message = setAndGet<portVlan>(3000, "port vlan config msg"),
};
