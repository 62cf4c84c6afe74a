#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "scenario/modes.h"

namespace {

using scenario::kDiffers;
using scenario::kGood;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

scenario::Scenario read(std::string_view text) {
  std::vector<scenario::Problem> problems;
  auto scenario = readScenario("file", text, problems);
  EXPECT_TRUE(problems.empty());
  return scenario;
}

// What a mode printed, and what it gave.
struct Seen {
  int result = 0;
  std::string text;
};

template <class Mode>
Seen run(Mode mode, std::string_view text) {
  testing::internal::CaptureStdout();
  Seen seen;
  seen.result = mode(FAULTY_MODULE, std::vector{read(text)});
  seen.text = testing::internal::GetCapturedStdout();
  return seen;
}

TEST(ScenarioPlaying, RecordsInOrderAndCutsWhatIsPrinted) {
  const auto played = scenario::playAll(FAULTY_MODULE, read("cli do print\n"));
  ASSERT_EQ(played.size(), 1u);
  EXPECT_THAT(played[0].record, ElementsAre("out first\\n", "out second", "out thi\\c", "crc 9 3087 3", "out rd\\c",
                                            "job set_voice_module_mode 1 2 0 0 0 0 0 0", "log 13  an error. ",
                                            "voice-mode 1 2 0", "|", "|  text\\n", "= -3"));
}

TEST(ScenarioMessages, OneThatIsNotAsDescribedIsToldWithItsDirective) {
  const Seen seen = run(scenario::holdFiles, "cli do count\ncli do deaf\n");
  EXPECT_EQ(seen.result, kDiffers);
  EXPECT_EQ(seen.text,
            "file:2: cli do deaf\n"
            "  gpon 7: no description of this message\n"
            "1 messages\n"
            "0 passed, 1 failed\n");
}

TEST(ScenarioPlaying, RestartTellsTheLinesThatFailed) {
  const auto played = scenario::playAll(FAULTY_MODULE, read("cli do change\nsave\nrestart\ncli do\ncli un do\n"));
  EXPECT_THAT(played[2].record, ElementsAre("| 3: unknown command"));
  EXPECT_THAT(played[3].record, ElementsAre("= incomplete command"));
  EXPECT_THAT(played[4].record, ElementsAre("= unknown command"));
}

TEST(ScenarioPlaying, AFaultThatIsNotReachedOutlivesARestart) {
  const auto played = scenario::playAll(FAULTY_MODULE, read("fault alloc 2\npool\nrestart\ncli do count\n"));
  EXPECT_THAT(played[1].record, ElementsAre("pool 32"));
  EXPECT_THAT(played[3].record, ElementsAre("= 1"));  // the restart took one block, the command was refused its first
}

TEST(ScenarioPlaying, WhatIsNotThereFailsWithoutExpectations) {
  const Seen seen = run(scenario::playFiles, "save\nprofiles 1\n");
  EXPECT_EQ(seen.result, kDiffers);
  EXPECT_THAT(seen.text, HasSubstr("file:2: profiles 1\n = not available: "));
  EXPECT_THAT(seen.text, HasSubstr("2 directives not compared\n0 passed, 1 failed\n"));
  EXPECT_EQ(run(scenario::playFiles, "profiles 1\n...\n").result, kDiffers);
}

TEST(ScenarioPlaying, OrdersOfFaultsAddUp) {
  const auto played = scenario::playAll(FAULTY_MODULE, read("fault alloc 1\nfault alloc 4\n"
                                                            "cli do count\ncli do count\ncli do count\n"
                                                            "pool mark\npool change\npool\n"));
  EXPECT_THAT(played[2].record, ElementsAre("= 1"));
  EXPECT_THAT(played[3].record, ElementsAre("= 1"));
  EXPECT_THAT(played[4].record, ElementsAre("= 2"));
  EXPECT_THAT(played[6].record, ElementsAre("pool change 0"));
  EXPECT_THAT(played[7].record, ElementsAre("pool 32"));
}

int sweepAll(const std::string& module, const std::vector<scenario::Scenario>& scenarios) {
  return scenario::sweepFiles(module, scenarios, {.all = true, .calls = {}});
}
int sweepSites(const std::string& module, const std::vector<scenario::Scenario>& scenarios) {
  return scenario::sweepFiles(module, scenarios, {});
}

TEST(ScenarioSweep, FindsEachBrokenRuleAtItsPoint) {
  struct Case {
    const char* command;
    const char* point;
    const char* rule;
  };
  for (const Case& one : {Case{"do leak", "file:2: cli do leak: alloc 2: ", "8 bytes of faulty:1"},
                          Case{"do crash", "file:2: cli do crash: alloc 1: ", "crash"},
                          Case{"do hold", "file:2: cli do hold: alloc 1: ", "semaphores held: 1"},
                          Case{"do open", "file:2: cli do open: connect 2: ", "connections open: 1"},
                          Case{"do quiet", "file:2: cli do quiet: connect 1: ", "what is told is what is told without"},
                          Case{"do deaf", "file:2: cli do deaf: card send 1: ", "running-config gives -1"}}) {
    const Seen seen = run(sweepAll, "save\ncli " + std::string(one.command) + "\nsave\n");
    EXPECT_EQ(seen.result, kDiffers);
    EXPECT_THAT(seen.text, HasSubstr(one.point));
    EXPECT_THAT(seen.text, HasSubstr(one.rule));
    EXPECT_THAT(seen.text, Not(HasSubstr("at the end")));  // what one run leaves is not told of the next
    EXPECT_THAT(seen.text, HasSubstr("0 passed, 1 failed\n"));
  }
}

// A run with nothing failing, and one for each point.
TEST(ScenarioSweep, ReachesEveryPointOnce) {
  const Seen seen = run(sweepAll, "fault alloc 2\ncli do nothing\ncli do deaf\ncli do open\n");
  EXPECT_EQ(seen.result, kDiffers);
  EXPECT_THAT(seen.text, HasSubstr("file: 3 points reached (connect 2, card send 1) in 4 runs\n"));
}

// What the same calls lead to again is swept once.
TEST(ScenarioSweep, FailsEachSiteOnce) {
  const Seen seen = run(sweepSites, "cli do deaf\ncli do deaf\ncli do deaf\n");
  EXPECT_THAT(seen.text, HasSubstr("1 sites, 3 points in 1 files\n"));
  EXPECT_THAT(seen.text, HasSubstr("file: 1 points reached (card send 1) in 2 runs\n"));
}

TEST(ScenarioSweep, FailsWhatComesOnlyOnceSomethingHasFailed) {
  const Seen seen = run(sweepSites, "save\ncli do undo\nsave\n");
  EXPECT_EQ(seen.result, kDiffers);
  EXPECT_THAT(seen.text, HasSubstr("1 sites more that come once something has failed\n"));
  EXPECT_THAT(seen.text, HasSubstr("file:2: cli do undo: alloc 1, card send 1: the node does not answer"));
}

TEST(ScenarioReplay, ShowsWhatARestartChanges) {
  const auto replay = [](const auto& module, const auto& files) { return scenario::replayFiles(module, files, false); };
  EXPECT_EQ(run(replay, "cli do nothing\nfault alloc 1\n").text, "1 passed, 0 failed\n");
  const Seen seen = run(replay, "cli do change\n");
  EXPECT_EQ(seen.result, kDiffers);
  EXPECT_THAT(seen.text, HasSubstr(" do nothing\n-do something\n-no command\n"));
  EXPECT_THAT(seen.text, HasSubstr("startup line 3 failed: no command\n"));
}

TEST(ScenarioRewriting, WritesTheFileAndPrintsWhatItChanged) {
  const auto path = std::filesystem::temp_directory_path() / ("rewriting." + std::to_string(getpid()) + ".scn");
  std::ofstream(path) << "cli do nothing\n= 1\nsave\npool\n...\n";
  bool bad = false;
  const auto scenarios = scenario::loadScenarios({path}, bad);
  ASSERT_FALSE(bad);
  testing::internal::CaptureStdout();
  EXPECT_EQ(scenario::rewriteFiles(FAULTY_MODULE, scenarios, false), kGood);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), path.string() + ":1: cli do nothing\n-= 1\n+= 0\n");
  std::stringstream text;
  text << std::ifstream(path).rdbuf();
  EXPECT_EQ(text.str(), "cli do nothing\n= 0\nsave\npool\n...\n");
  std::filesystem::remove(path);
}

}  // namespace
