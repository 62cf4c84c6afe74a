#include "combo/profile/profile_relation.h"

#include "common/store.h"
#include "platform/module_registry.h"
#include "platform/tables.h"

// The functions of a table with the object's id for its key.
template <class Row>
struct Relation {
  int (*cursor)(mco_trans_h, mco_cursor_t*);
  int (*search)(mco_trans_h, mco_cursor_t*, int, u32);
  int (*compare)(mco_trans_h, const mco_cursor_t*, u32, int*);
  int (*fromCursor)(mco_trans_h, const mco_cursor_t*, Row*);
  int (*create)(mco_trans_h, Row*);
  int (*remove)(Row*);
  int (*putKey)(Row*, u32);
  int (*putId)(Row*, u16);
  int (*getId)(Row*, u16*);
};

// Moves the cursor to the row of the object. DB_END for an empty table, DB_NOT_FOUND without a row.
template <class Row>
static int find(const Relation<Row>& table, mco_trans_h transaction, mco_cursor_t& cursor, u32 objectId) {
  if (const int code = table.cursor(transaction, &cursor)) return code;
  return table.search(transaction, &cursor, DB_EQUAL, objectId);
}

template <class Row>
static int setRelation(const Relation<Row>& table, u32 objectId, const void* id, Where where = Where::here()) {
  if (hss_IsSmuMaster() != 1) return 0;
  Transaction transaction(Access::write, where);
  if (!transaction) return kStoreFailed;
  mco_cursor_t cursor;
  Row row;
  int code = 0;
  if (find(table, transaction, cursor, objectId) == 0) {
    code = table.fromCursor(transaction, &cursor, &row);
  } else {
    code = table.create(transaction, &row);
    if (code == 0) code = table.putKey(&row, objectId);
  }
  if (code == 0) code = table.putId(&row, *static_cast<const u16*>(id));
  // A row that was begun stays, too: it stands for the default profile.
  const int committed = transaction.commit();
  return code == 0 && committed == 0 ? 0 : kStoreFailed;
}

template <class Row>
static int getRelation(const Relation<Row>& table, u32 objectId, void* id, Where where = Where::here()) {
  Transaction transaction(Access::read, where);
  if (!transaction) return kStoreFailed;
  mco_cursor_t cursor;
  const int code = find(table, transaction, cursor, objectId);
  if (code == DB_NOT_FOUND || code == DB_END) return code;
  int order = 0;
  if (code != 0 || table.compare(transaction, &cursor, objectId, &order) != 0) return kStoreFailed;
  if (order != 0) return 0;
  Row row;
  if (table.fromCursor(transaction, &cursor, &row) != 0) return kStoreFailed;
  return table.getId(&row, static_cast<u16*>(id)) == 0 ? 0 : kStoreFailed;
}

template <class Row>
static int clearRelation(const Relation<Row>& table, u32 objectId, Where where = Where::here()) {
  if (hss_IsSmuMaster() != 1) return 0;
  Transaction transaction(Access::write, where);
  if (!transaction) return kStoreFailed;
  mco_cursor_t cursor;
  const int code = find(table, transaction, cursor, objectId);
  if (code == DB_NOT_FOUND || code == DB_END) return 0;
  Row row;
  if (code != 0 || table.fromCursor(transaction, &cursor, &row) != 0 || table.remove(&row) != 0) return kStoreFailed;
  return transaction.commit();
}

#define RELATION(T, key, id, index)                                     \
  static constexpr Relation<T> T##_relation{T##_##index##_index_cursor, \
                                            T##_##index##_search,       \
                                            T##_##index##_compare,      \
                                            T##_from_cursor,            \
                                            T##_new,                    \
                                            T##_delete,                 \
                                            T##_##key##_put,            \
                                            T##_##id##_put,             \
                                            T##_##id##_get};
RELATION(AD_PRF_ATT_RELATION, ulObjId, prfId, reTree)
RELATION(PVC_PRF_ATT_RELATION, ulObjId, prfId, reTree)
RELATION(VD_LINE_PRF_ATT_RELATION, ulObjId, prfId, reTree)
RELATION(VD_SERVICE_PRF_ATT_RELATION, ulObjId, prfId, reTree)
RELATION(VD_VN_PRF_ATT_RELATION, obj_id, prf_id, re_tree)
RELATION(VD_GINP_PRF_ATT_RELATION, obj_id, prf_id, re_tree)
RELATION(VD_EXTRA_PRF_ATT_RELATION, obj_id, prf_id, re_tree)
RELATION(VD_CPSD_PRF_ATT_RELATION, obj_id, prf_id, re_tree)
RELATION(VD_PBO_PRF_ATT_RELATION, ulObjId, prfId, reTree)

int set_adsl_prf_att_dbapi(u32 objectId, const void* id, u32, u32) {
  return setRelation(AD_PRF_ATT_RELATION_relation, objectId, id);
}
int get_adsl_prf_att_dbapi(u32 objectId, void* id, u32, u32, u32) {
  return getRelation(AD_PRF_ATT_RELATION_relation, objectId, id);
}
int clr_adsl_prf_att_dbapi(u32 objectId) { return clearRelation(AD_PRF_ATT_RELATION_relation, objectId); }

int set_pvc_prf_att_dbapi(u32 objectId, const void* id, u32, u32) {
  return setRelation(PVC_PRF_ATT_RELATION_relation, objectId, id);
}
int get_pvc_prf_att_dbapi(u32 objectId, void* id, u32, u32, u32) {
  return getRelation(PVC_PRF_ATT_RELATION_relation, objectId, id);
}
int clr_pvc_prf_att_dbapi(u32 objectId) { return clearRelation(PVC_PRF_ATT_RELATION_relation, objectId); }

#define VDSL_ATTACHMENT(kind, api, T)                                           \
  int set_vdsl_##kind##_prf_att_##api(u32 objectId, const void* id, u32, u32) { \
    return setRelation(T##_relation, objectId, id);                             \
  }                                                                             \
  int get_vdsl_##kind##_prf_att_##api(u32 objectId, void* id, u32, u32) {       \
    return getRelation(T##_relation, objectId, id);                             \
  }                                                                             \
  int clr_vdsl_##kind##_prf_att_##api(u32 objectId) { return clearRelation(T##_relation, objectId); }
VDSL_ATTACHMENT(line, db_api, VD_LINE_PRF_ATT_RELATION)
VDSL_ATTACHMENT(ser, db_api, VD_SERVICE_PRF_ATT_RELATION)
VDSL_ATTACHMENT(pbo, db_api, VD_PBO_PRF_ATT_RELATION)
VDSL_ATTACHMENT(cpsd, dbapi, VD_CPSD_PRF_ATT_RELATION)
VDSL_ATTACHMENT(extra, dbapi, VD_EXTRA_PRF_ATT_RELATION)
VDSL_ATTACHMENT(ginp, dbapi, VD_GINP_PRF_ATT_RELATION)
VDSL_ATTACHMENT(vn, dbapi, VD_VN_PRF_ATT_RELATION)
