// The operator's socket: many terminals, well-behaved and otherwise, against commands that are made for the test.

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <thread>

#include "listener.h"
#include "server.h"

using namespace std::string_literals;
using namespace std::chrono_literals;
using msand::Listener, msand::Server, msand::Terminal;
using wire::Kind;

// "say X" prints X; "big N" prints N bytes; "slow" takes a while, "once" the first time; "wait" waits to be released;
// "debug", "trace" and "exit" do as they say; "fail" gives -1.
class TestCommands : public msand::Service {
 public:
  std::string prompt(const Terminal& terminal) const override {
    return terminal.level == msand::Level::debug ? "debug> " : "> ";
  }

  wire::Result run(Terminal& terminal, std::string_view line, std::string& text) override {
    EXPECT_EQ(running_++, 0) << "two commands at a time";
    ++ran;
    if (line.starts_with("say ")) text = line.substr(4);
    if (line.starts_with("big ")) text.assign(std::stoul(std::string(line.substr(4))), 'x');
    if (line == "slow") std::this_thread::sleep_for(20ms);
    if (line == "once" && !once_.exchange(true)) std::this_thread::sleep_for(60ms);
    if (line == "wait") wait();
    if (line == "debug") terminal.level = msand::Level::debug;
    if (line == "trace") terminal.trace = msand::TraceForm::brief;
    terminal.ended = line == "exit";
    --running_;
    return {0, line == "fail" ? -1 : 0};
  }

  std::string suggest(const Terminal&, std::string_view line) override { return std::string(line) + "?\t\n"; }

  void awaitWaiting() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return waiting_; });
  }
  void release() {
    const std::lock_guard lock(mutex_);
    released_ = true;
    changed_.notify_all();
  }

  std::atomic<int> ran = 0;

 private:
  void wait() {
    std::unique_lock lock(mutex_);
    waiting_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return released_; });
  }

  std::atomic<int> running_ = 0;
  std::atomic<bool> once_ = false;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool waiting_ = false, released_ = false;
};

// A terminal that has been greeted.
class TestTerminal {
 public:
  explicit TestTerminal(const std::string& path) : socket_(socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un address{AF_UNIX, {}};
    std::strcpy(address.sun_path, path.c_str());
    EXPECT_EQ(connect(socket_.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    const timeval patience{20, 0};
    setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    EXPECT_EQ(next(2), "H(\x04)P(> )");
  }

  void sendBytes(const std::string& bytes) {
    EXPECT_EQ(::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
  }
  void sendLines(const std::vector<std::string>& lines) {
    std::string bytes;
    for (const std::string& line : lines) wire::appendFrame(bytes, Kind::line, line);
    sendBytes(bytes);
  }
  void endInput() { shutdown(socket_.get(), SHUT_WR); }
  void disconnect() { socket_.reset(); }

  // The next frame as "K(payload)", a result as "R(outcome returned)", "end" at the end of the connection.
  std::string next() {
    while (true) {
      if (const auto frame = reader_.next()) {
        const auto result = wire::readResult(frame->payload);
        const std::string payload = frame->kind == Kind::result && result
                                        ? std::to_string(result->outcome) + " " + std::to_string(result->returned)
                                        : std::string(frame->payload);
        return static_cast<char>(frame->kind) + ("(" + payload + ")");
      }
      char bytes[4096];
      const ssize_t got = recv(socket_.get(), bytes, sizeof bytes, 0);
      if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return "nothing for a long time";
      if (got <= 0) return "end";
      reader_.feed({bytes, static_cast<std::size_t>(got)});
    }
  }
  std::string next(int count) {
    std::string frames;
    while (count-- > 0) frames += next();
    return frames;
  }
  void expectServed() {
    sendLines({"say on"});
    EXPECT_EQ(next(2), "T(on)R(0 0)");
  }

 private:
  Descriptor socket_;
  wire::FrameReader reader_{wire::kMaxFrame};
};

class ServerThreads : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(mkdtemp(folder_.data()), nullptr); }

  void start(msand::Limits limits = {}) {
    path_ = folder_ + "/socket";
    listener_.emplace(path_);
    listener_->open();
    door_.emplace();
    server_.emplace(listener_->descriptor(), *door_, commands_, limits);
    thread_ = std::thread([this] { server_->run(stop_.get()); });
  }
  void stop() {
    eventfd_write(stop_.get(), 1);
    if (thread_.joinable()) thread_.join();
  }
  void TearDown() override {
    stop();
    server_.reset();
    listener_.reset();
    EXPECT_TRUE(std::filesystem::is_empty(folder_)) << "the socket and the lock are removed";
    std::filesystem::remove_all(folder_);
  }

  std::string folder_ = testing::TempDir() + "serverXXXXXX";
  std::string path_;
  Descriptor stop_{eventfd(0, EFD_NONBLOCK)};
  std::optional<Listener> listener_;
  std::optional<msand::Door> door_;
  TestCommands commands_;
  std::optional<Server> server_;
  std::thread thread_;
};

TEST_F(ServerThreads, LinesAreAnsweredInTheirOrder) {
  start();
  TestTerminal terminal(path_);
  terminal.sendLines({"say one", "fail", "debug", "say two"});
  EXPECT_EQ(terminal.next(6), "T(one)R(0 0)R(0 -1)P(debug> )R(0 0)T(two)");
  EXPECT_EQ(terminal.next(), "R(0 0)");
  terminal.sendBytes("\0\0\0\x04?set"s);
  EXPECT_EQ(terminal.next(), "S(set?\t\n)");
  terminal.sendLines({"exit", "say three"});
  EXPECT_EQ(terminal.next(2), "B()end");
  EXPECT_EQ(commands_.ran, 5) << "what stands behind exit is not run";
}

TEST_F(ServerThreads, WhatIsNoFrameEndsThatSessionOnly) {
  start();
  TestTerminal good(path_);
  for (const std::string& garbage : {"GET / HTTP/1.1\r\n\r\n"s, "\0\0\0\0"s, "\xff\xff\xff\xff"s, "\0\0\x40\x01L"s}) {
    TestTerminal bad(path_);
    bad.sendBytes(garbage);
    EXPECT_EQ(bad.next(2), "B(a frame of a length that is not allowed)end");
  }
  TestTerminal bad(path_);
  bad.sendBytes("\0\0\0\x02Rx\0\0\0\x06Lsay x"s);
  EXPECT_EQ(bad.next(2), "B(a frame of a kind that is not known)end");
  good.expectServed();
  EXPECT_EQ(commands_.ran, 1);
}

// What it is sent is more than its socket takes, so that the goodbye waits for it to read.
TEST_F(ServerThreads, NothingFollowsAGoodbye) {
  start();
  TestTerminal bad(path_);
  bad.sendLines({"big 400000", "wait"});
  commands_.awaitWaiting();
  bad.sendBytes("\0\0\0\0"s);
  for (int i = 0; i < 2; ++i) TestTerminal behindWhatIsBad(path_);
  commands_.release();
  std::string kinds;
  for (std::string frame = bad.next(); frame != "end"; frame = bad.next()) kinds += frame.front();
  EXPECT_EQ(kinds, "TTTTTTTRB");
}

TEST_F(ServerThreads, ATerminalThatLeavesLosesWhatHasNotBegun) {
  start();
  TestTerminal other(path_);
  TestTerminal leaving(path_);
  leaving.sendLines({"wait", "say never"});
  commands_.awaitWaiting();
  leaving.disconnect();
  TestTerminal next(path_), second(path_);  // by the second of these the server has seen that it left
  commands_.release();
  other.expectServed();
  EXPECT_EQ(commands_.ran, 2);
}

TEST_F(ServerThreads, ATerminalThatDoesNotReadItsTraceIsDisconnected) {
  start({.most = 65536});
  TestTerminal deaf(path_), other(path_);
  deaf.sendLines({"trace"});
  EXPECT_EQ(deaf.next(), "R(0 0)");
  const std::string line(1000, 'x');
  int shown = 0;
  for (; server_->wanted() && shown < 100000; ++shown) server_->show(line);
  EXPECT_GE(shown, 65) << "what fits is kept";
  EXPECT_LT(shown, 2000) << "a socket's buffer and the limit, no more";
  other.expectServed();
  while (deaf.next() == "M(" + line + ")") --shown;
  EXPECT_EQ(deaf.next(), "end");
}

TEST_F(ServerThreads, ATerminalThatDoesNotReadItsAnswersWaitsAndIsDisconnected) {
  start({.patience = 300ms});
  TestTerminal deaf(path_), other(path_);
  deaf.sendLines(std::vector<std::string>(50, "big 1000000"));
  other.expectServed();
  std::this_thread::sleep_for(1500ms);
  EXPECT_LE(commands_.ran, 5) << "its lines wait for it to read";
  std::size_t pieces = 0;
  while (deaf.next() != "end") ASSERT_LT(++pieces, 100u) << "it was not disconnected";
}

TEST_F(ServerThreads, WhatAllLeaveUnreadIsBounded) {
  start({.all = 4'000'000});
  std::vector<TestTerminal> deaf;
  for (int i = 0; i < 20; ++i) deaf.emplace_back(path_).sendLines({"big 1000000", "big 1000000"});
  TestTerminal other(path_);
  for (int i = 0; i < 20; ++i) {
    other.sendLines({"big 1000000"});
    while (!other.next().starts_with("R")) continue;
  }
  int left = 0;
  for (TestTerminal& terminal : deaf) {
    std::string frame;
    while (!(frame = terminal.next()).starts_with("R") && frame != "end") continue;
    left += frame != "end";
  }
  EXPECT_GE(left, 1) << "as many as there is room for";
  EXPECT_LE(left, 6) << "those who read nothing for longest have gone";
}

TEST_F(ServerThreads, WhoAsksForLittleDoesNotWaitForThoseWhoAskForMuch) {
  start();
  TestTerminal first(path_), little(path_);
  std::vector<TestTerminal> much;
  little.sendLines({"once", "once"});  // that it was slow once is forgotten
  EXPECT_EQ(little.next(2), "R(0 0)R(0 0)");
  first.sendLines({"wait"});
  commands_.awaitWaiting();
  for (int i = 0; i < 20; ++i) much.emplace_back(path_);
  for (TestTerminal& terminal : much) terminal.sendLines({"slow", "slow"});
  for (int i = 0; i < 10; ++i) {
    little.sendLines({"once"});
    if (i == 0) {
      TestTerminal last(path_);  // the line has arrived behind all others
      commands_.release();
    }
    EXPECT_EQ(little.next(), "R(0 0)");
  }
  EXPECT_LE(commands_.ran, 2 + 1 + 10 + 18) << "of forty slow lines, one ahead of each of its own, or little more";
}

TEST_F(ServerThreads, ForOneTooManyTheMostSilentOneGoes) {
  start({.terminals = 2});
  TestTerminal silent(path_), talking(path_);
  talking.expectServed();
  TestTerminal third(path_);
  EXPECT_EQ(silent.next(2), "B(there are too many terminals; of whoever has most, this one was silent for longest)end");
  talking.expectServed();
}

TEST_F(ServerThreads, FilesThatNoLineMeansAreBounded) {
  start({.files = 1'000'000});
  TestTerminal one(path_), hoarder(path_), namer(path_);
  std::string piece, names;
  wire::appendFrame(piece, Kind::file, "f\n" + std::string(16000, 'x'));
  one.sendBytes(piece);
  for (int i = 0; i < 62; ++i) hoarder.sendBytes(piece);
  EXPECT_EQ(hoarder.next(2), "B(the files of all terminals have more than 0 MiB, of which this one has most)end");
  one.expectServed();
  for (int i = 0; i < 63; ++i) wire::appendFrame(names, Kind::file, std::string(16000, 'x') + std::to_string(i));
  namer.sendBytes(names);
  EXPECT_EQ(namer.next(2).front(), 'B') << "names count";
}

TEST_F(ServerThreads, StopLetsTheCommandUnderWayEndAndSaysGoodbye) {
  start();
  TestTerminal busy(path_), idle(path_);
  busy.sendLines({"wait", "say never"});
  commands_.awaitWaiting();
  eventfd_write(stop_.get(), 1);
  std::this_thread::sleep_for(50ms);
  commands_.release();
  EXPECT_EQ(idle.next(2), "B(the node is shut down)end");
  EXPECT_EQ(busy.next(3), "R(0 0)B(the node is shut down)end");
  EXPECT_EQ(commands_.ran, 1);
}

// --- the socket itself

static std::string complaint(const std::string& path) {
  try {
    Listener listener(path);
    listener.open();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "none";
}

TEST_F(ServerThreads, AnotherProcesssSocketIsRefusedWhileItIsServed) {
  const std::string path = folder_ + "/node";
  const Descriptor foreign(socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un address{AF_UNIX, {}};
  std::strcpy(address.sun_path, path.c_str());
  ASSERT_EQ(bind(foreign.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(foreign.get(), 1), 0);
  EXPECT_EQ(complaint(path), path + ": is served by another process");
  shutdown(foreign.get(), SHUT_RDWR);
  EXPECT_EQ(complaint(path), "none") << "nobody listens there any more";
}

TEST_F(ServerThreads, WhatIsNoSocketIsLeftAlone) {
  const std::string path = folder_ + "/node";
  std::filesystem::create_directory(path);
  EXPECT_EQ(complaint(path), path + ": is there and is no socket");
  EXPECT_TRUE(std::filesystem::remove(path)) << "the folder is there still";
}
