#include "voice/service/ngndb.h"

#include <utility>

#include "common/msan_init.h"
#include "common/store.h"
#include "platform/log.h"
#include "platform/tables.h"

namespace {

// A transaction on a connection of the module's own; its failures have texts of this source's own.
class OwnTransaction {
 public:
  OwnTransaction(Access access, Where where) : where_(where), connection_(ownConnection()) {
    if (connection_ == nullptr) {
      error("get connect resource failed");
    } else if (mco_trans_start_(connection_, static_cast<int>(access), 0, &handle_, where.file, where.line,
                                where.function) != 0) {
      handle_ = nullptr;
      error("start trans failed");
    }
  }
  ~OwnTransaction() {
    if (handle_ != nullptr) mco_trans_rollback(handle_);
    if (connection_ != nullptr) dbCommon_freeConnectRes(connection_);
  }
  OwnTransaction(const OwnTransaction&) = delete;
  OwnTransaction& operator=(const OwnTransaction&) = delete;

  explicit operator bool() const { return handle_ != nullptr; }
  operator mco_trans_h() const { return handle_; }
  int commit() {
    const int code = mco_trans_commit(std::exchange(handle_, nullptr));
    if (code == 0) return 0;
    ulogPrintf(gModuleId_Msan, 13, "[ERROR]%s(%d):%s:Transaction commit failed,err code rc = %d.\r\n", fileName(where_),
               where_.line, where_.function, code);
    return kStoreFailed;
  }

 private:
  void error(const char* what) const {
    ulogPrintf(gModuleId_Msan, 13, "[ERROR] %s(%d):%s:%s .\r\n", fileName(where_), where_.line, where_.function, what);
  }
  Where where_;
  DbConnection connection_;
  mco_trans_h handle_ = nullptr;
};

}  // namespace

int db_get_ngn_protocol_type(u16* type) {
  if (type == nullptr) {
    ulogPrintf(gModuleId_Msan, 13, "[ERROR] %s(%d):%s:configuration para is NULL .\r\n", fileName(Where::here()),
               __LINE__, __func__);
    return -1;
  }
  OwnTransaction transaction(Access::read, Where::here());
  if (!transaction) return kStoreFailed;
  mco_cursor_t cursor;
  NgnProtocolType row;
  if (NgnProtocolType_list_cursor(transaction, &cursor) != 0 ||
      NgnProtocolType_from_cursor(transaction, &cursor, &row) != 0) {
    return kStoreFailed;
  }
  NgnProtocolType_type_get(&row, type);
  return transaction.commit();
}

int db_set_ngn_protocol_type(u16 type) {
  OwnTransaction transaction(Access::write, Where::here());
  if (!transaction) return kStoreFailed;
  mco_cursor_t cursor;
  NgnProtocolType row;
  int code = NgnProtocolType_list_cursor(transaction, &cursor);
  if (code == DB_END) {
    code = NgnProtocolType_new(transaction, &row);
  } else if (code == 0) {
    code = NgnProtocolType_from_cursor(transaction, &cursor, &row);
  }
  if (code != 0) return kStoreFailed;
  NgnProtocolType_type_put(&row, type);
  return transaction.commit();
}
