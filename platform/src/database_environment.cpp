// The LMDB environment, and the transaction objects that wait for their next use.

#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "database_store.h"
#include "host/database.h"

namespace store {

namespace {

constexpr u32 kMapBytes = 256U << 20;
constexpr u32 kReaders = 256;

MDB_env* env = nullptr;
MDB_dbi dbi = 0;
u64 lastRowNumber = 0;  // guarded by LMDB's lock of the one that writes

struct Pool {
  std::mutex mutex;
  std::vector<std::unique_ptr<DbTransactionData>> all;
  std::vector<DbTransactionData*> unused;
  std::atomic<u32> open{0};
};

Pool& pool() {
  static Pool& forTheProcess = *new Pool;
  return forTheProcess;
}

void require(int result, const char* what) {
  if (result != 0) throw std::runtime_error(std::string("database: ") + what + ": " + mdb_strerror(result));
}

void requireNoTransaction() {
  if (pool().open != 0) throw std::runtime_error("database: a transaction is open");
}

// In a file without a name: a crash leaves nothing, and each start finds it empty.
MDB_env* openEnvironment() {
  const char* base = std::getenv("TMPDIR");
  std::string directory = std::string(base != nullptr && *base != 0 ? base : "/tmp") + "/msan-db-XXXXXX";
  if (mkdtemp(directory.data()) == nullptr) require(errno, directory.c_str());
  const std::string file = directory + "/data";
  MDB_env* opened = nullptr;
  int result = mdb_env_create(&opened);
  if (result == 0) result = mdb_env_set_mapsize(opened, kMapBytes);
  if (result == 0) result = mdb_env_set_maxreaders(opened, kReaders);
  if (result == 0) result = mdb_env_open(opened, file.c_str(), MDB_NOSUBDIR | MDB_NOTLS | MDB_NOSYNC, 0600);
  unlink(file.c_str());
  unlink((file + "-lock").c_str());
  rmdir(directory.c_str());
  if (result != 0) mdb_env_close(opened);
  require(result, file.c_str());
  return opened;
}

void emptyKeySpace() {
  struct Own {
    MDB_txn* txn = nullptr;
    Own() { require(mdb_txn_begin(env, nullptr, 0, &txn), "begin"); }
    ~Own() { mdb_txn_abort(txn); }
  } own;
  require(mdb_dbi_open(own.txn, nullptr, 0, &dbi), "open");
  require(mdb_drop(own.txn, dbi, 0), "empty");
  require(mdb_txn_commit(std::exchange(own.txn, nullptr)), "commit");
}

}  // namespace

MDB_env* environment() { return env; }
MDB_dbi keySpace() { return dbi; }
u64 nextRowNumber() { return ++lastRowNumber; }

DbTransactionData* take() {
  Pool& p = pool();
  const std::lock_guard lock(p.mutex);
  if (p.unused.empty()) {
    p.all.push_back(std::make_unique<DbTransactionData>());
    p.unused.push_back(p.all.back().get());
  }
  DbTransactionData* taken = p.unused.back();
  p.unused.pop_back();
  ++p.open;
  return taken;
}

void giveBack(DbTransactionData* transaction) {
  Pool& p = pool();
  const std::lock_guard lock(p.mutex);
  p.unused.push_back(transaction);
  --p.open;
}

}  // namespace store

namespace host {

void resetDatabase() {
  store::requireNoTransaction();
  if (store::env == nullptr) store::env = store::openEnvironment();
  store::emptyKeySpace();
  store::lastRowNumber = 0;
  store::forgetHandlers();
}

u64 databaseChanges() {
  MDB_envinfo info{};
  if (store::env == nullptr || mdb_env_info(store::env, &info) != 0) return 0;
  return info.me_last_txnid;
}

DatabaseSize databaseSize() {
  DatabaseSize size;
  MDB_envinfo info{};
  MDB_stat main{};
  MDB_txn* txn = nullptr;
  if (store::env == nullptr || mdb_env_info(store::env, &info) != 0) return size;
  size.limit = info.me_mapsize;
  if (mdb_txn_begin(store::env, nullptr, MDB_RDONLY, &txn) != 0) return size;
  if (mdb_stat(txn, store::dbi, &main) == 0) {
    size.entries = main.ms_entries;
    size.used = (main.ms_branch_pages + main.ms_leaf_pages + main.ms_overflow_pages) * u64{main.ms_psize};
  }
  mdb_txn_abort(txn);
  return size;
}

void limitDatabase(u32 bytes) {
  store::requireNoTransaction();
  if (store::env == nullptr) throw std::runtime_error("database: not opened");
  store::require(mdb_env_set_mapsize(store::env, bytes == 0 ? store::kMapBytes : bytes), "limit");
}

u32 openTransactions() { return store::pool().open; }

}  // namespace host
