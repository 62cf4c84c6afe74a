// Voice ports: numbers over many of them, which no other port may have, and the replay of ports with everything set.

#include <fmt/format.h>

#include <algorithm>
#include <ranges>
#include <string_view>

#include "bench_node.h"
#include "platform/command_line.h"

namespace {

void numbers(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  populate(cards, "pots64");
  bool done = true;
  u32 first = 10000;
  for (auto _ : state) {
    first = first == 10000 ? 20000 : 10000;
    done = done && run(fmt::format("set voice port telephone number 555{} step 1 interface 1-{}/1-64", first, cards));
  }
  if (!done) state.SkipWithError("numbers were refused");
  perPort(state, cards * kPorts);
}

// The lines that a provisioned node prints, executed by a node that begins.
void replay(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  populate(cards, "pots64");
  for (u32 i = 0; i < cards; ++i) {
    const u32 slot = kServiceSlots[i];
    if (!run(fmt::format("set voice port telephone number 555{}00 step 1 interface {}/1-64", slot + 100, slot)) ||
        !run(fmt::format("set voice port user name u start {}00 step 1 interface {}/1-64", slot + 100, slot)) ||
        !run(fmt::format("set voice port sip authentication user a password b interface {}/1-64", slot)) ||
        !run(fmt::format("set voice port enable interface {}/1-64", slot)))
      state.SkipWithError("a port was refused");
  }
  std::string text;  // of the ports alone
  for (const auto line : std::views::split(benchNode().runningConfiguration(), std::string_view("\r\n")))
    if (const std::string_view words(line.begin(), line.end()); words.starts_with("set voice port "))
      text.append(words).append("\r\n");
  u32 failed = 0;
  for (auto _ : state) {
    populate(0, "pots64");
    populate(cards, "pots64");
    benchNode().executeStartup(text, [&](const node::FailedLine&) { ++failed; });
  }
  if (failed != 0) state.SkipWithError("a line failed");
  state.SetItemsProcessed(static_cast<i64>(state.iterations()) * std::ranges::count(text, '\n'));
  perPort(state, cards * kPorts);
}

BENCHMARK(numbers)->Name("numbers of voice ports")->Arg(1)->Arg(4)->Arg(8)->Unit(benchmark::kMicrosecond);
BENCHMARK(replay)->Name("replay of voice ports")->Arg(4)->Arg(8)->Arg(16)->Unit(benchmark::kMillisecond);

}  // namespace
