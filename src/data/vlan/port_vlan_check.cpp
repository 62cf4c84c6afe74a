// Whether the table of a port may be stored.

#include <algorithm>

#include "data/vlan/port_vlan.h"
#include "platform/flow_store.h"

static bool isVid(u16 vid) { return vid >= kMinVid && vid <= kMaxVid; }
static bool isCosOrNone(u16 cos) { return cos <= kMaxCos || cos == kNoTag; }

// Where a value stands, ahead of it in the detail of its error.
struct Place {
  SnmpErrInfo* err;
  u16 slot, port, pvc;

  int reject(int code) const { return ::reject(err, code, {slot, port, pvc}); }
  int reject(int code, u16 value) const { return ::reject(err, code, {slot, port, pvc, value}); }
  int reject(int code, u16 service, u16 value) const { return ::reject(err, code, {slot, port, pvc, service, value}); }
};

// Vids and cos by type and mode; a mode that there is not is not looked at.
static int checkTags(const Place& place, const VlanService& s, u16 number) {
  const bool tagged = s.serviceType == kUnicast && s.vlanMode == kTag;
  const bool translates = s.vlanMode == kTranslation;
  const bool known = s.vlanMode >= kTag && s.vlanMode <= kTransparent;
  // All vids may be meant by a unicast service that is transparent and a multicast one that is tagged.
  const bool all = s.vlanMode == (s.serviceType == kUnicast ? kTransparent : kTag);
  if (known && !isVid(s.cvlanVid) && !(all && s.cvlanVid == kNoTag)) {
    return place.reject(kCvlanVid, number, s.cvlanVid);
  }
  if ((tagged && s.cvlanCos > kMaxCos) || (translates && !isCosOrNone(s.cvlanCos))) {
    return place.reject(kCvlanCos, number, s.cvlanCos);
  }
  if (!translates) return 0;
  if (!isVid(s.transVid)) return place.reject(kTransVid, number, s.transVid);
  return isCosOrNone(s.transCos) ? 0 : place.reject(kTransCos, number, s.transCos);
}

static int checkQinq(const Place& place, const VlanService& s, u16 number) {
  if (s.qinqEnable != 1) return 0;
  if (!isVid(s.qinqVid)) return place.reject(kQinqVid, number, s.qinqVid);
  if (s.qinqCos > kMaxCos) return place.reject(kQinqCos, number, s.qinqCos);
  if (flowRuleIsPrfExist(static_cast<i16>(s.qinqRuleId)) == 1) return 0;
  return place.reject(kQinqRule, number, s.qinqRuleId);
}

// `defaults` counts the row's unicast services that tag under the default rule.
static int checkService(const Place& place, const VlanService& s, u16 number, u16& defaults) {
  if (s.serviceType > kMulticast) return place.reject(kServiceType, number, s.serviceType);
  if (checkTags(place, s, number) != 0) return -1;
  const bool isDefault = s.serviceType == kUnicast && s.vlanMode == kTag && s.cvlanRuleId == 0;
  if (isDefault && ++defaults > 1) return place.reject(kUnicastTags);
  if (flowRuleIsPrfExist(s.cvlanRuleId) != 1) {
    return place.reject(kCvlanRule, number, static_cast<u16>(s.cvlanRuleId));
  }
  return checkQinq(place, s, number);
}

static int checkTls(const Place& place, const VlanItem& row) {
  if (row.tlsEnable != 1) return 0;
  if (!isVid(row.tlsVid)) return place.reject(kTlsVid, row.tlsVid);
  return row.tlsCos <= kMaxCos ? 0 : place.reject(kTlsCos, row.tlsCos);
}

static bool takesAllAsIs(const VlanService& s) {
  return isInUse(s) && s.vlanMode != kTag && s.vlanMode != kTranslation && s.cvlanVid == kNoTag;
}

static int check_port_vlan_para(const Place& place, const VlanItem& row) {
  if (checkTls(place, row) != 0) return -1;
  u16 defaults = 0;
  for (u16 i = 0; i < kVlanServices; ++i) {
    const VlanService& service = row.services[i];
    if (isInUse(service) && checkService(place, service, static_cast<u16>(i + 1), defaults) != 0) return -1;
  }
  if (row.serviceNum == 1 || std::ranges::none_of(row.services, takesAllAsIs)) return 0;
  return place.reject(kTransparentAlone);
}

static bool hasMulticast(const VlanItem& row) {
  return std::ranges::any_of(row.services,
                             [](const VlanService& s) { return isInUse(s) && s.serviceType == kMulticast; });
}

static int check_mc_pvc(const PortVlanTable& table, u16 slot, u16 port, SnmpErrInfo* err) {
  return std::ranges::count_if(table.rows, hasMulticast) <= 1 ? 0 : reject(err, kMulticastPvcs, {slot, port});
}

// All eight rows count, also those that the port does not use.
static int check_service_num(const PortVlanTable& table, u16 slot, u16 port, SnmpErrInfo* err) {
  u32 services = 0;
  for (const VlanItem& row : table.rows) services += servicesInUse(row);
  return services <= kVlanServices ? 0 : reject(err, kServiceCount, {slot, port});
}

int check_port_vlan_cfg(PortVlanRecord* record, SnmpErrInfo* err) {
  if (checkObject(portVlan, record, err) != 0) return -1;
  const u16 slot = record->object.addr[1];
  const u16 port = record->object.addr[2];
  PortVlanTable& table = record->table;
  bool multiPvc = false;
  if (check_pvcnum(slot, port, &table.pvcNum, &multiPvc, err) != 0) return -1;
  for (u16 i = 0; i < table.pvcNum; ++i) {
    VlanItem& row = table.rows[i];
    if (!multiPvc) row.pvcIndex = 0;
    if (row.pvcIndex >= kPvcRows) return reject(err, kPvcIndex, {slot, port, row.pvcIndex});
    if (check_port_vlan_para({err, slot, port, row.pvcIndex}, row) != 0) return -1;
  }
  if (multiPvc && check_mc_pvc(table, slot, port, err) != 0) return -1;
  return check_service_num(table, slot, port, err);
}
