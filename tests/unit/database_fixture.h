#pragma once
// What the tests of the database share: transactions, and rows as text. The tables are those of test.schema.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "host/database.h"
#include "host/faults.h"
#include "test_tables.h"

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

inline constexpr u8 kMac[6] = {2, 0, 0, 0, 0, 9};

inline Subscriber addSubscriber(mco_trans_h t, u32 line, i16 level, const std::string& name, u8 group = 0) {
  Subscriber row;
  EXPECT_EQ(Subscriber_new(t, &row), 0);
  EXPECT_EQ(Subscriber_line_put(&row, line), 0);
  EXPECT_EQ(Subscriber_level_put(&row, level), 0);
  EXPECT_EQ(Subscriber_name_put(&row, name.data(), static_cast<u32>(name.size())), 0);
  EXPECT_EQ(Subscriber_mac_put(&row, kMac, sizeof kMac), 0);
  EXPECT_EQ(Subscriber_group_put(&row, group), 0);
  return row;
}

inline std::string nameOf(Subscriber& row) {
  char name[9] = "?";
  Subscriber_name_get(&row, name, sizeof name);
  return name;
}

inline std::string nameAt(mco_trans_h t, const mco_cursor_t& cursor) {
  Subscriber row;
  const int code = Subscriber_from_cursor(t, &cursor, &row);
  return code == 0 ? nameOf(row) : std::to_string(code);
}

// The names from the first row to the last, then the code that ended the walk.
inline std::string walk(mco_trans_h t, mco_cursor_t& cursor, int code) {
  std::string names;
  for (; code == 0; code = mco_cursor_next(t, &cursor)) names += nameAt(t, cursor) + " ";
  return names + std::to_string(code);
}
inline std::string walkLines(mco_trans_h t) {
  mco_cursor_t cursor;
  return walk(t, cursor, Subscriber_lineLevel_index_cursor(t, &cursor));
}
inline std::string walkNames(mco_trans_h t) {
  mco_cursor_t cursor;
  return walk(t, cursor, Subscriber_byName_index_cursor(t, &cursor));
}
inline std::string walkCreation(mco_trans_h t) {
  mco_cursor_t cursor;
  return walk(t, cursor, Subscriber_list_cursor(t, &cursor));
}

inline void commitThreeSubscribers() {
  Writing w;
  addSubscriber(w.t, 256, 0, "b", 7);
  addSubscriber(w.t, 1, -1, "c", 7);
  addSubscriber(w.t, 1, -300, "a", 3);
  ASSERT_EQ(w.commit(), 0);
}
