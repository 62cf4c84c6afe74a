#include "host/links.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "host/faults.h"
#include "host/hex.h"
#include "host/jobs.h"
#include "platform/cards.h"
#include "platform/ngn.h"

namespace {

using host::Link;
using testing::ElementsAre;

// Writes down what it is told, a line each.
struct Record : host::Observer {
  std::vector<std::string> lines;
  void send(Link link, u16 slot, u16 id, host::Bytes payload) override { add("send", link, slot, id, payload); }
  void ask(Link link, u16 slot, u16 id, host::Bytes request) override { add("ask", link, slot, id, request); }
  void rtpIp(u16 slot) override { lines.push_back("rtp-ip " + std::to_string(slot)); }
  void job(std::string_view text) override { lines.push_back("job " + std::string(text)); }
  void voiceMode(u32 from, u32 to, u32 flag) override {
    lines.push_back("mode " + std::to_string(from) + ' ' + std::to_string(to) + ' ' + std::to_string(flag));
  }
  void add(const char* what, Link link, u16 slot, u16 id, host::Bytes bytes) {
    static constexpr const char* kNames[] = {"gpon", "gepon", "epon", "ngn"};
    lines.push_back(std::string(what) + ' ' + kNames[static_cast<int>(link)] + ' ' + std::to_string(slot) + ' ' +
                    std::to_string(id) + ' ' + host::hexText(bytes));
  }
};

class Links : public testing::Test {
 protected:
  Links() { host::observe(&record_); }
  ~Links() override {
    host::observe(nullptr);
    host::clearLinks();
    host::clearFaults();
    host::clearJobs();
  }
  // The result of an exchange, and the answer as it came.
  std::string ask(u16 slot, u16 id, u32 capacity = 8) {
    u8 response[8] = {};
    u32 length = capacity;
    const int result = gpon_send_and_wait_for_response_copy(slot, id, 0, kRequest, 2, response, &length, 0);
    return std::to_string(result) + ' ' + host::hexText({response, length});
  }
  static constexpr u8 kRequest[] = {0xAB, 0xCD};
  Record record_;
};

TEST_F(Links, WithoutAnythingQueuedSendsSucceedAndExchangesFail) {
  u8 response[4] = {};
  u32 length = sizeof response;
  EXPECT_EQ(dm_MakeCmdPkt_GPON(3, 100, kRequest, 2), 0);
  EXPECT_EQ(dm_MakeCmdPkt_GEPON(3, 101, kRequest, 1), 0);
  EXPECT_EQ(dm_MakeCmdPkt_EPON(3, 102, nullptr, 0), 0);
  EXPECT_EQ(writeNgnCmd(103, 0, kRequest, 2, 0, 0, 0, 0), 0);
  EXPECT_EQ(send_ngn_voice_rtp_ip_by_slot(3), 0);
  EXPECT_EQ(ask(3, 104), "-1 -");
  EXPECT_EQ(gepon_send_and_wait_for_response_copy(3, 105, 0, 0, kRequest, 2, response, &length, 0), -1);
  EXPECT_EQ(readNgnCmd(106, 0, kRequest, 2, response, &length, 0, 0), -1);
  EXPECT_THAT(record_.lines,
              ElementsAre("send gpon 3 100 abcd", "send gepon 3 101 ab", "send epon 3 102 -", "send ngn 0 103 abcd",
                          "rtp-ip 3", "ask gpon 3 104 abcd", "ask gepon 3 105 abcd", "ask ngn 0 106 abcd"));
}

TEST_F(Links, WhatIsQueuedIsUsedOnceAndInOrder) {
  host::queueAnswer(Link::gpon, 3, 100, {1, 2});
  host::queueFailure(Link::gpon, 3, 100, -7);
  host::queueAnswer(Link::gpon, 3, 100, {});
  host::queueAnswer(Link::gpon, 4, 100, {4, 5, 6});
  EXPECT_EQ(ask(3, 101), "-1 -");
  EXPECT_EQ(ask(3, 100), "0 0102");
  EXPECT_EQ(ask(3, 100), "-7 -");
  EXPECT_EQ(ask(3, 100), "0 -");
  EXPECT_EQ(ask(3, 100), "-1 -");
  EXPECT_EQ(ask(4, 100, 2), "0 0405");  // cut to the buffer
}

TEST_F(Links, AFailureIsOfItsLinkSlotAndId) {
  host::queueAnswer(Link::gpon, 3, 100, {1});
  host::queueFailure(Link::gpon, 3, 100, -5);
  host::queueFailure(Link::ngn, 0, 100, 9);
  host::queueFailure(Link::ngn, 3, 0, -6);
  EXPECT_EQ(dm_MakeCmdPkt_GEPON(3, 100, kRequest, 2), 0);
  EXPECT_EQ(dm_MakeCmdPkt_GPON(4, 100, kRequest, 2), 0);
  EXPECT_EQ(dm_MakeCmdPkt_GPON(3, 100, kRequest, 2), -5);  // a send passes over answers
  EXPECT_EQ(dm_MakeCmdPkt_GPON(3, 100, kRequest, 2), 0);
  EXPECT_EQ(writeNgnCmd(100, 0, kRequest, 2, 0, 0, 0, 0), 9);
  EXPECT_EQ(send_ngn_voice_rtp_ip_by_slot(4), 0);
  EXPECT_EQ(send_ngn_voice_rtp_ip_by_slot(3), -6);
  EXPECT_EQ(record_.lines.size(), 7u);  // a send that fails is seen like one that succeeds
}

TEST_F(Links, FaultsComeAheadOfWhatIsQueued) {
  host::failNth(host::Fault::cardSend, 2);
  host::failNth(host::Fault::cardExchange, 1);
  host::failNth(host::Fault::ngnSend, 1);
  host::failNth(host::Fault::ngnExchange, 1);
  host::queueAnswer(Link::gpon, 3, 100, {1});
  host::queueAnswer(Link::gpon, 3, 100, {2});
  EXPECT_EQ(dm_MakeCmdPkt_GPON(3, 100, kRequest, 2), 0);
  EXPECT_EQ(dm_MakeCmdPkt_EPON(3, 100, kRequest, 2), -1);
  EXPECT_EQ(ask(3, 100), "-1 -");
  EXPECT_EQ(ask(3, 100), "0 02");  // the lost exchange has used up its answer
  EXPECT_EQ(writeNgnCmd(1, 0, kRequest, 2, 0, 0, 0, 0), -1);
  EXPECT_EQ(writeNgnCmd(1, 0, kRequest, 2, 0, 0, 0, 0), 0);
  EXPECT_FALSE(host::faultPending(host::Fault::cardSend));
  EXPECT_TRUE(host::faultPending(host::Fault::ngnExchange));
}

int addJob(u32 a, u32 b, u32) { return job_add(6, set_voice_module_mode, a + 1, b, 1, 0, 0, 0, 0, 0); }

TEST_F(Links, JobsWaitAndThenRunWithTheJobsThatTheyAdd) {
  host::queueVoiceModeResult(-3);
  EXPECT_EQ(job_add(6, set_voice_module_mode, 0, 2, 0, 0, 0, 0, 0, 8), 0);
  EXPECT_EQ(job_add(6, addJob, 10, 20, 30, 0, 0, 0, 0, 0), 0);
  EXPECT_EQ(set_voice_module_mode(5, 6, 1), -3);
  host::runJobs();
  host::runJobs();
  EXPECT_THAT(record_.lines,
              ElementsAre("job set_voice_module_mode 0 2 0 0 0 0 0 8", "job unnamed 10 20 30 0 0 0 0 0", "mode 5 6 1",
                          "mode 0 2 0", "job set_voice_module_mode 11 20 1 0 0 0 0 0", "mode 11 20 1"));
  EXPECT_EQ(set_voice_module_mode(0, 0, 0), 0);
}

TEST_F(Links, ServeThreads) {
  const auto door = [](u16 slot) {
    for (u16 id = 0; id < 500; ++id) {
      host::queueFailure(Link::gpon, slot, id, -2);
      EXPECT_EQ(dm_MakeCmdPkt_GPON(slot, id, kRequest, 2), -2);
    }
  };
  std::thread other(door, u16{1});
  door(2);
  other.join();
  EXPECT_EQ(record_.lines.size(), 1000u);
}

}  // namespace
