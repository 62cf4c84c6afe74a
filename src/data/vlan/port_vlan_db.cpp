// Where the tables of ports are stored: a row of PortService for each row, by its number, and one of ServiceCfg for
// each service, by the row's PVC index. The services of a PVC have the indexes from 0 on, without gaps.

#include "common/store.h"
#include "data/vlan/port_vlan.h"
#include "platform/tables.h"

static constexpr int kNullValue = -24;
static constexpr int kPartOfValue = -33;

static int checkAccess(const void* value, u32 offset, u32 length) {
  if (value == nullptr) return kNullValue;
  return offset != 0 || length < sizeof(PortVlanTable) ? kPartOfValue : 0;
}

// The steps below give 0 or the code of the database.

static int putTls(mco_trans_h transaction, u32 objectId, u16 number, const VlanItem& item) {
  PortService row;
  int code = PortService_treeIdx_find(transaction, objectId, number, &row);
  if (code == DB_NOT_FOUND) code = PortService_new(transaction, &row);
  if (code != 0) return code;
  const PortService_fixed fields{objectId,    number,      item.tlsEnable, item.tlsTpid,
                                 item.tlsVid, item.tlsCos, item.tlsCosCopy};
  return PortService_fixed_put(&row, &fields);
}

static int putService(mco_trans_h transaction, u32 objectId, u16 pvc, u16 index, const VlanService& s) {
  ServiceCfg row;
  int code = ServiceCfg_treeIdx_find(transaction, objectId, pvc, index, &row);
  if (code == DB_NOT_FOUND) code = ServiceCfg_new(transaction, &row);
  if (code != 0) return code;
  const ServiceCfg_fixed fields{
      objectId,     pvc,          index,      s.serviceType, s.vlanMode, static_cast<u16>(s.cvlanRuleId),
      s.cvlanTpid,  s.cvlanVid,   s.cvlanCos, s.transTpid,   s.transVid, s.transCos,
      s.qinqEnable, s.qinqRuleId, s.qinqTpid, s.qinqVid,     s.qinqCos};
  return ServiceCfg_fixed_put(&row, &fields);
}

static int deleteServices(mco_trans_h transaction, u32 objectId, u16 pvc) {
  for (u16 index = 0; index < kVlanServices; ++index) {
    ServiceCfg row;
    int code = ServiceCfg_treeIdx_find(transaction, objectId, pvc, index, &row);
    if (code == DB_NOT_FOUND) return 0;
    if (code == 0) code = ServiceCfg_delete(&row);
    if (code != 0) return code;
  }
  return 0;
}

static int putRow(mco_trans_h transaction, u32 objectId, u16 number, const VlanItem& item) {
  if (const int code = putTls(transaction, objectId, number, item)) return code;
  if (const int code = deleteServices(transaction, objectId, number)) return code;
  const u16 pvc = item.pvcIndex == kNoPvc ? u16{0} : item.pvcIndex;
  for (u16 index = 0; index < item.serviceNum && index < kVlanServices; ++index) {
    if (const int code = putService(transaction, objectId, pvc, index, item.services[index])) return code;
  }
  return 0;
}

int set_port_vlan_cfg_db_api(u32 objectId, const void* value, u32 offset, u32 length) {
  if (const int code = checkAccess(value, offset, length)) return code;
  const auto& table = *static_cast<const PortVlanTable*>(value);
  if (table.pvcNum > kPvcRows) return -1;
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  for (u16 number = 0; number < table.pvcNum; ++number) {
    if (putRow(transaction, objectId, number, table.rows[number]) != 0) return -1;
  }
  return transaction.commit();
}

static void takeService(const ServiceCfg_fixed& fields, VlanService* service) {
  service->serviceType = fields.serviceType;
  service->vlanMode = fields.vlanMode;
  service->cvlanRuleId = static_cast<i16>(fields.cvlanRuleId);
  service->cvlanTpid = fields.cvlanTpid;
  service->cvlanVid = fields.cvlanVid;
  service->cvlanCos = fields.cvlanCos;
  service->transTpid = fields.transTpid;
  service->transVid = fields.transVid;
  service->transCos = fields.transCos;
  service->qinqEnable = fields.qinqEnable;
  service->qinqRuleId = fields.qinqRuleId;
  service->qinqTpid = fields.qinqTpid;
  service->qinqVid = fields.qinqVid;
  service->qinqCos = fields.qinqCos;
  service->entryState = kInUse;
}

static int getServices(mco_trans_h transaction, u32 objectId, u16 pvc, VlanItem* item) {
  for (u16 index = 0; index < kVlanServices; ++index) {
    ServiceCfg row;
    ServiceCfg_fixed fields;
    int code = ServiceCfg_treeIdx_find(transaction, objectId, pvc, index, &row);
    if (code == DB_NOT_FOUND) return 0;
    if (code == 0) code = ServiceCfg_fixed_get(&row, &fields);
    if (code != 0) return code;
    takeService(fields, &item->services[index]);
    ++item->serviceNum;
  }
  return 0;
}

static int getRow(mco_trans_h transaction, u32 objectId, u16 number, VlanItem* item) {
  init_vlan_item(item, number);
  PortService row;
  PortService_fixed fields;
  int code = PortService_treeIdx_find(transaction, objectId, number, &row);
  if (code == DB_NOT_FOUND) return 0;
  if (code == 0) code = PortService_fixed_get(&row, &fields);
  if (code != 0) return code;
  item->tlsEnable = fields.tlsEnable;
  item->tlsTpid = fields.tlsTpid;
  item->tlsVid = fields.tlsVid;
  item->tlsCos = fields.tlsCos;
  item->tlsCosCopy = fields.tlsCosCopy;
  return getServices(transaction, objectId, number, item);
}

int get_port_vlan_cfg_db_api(u32 objectId, void* value, u32 offset, u32 length) {
  if (const int code = checkAccess(value, offset, length)) return code;
  auto& table = *static_cast<PortVlanTable*>(value);
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  table.pvcNum = kPvcRows;
  for (u16 number = 0; number < kPvcRows; ++number) {
    if (getRow(transaction, objectId, number, &table.rows[number]) != 0) return -1;
  }
  return 0;
}

int del_port_vlan_cfg_db_api(u32 objectId) {
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  for (u16 number = 0; number < kPvcRows; ++number) {
    PortService row;
    int code = PortService_treeIdx_find(transaction, objectId, number, &row);
    if (code == 0) code = PortService_delete(&row);
    if (code != 0 && code != DB_NOT_FOUND) return -1;
    if (deleteServices(transaction, objectId, number) != 0) return -1;
  }
  return transaction.commit();
}
