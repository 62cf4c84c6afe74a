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
    ulogPrintf(gModuleId_Msan, kLogError, "[ERROR]%s(%d):%s:Transaction commit failed,err code rc = %d.\r\n",
               fileName(where_), where_.line, where_.function, code);
    return kStoreFailed;
  }

 private:
  void error(const char* what) const {
    ulogPrintf(gModuleId_Msan, kLogError, "[ERROR] %s(%d):%s:%s .\r\n", fileName(where_), where_.line, where_.function,
               what);
  }
  Where where_;
  DbConnection connection_;
  mco_trans_h handle_ = nullptr;
};

// A table of one row with one number.
template <class Row>
struct Single {
  int (*cursor)(mco_trans_h, mco_cursor_t*);
  int (*from)(mco_trans_h, const mco_cursor_t*, Row*);
  int (*create)(mco_trans_h, Row*);
  int (*get)(Row*, u16*);
  int (*put)(Row*, u16);
};
constexpr Single<NgnProtocolType> protocolType{NgnProtocolType_list_cursor, NgnProtocolType_from_cursor,
                                               NgnProtocolType_new, NgnProtocolType_type_get, NgnProtocolType_type_put};
constexpr Single<VoiceSelfSwitch> selfSwitch{VoiceSelfSwitch_list_cursor, VoiceSelfSwitch_from_cursor,
                                             VoiceSelfSwitch_new, VoiceSelfSwitch_selfSwitch_get,
                                             VoiceSelfSwitch_selfSwitch_put};

template <class Row>
int read(const Single<Row>& table, u16* value, Where where) {
  if (value == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "[ERROR] %s(%d):%s:configuration para is NULL .\r\n", fileName(where),
               where.line, where.function);
    return -1;
  }
  OwnTransaction transaction(Access::read, where);
  if (!transaction) return kStoreFailed;
  mco_cursor_t cursor;
  Row row;
  if (table.cursor(transaction, &cursor) != 0 || table.from(transaction, &cursor, &row) != 0) return kStoreFailed;
  table.get(&row, value);
  return transaction.commit();
}

template <class Row>
int write(const Single<Row>& table, u16 value, Where where) {
  OwnTransaction transaction(Access::write, where);
  if (!transaction) return kStoreFailed;
  mco_cursor_t cursor;
  Row row;
  int code = table.cursor(transaction, &cursor);
  if (code == DB_END) {
    code = table.create(transaction, &row);
  } else if (code == 0) {
    code = table.from(transaction, &cursor, &row);
  }
  if (code != 0) return kStoreFailed;
  table.put(&row, value);
  return transaction.commit();
}

}  // namespace

int db_get_ngn_protocol_type(u16* type) { return read(protocolType, type, Where::here()); }
int db_set_ngn_protocol_type(u16 type) { return write(protocolType, type, Where::here()); }
int db_get_voice_self_switch(u16* value) { return read(selfSwitch, value, Where::here()); }
int db_set_voice_self_switch(u16 value) { return write(selfSwitch, value, Where::here()); }
