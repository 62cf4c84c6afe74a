// What a port costs: the feed values of 1, 4 and 16 cards of 64 ports, so that a cost that grows with their number
// shows.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "bench_node.h"
#include "host/agent.h"

namespace {

constexpr u16 kFeed = 2839;
constexpr u32 kRecord = 60;  // bytes

// A SET of all ports: a request for each half of the cards, since a request holds 960 records.
void setAll(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  populate(cards, "pots64");
  const u32 half = cards > 1 ? cards / 2 : 1;
  std::vector<u8> frame(36 + half * kPorts * kRecord);
  std::vector<u8> reply(host::kReplyCapacity);
  const host::Hooks hooks = host::agentHooks();
  put(frame, 32, 4, half * kPorts);
  u32 length = 0;
  u32 volts = 40;
  for (auto _ : state) {
    volts = volts == 40 ? 41 : 40;
    for (u32 begin = 0; begin < cards; begin += half) {
      for (u32 i = 0; i < half * kPorts; ++i) {
        const std::size_t at = 36 + i * kRecord;
        put(frame, at, 2, kServiceSlots[begin + i / kPorts]);
        put(frame, at + 2, 2, i % kPorts + 1);
        put(frame, at + 20, 4, volts);
        put(frame, at + 24, 4, 20);
      }
      hooks.write(kFeed, 1, frame.data(), static_cast<i32>(frame.size()), reply.data(), &length, nullptr, nullptr);
    }
  }
  if (reply[3] != 1) state.SkipWithError("SET was refused");
  perPort(state, cards * kPorts);
}

// All cards return.
void hotplug(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  populate(cards, "pots64");
  for (auto _ : state)
    for (u32 i = 0; i < cards; ++i) benchNode().cardUp(kServiceSlots[i]);
  perPort(state, cards * kPorts);
}

void showrun(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  populate(cards, "pots64");
  for (auto _ : state) benchmark::DoNotOptimize(benchNode().runningConfiguration());
  perPort(state, cards * kPorts);
}

// A line for each of 1024 ports, with values of its own, once and twice.
void startup(benchmark::State& state) {
  populate(16, "pots64");
  const auto times = static_cast<u32>(state.range(0));
  std::string text;
  for (u32 round = 0; round < times; ++round)
    for (const u16 slot : kServiceSlots)
      for (u32 port = 1; port <= kPorts; ++port)
        text += fmt::format("set pots port feed voltage {} current {} interface {}/{}\r\n", 37 + (slot + round) % 14,
                            18 + port % 30, slot, port);
  u32 failed = 0;
  for (auto _ : state) benchNode().executeStartup(text, [&](const node::FailedLine&) { ++failed; });
  if (failed != 0) state.SkipWithError("a line failed");
  state.SetItemsProcessed(static_cast<i64>(state.iterations()) * 1024 * times);
}

// An interface string of 64 x 64 entries, which then fails at its first slot: the chassis is empty.
void interfaceString(benchmark::State& state) {
  populate(0, "pots64");
  host::LineOutcome outcome;
  Vty vty;
  for (auto _ : state) {
    vty.text.clear();
    outcome = host::runLine(vty, CONFIG_NODE, "set pots port feed voltage 40 current 20 interface 1-64/1-64");
  }
  if (outcome.returned != -1) state.SkipWithError("slots without cards were taken");
  populate(0, "pots64");
}

BENCHMARK(setAll)->Name("SET of feed values")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);
BENCHMARK(hotplug)->Name("cards return")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);
BENCHMARK(showrun)->Name("running configuration")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);
BENCHMARK(startup)->Name("startup of 1024 lines")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(interfaceString)->Name("string of 64 x 64")->Unit(benchmark::kMillisecond);

}  // namespace
