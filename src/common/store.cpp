#include "common/store.h"

#include "common/debug_control.h"
#include "common/msan_init.h"
#include "platform/log.h"

DbConnection ownConnection() { return dbCommon_getConnectResForModId(gModuleId_Msan); }

Transaction::Transaction(Access access, Where where, DbConnection connection) : where_(where), connection_(connection) {
  if (connection_ == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: get connect resource failed! \r\n", FunctionName(where).text);
    return;
  }
  const int code = mco_trans_start_(connection_, static_cast<int>(access), 0, &handle_, where.file, where.line,
                                    FunctionName(where).text);
  if (code != 0) {
    fail("mco_trans_start failed", code);
    handle_ = nullptr;
  }
}

Transaction::~Transaction() {
  if (handle_ != nullptr) mco_trans_rollback(handle_);
  if (connection_ != nullptr) dbCommon_freeConnectRes(connection_);
}

int Transaction::commit() {
  const int code = mco_trans_commit(std::exchange(handle_, nullptr));
  if (code == 0) return 0;
  fail("Transaction commit failed", code);
  return kStoreFailed;
}

void Transaction::fail(const char* what, int code) const {
  ulogPrintf(gModuleId_Msan, kLogError, "%s: %s, Return Code %d: %s.\r\n", FunctionName(where_).text, what, code,
             mco_ret_string(code, 0));
}

void logFind(Where where, const char* table, const char* index, int code, const char* head) {
  if (!debugOn(Area::voice)) return;
  ulogPrintf(gModuleId_Msan, kLogDebug, "%s%s: %s_%s_find failed. rc = %d.\r\n", head, FunctionName(where).text, table,
             index, code);
}

void logRead(Where where, int code) {
  if (!debugOn(Area::voice)) return;
  ulogPrintf(gModuleId_Msan, kLogDebug, "%s: Return Code %d: %s.\r\n", FunctionName(where).text, code,
             mco_ret_string(code, 0));
}

void logNew(Where where, const char* table, int code, const char* head) {
  ulogPrintf(gModuleId_Msan, kLogError, "%s%s: %s_new failed. rc = %d.\r\n", head, FunctionName(where).text, table,
             code);
}
