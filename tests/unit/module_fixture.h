#pragma once
// A test's module: started in this process, without a library around it, so that what the library hides can be called.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/msan_init.h"
#include "host/database.h"
#include "host/faults.h"
#include "host/hex.h"
#include "host/jobs.h"
#include "host/links.h"
#include "host/observer.h"
#include "host/pool.h"
#include "host/profile_store.h"
#include "host/registry.h"
#include "host/terminal.h"

// What left the module, a text for each message, report and line at severity 13 or above.
class Recorder : public host::Observer {
 public:
  Recorder() { host::observe(this); }
  ~Recorder() override { host::observe(nullptr); }

  void send(host::Link link, u16 slot, u16 id, host::Bytes payload) override {
    const std::string to = link == host::Link::ngn ? "ngn" : "slot " + std::to_string(slot);
    lines.push_back(to + " " + std::to_string(id) + " " + host::hexText(payload));
  }
  void crc(u16 slot, u16 id, int origin) override {
    lines.push_back("crc " + std::to_string(slot) + " " + std::to_string(id) + " " + std::to_string(origin));
  }
  void log(i32 severity, std::string_view text) override {
    if (severity >= 13) lines.push_back("log " + std::string(text));
  }
  void out(std::string_view text) override { printed += text; }

  std::vector<std::string> take() { return std::exchange(lines, {}); }

  std::vector<std::string> lines;
  std::string printed;
};

class ModuleTest : public testing::Test {
 protected:
  ModuleTest() {
    host::clearFaults();
    host::clearLinks();
    host::resetDatabase();
    EXPECT_EQ(msan_Module_Init(), 0);
    byDesign_ = host::poolInUse();
  }
  // Whatever a request was, it has given back what it took.
  ~ModuleTest() override {
    EXPECT_EQ(host::poolInUse(), byDesign_);
    EXPECT_EQ(host::openConnections(), 0U);
    EXPECT_EQ(host::openTransactions(), 0U);
    host::clearFaults();
    host::forgetModules();
    host::dropPools();
  }

 private:
  u64 byDesign_ = 0;
};

// All rows of all tables, and all profiles.
inline std::string storedRows() {
  std::string all;
  std::vector<std::string> rows;
  for (const std::string& table : host::tableNames()) {
    host::listRows(table, rows);
    std::ranges::sort(rows);
    for (const std::string& row : rows) all += table + ' ' + row + '\n';
  }
  std::vector<host::StoredProfile> profiles;
  for (i16 type = 0; host::listProfiles(type, profiles); ++type)
    for (const host::StoredProfile& one : profiles) all += one.name + ' ' + host::hexText(one.item) + '\n';
  return all;
}

// A command of the operator: what it printed, then " = " and what its handler gave.
inline std::string typed(int node, std::string_view line) {
  Vty vty;
  const host::LineOutcome outcome = host::runLine(vty, node, line);
  if (outcome.result != host::LineResult::ran) return "not run";
  return vty.text + " = " + std::to_string(outcome.returned);
}
