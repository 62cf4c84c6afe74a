// The items of the whole node: their replay at a start, and the one that goes to every POTS card.

#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_node.h"
#include "host/agent.h"
#include "host/chassis.h"

namespace {

// The lines that the node prints of itself, executed as a start does.
void replay(benchmark::State& state) {
  const std::string text = benchNode().runningConfiguration();
  u32 failed = 0;
  for (auto _ : state) benchNode().executeStartup(text, [&](const node::FailedLine&) { ++failed; });
  if (failed != 0) state.SkipWithError("a line failed");
}

// 32 bytes of envelope, u32 1, 22 bytes of label, the default parameters, 512 bytes.
void setPotsParameters(benchmark::State& state) {
  constexpr u16 kSlots[] = {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18};
  const auto cards = static_cast<std::size_t>(state.range(0));
  for (std::size_t i = 0; i < std::size(kSlots); ++i) {
    if (i < cards) {
      benchNode().authorise(kSlots[i], *host::findCardType("pots64"));
    } else if (host::authorisedType(kSlots[i]) != nullptr) {
      benchNode().unauthorise(kSlots[i]);
    }
  }
  constexpr u8 kParameters[] = {0, 40, 0,  60, 0,   90, 0, 0, 0, 0,   0,   20,  0,
                                0, 0,  20, 0,  200, 0,  0, 0, 0, 255, 255, 255, 221};
  std::vector<u8> frame(32 + 4 + 560);
  frame[35] = 1;
  std::memcpy(frame.data() + 58, kParameters, sizeof kParameters);
  std::vector<u8> reply(host::kReplyCapacity);
  u32 length = 0;
  const host::Hooks hooks = host::agentHooks();
  for (auto _ : state) {
    std::vector<u8> sent = frame;
    hooks.write(2841, 1, sent.data(), static_cast<i32>(sent.size()), reply.data(), &length, nullptr, nullptr);
  }
  if (length != 4 || reply[3] != 1) state.SkipWithError("SET was refused");
}

BENCHMARK(replay)->Name("replay of the globals")->Unit(benchmark::kMicrosecond);
BENCHMARK(setPotsParameters)->Name("SET of POTS parameters, cards")->Arg(1)->Arg(16)->Unit(benchmark::kMicrosecond);

}  // namespace
