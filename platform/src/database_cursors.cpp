// Cursors: a place in a tree of the store, kept as the key of its entry.

#include <algorithm>
#include <cstring>

#include "database_store.h"

namespace {

bool startsWith(const MDB_val& name, const u8* bytes, u32 length) {
  return name.mv_size >= length && std::memcmp(name.mv_data, bytes, length) == 0;
}

bool isAt(const MDB_val& name, const mco_cursor_t& cursor) {
  return name.mv_size == cursor.length && startsWith(name, cursor.place, cursor.length);
}

bool isInTree(const MDB_val& name, const mco_cursor_t& cursor) {
  return startsWith(name, store::EntryKey(*cursor.table, cursor.tree).bytes(), store::kTreeBytes);
}

// LMDB's cursor of the transaction.
int openCursor(DbTransactionData& t) {
  if (t.cursor != nullptr) return DB_OK;
  int result = 0;
  if (t.writes) {
    result = mdb_cursor_open(t.txn, store::keySpace(), &t.cursor);
  } else {
    result = t.readerCursor != nullptr ? mdb_cursor_renew(t.txn, t.readerCursor)
                                       : mdb_cursor_open(t.txn, store::keySpace(), &t.readerCursor);
    t.cursor = result == 0 ? t.readerCursor : nullptr;
  }
  return result == 0 ? int{DB_OK} : store::codeOf(t, result);
}

// Moves LMDB's cursor; DB_END when there is nothing.
int move(DbTransactionData& t, MDB_cursor_op op, MDB_val& name, MDB_val& value) {
  const int result = mdb_cursor_get(t.cursor, &name, &value, op);
  t.cursorPlaced = result == 0;
  if (result == 0) return DB_OK;
  return result == MDB_NOTFOUND ? int{DB_END} : store::codeOf(t, result);
}

// Moves it to the first entry that isn't ahead of the key.
int seek(DbTransactionData& t, const u8* bytes, u32 length, MDB_val& name, MDB_val& value) {
  name = {length, const_cast<u8*>(bytes)};
  return move(t, MDB_SET_RANGE, name, value);
}

// Takes the entry as the cursor's place, if it is one of its tree.
int settleAt(mco_cursor_t& cursor, const MDB_val& name, const MDB_val& value) {
  if (!isInTree(name, cursor)) return DB_END;
  cursor.length = static_cast<u32>(name.mv_size);
  std::memcpy(cursor.place, name.mv_data, cursor.length);
  if (cursor.tree != 0) {
    cursor.row = store::numberIn(value);
    return DB_OK;
  }
  cursor.row = 0;
  for (u32 i = store::kTreeBytes; i < cursor.length; ++i) cursor.row = cursor.row << 8 | cursor.place[i];
  return DB_OK;
}

int checkCursor(mco_trans_h t, const mco_cursor_t* cursor) {
  if (cursor == nullptr) return DB_BAD_ARGUMENT;
  if (const int code = store::check(t)) return code;
  return cursor->transaction == t && cursor->serial == t->serial ? DB_OK : DB_BAD_HANDLE;
}

// Makes the transaction ready for a move: what it has put is seen by it.
int prepare(mco_trans_h t, const mco_cursor_t* cursor) {
  if (const int code = checkCursor(t, cursor)) return code;
  if (const int code = store::settle(*t)) return code;
  return openCursor(*t);
}

int moveToFirst(DbTransactionData& t, mco_cursor_t& cursor) {
  const store::EntryKey tree(*cursor.table, cursor.tree);
  MDB_val name;
  MDB_val value;
  if (const int code = seek(t, tree.bytes(), tree.length(), name, value)) return code;
  return settleAt(cursor, name, value);
}

int openAtFirst(mco_trans_h t, const DbTable* table, u32 tree, mco_cursor_t* cursor) {
  if (table == nullptr || cursor == nullptr || tree > table->indexes.size()) return DB_BAD_ARGUMENT;
  if (const int code = store::check(t)) return code;
  cursor->transaction = t;
  cursor->serial = t->serial;
  cursor->tree = tree;
  cursor->table = table;
  cursor->row = 0;
  cursor->length = 0;
  if (const int code = prepare(t, cursor)) return code;
  return moveToFirst(*t, *cursor);
}

// Whether LMDB's cursor still stands where this one does, so that a step is enough.
bool standsAt(DbTransactionData& t, const mco_cursor_t& cursor) {
  MDB_val name;
  MDB_val value;
  return t.cursorPlaced && mdb_cursor_get(t.cursor, &name, &value, MDB_GET_CURRENT) == 0 && isAt(name, cursor);
}

// The checks that search and compare share.
int checkIndex(const DbTable* table, u32 index, const mco_cursor_t* cursor) {
  return cursor->table == table && cursor->tree == 1 + index ? DB_OK : DB_BAD_ARGUMENT;
}

}  // namespace

int dbIndexCursor(mco_trans_h t, const DbTable* table, u32 index, mco_cursor_t* cursor) {
  return openAtFirst(t, table, 1 + index, cursor);
}

int dbListCursor(mco_trans_h t, const DbTable* table, mco_cursor_t* cursor) { return openAtFirst(t, table, 0, cursor); }

int mco_cursor_first(mco_trans_h t, mco_cursor_t* cursor) {
  if (const int code = prepare(t, cursor)) return code;
  return moveToFirst(*t, *cursor);
}

int mco_cursor_next(mco_trans_h t, mco_cursor_t* cursor) {
  if (const int code = prepare(t, cursor)) return code;
  if (cursor->row == 0) return DB_END;
  MDB_val name;
  MDB_val value;
  int code = DB_OK;
  if (standsAt(*t, *cursor)) {
    code = move(*t, MDB_NEXT, name, value);
  } else {
    code = seek(*t, cursor->place, cursor->length, name, value);
    if (code == DB_OK && isAt(name, *cursor)) code = move(*t, MDB_NEXT, name, value);
  }
  return code == DB_OK ? settleAt(*cursor, name, value) : code;
}

int mco_cursor_prev(mco_trans_h t, mco_cursor_t* cursor) {
  if (const int code = prepare(t, cursor)) return code;
  if (cursor->row == 0) return DB_END;
  MDB_val name;
  MDB_val value;
  int code = seek(*t, cursor->place, cursor->length, name, value);
  if (code != DB_OK && code != DB_END) return code;
  code = move(*t, code == DB_OK ? MDB_PREV : MDB_LAST, name, value);
  return code == DB_OK ? settleAt(*cursor, name, value) : code;
}

int dbSearch(mco_trans_h t, const DbTable* table, u32 index, mco_cursor_t* cursor, int op, const DbKey& key) {
  if (const int code = prepare(t, cursor)) return code;
  if (const int code = checkIndex(table, index, cursor)) return code;
  if (op != DB_EQUAL) return DB_BAD_ARGUMENT;
  store::EntryKey entry(*table, 1 + index);
  entry.add(key);
  MDB_val name;
  MDB_val value;
  const int code = seek(*t, entry.bytes(), entry.length(), name, value);
  if (code == DB_END) return DB_NOT_FOUND;
  if (code != DB_OK) return code;
  return startsWith(name, entry.bytes(), entry.length()) ? settleAt(*cursor, name, value) : int{DB_NOT_FOUND};
}

int dbCompare(mco_trans_h t, const DbTable* table, u32 index, const mco_cursor_t* cursor, const DbKey& key,
              int* result) {
  if (const int code = checkCursor(t, cursor)) return code;
  if (const int code = checkIndex(table, index, cursor)) return code;
  if (result == nullptr) return DB_BAD_ARGUMENT;
  if (cursor->row == 0) return DB_END;
  // All keys of an index are of one length; what a shared key has behind it is no part of it.
  *result = std::memcmp(cursor->place + store::kTreeBytes, key.bytes, key.length);
  return DB_OK;
}

int dbFromCursor(mco_trans_h t, const DbTable* table, const mco_cursor_t* cursor, DbRow* row) {
  if (const int code = checkCursor(t, cursor)) return code;
  if (cursor->table != table || row == nullptr) return DB_BAD_ARGUMENT;
  if (cursor->row == 0) return DB_END;
  return store::hold(*t, *table, cursor->row, *row);
}
