// Requests at the module's doors.

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "bench_node.h"
#include "host/agent.h"

namespace {

constexpr u16 kCidMode = 3087;

// 32 bytes of envelope, a label of 26 bytes, and a unit of 34 bytes that begins with the mode.
constexpr std::size_t kFrame = 92;
constexpr std::size_t kMode = 59;

struct Frame {
  u8 bytes[kFrame] = {};
  Frame() {
    bytes[35] = 1;  // number of units
    bytes[kMode] = 1;
  }
};

struct Reply {
  std::vector<u8> bytes = std::vector<u8>(host::kReplyCapacity);
  u32 length = 0;
};

void set(benchmark::State& state) {
  benchNode();
  const host::Hooks hooks = host::agentHooks();
  Frame frame;
  Reply reply;
  for (auto _ : state) {
    frame.bytes[kMode] ^= 3;  // FSK and DTMF in turn
    Frame sent = frame;
    hooks.write(kCidMode, 1, sent.bytes, kFrame, reply.bytes.data(), &reply.length, nullptr, nullptr);
  }
  constexpr u8 success[4] = {0, 0, 0, 1};
  if (reply.length != 4 || std::memcmp(reply.bytes.data(), success, 4) != 0) state.SkipWithError("SET was refused");
}

void get(benchmark::State& state) {
  benchNode();
  const host::Hooks hooks = host::agentHooks();
  Reply reply;
  u8 frame[32] = {};
  u8 last = 0;
  for (auto _ : state)
    hooks.read(kCidMode, &last, frame, sizeof frame, reply.bytes.data(), &reply.length, nullptr, nullptr);
  if (reply.length != 96) state.SkipWithError("GET was refused");
}

void command(benchmark::State& state) {
  benchNode();
  host::LineOutcome outcome;
  Vty vty;
  for (auto _ : state) {
    vty.text.clear();
    outcome = host::runLine(vty, CONFIG_NODE, "set cid mode dtmf");
  }
  if (outcome.result != host::LineResult::ran || outcome.returned != 0) state.SkipWithError("the command failed");
}

// The bytes of a SET in and out, and nothing else.
void copy(benchmark::State& state) {
  const Frame frame;
  Frame sent;
  u8 reply[4];
  for (auto _ : state) {
    benchmark::DoNotOptimize(sent = frame);
    std::memcpy(reply, sent.bytes + 32, sizeof reply);
    benchmark::DoNotOptimize(reply);
  }
}

}  // namespace

BENCHMARK(set)->Name("SET");
BENCHMARK(get)->Name("GET");
BENCHMARK(command)->Name("command");
BENCHMARK(copy)->Name("copy");
