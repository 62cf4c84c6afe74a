// The managers' door: an input is a list of steps.
//   kind:1    0 a datagram, 1 bytes of a stream, 2 a request by datagram, 3 one over the stream; the rest counts
//   length:2  of what follows, at most what is left of the input
//   bytes     of a request: kind:1, its two numbers:1:1, and its variables, of which each is
//             place:1 (kPlaces), parts:1, that many of its name:2:2..., tag:1, length:2, value
// Numbers are big-endian. Whatever it was, the agent answers the next one, and keeps nothing of it.

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "agent.h"
#include "answering.h"
#include "ber.h"
#include "descriptor.h"
#include "fuzz_node.h"
#include "host/agent.h"

namespace {

using Input = std::string_view;

constexpr u32 kFrames[] = {1, 3, 6, 1, 4, 1, 8072, 9999, 9999, 1, 1};
const std::vector<std::vector<u32>> kPlaces = {
    {1, 3, 6, 1, 4, 1, 8072, 9999, 9999, 1, 1},  // columns of frames, behind them the message
    {1, 3, 6, 1, 2, 1, 1},                       // the node
    {1, 3, 6, 1, 2, 1, 2},                       // interfaces
    {1, 3, 6, 1, 2, 1, 2, 2, 1},
    {1, 3, 6, 1, 2, 1, 31, 1, 1, 1},
    {1, 3, 6, 1, 2, 1, 10, 94, 1, 1},  // ADSL lines, their state and their profiles
    {1, 3, 6, 1, 2, 1, 10, 94, 1, 1, 1, 1},
    {1, 3, 6, 1, 2, 1, 10, 94, 1, 1, 14, 1},
    {1, 3, 6, 1, 2, 1, 10, 94, 1, 1, 15, 1},
    {1, 3},
};

Input take(Input& input, std::size_t size) {
  const Input taken = input.substr(0, size);
  input.remove_prefix(taken.size());
  return taken;
}

u32 takeNumber(Input& input, std::size_t bytes) {
  u32 number = 0;
  for (const char byte : take(input, bytes)) number = number << 8 | static_cast<u8>(byte);
  return number;
}

sockaddr_in at(u32 address, u16 port) {
  sockaddr_in one{};
  one.sin_family = AF_INET;
  one.sin_addr.s_addr = htonl(address);
  one.sin_port = htons(port);
  return one;
}

constexpr u32 kHere = 0x7f000001;

Descriptor openSocket(int type, u32 from) {
  Descriptor made(socket(AF_INET, type | SOCK_CLOEXEC, 0));
  const sockaddr_in own = at(from, 0);
  const timeval patience{8, 0};
  setsockopt(made.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  if (bind(made.get(), reinterpret_cast<const sockaddr*>(&own), sizeof own) != 0) fuzz::fail("no socket");
  return made;
}

u16 freePort() {
  const Descriptor one = openSocket(SOCK_STREAM, kHere);
  sockaddr_in own{};
  socklen_t size = sizeof own;
  getsockname(one.get(), reinterpret_cast<sockaddr*>(&own), &size);
  return ntohs(own.sin_port);
}

msand::SnmpSettings settings(u16 port) {
  msand::SnmpSettings told;
  const std::string address = "127.0.0.1:" + std::to_string(port);
  told.listen = {"udp:" + address, "tcp:" + address};
  told.communities = {{"public", "", true}, {"reader", "", false}};
  told.users = {{"operator", "SHA", "authentication", "privacy-of-it", true}};
  return told;
}

struct Daemon {
  fuzz::Folder folder;
  cards::DslCards dsl;
  msand::Answering answering{dsl};
  const u16 port = freePort();
  msand::Agent agent{settings(port), folder.path, fuzz::theNode().module()};
  Descriptor asker = openSocket(SOCK_DGRAM, kHere);
  std::ptrdiff_t sockets = 0;

  void send(const Descriptor& from, const std::string& bytes) const {
    const sockaddr_in agentAt = at(kHere, port);
    sendto(from.get(), bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&agentAt), sizeof agentAt);
  }
};

Daemon& theDaemon() {
  static Daemon one;
  return one;
}

// The fuzzer opens and closes files of its own.
std::ptrdiff_t openSockets() {
  return std::ranges::count_if(std::filesystem::directory_iterator("/proc/self/fd"), [](const auto& one) {
    std::error_code gone;
    return std::filesystem::read_symlink(one, gone).string().starts_with("socket:");
  });
}

std::string variable(std::vector<u32> place, u32 column, u32 message, u8 tag, const std::string& value) {
  place.insert(place.end(), {column, message});
  return ber::tagged(0x30, ber::name(place) + ber::tagged(tag, value));
}

// A question of the module by a manager who does no harm, behind all that was asked ahead of it. What it answers.
std::string ask(u8 pdu, const std::string& variables) {
  static u32 id = 0x1000000;
  ++id;
  theDaemon().send(theDaemon().asker, ber::message("public", pdu, id, 0, 0, variables));
  std::string answer;
  do {
    answer.resize(1 << 16);
    ssize_t got = 0;
    do  // the fuzzer looks at its watch
      got = recv(theDaemon().asker.get(), answer.data(), answer.size(), 0);
    while (got < 0 && errno == EINTR);
    if (got <= 0) fuzz::fail("the agent does not answer any more");
    answer.resize(static_cast<std::size_t>(got));
    if (!ber::isWhole(0x30, answer)) fuzz::fail("an answer that is no message");
  } while (answer.find(ber::number(id)) == answer.npos);
  return answer;
}

constexpr u8 kGet = 0xa0, kSet = 0xa3, kOctets = 4, kNull = 5;

void askAnything() { ask(kGet, variable({std::begin(kFrames), std::end(kFrames)}, 6, 3087, kNull, "")); }

// Pieces of frames and of answers that nobody has come back for.
void finish() {
  const std::vector<u32> frames(std::begin(kFrames), std::end(kFrames));
  for (const host::Announced& one : host::announcedMessages()) {
    ask(kSet, variable(frames, 1, one.id, kOctets, ""));
    const std::string last = variable(frames, 6, one.id, 2, std::string(1, '\1'));
    for (int piece = 0; piece < 32; ++piece) {
      ask(kGet, variable(frames, 5, one.id, kNull, ""));
      if (ask(kGet, variable(frames, 6, one.id, kNull, "")).find(last) != std::string::npos) break;
    }
  }
}

std::string readVariables(Input input) {
  std::string all;
  while (!input.empty()) {
    std::vector<u32> name = kPlaces[takeNumber(input, 1) % kPlaces.size()];
    for (u32 parts = takeNumber(input, 1) % 24; parts != 0; --parts) name.push_back(takeNumber(input, 2));
    const u8 tag = static_cast<u8>(takeNumber(input, 1));
    const std::size_t length = takeNumber(input, 2);
    all += ber::tagged(0x30, ber::name(name) + ber::tagged(tag, std::string(take(input, length))));
  }
  return all;
}

std::string readRequest(Input input) {
  constexpr u8 kKinds[] = {0xa0, 0xa1, 0xa3, 0xa5, 0xa6, 0xa7, 0xa2, 0xa8};
  const u32 kind = takeNumber(input, 1);
  const u32 first = takeNumber(input, 1), second = takeNumber(input, 1);
  const char* community = (kind & 0x40) != 0 ? "reader" : "public";
  return ber::message(community, kKinds[kind % std::size(kKinds)], 1, first, second, readVariables(input));
}

// The steps, from an address of this input's own: who has proved himself wrongly is not heard for a while.
void play(Input input) {
  static u32 inputs = 0;
  const u32 from = 0x7f010000 + ++inputs % 0xf00000;
  const Descriptor datagrams = openSocket(SOCK_DGRAM, from);
  Descriptor stream;
  constexpr int kMost = 64;  // the system drops datagrams for which there is no room
  for (int steps = 0; !input.empty() && steps < kMost; ++steps) {
    const u32 kind = takeNumber(input, 1) % 4;
    const std::size_t length = takeNumber(input, 2);
    const Input step = take(input, length);
    const std::string bytes = kind < 2 ? std::string(step) : readRequest(step);
    if (kind % 2 == 0) {
      theDaemon().send(datagrams, bytes);
      continue;
    }
    const sockaddr_in agentAt = at(kHere, theDaemon().port);
    if (!stream) {
      stream = openSocket(SOCK_STREAM, from);
      if (connect(stream.get(), reinterpret_cast<const sockaddr*>(&agentAt), sizeof agentAt) != 0)
        fuzz::fail("the agent takes no stream");
    }
    send(stream.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  }
  askAnything();
  std::string answer(1 << 16, '\0');
  while (true) {
    const ssize_t got = recv(datagrams.get(), answer.data(), answer.size(), MSG_DONTWAIT);
    if (got <= 0) break;
    if (!ber::isWhole(0x30, std::string_view(answer).substr(0, static_cast<std::size_t>(got))))
      fuzz::fail("an answer that is no message");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  Daemon& daemon = theDaemon();
  if (daemon.sockets == 0) {
    askAnything();
    daemon.sockets = openSockets();
  }
  play({reinterpret_cast<const char*>(data), size});
  askAnything();
  if (!fuzz::isAtRest()) finish();
  if (!fuzz::comesTrue([&] { return openSockets() == daemon.sockets; })) fuzz::fail("a socket is left open");
  fuzz::comesTrue(fuzz::isAtRest);
  fuzz::checkAtRest();
  return 0;
}
