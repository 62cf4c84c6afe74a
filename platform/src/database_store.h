#pragma once
// The store behind the tables: one ordered space of keys in LMDB. Each key begins with the tag of a table and a tree:
//
//   tag 0   row number                   -> the row
//   tag 1+i key of index i               -> row number      where keys are unique
//   tag 1+i key of index i, row number   -> row number      where rows may share them
//
// Numbers in keys are big-endian, so that keys sort as they do. Row numbers go up and are never given twice: they are
// the order of creation.
//
// A transaction that writes works on copies of its rows. The fields of a row are put one by one, those of its keys
// too, so what was put goes to the store late: ahead of what looks rows up, and at the commit.

#include <lmdb.h>

#include <array>
#include <cstddef>
#include <memory_resource>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/table_layout.h"

// An update handler that comes or goes.
struct Registration {
  const DbTable* table;
  u32 event;
  DbHandler* handler;
  DbCallHandler* call;  // null: it goes
};

// A row in a transaction.
struct HeldRow {
  const DbTable* table;
  u64 number;
  u8* data;              // a copy; in a transaction that only reads the store's own, not to be written
  u8* stored = nullptr;  // as it is in the store; only in a transaction that writes
  u32 linked = 0;        // a bit for each index that has an entry: for the key in `stored`
  u32 watched = 0;       // a bit for each event whose field was put
  bool isStored = true;
  bool dirty = false;
  bool deleted = false;
};

struct DbTransactionData {
  bool isOpen = false;
  bool writes = false;
  bool committing = false;
  bool anyWatched = false;
  u32 serial = 0;   // of its present use
  int failure = 0;  // the first failed write; what follows is refused, and so is the commit
  const void* thread = nullptr;
  const char* file = "";
  int line = 0;
  const char* function = "";

  MDB_txn* txn = nullptr;        // while it is open
  MDB_cursor* cursor = nullptr;  // the one that all cursors share
  bool cursorPlaced = false;     // at an entry, with nothing written since
  MDB_txn* reader = nullptr;     // the two are kept for the next use
  MDB_cursor* readerCursor = nullptr;

  std::array<std::byte, 8192> room;
  std::pmr::monotonic_buffer_resource memory{room.data(), room.size()};  // of the rows, until the end
  std::vector<HeldRow> rows;
  std::vector<u32> dirty;                                          // places of rows
  std::optional<std::pmr::unordered_map<u64, u32>> placeOfNumber;  // where it writes: all handles share one copy
  std::vector<Registration> registrations;
};

namespace store {

constexpr u32 kTreeBytes = 5;  // tag and tree, at the head of every key

// The key of an entry.
class EntryKey {
 public:
  // The beginning of all keys of a tree.
  EntryKey(const DbTable& table, u32 tree);
  void addNumber(u64 number);
  void addBytes(const void* bytes, u32 length);
  void add(const DbKey& key) { addBytes(key.bytes, key.length); }
  // The fields of an index, out of a row.
  void addFields(const DbIndex& index, const u8* row);

  MDB_val value() { return {length_, bytes_}; }
  const u8* bytes() const { return bytes_; }
  u32 length() const { return length_; }

 private:
  u32 length_ = 0;
  u8 bytes_[kDbPlaceBytes];
};

// The environment, null until it is opened, and the key space in it.
MDB_env* environment();
MDB_dbi keySpace();
// A number for a new row. Only the transaction that writes may take one.
u64 nextRowNumber();

// A transaction object of the pool, and back. They live as long as the process, so that a stale handle can be told.
DbTransactionData* take();
void giveBack(DbTransactionData* transaction);

// Begins a transaction on behalf of nobody's connection. One that writes must be the thread's only one.
int begin(bool writes, mco_trans_h* transaction, const char* file, int line, const char* function);

// Whether the transaction may go on: 0, or the code to answer with.
int check(mco_trans_h transaction);
int checkWrites(mco_trans_h transaction);
// The code for a result of LMDB. A failure breaks a transaction that writes.
int codeOf(DbTransactionData& transaction, int result);

// One more for host::databaseFailures.
void countFailure();

// The row of a handle; null when it is no more.
HeldRow* heldRow(const DbRow* row);
// Takes a stored row up into the transaction. DB_NOT_FOUND if there is none of this number.
int hold(DbTransactionData& transaction, const DbTable& table, u64 number, DbRow& row);
// Writes what was put. Rows whose key another one has stay behind; false if there are any.
int writeDirty(DbTransactionData& transaction, bool& all);
// The same ahead of a look-up: a row that is still without its own key may stay behind.
int settle(DbTransactionData& transaction);
// The row number that an entry of an index holds.
u64 numberIn(const MDB_val& entry);

// Calls the handlers of the fields that were put.
void callHandlers(DbTransactionData& transaction);
void applyRegistrations(const std::vector<Registration>& registrations);
void forgetHandlers();

}  // namespace store
