// What ? and Tab cost where most exists: 1,024 ports, 1,023 profiles, a number on every port.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "bench_node.h"
#include "host/terminal.h"

namespace {

constexpr u32 kCards = 16;
constexpr u32 kProfiles = 1023;

void suggest(benchmark::State& state, const char* cards, const char* line) {
  populate(kCards, cards);
  bool good = true;
  for (u32 i = 1; i <= kProfiles; ++i) good = good && run(fmt::format("add adslLine profile profile-{} id {}", i, i));
  if (std::string_view(cards).starts_with("pots"))
    for (u32 i = 0; i < kCards; ++i)
      good = good && run(fmt::format("set voice port telephone number {} step 1 interface {}/1-64",
                                     81000000 + i * kPorts, kServiceSlots[i]));
  std::size_t count = 0;
  for (auto _ : state) count = host::suggestions(CONFIG_NODE, line).size();
  if (!good || count < 2) state.SkipWithError("nothing was offered");
  for (u32 i = 1; i <= kProfiles; ++i) good = good && run(fmt::format("delete adslLine profile id {}", i));
  if (!good) state.SkipWithError("profiles were left");
}

void profiles(benchmark::State& state) { suggest(state, "adsl64", "attach adslLine profile name "); }
void profileIds(benchmark::State& state) { suggest(state, "adsl64", "attach adslLine profile id "); }
void ports(benchmark::State& state) { suggest(state, "adsl64", "attach adslLine profile id 1 interface "); }
void numbers(benchmark::State& state) {
  suggest(state, "pots64", "start call out simulation timeout 60 telephone number ");
}
void words(benchmark::State& state) { suggest(state, "adsl64", ""); }

BENCHMARK(words)->Name("? of all commands")->Unit(benchmark::kMicrosecond);
BENCHMARK(profiles)->Name("? of profile names")->Unit(benchmark::kMicrosecond);
BENCHMARK(profileIds)->Name("? of profile ids")->Unit(benchmark::kMicrosecond);
BENCHMARK(ports)->Name("? of ports")->Unit(benchmark::kMicrosecond);
BENCHMARK(numbers)->Name("? of telephone numbers")->Unit(benchmark::kMicrosecond);

}  // namespace
