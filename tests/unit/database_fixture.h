#pragma once
// What the tests of the database share: transactions, and a check that each test ends its own.

#include <gtest/gtest.h>

#include <utility>

#include "host/database.h"
#include "host/faults.h"

// A transaction on a connection of its own; rolled back unless ended.
struct Trans {
  DbConnection connection = dbCommon_getConnectRes();
  mco_trans_h t = nullptr;
  int code;
  explicit Trans(int mode) : code(mco_trans_start_(connection, mode, 0, &t, __FILE__, __LINE__, "Trans")) {}
  ~Trans() {
    if (t != nullptr) mco_trans_rollback(t);
    dbCommon_freeConnectRes(connection);
  }
  int commit() { return mco_trans_commit(std::exchange(t, nullptr)); }
};
struct Writing : Trans {
  Writing() : Trans(DB_READ_WRITE) {}
};
struct Reading : Trans {
  Reading() : Trans(DB_READ_ONLY) {}
};

class Database : public testing::Test {
 protected:
  void SetUp() override {
    host::clearFaults();
    host::resetDatabase();
  }
  void TearDown() override {
    EXPECT_EQ(host::openTransactions(), 0U);
    EXPECT_EQ(host::openConnections(), 0U);
  }
};
