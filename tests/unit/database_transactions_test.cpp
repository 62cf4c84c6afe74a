// Transactions of the database: what fails, what is told to update handlers, and threads.

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "database_fixture.h"
#include "platform/tables.h"
#include "test_tables.h"

namespace {

CIDMODEdb addMode(mco_trans_h t, u32 id, u16 mode) {
  CIDMODEdb row;
  EXPECT_EQ(CIDMODEdb_new(t, &row), 0);
  EXPECT_EQ(CIDMODEdb_recordid_put(&row, id), 0);
  EXPECT_EQ(CIDMODEdb_CIDMode_put(&row, mode), 0);
  return row;
}

void commitMode(u32 id, u16 mode) {
  Writing w;
  addMode(w.t, id, mode);
  ASSERT_EQ(w.commit(), 0);
}

// What is stored, seen from outside.
std::string stored(const std::string& table) {
  std::vector<std::string> rows;
  EXPECT_TRUE(host::listRows(table, rows));
  std::string all;
  for (const std::string& row : rows) all += row + "; ";
  return all;
}

TEST_F(Database, WhatIsRolledBackOrFailsLeavesNothing) {
  commitMode(1, 2);
  CIDMODEdb stale;
  mco_cursor_t cursor;
  {
    Writing w;
    stale = addMode(w.t, 7, 2);
    ASSERT_EQ(CIDMODEdb_treeIdx_index_cursor(w.t, &cursor), 0);
    EXPECT_EQ(mco_trans_rollback(std::exchange(w.t, nullptr)), 0);
  }
  {
    Writing w;
    addMode(w.t, 8, 2);
    host::failNth(host::Fault::commit, 1);
    EXPECT_EQ(w.commit(), 66);
  }
  Writing w;
  EXPECT_EQ(stored("CIDMODEdb"), "recordid=1 CIDMode=2; ");
  EXPECT_EQ(CIDMODEdb_CIDMode_put(&stale, 1), int{DB_BAD_HANDLE});
  EXPECT_EQ(mco_cursor_next(w.t, &cursor), int{DB_BAD_HANDLE});
}

TEST_F(Database, ALookFromOutsideUsesUpNoFault) {
  host::failNth(host::Fault::start, 1);
  EXPECT_EQ(stored("CIDMODEdb"), "");
  EXPECT_TRUE(host::faultPending(host::Fault::start));
  host::clearFaults();
}

TEST_F(Database, ConnectionsRunOut) {
  std::vector<DbConnection> taken;
  while (DbConnection connection = dbCommon_getConnectRes()) taken.push_back(connection);
  EXPECT_EQ(taken.size(), 64U);
  EXPECT_EQ(host::openConnections(), 64U);
  for (DbConnection connection : taken) dbCommon_freeConnectRes(connection);
  mco_trans_h t = nullptr;
  EXPECT_EQ(mco_trans_start_(taken[0], DB_READ_ONLY, 0, &t, "", 0, ""), int{DB_BAD_ARGUMENT});
  EXPECT_EQ(mco_trans_start_(nullptr, DB_READ_ONLY, 0, &t, "", 0, ""), int{DB_BAD_ARGUMENT});
}

TEST_F(Database, RefusesWhatWouldHangOrCorrupt) {
  Writing w;
  EXPECT_EQ(Writing().code, int{DB_BUSY});
  CIDMODEdb row;
  {
    Reading r;
    EXPECT_EQ(CIDMODEdb_new(r.t, &row), int{DB_READS_ONLY});
  }
  int commit = 0, create = 0;
  std::thread([&] {
    commit = mco_trans_commit(w.t);
    create = CIDMODEdb_new(w.t, &row);
  }).join();
  EXPECT_EQ(commit, int{DB_BUSY});
  EXPECT_EQ(create, int{DB_BAD_HANDLE});
  EXPECT_THROW(host::resetDatabase(), std::runtime_error);
  EXPECT_EQ(w.commit(), 0);
  EXPECT_EQ(mco_trans_commit(nullptr), int{DB_BAD_HANDLE});
}

TEST_F(Database, AFullDatabaseFailsCleanly) {
  commitMode(1, 2);
  host::limitDatabase(1 << 16);
  {
    Writing w;
    int code = 0;
    for (u32 id = 1000; id < 100000 && code == 0; ++id) {
      CIDMODEdb row;
      addMode(w.t, id, 1);
      code = CIDMODEdb_treeIdx_find(w.t, id, &row);
    }
    EXPECT_EQ(code, int{DB_FULL});
    EXPECT_EQ(w.commit(), int{DB_FULL});
  }
  host::limitDatabase(0);
  commitMode(2, 1);
  EXPECT_EQ(stored("CIDMODEdb"), "recordid=1 CIDMode=2; recordid=2 CIDMode=1; ");
}

// What the handlers of a test saw.
std::string told;

int levelHandler(mco_trans_h t, Journal* row) {
  u16 level = 0;
  Journal_level_get(row, &level);
  told += "level " + std::to_string(level) + ", ";
  EXPECT_EQ(Journal_level_put(row, static_cast<u16>(level + 1)), 0) << "a put by the handler tells nobody";
  EXPECT_EQ(Writing().code, int{DB_BUSY});
  EXPECT_EQ(mco_trans_commit(t), int{DB_BUSY});
  EXPECT_EQ(mco_trans_rollback(t), int{DB_BUSY});
  return -1;
}

int textHandler(mco_trans_h, Journal*) {
  told += "text, ";
  return 0;
}

std::string journal() { return told + stored("Journal"); }

void putLevels(int result) {
  told.clear();
  Writing w;
  mco_cursor_t cursor;
  Journal row;
  ASSERT_EQ(Journal_list_cursor(w.t, &cursor), 0);
  do {
    ASSERT_EQ(Journal_from_cursor(w.t, &cursor, &row), 0);
    Journal_level_put(&row, 10);
    Journal_level_put(&row, 20);
  } while (mco_cursor_next(w.t, &cursor) == 0);
  EXPECT_EQ(told, "");
  EXPECT_EQ(w.commit(), result);
}

TEST_F(Database, UpdateHandlersRunOncePerRowInsideTheCommit) {
  {
    Writing w;
    Journal row;
    for (int i = 0; i < 2; ++i) ASSERT_EQ(Journal_new(w.t, &row), 0);
    EXPECT_EQ(mco_register_journalLevel_handler(w.t, levelHandler, 0, 1), 0);
    EXPECT_EQ(mco_register_journalText_handler(w.t, textHandler, 0, 1), 0);
    EXPECT_EQ(mco_register_typeUpdate_handler(w.t, nullptr, 0, 1), 0);
    ASSERT_EQ(w.commit(), 0);
  }
  putLevels(0);
  EXPECT_EQ(journal(), "level 20, level 20, level=21 text=\"\"; level=21 text=\"\"; ");
  host::failNth(host::Fault::commit, 1);
  putLevels(66);
  EXPECT_EQ(journal(), "level=21 text=\"\"; level=21 text=\"\"; ");
  {
    Writing w;  // takes effect with its commit only
    EXPECT_EQ(mco_unregister_journalLevel_handler(w.t, levelHandler), 0);
  }
  for (int i = 0; i < 2; ++i) putLevels(0);
  EXPECT_EQ(told, "level 20, level 20, ");
  {
    Writing w;
    mco_unregister_journalLevel_handler(w.t, levelHandler);
    ASSERT_EQ(w.commit(), 0);
  }
  putLevels(0);
  EXPECT_EQ(told, "");
}

TEST_F(Database, HandlersAreToldOfWholeRowsButNotOfDeletedOnesNorBehindAReset) {
  told.clear();
  Journal row, gone;
  NgnProtocolType type;
  const Journal_fixed fixed = {1, {'x'}};
  {
    Writing w;
    mco_register_journalText_handler(w.t, textHandler, 0, 1);
    mco_register_typeUpdate_handler(w.t, nullptr, 0, 1);
    ASSERT_EQ(w.commit(), 0);
  }
  {
    Writing w;
    ASSERT_EQ(NgnProtocolType_new(w.t, &type), 0);
    NgnProtocolType_type_put(&type, 1);
    ASSERT_EQ(Journal_new(w.t, &row), 0);
    Journal_fixed_put(&row, &fixed);
    ASSERT_EQ(Journal_new(w.t, &gone), 0);
    Journal_fixed_put(&gone, &fixed);
    ASSERT_EQ(Journal_delete(&gone), 0);
    ASSERT_EQ(w.commit(), 0);
  }
  EXPECT_EQ(journal(), "text, level=1 text=\"x\"; ");
  host::resetDatabase();
  Writing w;
  ASSERT_EQ(Journal_new(w.t, &row), 0);
  Journal_fixed_put(&row, &fixed);
  ASSERT_EQ(w.commit(), 0);
  EXPECT_EQ(told, "text, ");
}

TEST_F(Database, ThreadsWriteInTurnAndReadWholeTransactions) {
  commitMode(1, 0);
  commitMode(2, 0);
  const auto addOne = [](mco_trans_h t, u32 id) {
    CIDMODEdb row;
    u16 mode = 0;
    ASSERT_EQ(CIDMODEdb_treeIdx_find(t, id, &row), 0);
    CIDMODEdb_CIDMode_get(&row, &mode);
    CIDMODEdb_CIDMode_put(&row, static_cast<u16>(mode + 1));
  };
  const auto write = [&] {
    for (int i = 0; i < 100; ++i) {
      Writing w;
      addOne(w.t, 1);
      addOne(w.t, 2);
      ASSERT_EQ(w.commit(), 0);
    }
  };
  std::atomic<bool> done{false};
  const auto read = [&] {
    while (!done) {
      Reading r;
      CIDMODEdb a, b;
      u16 of[2] = {0, 1};
      ASSERT_EQ(CIDMODEdb_treeIdx_find(r.t, 1, &a), 0);
      ASSERT_EQ(CIDMODEdb_treeIdx_find(r.t, 2, &b), 0);
      CIDMODEdb_CIDMode_get(&a, &of[0]);
      CIDMODEdb_CIDMode_get(&b, &of[1]);
      ASSERT_EQ(of[0], of[1]);
    }
  };
  std::thread reader(read), writer(write), otherWriter(write);
  writer.join();
  otherWriter.join();
  done = true;
  reader.join();
  EXPECT_EQ(stored("CIDMODEdb"), "recordid=1 CIDMode=200; recordid=2 CIDMode=200; ");
}

}  // namespace
