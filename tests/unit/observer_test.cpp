#include "host/observer.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "host/hex.h"
#include "host/log.h"
#include "platform/database.h"
#include "platform/log.h"

namespace {

using testing::ElementsAre;

struct Record : host::Observer {
  std::vector<std::string> lines;
  void crc(u16 slot, u16 id, int origin) override {
    lines.push_back("crc " + std::to_string(slot) + ' ' + std::to_string(id) + ' ' + std::to_string(origin));
  }
  void log(i32 severity, std::string_view text) override {
    lines.push_back(std::to_string(severity) + ' ' + std::string(text));
  }
};

class Observer : public testing::Test {
 protected:
  Observer() { host::observe(&record_); }
  ~Observer() override { host::observe(nullptr); }
  Record record_;
};

TEST_F(Observer, MayCauseEventsAndPrintItself) {
  struct Nesting : Record {
    void crc(u16 slot, u16 id, int origin) override {
      std::printf("%s", "");
      Record::crc(slot, id, origin);
      if (slot < 3) trigger_obj_crc(static_cast<u16>(slot + 1), 0, 0, id, origin);
    }
  } nesting;
  host::observe(&nesting);
  {
    const host::CaptureOutput capture;
    trigger_obj_crc(1, 0, 0, 7, 0);
  }
  host::observe(nullptr);
  trigger_obj_crc(9, 0, 0, 7, 0);
  EXPECT_THAT(nesting.lines, ElementsAre("crc 1 7 0", "crc 2 7 0", "crc 3 7 0"));
}

TEST_F(Observer, IsToldOneThingAtATimeAndCanBeTakenAway) {
  const auto door = [] {
    for (int i = 0; i < 1000; ++i) trigger_obj_crc(1, 0, 0, 1, 0);
  };
  std::thread other(door);
  door();
  {
    Record passing;
    host::observe(&passing);
    door();
    host::observe(nullptr);
  }
  other.join();
  EXPECT_GE(record_.lines.size(), 1000u);
}

TEST_F(Observer, SeesLogLinesOfEverySeverityAsTheyWereWritten) {
  const std::string text(5000, 'y');
  ulogPrintf(1, 13, "\r\nfailed, ret = %d.\r\n", -1);
  ulogPrintf(1, 10, "%s", text.c_str());
  ulogTypePkt(1, 14, "abc", 3);
  EXPECT_THAT(record_.lines, ElementsAre("13 \r\nfailed, ret = -1.\r\n", "10 " + text));
}

class LogFile : public Observer {
 protected:
  LogFile() { host::openLog(host::LogTo::file, path_); }
  ~LogFile() override {
    host::openLog(host::LogTo::nowhere);
    host::resetSeverities();
    std::filesystem::remove(path_);
  }
  // The lines, without date and time.
  std::string content() const {
    std::ifstream file(path_);
    std::string text, line;
    while (std::getline(file, line)) text += (line.starts_with("20") ? line.substr(24) : line) + '\n';
    return text;
  }
  const std::string path_ = testing::TempDir() + "observer_test_" + std::to_string(getpid()) + ".log";
};

TEST_F(LogFile, HasTheLinesOfWhatIsSwitchedOn) {
  ulogPrintf(1, 10, "off\r\n");
  ulogTypePkt(1, 10, "off", 3);
  ulogPrintf(1, 12, "msan combo init ok! \n\r");
  ulogSetModIgnore(1, 10, 1);
  ulogSetModOutput(1, 10, 1);
  ulogPrintf(1, 10, "\r\non\r\n");
  ulogTypePkt(1, 10, "\x1f\xff", 2);
  ulogSetModIgnore(1, 10, 0);
  ulogSetModOutput(1, 10, 0);
  ulogPrintf(1, 10, "off again\r\n");
  ulogPrintf(1, 13, "two {}\r\nlines\x1b[31m");
  ulogPrintf(1, 14, "\r\n");
  EXPECT_EQ(content(),
            "info msan combo init ok! \ndebug on\ndebug packet of 2 bytes:\n0000: 1f ff\nerror "
            "two {}\\r\\nlines\\x1b[31m\ncritical \n");
}

TEST_F(LogFile, StaysOpenWhenAnotherCannotBeOpened) {
  EXPECT_THROW(host::openLog(host::LogTo::file, "/dev/null/x.log"), std::exception);
  ulogPrintf(1, 13, "still here");
  host::platformError("a complaint %d", 1);
  EXPECT_EQ(content(), "error still here\nerror a complaint 1\n");
  EXPECT_THAT(record_.lines, ElementsAre("13 still here"));
}

TEST_F(LogFile, IsNotFilledByLinesOfOneKind) {
  for (int i = 0; i < 250; ++i) ulogPrintf(1, 13, "from 10.0.0.%d: refused", i);
  ulogPrintf(1, 13, "another");
  std::string passed;
  for (int i = 0; i < 100; ++i) passed += "error from 10.0.0." + std::to_string(i) + ": refused\n";
  EXPECT_EQ(content(), passed + "error another\n");
  host::openLog(host::LogTo::nowhere);
  EXPECT_EQ(content(), passed + "error another\nwarning 150 more lines were like this one: from #.#.#.#: refused\n");
}

TEST_F(Observer, ALogThatTakesNoMoreLosesLinesAndTellsHowManyOnce) {
  const std::string pipe = testing::TempDir() + "observer_test_pipe_" + std::to_string(getpid());
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_THROW(host::openLog(host::LogTo::file, pipe), std::exception) << "nobody reads, and nobody waits";
  const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  host::openLog(host::LogTo::file, pipe);
  std::string written(1 << 20, '\0');
  const auto readAll = [&] { return written.substr(0, static_cast<std::size_t>(read(reader, &written[0], 1 << 20))); };
  for (int i = 0; i < 10; ++i) ulogPrintf(1, 13, "%s", std::string(9975, 'x').c_str());  // 10,006 bytes; 65,536 fit
  const std::string full = readAll();
  EXPECT_LT(full.size(), 65537u);
  const auto lost = 10 - std::ranges::count(full, '\n');
  EXPECT_GE(lost, 4);
  ASSERT_FALSE(full.ends_with('\n')) << "a part of a line fits as well";
  ulogPrintf(1, 13, "after");
  ulogPrintf(1, 13, "and on");
  const std::string rest = readAll();
  EXPECT_TRUE(rest.starts_with("\n20")) << "the torn line ends: " << rest;
  EXPECT_THAT(rest, testing::HasSubstr(" error log: " + std::to_string(lost) +
                                       " lines could not be written: Resource temporarily unavailable\n"));
  EXPECT_THAT(rest, testing::EndsWith(" error and on\n"));
  EXPECT_EQ(std::ranges::count(rest, '\n'), 4);
  host::openLog(host::LogTo::nowhere);
  close(reader);
  std::filesystem::remove(pipe);
}

TEST(Hex, WritesRunsOfSixteenShort) {
  EXPECT_EQ(host::hexText(std::vector<u8>(15, 0)), std::string(30, '0'));
  EXPECT_EQ(host::hexText(std::vector<u8>(16, 0xff)), "ff*16");
}

}  // namespace
