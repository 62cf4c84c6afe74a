// Connections and transactions.

#include "platform/database.h"

#include <array>
#include <atomic>

#include "constants.h"
#include "database_store.h"
#include "host/database.h"
#include "host/faults.h"
#include "host/log.h"

struct DbConnectionData {
  std::atomic<bool> taken{false};
};

namespace {

std::array<DbConnectionData, 64> connections;
DbConnectionData ownConnection{true};

// The transaction in which this thread writes. LMDB would wait for ever for a second one.
thread_local DbTransactionData* writing = nullptr;

// Its address tells one thread from another.
thread_local char thisThread = 0;

thread_local u32 failures = 0;

bool isOfPool(const DbConnectionData* connection) {
  return connection >= connections.data() && connection < connections.data() + connections.size();
}

bool isUsable(const DbConnectionData* connection) {
  return (isOfPool(connection) || connection == &ownConnection) && connection->taken;
}

int beginReading(DbTransactionData& t) {
  const int result = t.reader != nullptr ? mdb_txn_renew(t.reader)
                                         : mdb_txn_begin(store::environment(), nullptr, MDB_RDONLY, &t.reader);
  t.txn = t.reader;
  return result;
}

int beginWriting(DbTransactionData& t) {
  const int result = mdb_txn_begin(store::environment(), nullptr, 0, &t.txn);
  if (result != 0) return result;
  writing = &t;
  t.placeOfNumber.emplace(&t.memory);
  return 0;
}

// Leaves nothing of the use that ends but the memory for the next.
void finish(DbTransactionData& t) {
  if (t.writes)
    writing = nullptr;
  else
    mdb_txn_reset(t.reader);
  ++t.serial;
  t.isOpen = t.cursorPlaced = t.anyWatched = false;
  t.txn = nullptr;
  t.cursor = nullptr;
  t.rows.clear();
  t.dirty.clear();
  t.registrations.clear();
  t.placeOfNumber.reset();
  t.memory.release();
  store::giveBack(&t);
}

// Whether the transaction can be ended here and now.
int checkEnd(mco_trans_h t) {
  if (t == nullptr || !t->isOpen) {
    host::platformError("database: the end of a transaction that is not open");
    return DB_BAD_HANDLE;
  }
  if (t->thread == &thisThread && !t->committing) return DB_OK;
  host::platformError("database: the transaction of %s (%s:%d) is ended by %s; refused", t->function, t->file, t->line,
                      t->committing ? "its own update handler" : "another thread");
  return DB_BUSY;
}

int writeAll(DbTransactionData& t) {
  t.committing = true;
  store::callHandlers(t);
  t.committing = false;
  bool all = true;
  const int code = store::writeDirty(t, all);
  if (code != DB_OK) return code;
  return all ? DB_OK : DB_NOT_UNIQUE;
}

int commitWrites(DbTransactionData& t) {
  if (const int code = writeAll(t)) {
    mdb_txn_abort(t.txn);
    return code;
  }
  const int code = store::codeOf(t, mdb_txn_commit(t.txn));
  if (code == DB_OK) store::applyRegistrations(t.registrations);
  return code;
}

}  // namespace

void store::countFailure() { ++failures; }

int store::check(mco_trans_h t) {
  if (t == nullptr || !t->isOpen || t->thread != &thisThread) return DB_BAD_HANDLE;
  return t->failure;
}

int store::begin(bool writes, mco_trans_h* transaction, const char* file, int line, const char* function) {
  if (store::environment() == nullptr) return DB_BROKEN;
  DbTransactionData* t = store::take();
  t->writes = writes;
  t->failure = DB_OK;
  t->thread = &thisThread;
  t->file = file;
  t->line = line;
  t->function = function;
  if (const int result = writes ? beginWriting(*t) : beginReading(*t)) {
    store::countFailure();
    host::platformError("database: no transaction for %s: %s", function, mdb_strerror(result));
    store::giveBack(t);
    return DB_BROKEN;
  }
  t->isOpen = true;
  *transaction = t;
  return DB_OK;
}

DbConnection dbCommon_getConnectRes() {
  const bool any = !host::faultDue(host::Fault::connect) && store::environment() != nullptr;
  for (DbConnectionData& connection : connections)
    if (any && !connection.taken.load(std::memory_order_relaxed) && !connection.taken.exchange(true))
      return &connection;
  store::countFailure();
  return nullptr;
}

DbConnection dbCommon_getConnectResForModId(i32) { return dbCommon_getConnectRes(); }

void dbCommon_freeConnectRes(DbConnection connection) {
  if (!isOfPool(connection) || !connection->taken.exchange(false))
    host::platformError("database: a connection is given back that nobody has");
}

int mco_trans_start_(DbConnection connection, int mode, int constant, mco_trans_h* transaction, const char* file,
                     int line, const char* function) {
  if (!isUsable(connection) || transaction == nullptr || (mode != DB_READ_ONLY && mode != DB_READ_WRITE) ||
      host::constantsDiffer(__func__, 0, {constant}))
    return DB_BAD_ARGUMENT;
  if (host::faultDue(host::Fault::start)) {
    store::countFailure();
    return DB_FAULT;
  }
  if (mode == DB_READ_WRITE && writing != nullptr) {
    host::platformError("database: %s (%s:%d) begins to write while %s (%s:%d) writes on the same thread; refused",
                        function, file, line, writing->function, writing->file, writing->line);
    return DB_BUSY;
  }
  return store::begin(mode == DB_READ_WRITE, transaction, file, line, function);
}

int mco_trans_commit(mco_trans_h t) {
  if (const int code = checkEnd(t)) return code;
  int code = host::faultDue(host::Fault::commit) ? int{DB_FAULT} : t->failure;
  if (t->writes && code == DB_OK)
    code = commitWrites(*t);
  else if (t->writes)
    mdb_txn_abort(t->txn);
  finish(*t);
  return code;
}

int mco_trans_rollback(mco_trans_h t) {
  if (const int code = checkEnd(t)) return code;
  if (t->writes) mdb_txn_abort(t->txn);
  finish(*t);
  return DB_OK;
}

const char* mco_ret_string(int code, int constant) {
  if (host::constantsDiffer(__func__, 0, {constant})) return "";
  switch (code) {
    case DB_OK:
      return "success";
    case DB_NOT_FOUND:
      return "not found";
    case DB_END:
      return "no row there";
    case DB_NOT_UNIQUE:
      return "key in use";
    case DB_BAD_ARGUMENT:
      return "bad argument";
    case DB_BAD_HANDLE:
      return "stale handle";
    case DB_BUSY:
      return "the thread already writes";
    case DB_READS_ONLY:
      return "read-only transaction";
    case DB_FULL:
      return "database full";
    case DB_BROKEN:
      return "database broken";
    case DB_FAULT:
      return "fault";
    default:
      return "unknown code";
  }
}

namespace host {

u32 openConnections() {
  u32 count = 0;
  for (const DbConnectionData& connection : connections) count += connection.taken ? 1 : 0;
  return count;
}

u32 databaseFailures() { return failures; }

DbConnection eventConnection() { return &ownConnection; }

}  // namespace host
