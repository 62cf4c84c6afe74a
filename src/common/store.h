#pragma once
// The way to the database: a transaction that ends by itself, and one-row tables.

#include <utility>

#include "common/record.h"
#include "common/trace.h"
#include "platform/database.h"

enum class Access { read = DB_READ_ONLY, write = DB_READ_WRITE };

inline constexpr int kStoreFailed = -900;

// A transaction on a connection of its own: rolled back unless committed, the connection given back always. What fails
// is logged here, in the name of `where`.
class Transaction {
 public:
  explicit Transaction(Access access, Where where = Where::here(), DbConnection connection = dbCommon_getConnectRes());
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  explicit operator bool() const { return handle_ != nullptr; }
  operator mco_trans_h() const { return handle_; }
  int commit();  // 0 or kStoreFailed

 private:
  void fail(const char* what, int code) const;
  Where where_;
  DbConnection connection_;
  mco_trans_h handle_ = nullptr;
};

// The functions of a table with one numeric key.
template <class Row>
struct Table {
  const char* name;
  const char* index;
  int (*find)(mco_trans_h, u32 key, Row*);
  int (*create)(mco_trans_h, Row*);
  int (*putKey)(Row*, u32 key);
  DbConnection (*connect)() = dbCommon_getConnectRes;
  const char* logHead = "";  // ahead of the lines of a find or new that failed
};

// A connection that is counted for the module.
DbConnection ownConnection();

// The lines of a find and of a new that failed. The first ones only while the voice area is traced.
void logFind(Where where, const char* table, const char* index, int code, const char* head = "");
void logRead(Where where, int code);
void logNew(Where where, const char* table, int code, const char* head = "");

// Writes the row of the key, which is created if needed. 0 or kStoreFailed; then nothing is stored.
template <class Row>
int storeRow(const Table<Row>& table, Fields fields, const void* record, u32 key, Where where = Where::here()) {
  if (record == nullptr) {
    printTrace(where, "configuration para is NULL");
    return -1;
  }
  Transaction transaction(Access::write, where, table.connect());
  if (!transaction) return kStoreFailed;
  Row row;
  int code = table.find(transaction, key, &row);
  if (code == DB_NOT_FOUND) {
    code = table.create(transaction, &row);
    if (code == 0) {
      table.putKey(&row, key);
    } else {
      logNew(where, table.name, code, table.logHead);
    }
  } else if (code != 0) {
    logFind(where, table.name, table.index, code, table.logHead);
  }
  if (code != 0) return kStoreFailed;
  for (const Field& field : fields) field.put(&row, storedValue(field, record));
  return transaction.commit();
}

// Reads the row of the key. 0 or kStoreFailed; then the record is as it was.
template <class Row>
int loadRow(const Table<Row>& table, Fields fields, void* record, u32 key, Where where = Where::here()) {
  if (record == nullptr) {
    printTrace(where, "configuration para is NULL");
    return -1;
  }
  Transaction transaction(Access::read, where, table.connect());
  if (!transaction) return kStoreFailed;
  Row row;
  if (const int code = table.find(transaction, key, &row)) {
    logRead(where, code);
    return kStoreFailed;
  }
  for (const Field& field : fields) field.get(&row, field.at(record));
  return transaction.commit();
}

// The functions of a table whose rows are moved whole, as the structure of their columns.
template <class Row, class Columns>
struct WholeTable {
  const char* name;
  const char* index;
  int (*find)(mco_trans_h, u32 key, Row*);
  int (*create)(mco_trans_h, Row*);
  int (*put)(Row*, const Columns*);
  int (*get)(Row*, Columns*);
  int (*remove)(Row*) = nullptr;  // of one whose rows go again
};

// Writes the row of the key, which is created if needed; the key stands in the columns, too. 0 or kStoreFailed.
template <class Row, class Columns>
int storeWhole(const WholeTable<Row, Columns>& table, u32 key, const Columns& columns, Where where = Where::here()) {
  Transaction transaction(Access::write, where);
  if (!transaction) return kStoreFailed;
  Row row;
  int code = table.find(transaction, key, &row);
  if (code == DB_NOT_FOUND) {
    code = table.create(transaction, &row);
    if (code != 0) logNew(where, table.name, code);
  } else if (code != 0) {
    logFind(where, table.name, table.index, code);
  }
  if (code != 0) return kStoreFailed;
  table.put(&row, &columns);
  return transaction.commit();
}

// Reads the row of the key. 0 or kStoreFailed; then `columns` are as they were.
template <class Row, class Columns>
int loadWhole(const WholeTable<Row, Columns>& table, u32 key, Columns& columns, Where where = Where::here()) {
  Transaction transaction(Access::read, where);
  if (!transaction) return kStoreFailed;
  Row row;
  if (const int code = table.find(transaction, key, &row)) {
    logRead(where, code);
    return kStoreFailed;
  }
  table.get(&row, &columns);
  return transaction.commit();
}

// Removes the row of the key, if there is one. 0 or kStoreFailed.
template <class Row, class Columns>
int removeWhole(const WholeTable<Row, Columns>& table, u32 key, Where where = Where::here()) {
  Transaction transaction(Access::write, where);
  if (!transaction) return kStoreFailed;
  Row row;
  const int code = table.find(transaction, key, &row);
  if (code == DB_NOT_FOUND) return 0;
  if (code != 0) {
    logFind(where, table.name, table.index, code);
    return kStoreFailed;
  }
  table.remove(&row);
  return transaction.commit();
}
