#pragma once
// The configuration database: rows in tables, reached by navigation.
//
// The typed functions of a table T (T_new, T_delete, T_f_get, T_f_put, T_i_find, T_i_index_cursor, T_i_search,
// T_i_compare, T_list_cursor, T_from_cursor) are generated from platform/schema into "platform/tables.h"; they are thin
// names for the operations on rows at the end of this header.
//
// A transaction is begun, used and ended on one thread. A thread holds at most one read-write transaction: a second one
// is refused. A transaction sees what it has written itself. Rows and cursors belong to their transaction; behind its
// end they are refused.

#include <type_traits>

#include "platform/types.h"

struct DbConnectionData;
using DbConnection = DbConnectionData*;
struct DbTransactionData;
using mco_trans_h = DbTransactionData*;

// Result codes; other values are failures.
enum DbCode : int {
  DB_OK = 0,
  DB_NOT_FOUND = 10,
  DB_END = 12,         // a cursor over nothing, or moved past either end
  DB_NOT_UNIQUE = 20,  // two rows with one key; told by the commit
  DB_BAD_ARGUMENT = 21,
  DB_BAD_HANDLE = 22,  // a row, cursor or transaction that is no more
  DB_BUSY = 23,        // the thread already writes
  DB_READS_ONLY = 24,  // a write in a transaction that only reads
  DB_FULL = 25,
  DB_BROKEN = 26,
  DB_FAULT = 66
};

// A connection; null when none is free.
DbConnection dbCommon_getConnectRes();
DbConnection dbCommon_getConnectResForModId(i32 module);
void dbCommon_freeConnectRes(DbConnection connection);

enum DbMode { DB_READ_ONLY = 0, DB_READ_WRITE = 2 };

// Opens a transaction. File, line and function name the owner. 0 on success.
int mco_trans_start_(DbConnection connection, int mode, int, mco_trans_h* transaction, const char* file, int line,
                     const char* function);
// Ends it, whatever the result; after a failure nothing of it is stored.
int mco_trans_commit(mco_trans_h transaction);
int mco_trans_rollback(mco_trans_h transaction);

// The text of a result code.
const char* mco_ret_string(int code, int);

// Asks the platform to bring its check value of a slot's configuration up to date. Slot 9: the whole node. Origin: 0
// the module itself, 1 SNMP, 3 command line.
void trigger_obj_crc(u16 slot, int, int, u16 id, int origin);

// The layout of a table; "platform/tables.h" declares one for each.
struct DbTable;

// A row that a transaction holds. The handle type of each table consists of one.
struct DbRow {
  mco_trans_h transaction = nullptr;
  u32 serial = 0;  // the transaction's
  u32 place = 0;   // among the rows that the transaction holds
};

enum : u32 { kDbKeyBytes = 128, kDbPlaceBytes = kDbKeyBytes + 16 };

// The fields of an index in its order, as bytes that sort as the fields do.
struct DbKey {
  u32 length = 0;
  u8 bytes[kDbKeyBytes];

  template <class Number>
  void add(Number value);
  // Bytes of a field: padded with zeros, or cut, to its width.
  void addBytes(const void* value, u32 size, u32 width);
};

// A place in a table: at a row, in the order of an index or in that of creation. It may be copied, and stays good when
// the row at it is deleted or its key changed: it goes on from where the row stood. Moved past an end it stays.
struct mco_cursor_t {
  mco_trans_h transaction = nullptr;
  u32 serial = 0;
  u32 tree = 0;  // 0: creation, else the index, from 1
  const DbTable* table = nullptr;
  u64 row = 0;  // 0: at none
  u32 length = 0;
  u8 place[kDbPlaceBytes];
};

// Move a cursor to the first, next and previous row; DB_END where there is none.
int mco_cursor_first(mco_trans_h transaction, mco_cursor_t* cursor);
int mco_cursor_next(mco_trans_h transaction, mco_cursor_t* cursor);
int mco_cursor_prev(mco_trans_h transaction, mco_cursor_t* cursor);

// How T_i_search places a cursor: at the first row with this key. No such row: DB_NOT_FOUND, the cursor stays.
enum DbOperator { DB_EQUAL = 3 };

// What the generated functions call. Null pointers are refused.
int dbNew(mco_trans_h transaction, const DbTable* table, DbRow* row);
int dbDelete(DbRow* row);
// A value of `size` bytes from and to a field of `width`. The longer one of the two is filled up with zeros.
int dbGet(const DbRow* row, u32 offset, u32 width, void* value, u32 size);
int dbPut(DbRow* row, u32 offset, u32 width, const void* value, u32 size);
int dbFind(mco_trans_h transaction, const DbTable* table, u32 index, const DbKey& key, DbRow* row);
// Cursors at the first row; DB_END when the table is empty.
int dbIndexCursor(mco_trans_h transaction, const DbTable* table, u32 index, mco_cursor_t* cursor);
int dbListCursor(mco_trans_h transaction, const DbTable* table, mco_cursor_t* cursor);
int dbSearch(mco_trans_h transaction, const DbTable* table, u32 index, mco_cursor_t* cursor, int op, const DbKey& key);
// Result: negative when the key at the cursor comes ahead of the given one, 0 when they are equal, else positive.
int dbCompare(mco_trans_h transaction, const DbTable* table, u32 index, const mco_cursor_t* cursor, const DbKey& key,
              int* result);
// DB_NOT_FOUND when the row at the cursor has been deleted.
int dbFromCursor(mco_trans_h transaction, const DbTable* table, const mco_cursor_t* cursor, DbRow* row);

// Update handlers. `call` calls a handler as what it is. A registration holds from the commit of its transaction on;
// a null handler is none, and gives 0. A handler runs inside a committing transaction, ahead of the commit, once for
// each row whose field was put. It may use the transaction but not end it; what it returns is not evaluated.
using DbHandler = void();
using DbCallHandler = int(DbHandler* handler, mco_trans_h transaction, const DbRow& row);
int dbRegisterHandler(mco_trans_h transaction, const DbTable* table, u32 event, DbHandler* handler,
                      DbCallHandler* call);
int dbUnregisterHandler(mco_trans_h transaction, const DbTable* table, u32 event, DbHandler* handler);

template <class Number>
void DbKey::add(Number value) {
  const u32 signBit = std::is_signed_v<Number> ? 1U << (8 * sizeof value - 1) : 0;  // negative ones sort first
  const u32 number = static_cast<u32>(value) ^ signBit;
  for (u32 shift = 8 * sizeof value; shift != 0; shift -= 8) bytes[length++] = static_cast<u8>(number >> (shift - 8));
}

inline void DbKey::addBytes(const void* value, u32 size, u32 width) {
  const u8* from = static_cast<const u8*>(value);
  for (u32 i = 0; i < width; ++i) bytes[length++] = i < size ? from[i] : u8{0};
}
