#pragma once
// The configuration database: rows in tables, reached by navigation.
//
// The typed functions of a table T (T_new, T_delete, T_f_get, T_f_put, T_i_find, T_i_index_cursor, T_i_search,
// T_i_compare, T_list_cursor, T_from_cursor) are generated from platform/schema into "platform/tables.h"; they are thin
// names for the operations on rows at the end of this header.
//
// A transaction is begun, used and ended on one thread. A thread holds at most one read-write transaction.

#include "platform/types.h"

struct DbConnectionData;
using DbConnection = DbConnectionData*;
struct DbTransactionData;
using mco_trans_h = DbTransactionData*;

// Result codes; other values are failures.
enum DbCode : int { DB_OK = 0, DB_NOT_FOUND = 10, DB_END = 12, DB_FAULT = 66 };

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

// Asks the platform to bring its check value of a slot's configuration up to date. Slot 9: the whole node. Origin: 0 the
// module itself, 1 SNMP, 3 command line.
void trigger_obj_crc(u16 slot, int, int, u16 id, int origin);

