// Rows of a transaction, and their way into the store.

#include <algorithm>
#include <cstring>

#include "database_store.h"
#include "host/faults.h"
#include "host/log.h"

namespace store {

EntryKey::EntryKey(const DbTable& table, u32 tree) {
  for (u32 shift = 32; shift != 0; shift -= 8) bytes_[length_++] = static_cast<u8>(table.tag >> (shift - 8));
  bytes_[length_++] = static_cast<u8>(tree);
}

void EntryKey::addNumber(u64 number) {
  for (u32 shift = 64; shift != 0; shift -= 8) bytes_[length_++] = static_cast<u8>(number >> (shift - 8));
}

void EntryKey::addBytes(const void* bytes, u32 length) {
  std::memcpy(bytes_ + length_, bytes, length);
  length_ += length;
}

namespace {

template <class Number>
Number numberAt(const u8* at) {
  Number number;
  std::memcpy(&number, at, sizeof number);
  return number;
}

void addField(DbKey& key, const DbField& field, const u8* row) {
  const u8* at = row + field.offset;
  const bool negative = field.kind == DbKind::signedNumber;
  if (field.kind == DbKind::text || field.kind == DbKind::bytes)
    key.addBytes(at, field.width, field.width);
  else if (field.width == 1)
    negative ? key.add(numberAt<i8>(at)) : key.add(numberAt<u8>(at));
  else if (field.width == 2)
    negative ? key.add(numberAt<i16>(at)) : key.add(numberAt<u16>(at));
  else
    negative ? key.add(numberAt<i32>(at)) : key.add(numberAt<u32>(at));
}

// The key of a row's own entry.
EntryKey rowKey(const HeldRow& row) {
  EntryKey key(*row.table, 0);
  key.addNumber(row.number);
  return key;
}

// The key of a row's entry in an index, for the fields as `fields` has them.
EntryKey indexKey(const HeldRow& row, u32 index, const u8* fields) {
  EntryKey key(*row.table, 1 + index);
  key.addFields(row.table->indexes[index], fields);
  if (!row.table->indexes[index].unique) key.addNumber(row.number);
  return key;
}

int putEntry(DbTransactionData& t, EntryKey key, const void* bytes, std::size_t length) {
  MDB_val name = key.value();
  MDB_val value{length, const_cast<void*>(bytes)};
  t.cursorPlaced = false;
  return codeOf(t, mdb_put(t.txn, keySpace(), &name, &value, 0));
}

int deleteEntry(DbTransactionData& t, EntryKey key) {
  MDB_val name = key.value();
  t.cursorPlaced = false;
  return codeOf(t, mdb_del(t.txn, keySpace(), &name, nullptr));
}

bool isLinked(const HeldRow& row, u32 index) { return (row.linked >> index & 1) != 0; }

// Takes the entries of the row out that its fields have left.
int unlinkChanged(DbTransactionData& t, HeldRow& row) {
  for (u32 i = 0; i < row.table->indexes.size(); ++i) {
    if (!isLinked(row, i)) continue;
    const EntryKey old = indexKey(row, i, row.stored);
    const EntryKey now = indexKey(row, i, row.data);
    if (std::equal(old.bytes(), old.bytes() + old.length(), now.bytes(), now.bytes() + now.length())) continue;
    if (const int code = deleteEntry(t, old)) return code;
    row.linked &= ~(1U << i);
  }
  return DB_OK;
}

// Whether another row has one of the keys that the row is about to take.
int findRival(DbTransactionData& t, const HeldRow& row, bool& rival) {
  rival = false;
  for (u32 i = 0; i < row.table->indexes.size() && !rival; ++i) {
    if (isLinked(row, i) || !row.table->indexes[i].unique) continue;
    EntryKey key = indexKey(row, i, row.data);
    MDB_val name = key.value();
    MDB_val value;
    const int result = mdb_get(t.txn, keySpace(), &name, &value);
    if (result == MDB_NOTFOUND) continue;
    if (result != 0) return codeOf(t, result);
    rival = true;
  }
  return DB_OK;
}

int writeRow(DbTransactionData& t, HeldRow& row) {
  for (u32 i = 0; i < row.table->indexes.size(); ++i) {
    if (isLinked(row, i)) continue;
    if (const int code = putEntry(t, indexKey(row, i, row.data), &row.number, sizeof row.number)) return code;
    row.linked |= 1U << i;
  }
  std::memcpy(row.stored, row.data, row.table->size);
  row.isStored = true;
  row.dirty = false;
  return putEntry(t, rowKey(row), row.data, row.table->size);
}

// A place for a row that the transaction writes, its fields still to be filled in.
HeldRow& addRow(DbTransactionData& t, const DbTable& table, u64 number) {
  u8* bytes = static_cast<u8*>(t.memory.allocate(2 * std::size_t{table.size}, 1));
  t.placeOfNumber->emplace(number, static_cast<u32>(t.rows.size()));
  t.rows.push_back({&table, number, bytes, bytes + table.size});
  return t.rows.back();
}

DbRow handleOf(DbTransactionData& t, u32 place) { return {&t, t.serial, place}; }
DbRow lastHandle(DbTransactionData& t) { return handleOf(t, static_cast<u32>(t.rows.size() - 1)); }

void markDirty(DbTransactionData& t, const DbRow& handle, HeldRow& row) {
  if (!row.dirty) t.dirty.push_back(handle.place);
  row.dirty = true;
}

// Notes which watched fields are among the bytes that were put.
void markWatched(DbTransactionData& t, HeldRow& row, u32 offset, u32 width) {
  for (u32 event = 0; event < row.table->watched.size(); ++event) {
    const u32 field = row.table->watched[event];
    if (field < offset || field - offset >= width) continue;
    row.watched |= 1U << event;
    t.anyWatched = true;
  }
}

// Copies a value and fills what is left of its room with zeros.
void fill(void* room, u32 roomSize, const void* value, u32 size) {
  const u32 copied = std::min(roomSize, size);
  std::memcpy(room, value, copied);
  std::memset(static_cast<u8*>(room) + copied, 0, roomSize - copied);
}

bool isWithin(const DbTable& table, u32 offset, u32 width) {
  return offset <= table.size && width <= table.size - offset;
}

}  // namespace

void EntryKey::addFields(const DbIndex& index, const u8* row) {
  DbKey key;
  for (const DbField& field : index.key) addField(key, field, row);
  add(key);
}

int checkWrites(mco_trans_h t) {
  if (const int code = check(t)) return code;
  return t->writes ? DB_OK : DB_READS_ONLY;
}

int codeOf(DbTransactionData& t, int result) {
  if (result == 0) return DB_OK;
  const int code = result == MDB_MAP_FULL || result == MDB_TXN_FULL ? DB_FULL : DB_BROKEN;
  countFailure();
  host::platformError("database: the transaction of %s (%s:%d): %s", t.function, t.file, t.line, mdb_strerror(result));
  if (t.writes && t.failure == DB_OK) t.failure = code;
  return code;
}

HeldRow* heldRow(const DbRow* row) {
  if (row == nullptr || row->transaction == nullptr) return nullptr;
  DbTransactionData& t = *row->transaction;
  if (!t.isOpen || t.serial != row->serial || row->place >= t.rows.size()) return nullptr;
  HeldRow& held = t.rows[row->place];
  return held.deleted ? nullptr : &held;
}

int hold(DbTransactionData& t, const DbTable& table, u64 number, DbRow& row) {
  if (t.writes) {
    if (const auto known = t.placeOfNumber->find(number); known != t.placeOfNumber->end()) {
      row = handleOf(t, known->second);
      return t.rows[known->second].deleted ? DB_NOT_FOUND : DB_OK;
    }
  }
  EntryKey key(table, 0);
  key.addNumber(number);
  MDB_val name = key.value();
  MDB_val value;
  const int result = mdb_get(t.txn, keySpace(), &name, &value);
  if (result == MDB_NOTFOUND) return DB_NOT_FOUND;
  if (result != 0) return codeOf(t, result);
  if (t.writes) {
    HeldRow& held = addRow(t, table, number);
    std::memcpy(held.data, value.mv_data, table.size);
    std::memcpy(held.stored, value.mv_data, table.size);
    held.linked = (1U << table.indexes.size()) - 1;
  } else {
    t.rows.push_back({&table, number, static_cast<u8*>(value.mv_data)});
  }
  row = lastHandle(t);
  return DB_OK;
}

int writeDirty(DbTransactionData& t, bool& all) {
  if (t.failure != DB_OK) return t.failure;
  // First everything goes out that is outdated, so that rows may exchange their keys.
  for (const u32 place : t.dirty)
    if (const int code = unlinkChanged(t, t.rows[place])) return code;
  std::size_t left = 0;
  for (const u32 place : t.dirty) {
    HeldRow& row = t.rows[place];
    if (row.deleted) continue;
    bool rival = false;
    int code = findRival(t, row, rival);
    if (code == DB_OK && !rival) code = writeRow(t, row);
    if (code != DB_OK) return code;
    if (rival) t.dirty[left++] = place;
  }
  t.dirty.resize(left);
  all = left == 0;
  return DB_OK;
}

int settle(DbTransactionData& t) {
  if (t.dirty.empty()) return t.failure;
  bool all = true;
  return writeDirty(t, all);
}

u64 numberIn(const MDB_val& entry) {
  u64 number = 0;
  if (entry.mv_size == sizeof number) std::memcpy(&number, entry.mv_data, sizeof number);
  return number;
}

}  // namespace store

int dbNew(mco_trans_h t, const DbTable* table, DbRow* row) {
  if (table == nullptr || row == nullptr) return DB_BAD_ARGUMENT;
  if (const int code = store::checkWrites(t)) return code;
  if (host::faultDue(host::Fault::create)) return DB_FAULT;
  HeldRow& held = store::addRow(*t, *table, store::nextRowNumber());
  std::memset(held.data, 0, table->size);
  held.isStored = false;
  *row = store::lastHandle(*t);
  store::markDirty(*t, *row, held);
  return DB_OK;
}

int dbDelete(DbRow* row) {
  HeldRow* held = store::heldRow(row);
  if (held == nullptr) return DB_BAD_HANDLE;
  DbTransactionData& t = *row->transaction;
  if (const int code = store::checkWrites(&t)) return code;
  for (u32 i = 0; i < held->table->indexes.size(); ++i) {
    if (!store::isLinked(*held, i)) continue;
    if (const int code = store::deleteEntry(t, store::indexKey(*held, i, held->stored))) return code;
  }
  held->linked = 0;
  held->deleted = true;
  return held->isStored ? store::deleteEntry(t, store::rowKey(*held)) : DB_OK;
}

int dbGet(const DbRow* row, u32 offset, u32 width, void* value, u32 size) {
  const HeldRow* held = store::heldRow(row);
  if (held == nullptr) return DB_BAD_HANDLE;
  if (value == nullptr || !store::isWithin(*held->table, offset, width)) return DB_BAD_ARGUMENT;
  store::fill(value, size, held->data + offset, width);
  return DB_OK;
}

int dbPut(DbRow* row, u32 offset, u32 width, const void* value, u32 size) {
  HeldRow* held = store::heldRow(row);
  if (held == nullptr) return DB_BAD_HANDLE;
  if (value == nullptr || !store::isWithin(*held->table, offset, width)) return DB_BAD_ARGUMENT;
  DbTransactionData& t = *row->transaction;
  if (const int code = store::checkWrites(&t)) return code;
  store::fill(held->data + offset, width, value, size);
  store::markDirty(t, *row, *held);
  store::markWatched(t, *held, offset, width);
  return DB_OK;
}

int dbFind(mco_trans_h t, const DbTable* table, u32 index, const DbKey& key, DbRow* row) {
  if (table == nullptr || row == nullptr || index >= table->indexes.size()) return DB_BAD_ARGUMENT;
  if (const int code = store::check(t)) return code;
  if (host::faultDue(host::Fault::find)) {
    store::countFailure();
    return DB_FAULT;
  }
  if (const int code = store::settle(*t)) return code;
  store::EntryKey entry(*table, 1 + index);
  entry.add(key);
  MDB_val name = entry.value();
  MDB_val value;
  const int result = mdb_get(t->txn, store::keySpace(), &name, &value);
  if (result == MDB_NOTFOUND) return DB_NOT_FOUND;
  if (result != 0) return store::codeOf(*t, result);
  return store::hold(*t, *table, store::numberIn(value), *row);
}
