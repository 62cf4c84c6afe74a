// What rate limits, MAC limits and queue schedules cost on 64 to 1024 ports, so that a cost that grows with their
// number shows; and the database work that they cannot do without.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "bench_node.h"
#include "platform/tables.h"

namespace {

std::string rateLine(u32 rate) {
  return fmt::format("set rate-limit id 1 name bench us-status enable us-cir {} ds-status enable ds-cir 64", rate);
}

std::string bindLine(u32 cards) { return "attach rate-limit profile id 1 interface " + allPorts(cards); }
std::string limitLine(u32 cards, u32 pvc) {
  return fmt::format("set mac limit enable number 5 interface {} pvc {}", allPorts(cards), pvc);
}
std::string queueLine(u32 cards) {
  return "set queue schedule interface " + allPorts(cards) + " mode wrr 1 2 3 4 5 6 7 8";
}

// Cards that are up, with all three on every port, the limits on all PVCs.
u32 prepare(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  populate(0, "adsl64");
  populate(cards, "adsl64");
  for (u32 i = 0; i < cards; ++i) benchNode().cardUp(kServiceSlots[i]);
  bool good = run(rateLine(64)) && run(bindLine(cards)) && run(queueLine(cards));
  for (u32 pvc = 0; pvc < 8; ++pvc) good = good && run(limitLine(cards, pvc));
  if (!good) state.SkipWithError("the ports were not prepared");
  return cards;
}

void finish(benchmark::State& state, u32 cards) {
  perPort(state, cards * kPorts);
  populate(0, "adsl64");
}

// A bound profile that changes.
void change(benchmark::State& state) {
  const u32 cards = prepare(state);
  u32 rate = 64;
  for (auto _ : state)
    if (!run(rateLine(++rate))) state.SkipWithError("refused");
  finish(state, cards);
}

void command(benchmark::State& state, std::string (*line)(u32 cards)) {
  const u32 cards = prepare(state);
  for (auto _ : state)
    if (!run(line(cards))) state.SkipWithError("refused");
  finish(state, cards);
}
std::string limitPvc3(u32 cards) { return limitLine(cards, 3); }

void hotplug(benchmark::State& state) {
  const u32 cards = prepare(state);
  for (auto _ : state)
    for (u32 i = 0; i < cards; ++i) benchNode().cardUp(kServiceSlots[i]);
  finish(state, cards);
}

void showrun(benchmark::State& state) {
  const u32 cards = prepare(state);
  for (auto _ : state) benchmark::DoNotOptimize(benchNode().runningConfiguration());
  finish(state, cards);
}

// One row found and written in a transaction, which is the least that a binding takes.
void storeBinding(benchmark::State& state) {
  const u32 cards = prepare(state);
  const u32 object = u32{kServiceSlots[0]} << 16 | 1;
  for (auto _ : state) {
    const DbConnection connection = dbCommon_getConnectRes();
    mco_trans_h t = nullptr;
    PortRateBind row;
    const PortRateBind_fixed fields{object, 1};
    const bool good = mco_trans_start_(connection, DB_READ_WRITE, 0, &t, __FILE__, __LINE__, __func__) == 0 &&
                      PortRateBind_treeidx_find(t, object, &row) == 0 && PortRateBind_fixed_put(&row, &fields) == 0;
    if (mco_trans_commit(t) != 0 || !good) state.SkipWithError("the database refused");
    dbCommon_freeConnectRes(connection);
  }
  finish(state, cards);
}

#define CARDS Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond)
BENCHMARK(change)->Name("rate limit, change of a bound profile")->CARDS;
BENCHMARK_CAPTURE(command, bind, bindLine)->Name("rate limit, binding")->CARDS;
BENCHMARK_CAPTURE(command, limit, limitPvc3)->Name("MAC limit of a PVC")->CARDS;
BENCHMARK_CAPTURE(command, queue, queueLine)->Name("queue schedule")->CARDS;
BENCHMARK(hotplug)->Name("data items, cards return")->CARDS;
BENCHMARK(showrun)->Name("data items, running configuration")->CARDS;
BENCHMARK(storeBinding)->Name("row of a binding, written")->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace
