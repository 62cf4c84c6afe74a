// Greedy clients at both doors of a node, and beside them an operator and a manager who ask for little:
//
//   greedy SOCKET ADDRESS:PORT SECONDS CLIENTS MOST
//
// CLIENTS connections at each door are silent, send what never becomes whole, ask for much and read nothing or little
// of it, or leave in the middle; whom the node turns out comes again. They are a process of their own, as strangers
// are. The operator's commands have to be answered within MOST milliseconds, and nobody of the honest may be turned
// out.

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "descriptor.h"
#include "protocol.h"

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;
using namespace std::string_literals;

namespace {

// --- the doors

struct Doors {
  sockaddr_un operators{};
  sockaddr_in managers{};
};

Doors doorsOf(const std::string& path, const std::string& at) {
  Doors doors;
  doors.operators.sun_family = AF_UNIX;
  std::strncpy(doors.operators.sun_path, path.c_str(), sizeof doors.operators.sun_path - 1);
  const std::size_t colon = at.find(':');
  doors.managers.sin_family = AF_INET;
  doors.managers.sin_port = htons(static_cast<in_port_t>(std::atoi(at.c_str() + colon + 1)));
  inet_pton(AF_INET, at.substr(0, colon).c_str(), &doors.managers.sin_addr);
  return doors;
}

Descriptor enterOperators(const Doors& doors, int flags) {
  Descriptor made(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
  const auto* at = reinterpret_cast<const sockaddr*>(&doors.operators);
  return made && connect(made.get(), at, sizeof doors.operators) == 0 ? std::move(made) : Descriptor();
}

// From an address of this machine, as 127.0.0.2.
Descriptor enterManagers(const Doors& doors, const char* from, int flags) {
  Descriptor made(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
  sockaddr_in own{};
  own.sin_family = AF_INET;
  inet_pton(AF_INET, from, &own.sin_addr);
  const auto* at = reinterpret_cast<const sockaddr*>(&doors.managers);
  if (!made || bind(made.get(), reinterpret_cast<const sockaddr*>(&own), sizeof own) != 0) return {};
  return connect(made.get(), at, sizeof doors.managers) == 0 || errno == EINPROGRESS ? std::move(made) : Descriptor();
}

std::string lines(const char* line, int count) {
  std::string frames;
  while (count-- > 0) wire::appendFrame(frames, wire::Kind::line, line);
  return frames;
}

// GETs of version 2c, community "public": of sysName.0, and of what was last told to the query of message 3087.
const std::string kGetName =
    "\x30\x26\x02\x01\x01\x04\x06public\xa0\x19\x02\x01\x01\x02\x01\x00\x02\x01\x00\x30\x0e\x30\x0c"
    "\x06\x08\x2b\x06\x01\x02\x01\x01\x05\x00\x05\x00"s;
const std::string kGetQuery =
    "\x30\x2e\x02\x01\x01\x04\x06public\xa0\x21\x02\x01\x01\x02\x01\x00\x02\x01\x00\x30\x16\x30\x14\x06\x10"
    "\x2b\x06\x01\x04\x01\xbf\x08\xce\x0f\xce\x0f\x01\x01\x04\x98\x0f\x05\x00"s;

std::string times(const std::string& text, int count) {
  std::string all;
  while (count-- > 0) all += text;
  return all;
}

// --- the greedy

// What a client does: sends all of a text, so many bytes at a time and again from its beginning or once; reads so many
// bytes at a time; leaves when it has sent it once.
struct Manner {
  std::string text;
  std::size_t atATime = 1 << 16;
  bool again = false;
  std::size_t reads = 0;
  bool leaves = false;
};

// Pieces of a thousand files, which are hardly more than their names.
std::string hoard() {
  std::string pieces;
  for (int i = 0; i < 1000; ++i)
    wire::appendFrame(pieces, wire::Kind::file, std::to_string(i) + std::string(16000, 'x') + "\n");
  return pieces;
}

std::vector<Manner> mannersOfOperators() {
  return {
      {.text = ""},                                                      // silent
      {.text = "\0\0\x40\0L"s + std::string(16000, ' '), .atATime = 1},  // a line that never ends
      {.text = lines("show running-config", 64), .again = true},         // asks and does not read
      {.text = lines("show running-config", 64), .again = true, .reads = 1},
      {.text = lines("help all", 64) + lines("trace full", 1), .again = true},
      {.text = lines("show running-config ", 3), .leaves = true},  // asks and leaves
      {.text = hoard()},                                           // files, and no line that would mean them
      {.text = "\0\0\0\1?"s, .again = true, .reads = 1 << 16},     // asks as fast as it can
  };
}

std::vector<Manner> mannersOfManagers() {
  return {
      {.text = ""},
      {.text = "\x30\x83\x0f\xff\xf0"s + std::string(100000, '\0'), .atATime = 1},
      {.text = times(kGetQuery, 64), .again = true},
      {.text = times(kGetQuery, 64), .again = true, .reads = 20000},
      {.text = times(kGetQuery, 3), .leaves = true},
      {.text = "\x30\x83\x0f\xff\xf0"s + std::string(0xfff00, '\0')},
      {.text = times(kGetName, 10), .again = true, .reads = 1 << 16},
  };
}

struct Client {
  const Manner& manner;
  bool isManager;
  Descriptor socket{};
  std::size_t sent = 0;
};

std::atomic<bool> over{false};
std::atomic<long>* made = nullptr;  // connections; shared with the parent

void enter(Client& client, const Doors& doors) {
  client.socket =
      client.isManager ? enterManagers(doors, "127.0.0.1", SOCK_NONBLOCK) : enterOperators(doors, SOCK_NONBLOCK);
  client.sent = 0;
  if (client.socket) ++*made;
}

// One step of a client; false: the node has turned it out, or it leaves.
bool step(Client& client) {
  static std::array<char, 1 << 16> sink;
  pollfd state{client.socket.get(), POLLRDHUP, 0};
  poll(&state, 1, 0);
  if ((state.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0) return false;
  const Manner& manner = client.manner;
  if (manner.reads != 0 && recv(client.socket.get(), sink.data(), manner.reads, MSG_DONTWAIT) == 0) return false;
  const std::string_view rest = std::string_view(manner.text).substr(client.sent, manner.atATime);
  const ssize_t sent =
      rest.empty() ? 0 : send(client.socket.get(), rest.data(), rest.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  if (sent < 0) return errno == EAGAIN || errno == EINTR || errno == ENOTCONN;
  client.sent += static_cast<std::size_t>(sent);
  if (client.sent < manner.text.size()) return true;
  if (manner.again) client.sent = 0;
  return !manner.leaves;
}

void beGreedy(const Doors& doors, int count) {
  const std::array manners = {mannersOfOperators(), mannersOfManagers()};
  std::vector<Client> clients;
  for (int i = 0; i < count; ++i)
    for (const bool manager : {false, true}) {
      const auto& all = manners[manager ? 1 : 0];
      clients.push_back({all[static_cast<std::size_t>(i) % all.size()], manager});
    }
  while (!over) {
    for (Client& client : clients) {
      if (over) break;
      if (!client.socket) enter(client, doors);
      if (client.socket && !step(client)) client.socket.reset();
    }
    std::this_thread::sleep_for(10ms);
  }
}

// --- the honest

struct Times {
  std::vector<double> took{};  // milliseconds
  std::string trouble{};
  void add(Clock::time_point began) {
    took.push_back(std::chrono::duration<double, std::milli>(Clock::now() - began).count());
  }
  double worst() const { return took.empty() ? 0 : *std::ranges::max_element(took); }
  std::string text() {
    if (took.empty()) return "none";
    std::ranges::sort(took);
    std::array<char, 100> text;
    std::snprintf(text.data(), text.size(), "%zu, median %.1f ms, 99 %% within %.1f ms, worst %.1f ms", took.size(),
                  took[took.size() / 2], took[took.size() * 99 / 100], took.back());
    return text.data();
  }
};

class Operator {
 public:
  explicit Operator(const Doors& doors) : socket_(enterOperators(doors, 0)) {
    const timeval patience{10, 0};
    setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  }

  // Why it got no good result; empty if it did.
  std::string ask(const char* line) {
    const std::string frame = lines(line, 1);
    if (!socket_) return "no connection";
    send(socket_.get(), frame.data(), frame.size(), MSG_NOSIGNAL);
    while (true) {
      while (const auto got = reader_.next()) {
        if (got->kind == wire::Kind::bye) return "turned out: " + std::string(got->payload);
        if (got->kind != wire::Kind::result) continue;
        const auto result = wire::readResult(got->payload);
        return result && result->good() ? "" : "a command failed";
      }
      std::array<char, 65536> bytes;
      const ssize_t got = recv(socket_.get(), bytes.data(), bytes.size(), 0);
      if (got <= 0) return got == 0 ? "turned out" : "no answer within 10 s";
      reader_.feed({bytes.data(), static_cast<std::size_t>(got)});
    }
  }

 private:
  Descriptor socket_;
  wire::FrameReader reader_{wire::kMaxFrame};
};

constexpr const char* kCommand = "show cid mode";

// One that stays, and one that comes anew each time.
void operate(const Doors& doors, Times& staying, Times& coming) {
  Operator silent(doors), stays(doors);
  while (!over && staying.trouble.empty() && coming.trouble.empty()) {
    auto began = Clock::now();
    staying.trouble = stays.ask(kCommand);
    staying.add(began);
    began = Clock::now();
    coming.trouble = Operator(doors).ask(kCommand);
    coming.add(began);
    std::this_thread::sleep_for(10ms);
  }
  if (const std::string trouble = silent.ask(kCommand); !trouble.empty() && staying.trouble.empty())
    staying.trouble = "one that was silent: " + trouble;
}

void manage(const Doors& doors, Times& times) {
  const Descriptor socket = enterManagers(doors, "127.0.0.2", 0);
  const timeval patience{10, 0};
  setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  while (!over) {
    const auto began = Clock::now();
    std::array<char, 4> answer;
    send(socket.get(), kGetName.data(), kGetName.size(), MSG_NOSIGNAL);
    // sysName "msan": the answer is longer than the question by these four letters.
    for (std::size_t missing = kGetName.size() + answer.size(); missing > 0;) {
      const ssize_t got = recv(socket.get(), answer.data(), std::min(missing, answer.size()), 0);
      if (got <= 0) {
        times.trouble = got == 0 || errno == ECONNRESET ? "turned out" : "no answer within 10 s";
        return;
      }
      missing -= static_cast<std::size_t>(got);
    }
    times.add(began);
    if (std::string_view(answer.data(), answer.size()) != "msan") times.trouble = "another answer";
    std::this_thread::sleep_for(20ms);
  }
}

// How late the machine itself is.
void sleepBriefly(Times& late) {
  while (!over) {
    const auto due = Clock::now() + 2ms;
    std::this_thread::sleep_until(due);
    late.add(due);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) return std::fputs("greedy SOCKET ADDRESS:PORT SECONDS CLIENTS MOST\n", stderr), 2;
  const Doors doors = doorsOf(argv[1], argv[2]);
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  files.rlim_cur = files.rlim_max;
  setrlimit(RLIMIT_NOFILE, &files);
  std::array<int, 2> counted;
  if (pipe(counted.data()) != 0) return 2;

  const pid_t greedy = fork();
  if (greedy == 0) {
    std::atomic<long> connections{0};
    made = &connections;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::signal(SIGTERM, [](int) { over = true; });
    setpriority(PRIO_PROCESS, 0, 10);  // the machine's time is not what they are greedy for
    beGreedy(doors, std::atoi(argv[4]));
    const long told = connections;
    _exit(write(counted[1], &told, sizeof told) == sizeof told ? 0 : 1);
  }
  Times staying, coming, managing, late;
  std::thread operators([&] { operate(doors, staying, coming); });
  std::thread managers([&] { manage(doors, managing); });
  std::thread clock([&] { sleepBriefly(late); });
  std::this_thread::sleep_for(std::chrono::seconds(std::atoi(argv[3])));
  over = true;
  operators.join();
  managers.join();
  clock.join();
  kill(greedy, SIGTERM);
  long connections = 0;
  close(counted[1]);
  if (read(counted[0], &connections, sizeof connections) != sizeof connections) return 2;
  waitpid(greedy, nullptr, 0);

  int bad = 0;
  for (auto& [who, times] : {std::pair<const char*, Times&>{"an operator who stays", staying},
                             {"an operator who comes anew", coming},
                             {"a manager who stays", managing}}) {
    std::printf("%s: %s %s\n", who, times.text().c_str(), times.trouble.c_str());
    if (!times.trouble.empty()) bad = 1;
  }
  if (std::max(staying.worst(), coming.worst()) > std::atof(argv[5]) + late.worst()) bad = 1;
  std::printf("%ld greedy connections; the machine itself was late by %.1f ms at most\n", connections, late.worst());
  return bad;
}
