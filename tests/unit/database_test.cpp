// Rows, keys and cursors of the database. The tables are those of test.schema.

#include <cstring>
#include <string>
#include <vector>

#include "database_fixture.h"
#include "platform/tables.h"
#include "test_tables.h"

namespace {

const u8 kMac[6] = {2, 0, 0, 0, 0, 9};

Subscriber addSubscriber(mco_trans_h t, u32 line, i16 level, const std::string& name, u8 group = 0) {
  Subscriber row;
  EXPECT_EQ(Subscriber_new(t, &row), 0);
  EXPECT_EQ(Subscriber_line_put(&row, line), 0);
  EXPECT_EQ(Subscriber_level_put(&row, level), 0);
  EXPECT_EQ(Subscriber_name_put(&row, name.data(), static_cast<u32>(name.size())), 0);
  EXPECT_EQ(Subscriber_mac_put(&row, kMac, sizeof kMac), 0);
  EXPECT_EQ(Subscriber_group_put(&row, group), 0);
  return row;
}

std::string nameOf(Subscriber& row) {
  char name[9] = "?";
  Subscriber_name_get(&row, name, sizeof name);
  return name;
}

std::string nameAt(mco_trans_h t, const mco_cursor_t& cursor) {
  Subscriber row;
  const int code = Subscriber_from_cursor(t, &cursor, &row);
  return code == 0 ? nameOf(row) : std::to_string(code);
}

// The names from the first row to the last, then the code that ended the walk.
std::string walk(mco_trans_h t, mco_cursor_t& cursor, int code) {
  std::string names;
  for (; code == 0; code = mco_cursor_next(t, &cursor)) names += nameAt(t, cursor) + " ";
  return names + std::to_string(code);
}
std::string walkLines(mco_trans_h t) {
  mco_cursor_t cursor;
  return walk(t, cursor, Subscriber_lineLevel_index_cursor(t, &cursor));
}
std::string walkNames(mco_trans_h t) {
  mco_cursor_t cursor;
  return walk(t, cursor, Subscriber_byName_index_cursor(t, &cursor));
}
std::string walkCreation(mco_trans_h t) {
  mco_cursor_t cursor;
  return walk(t, cursor, Subscriber_list_cursor(t, &cursor));
}

void commitThreeSubscribers() {
  Writing w;
  addSubscriber(w.t, 256, 0, "b", 7);
  addSubscriber(w.t, 1, -1, "c", 7);
  addSubscriber(w.t, 1, -300, "a", 3);
  ASSERT_EQ(w.commit(), 0);
}

TEST_F(Database, OrdersRowsByEachKeyAndByCreation) {
  {
    Writing w;
    addSubscriber(w.t, 256, 0, "b");
    addSubscriber(w.t, 255, 1, "ab");
    addSubscriber(w.t, 1, 2, "z");
    addSubscriber(w.t, 1, -1, "a\x80");
    addSubscriber(w.t, 1, -300, "a");
    addSubscriber(w.t, 0xffffffff, -1, "toolongname");
    ASSERT_EQ(w.commit(), 0);
  }
  Reading r;
  EXPECT_EQ(walkLines(r.t), "a a\x80 z ab b toolongn 12");
  EXPECT_EQ(walkNames(r.t), "a ab a\x80 b toolongn z 12");
  EXPECT_EQ(walkCreation(r.t), "b ab z a\x80 a toolongn 12");
  std::vector<std::string> rows;
  ASSERT_TRUE(host::listRows("Subscriber", rows));
  EXPECT_TRUE(rows.at(0).starts_with("line=1 level=-300 ")) << rows[0];
}

TEST_F(Database, FindsByCompositeByteAndStructureKeys) {
  commitThreeSubscribers();
  {
    Writing w;
    Blob row;
    const u8 fixed[12] = {0x04, 0x03, 0x02, 0x01, 0x06, 0x05, 0xff};  // the target's little-endian order
    ASSERT_EQ(Blob_new(w.t, &row), 0);
    ASSERT_EQ(Blob_fixed_put(&row, fixed, sizeof fixed), 0);
    ASSERT_EQ(w.commit(), 0);
  }
  Reading r;
  Subscriber row;
  ASSERT_EQ(Subscriber_lineLevel_find(r.t, 1, -300, &row), 0);
  EXPECT_EQ(nameOf(row), "a");
  EXPECT_EQ(Subscriber_lineLevel_find(r.t, 1, 300, &row), 10);
  ASSERT_EQ(Subscriber_byName_find(r.t, "c", 1, kMac, 6, &row), 0);
  i16 level = 0;
  EXPECT_EQ(Subscriber_level_get(&row, &level), 0);
  EXPECT_EQ(level, -1);
  EXPECT_EQ(Subscriber_byName_find(r.t, "c", 1, kMac, 5, &row), 10);
  Blob blob;
  ASSERT_EQ(Blob_tree_find(r.t, 0x01020304, 0x0506, &blob), 0);
  u8 tail[3] = {};
  EXPECT_EQ(Blob_fixed_get_range(&blob, 5, 3, tail), 0);
  EXPECT_EQ(tail[0], 0x05);
  EXPECT_EQ(tail[1], 0xff);
  EXPECT_EQ(Blob_fixed_get_range(&blob, 10, 3, tail), int{DB_BAD_ARGUMENT});
}

TEST_F(Database, SearchTakesEqualKeysOnlyAndWalksThoseThatRowsShare) {
  commitThreeSubscribers();
  Reading r;
  mco_cursor_t cursor;
  ASSERT_EQ(Subscriber_byGroup_index_cursor(r.t, &cursor), 0);
  EXPECT_EQ(nameAt(r.t, cursor), "a");
  EXPECT_EQ(Subscriber_byGroup_search(r.t, &cursor, 3, 5), 10);
  EXPECT_EQ(nameAt(r.t, cursor), "a");
  ASSERT_EQ(Subscriber_byGroup_search(r.t, &cursor, 3, 7), 0);
  int result = -2;
  EXPECT_EQ(Subscriber_byGroup_compare(r.t, &cursor, 7, &result), 0);
  EXPECT_EQ(result, 0);
  Subscriber_byGroup_compare(r.t, &cursor, 8, &result);
  EXPECT_LT(result, 0);
  Subscriber_byGroup_compare(r.t, &cursor, 6, &result);
  EXPECT_GT(result, 0);
  mco_cursor_t other;
  ASSERT_EQ(Subscriber_lineLevel_index_cursor(r.t, &other), 0);
  EXPECT_EQ(walk(r.t, cursor, 0), "b c 12") << "one cursor moves the other";
  EXPECT_EQ(mco_cursor_prev(r.t, &cursor), 0);
  EXPECT_EQ(nameAt(r.t, cursor), "b");
  EXPECT_EQ(mco_cursor_prev(r.t, &cursor), 0);
  EXPECT_EQ(mco_cursor_prev(r.t, &cursor), 12);
  EXPECT_EQ(nameAt(r.t, cursor), "a");
  EXPECT_EQ(Subscriber_byGroup_search(r.t, &cursor, 2, 7), int{DB_BAD_ARGUMENT});
  EXPECT_EQ(Subscriber_lineLevel_search(r.t, &cursor, 3, 1, -1), int{DB_BAD_ARGUMENT});
}

TEST_F(Database, EmptyTablesEndACursorAtOnce) {
  Writing w;
  mco_cursor_t cursor;
  EXPECT_EQ(NgnProtocolType_list_cursor(w.t, &cursor), 12);
  EXPECT_EQ(Subscriber_lineLevel_index_cursor(w.t, &cursor), 12);
  EXPECT_EQ(mco_cursor_first(w.t, &cursor), 12);
  EXPECT_EQ(mco_cursor_next(w.t, &cursor), 12);
  EXPECT_EQ(mco_cursor_prev(w.t, &cursor), 12);
  Subscriber none;
  EXPECT_EQ(Subscriber_from_cursor(w.t, &cursor, &none), 12);
  // Neighbours in the store are no rows of the table.
  addSubscriber(w.t, 1, 1, "a");
  EXPECT_EQ(NgnProtocolType_list_cursor(w.t, &cursor), 12);
  NgnProtocolType row;
  ASSERT_EQ(NgnProtocolType_new(w.t, &row), 0);
  NgnProtocolType_type_put(&row, 2);
  ASSERT_EQ(NgnProtocolType_list_cursor(w.t, &cursor), 0);
  NgnProtocolType again;
  ASSERT_EQ(NgnProtocolType_from_cursor(w.t, &cursor, &again), 0);
  u16 type = 0;
  NgnProtocolType_type_get(&again, &type);
  EXPECT_EQ(type, 2);
  EXPECT_EQ(mco_cursor_next(w.t, &cursor), 12);
}

TEST_F(Database, ATransactionSeesItsOwnWritesAndNobodyElseDoes) {
  commitThreeSubscribers();
  Writing w;
  Subscriber first, second;
  ASSERT_EQ(Subscriber_lineLevel_find(w.t, 1, -1, &first), 0);
  ASSERT_EQ(Subscriber_line_put(&first, 900), 0);
  ASSERT_EQ(Subscriber_lineLevel_find(w.t, 900, -1, &second), 0);
  ASSERT_EQ(Subscriber_name_put(&second, "x", 1), 0);
  EXPECT_EQ(nameOf(first), "x") << "two handles of one row differ";
  EXPECT_EQ(Subscriber_lineLevel_find(w.t, 1, -1, &second), 10);
  Subscriber gone;
  ASSERT_EQ(Subscriber_lineLevel_find(w.t, 256, 0, &gone), 0);
  ASSERT_EQ(Subscriber_delete(&gone), 0);
  EXPECT_EQ(Subscriber_line_put(&gone, 1), int{DB_BAD_HANDLE});
  EXPECT_EQ(walkLines(w.t), "a x 12");
  {
    Reading r;
    EXPECT_EQ(walkLines(r.t), "a c b 12");
  }
  ASSERT_EQ(w.commit(), 0);
  Reading r;
  EXPECT_EQ(walkLines(r.t), "a x 12");
  EXPECT_EQ(walkNames(r.t), "a x 12");
}

TEST_F(Database, RowsMayExchangeTheirKeys) {
  commitThreeSubscribers();
  {
    Writing w;
    Subscriber b, c;
    ASSERT_EQ(Subscriber_lineLevel_find(w.t, 256, 0, &b), 0);
    ASSERT_EQ(Subscriber_lineLevel_find(w.t, 1, -1, &c), 0);
    Subscriber_line_put(&b, 1);
    Subscriber_level_put(&b, -1);
    EXPECT_EQ(walkLines(w.t), "a c 12") << "the row whose key is taken is not found";
    Subscriber_line_put(&c, 256);
    Subscriber_level_put(&c, 0);
    ASSERT_EQ(w.commit(), 0);
  }
  Reading r;
  EXPECT_EQ(walkLines(r.t), "a b c 12");
}

TEST_F(Database, TwoRowsWithOneKeyAreRefusedAtTheCommit) {
  commitThreeSubscribers();
  {
    Writing w;
    addSubscriber(w.t, 9, 9, "new");
    addSubscriber(w.t, 256, 0, "twin");
    EXPECT_EQ(w.commit(), int{DB_NOT_UNIQUE});
  }
  {
    Writing w;  // the second index counts, too
    addSubscriber(w.t, 9, 9, "b");
    EXPECT_EQ(w.commit(), int{DB_NOT_UNIQUE});
  }
  {
    Writing w;  // a row that is still without its keys is in nobody's way
    Subscriber early, late;
    ASSERT_EQ(Subscriber_new(w.t, &early), 0);
    ASSERT_EQ(Subscriber_new(w.t, &late), 0);
    EXPECT_EQ(Subscriber_lineLevel_find(w.t, 5, 0, &late), 10);
    Subscriber_line_put(&early, 5);
    Subscriber_name_put(&early, "e", 1);
    ASSERT_EQ(w.commit(), 0);
  }
  Reading r;
  EXPECT_EQ(walkCreation(r.t), "b c a e  12");
}

TEST_F(Database, ARowMayBeDeletedUnderTheCursor) {
  {
    Writing w;
    for (u32 line = 0; line < 9; ++line) addSubscriber(w.t, line, 0, std::string(1, static_cast<char>('a' + line)), 1);
    ASSERT_EQ(w.commit(), 0);
  }
  Writing w;
  mco_cursor_t cursor;
  ASSERT_EQ(Subscriber_byGroup_index_cursor(w.t, &cursor), 0);
  std::string seen;
  int code = Subscriber_byGroup_search(w.t, &cursor, 3, 1);
  for (int i = 0; code == 0; code = mco_cursor_next(w.t, &cursor), ++i) {
    seen += nameAt(w.t, cursor);
    Subscriber row;
    ASSERT_EQ(Subscriber_from_cursor(w.t, &cursor, &row), 0);
    if (i % 2 != 0) continue;
    ASSERT_EQ(Subscriber_delete(&row), 0);
    EXPECT_EQ(Subscriber_from_cursor(w.t, &cursor, &row), 10);
  }
  EXPECT_EQ(seen, "abcdefghi");
  EXPECT_EQ(mco_cursor_prev(w.t, &cursor), 0);
  EXPECT_EQ(nameAt(w.t, cursor), "h");
  EXPECT_EQ(walkLines(w.t), "b d f h 12");
  EXPECT_EQ(walkCreation(w.t), "b d f h 12");
  EXPECT_EQ(w.commit(), 0);
}

TEST_F(Database, FieldsAreFilledUpWithZerosOrCut) {
  Writing w;
  Subscriber row = addSubscriber(w.t, 1, 1, "longname");
  Subscriber_name_put(&row, "ab", 2);
  char name[10];
  std::memset(name, '#', sizeof name);
  Subscriber_name_get(&row, name, sizeof name);
  EXPECT_EQ(std::string(name, 10), std::string("ab\0\0\0\0\0\0\0\0", 10));
  std::memset(name, '#', sizeof name);
  Subscriber_name_get(&row, name, 1);
  EXPECT_EQ(name[1], '#');
}

TEST_F(Database, ListsRowsWithAllTheirFields) {
  {
    Writing w;
    addSubscriber(w.t, 4000000000, -32768, "q\"\\\n\xe9", 255);
    Shaper shaper;
    ASSERT_EQ(Shaper_new(w.t, &shaper), 0);
    const Shaper_fixed fixed = {1, {{1, 10}, {2, 20}, {3, 30}}, {70000, 0}, -7};
    ASSERT_EQ(Shaper_fixed_put(&shaper, &fixed), 0);
    Queue queue;
    ASSERT_EQ(Shaper_queue_at(&shaper, 2, &queue), 0);
    Queue_weight_put(&queue, 65535);
    Shaper_limit_put(&shaper, 1, 5);
    EXPECT_EQ(Shaper_limit_put(&shaper, 2, 5), int{DB_BAD_ARGUMENT});
    EXPECT_EQ(Shaper_queue_at(&shaper, 3, &queue), int{DB_BAD_ARGUMENT});
    Blob blob;
    ASSERT_EQ(Blob_new(w.t, &blob), 0);
    ASSERT_EQ(w.commit(), 0);
  }
  std::vector<std::string> rows;
  ASSERT_TRUE(host::listRows("Subscriber", rows));
  EXPECT_EQ(rows, std::vector<std::string>{
                      R"(line=4000000000 level=-32768 name="q\x22\x5c\x0a\xe9" mac=020000000009 group=255)"});
  ASSERT_TRUE(host::listRows("Shaper", rows));
  EXPECT_EQ(rows, std::vector<std::string>{"mode=1 queue[0].id=1 queue[0].weight=10 queue[1].id=2 queue[1].weight=20 "
                                           "queue[2].id=3 queue[2].weight=65535 limit[0]=70000 limit[1]=5 offset=-7"});
  ASSERT_TRUE(host::listRows("Blob", rows));
  EXPECT_EQ(rows, std::vector<std::string>{"fixed=000000000000000000000000"});
  ASSERT_TRUE(host::listRows("CIDMODEdb", rows));
  EXPECT_TRUE(rows.empty());
  EXPECT_FALSE(host::listRows("cidmodedb", rows));
}

}  // namespace
