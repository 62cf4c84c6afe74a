// The operators' socket, as msand serves it: an input is the bytes that one terminal sends. What comes back must be
// frames, in the order of the requests, one for each.

#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cstring>
#include <future>
#include <string>
#include <thread>

#include "answering.h"
#include "capture_file.h"
#include "fuzz_node.h"
#include "listener.h"
#include "observing.h"
#include "operator.h"
#include "server.h"
#include "session_record.h"
#include "trace.h"

namespace {

// The operator's words, but for those that start another process, load the module anew or take their time.
struct Words : msand::Service {
  explicit Words(msand::Service& operators) : all(operators) {}

  std::string prompt(const msand::Terminal& terminal) const override { return all.prompt(terminal); }
  std::string suggest(const msand::Terminal& terminal, std::string_view line) override {
    return all.suggest(terminal, line);
  }
  wire::Result run(msand::Terminal& terminal, std::string_view line, std::string& text) override {
    const std::size_t begin = std::min(line.find_first_not_of(" \t"), line.size());
    for (const std::string_view word : {"wr", "check", "compare", "confirm", "rollback"})
      if (line.substr(begin).starts_with(word)) return {};
    if (line.find("delay") != line.npos) return {};
    return all.run(terminal, line, text);
  }

  msand::Service& all;
};

struct Daemon {
  fuzz::Folder folder;
  node::Node& node = fuzz::theNode();
  msand::Trace trace;
  msand::Observing observing{trace};
  cards::DslCards dsl;
  msand::Answering answering{dsl};
  msand::Startup startup{folder.path + "/startup.cfg"};
  msand::Operator operators{node, startup, dsl};
  Words words{operators};
  msand::Door door;
  msand::Listener listener{folder.path + "/socket"};
  Descriptor stop{eventfd(0, EFD_CLOEXEC)};
  std::unique_ptr<msand::Server> server;
  std::thread thread;

  Daemon() {
    constexpr std::size_t kMost = 1 << 20;
    msand::captureFile().configure({folder.path + "/captures", kMost});
    msand::sessionRecord().configure({folder.path + "/captures", kMost});
    listener.open();
    server = std::make_unique<msand::Server>(listener.descriptor(), door, words);
    trace.setSink(server.get());
    thread = std::thread([this] { server->run(stop.get()); });
  }
  ~Daemon() {
    eventfd_write(stop.get(), 1);
    thread.join();
    trace.setSink(nullptr);
  }
};

Daemon& theDaemon() {
  static Daemon one;
  return one;
}

// What a terminal has asked, read without the reader of the daemon.
struct Asked {
  std::string requests;  // L and ?
  bool good = true;      // until the end
};

Asked readAsked(std::string_view bytes) {
  Asked asked;
  while (bytes.size() >= 4) {
    u32 length = 0;
    for (int i = 0; i < 4; ++i) length = length << 8 | static_cast<u8>(bytes[static_cast<std::size_t>(i)]);
    asked.good = length >= 1 && length <= 16384;
    if (!asked.good || bytes.size() < 4 + length) break;
    const char kind = bytes[4];
    asked.good = std::string_view("L?WF").find(kind) != std::string_view::npos;
    if (!asked.good) break;
    if (kind == 'L' || kind == '?') asked.requests += kind;
    bytes.remove_prefix(4 + length);
  }
  return asked;
}

std::string exchange(std::string_view bytes) {
  const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, (theDaemon().folder.path + "/socket").c_str(), sizeof address.sun_path - 1);
  if (connect(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) fuzz::fail("no connection");
  const timeval patience{8, 0};
  setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  // In two pieces. It may be refused ahead of its end.
  const std::size_t cut = bytes.empty() ? 0 : static_cast<u8>(bytes[bytes.size() / 2]) % bytes.size();
  for (const std::string_view piece : {bytes.substr(0, cut), bytes.substr(cut)})
    if (send(socket.get(), piece.data(), piece.size(), MSG_NOSIGNAL) < 0) break;
  shutdown(socket.get(), SHUT_WR);
  std::string told;
  char buffer[65536];
  while (true) {
    const ssize_t got = recv(socket.get(), buffer, sizeof buffer, 0);
    if (got < 0 && errno == EINTR) continue;  // the fuzzer looks at its watch
    if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) fuzz::fail("a terminal is neither answered nor let go");
    if (got <= 0) return told;
    told.append(buffer, static_cast<std::size_t>(got));
  }
}

void hold(const Asked& asked, std::string_view told) {
  wire::FrameReader reader(wire::kMaxFrame);
  reader.feed(told);
  std::string kinds, answered;
  std::size_t size = 0;
  while (const auto frame = reader.next()) {
    const char kind = static_cast<char>(frame->kind);
    size += 5 + frame->payload.size();
    if (kinds.ends_with('B')) fuzz::fail("a frame behind the last one");
    if (kind == 'R' && !wire::readResult(frame->payload)) fuzz::fail("a result that is none");
    if (kind == 'R') answered += 'L';
    if (kind == 'S') answered += '?';
    if (std::string_view("HPTRSMB").find(kind) == std::string_view::npos) fuzz::fail("a frame of an unknown kind");
    kinds += kind;
  }
  if (size != told.size()) fuzz::fail("what is told ends within a frame");
  if (!kinds.starts_with("HP")) fuzz::fail("no greeting: " + kinds);
  if (!asked.requests.starts_with(answered)) fuzz::fail(asked.requests + " was asked, answered " + answered);
  const bool ended = kinds.ends_with('B');
  if (ended ? asked.good && asked.requests == answered : !asked.good)
    fuzz::fail("the session ends as it should not: " + kinds);
  if (!ended && asked.requests != answered) fuzz::fail(asked.requests + " was asked, answered only " + answered);
}

// What is under way for a terminal that was let go ends, too, and what it has had written.
void settle() {
  std::promise<void> through;
  theDaemon().door.post([&] { through.set_value(); });
  through.get_future().wait();
  msand::captureFile().end();
  msand::sessionRecord().end();
  std::filesystem::remove_all(theDaemon().folder.path + "/captures");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  constexpr std::size_t kMost = 128 * 1024;  // what a socket takes without anybody reading
  const std::string_view bytes(reinterpret_cast<const char*>(data), std::min(size, kMost));
  hold(readAsked(bytes), exchange(bytes));
  settle();
  fuzz::checkAtRest();
  return 0;
}
