#include "node.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "host/faults.h"
#include "host/observer.h"
#include "host/pool.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Record : host::Observer {
  std::vector<std::string> lines;
  void log(i32, std::string_view text) override { lines.emplace_back(text); }
};

class Node : public testing::Test {
 protected:
  Node() { host::observe(&record_); }
  ~Node() override {
    host::observe(nullptr);
    host::clearFaults();
  }
  // The failed lines of a startup configuration, as "LINE COMMAND: TEXT RESULT".
  std::vector<std::string> execute(node::Node& node, std::string_view startup) {
    std::vector<std::string> failed;
    node.executeStartup(startup, [&](const node::FailedLine& line) {
      failed.push_back(std::to_string(line.line) + ' ' + line.command + ": " + line.printed +
                       (line.outcome.result == host::LineResult::ran ? std::to_string(line.outcome.returned) : "none"));
    });
    return failed;
  }
  static const host::CardType& type(const char* name) { return *host::findCardType(name); }
  Record record_;
};

TEST_F(Node, ASlotHasItsTypeWhileTheModuleIsCalled) {
  node::Node node(FAKE_MODULE);
  EXPECT_EQ(node.authorise(3, type("pots32")), 62);
  EXPECT_EQ(node.cardUp(3), 3);
  EXPECT_EQ(host::cardState(3), host::CardState::up);
  EXPECT_EQ(node.unauthorise(3), 62);
  EXPECT_EQ(host::authorisedType(3), nullptr);
  EXPECT_THAT(record_.lines, ElementsAre("start 1", "auth of type 62", "hotplug 3", "unauth of type 62"));
  int result = 0;
  EXPECT_EQ(node.runningConfiguration(&result), "!begin\r\nsay again\r\n");
  EXPECT_EQ(result, 4);
}

TEST_F(Node, ARestartBeginsAfreshAndKeepsTheChassis) {
  node::Node node(FAKE_MODULE);
  node.authorise(11, type("eth16"));
  node.authorise(2, type("adsl32"));
  node.cardUp(2);
  for (int round = 0; round < 3; ++round) {
    record_.lines.clear();
    node.restart("say hello\r\n", nullptr);
    EXPECT_THAT(record_.lines, ElementsAre("start 1", "auth of type 542", "auth of type 584", "say hello, fast mode 1",
                                           "load callback, fast mode 0", "after startup, fast mode 0"));
    EXPECT_EQ(host::cardState(2), host::CardState::up);
    EXPECT_EQ(host::poolInUse(), 10u);
  }
}

TEST_F(Node, AStartupGoesOnBehindALineThatFails) {
  node::Node node(FAKE_MODULE);
  EXPECT_THAT(execute(node, "!say 0\n\r\n  \n\nsay 1\nsay no\r\nsya 2\r\nsay\n\rsay 3\r\nsay 4"),
              ElementsAre("6 say no: said no\r\n-1", "7 sya 2: none", "8 say: none"));
  EXPECT_THAT(record_.lines,
              ElementsAre("start 1", "say 1, fast mode 1", "say no, fast mode 1", "say 3, fast mode 1",
                          "say 4, fast mode 1", "load callback, fast mode 0", "after startup, fast mode 0"));
}

TEST_F(Node, AModuleThatCannotStartIsUnloaded) {
  host::failNth(host::Fault::alloc, 1);
  // A new node takes faults back, a restart does not.
  node::Node node(FAKE_MODULE);
  host::failNth(host::Fault::alloc, 1);
  try {
    node.restart("", nullptr);
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("msan_Module_Init gave -5"));
  }
  EXPECT_FALSE(node::Module::isLoaded(FAKE_MODULE));
}

#if defined(__SANITIZE_ADDRESS__)
TEST_F(Node, BlocksThatTheModuleLostAreReported) {
  const int before = node::Module::leaksFound();
  {
    node::Node node(FAKE_MODULE);
    execute(node, "say leak");
    EXPECT_EQ(host::liveBlocks().size(), 11u);
  }
  EXPECT_EQ(node::Module::leaksFound(), before + 1);
}
#endif

TEST_F(Node, CardTypesChangeBesideRequestsThatWalkTheTree) {
  node::Node node(FAKE_MODULE);
  std::thread cards([&] {
    for (int i = 0; i < 100; ++i) {
      node.authorise(5, type("pots64"));
      node.unauthorise(5);
    }
  });
  for (int i = 0; i < 500; ++i) {
    const std::shared_lock request(host::requestGate());
    OmObject* slot = nullptr;
    if (omGetChildAddr(gpOmFrameObj, 2, 5, &slot) == 0) {
      EXPECT_EQ(slot->m_pChildObjList[63]->number, 64);
    }
  }
  cards.join();
}

TEST_F(Node, TheModuleItselfReloads) {
  node::Node node(MSAN_MODULE);
  const u64 inUse = host::poolInUse();
  for (int round = 0; round < 3; ++round) node.restart("", nullptr);
  EXPECT_EQ(host::poolInUse(), inUse);
}

}  // namespace
