#pragma once
// The database from the node's side.

#include <string>
#include <vector>

#include "platform/database.h"

namespace host {

// Empties all tables; the first call opens the environment. Update handlers are forgotten. Throws std::runtime_error
// when the environment can't be had, or when a transaction is open.
void resetDatabase();

// Limits what the database may hold, in bytes on disk with all overhead; 0: the usual limit. For tests of a full
// database. Throws as resetDatabase does.
void limitDatabase(u32 bytes);

// The rows of a table in the order of its first index, each as "FIELD=VALUE ..." with all fields in the order of the
// schema: numbers decimal, texts quoted, bytes in the hex form of a scenario. False if there is no such table.
bool listRows(const std::string& table, std::vector<std::string>& rows);

std::vector<std::string> tableNames();

// Grows with each transaction that was committed.
u64 databaseChanges();

// How large the database is: bytes on disk with all overhead, and what it may have; rows' entries and those of indexes.
struct DatabaseSize {
  u64 used = 0;
  u64 limit = 0;
  u64 entries = 0;
};
DatabaseSize databaseSize();

// What is open now: connections and transactions. Both 0 when no request is under way.
u32 openConnections();
u32 openTransactions();

// Connections, transactions and rows that this thread could not have so far, faults on demand included. What the module
// printed while they grew may lack something.
u32 databaseFailures();

// The node's own connection, for msan_register_events.
DbConnection eventConnection();

}  // namespace host
