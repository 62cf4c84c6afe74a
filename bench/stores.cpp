// What the requests cannot do without: the transactions of the node's database that they need, and under those the
// storage library by itself.

#include <benchmark/benchmark.h>
#include <lmdb.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "bench_node.h"
#include "platform/tables.h"

namespace {

// The same calls as the module's for a SET.
bool writeRow(u16 mode) {
  const DbConnection connection = dbCommon_getConnectRes();
  mco_trans_h transaction = nullptr;
  CIDMODEdb row;
  const bool good = mco_trans_start_(connection, DB_READ_WRITE, 0, &transaction, __FILE__, __LINE__, __func__) == 0 &&
                    CIDMODEdb_treeIdx_find(transaction, 0, &row) == 0 && CIDMODEdb_CIDMode_put(&row, mode) == 0 &&
                    mco_trans_commit(transaction) == 0;
  dbCommon_freeConnectRes(connection);
  return good;
}

bool readRow(u16* mode) {
  const DbConnection connection = dbCommon_getConnectRes();
  mco_trans_h transaction = nullptr;
  CIDMODEdb row;
  const bool good = mco_trans_start_(connection, DB_READ_ONLY, 0, &transaction, __FILE__, __LINE__, __func__) == 0 &&
                    CIDMODEdb_treeIdx_find(transaction, 0, &row) == 0 && CIDMODEdb_CIDMode_get(&row, mode) == 0 &&
                    mco_trans_commit(transaction) == 0;
  dbCommon_freeConnectRes(connection);
  return good;
}

void writeTransaction(benchmark::State& state) {
  benchNode();
  u16 mode = 1;
  for (auto _ : state) {
    mode ^= 3;
    if (!writeRow(mode)) state.SkipWithError("the transaction failed");
  }
}

void readTransaction(benchmark::State& state) {
  benchNode();
  u16 mode = 0;
  for (auto _ : state)
    if (!readRow(&mode)) state.SkipWithError("the transaction failed");
}

// A storage environment of its own, opened as the platform opens its own.
struct Storage {
  MDB_env* environment = nullptr;
  MDB_dbi table = 0;

  Storage() {
    std::string folder = std::filesystem::temp_directory_path() / "msan-bench-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no temporary folder");
    check(mdb_env_create(&environment));
    check(mdb_env_open(environment, (folder + "/data").c_str(), MDB_NOSUBDIR | MDB_NOTLS | MDB_NOSYNC, 0600));
    std::filesystem::remove_all(folder);
  }
  ~Storage() { mdb_env_close(environment); }
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;

  static void check(int code) {
    if (code != 0) throw std::runtime_error(mdb_strerror(code));
  }

  void put(u64 number, u16 mode) {
    u8 bytes[6] = {};  // the row: its key, the mode
    std::memcpy(bytes + 4, &mode, sizeof mode);
    MDB_val key{sizeof number, &number};
    MDB_val value{sizeof bytes, bytes};
    MDB_txn* transaction = nullptr;
    check(mdb_txn_begin(environment, nullptr, 0, &transaction));
    if (table == 0) check(mdb_dbi_open(transaction, nullptr, 0, &table));
    check(mdb_put(transaction, table, &key, &value, 0));
    check(mdb_txn_commit(transaction));
  }
};

void barePut(benchmark::State& state) {
  Storage storage;
  u16 mode = 1;
  for (auto _ : state) storage.put(1, mode ^= 3);
}

}  // namespace

BENCHMARK(writeTransaction)->Name("write transaction");
BENCHMARK(readTransaction)->Name("read transaction");
BENCHMARK(barePut)->Name("bare put");
