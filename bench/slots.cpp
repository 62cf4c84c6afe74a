// What the switches of cards and loop detection cost on 1 to 16 cards of 64 ports, so that a cost that grows with their
// number shows; and the database work that they cannot do without.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "bench_node.h"
#include "platform/tables.h"

namespace {

std::string loopLine(u32 cards) { return "set loop detect enable auto-recovery disable interface " + allPorts(cards); }
std::string slotsOf(u32 cards) {
  const std::string ports = allPorts(cards);
  return ports.substr(0, ports.find('/'));
}
std::string stormLine(u32 cards) { return "set storm-suppression unknown enable rate 9 interface " + slotsOf(cards); }
std::string isolationLine(u32 cards) { return "set isolation disable interface " + slotsOf(cards); }

// Cards that are up, with everything set.
u32 prepare(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  populate(0, "adsl64");
  populate(cards, "adsl64");
  for (u32 i = 0; i < cards; ++i) benchNode().cardUp(kServiceSlots[i]);
  if (!run(loopLine(cards)) || !run(stormLine(cards)) || !run(isolationLine(cards)))
    state.SkipWithError("the cards were not prepared");
  return cards;
}

void command(benchmark::State& state, std::string (*line)(u32 cards), const char* part, u32 parts) {
  const u32 cards = prepare(state);
  for (auto _ : state)
    if (!run(line(cards))) state.SkipWithError("refused");
  perPart(state, part, cards * parts);
  populate(0, "adsl64");
}

// Cards that are given their type, which lays down the rows of all ports, and lose it.
void authorise(benchmark::State& state) {
  const u32 cards = prepare(state);
  for (auto _ : state) {
    populate(0, "adsl64");
    populate(cards, "adsl64");
  }
  perPort(state, cards * kPorts);
  populate(0, "adsl64");
}

void showrun(benchmark::State& state) {
  const u32 cards = prepare(state);
  for (auto _ : state) benchmark::DoNotOptimize(benchNode().runningConfiguration());
  perPort(state, cards * kPorts);
  populate(0, "adsl64");
}

// One row found and written in a transaction, which is the least that a port takes.
void storeRow(benchmark::State& state) {
  prepare(state);
  const LOOP_DETECT_ENTRY_CFG_fixed fields{u32{kServiceSlots[0]} << 16 | 1, 1, 0};
  for (auto _ : state) {
    const DbConnection connection = dbCommon_getConnectRes();
    mco_trans_h t = nullptr;
    LOOP_DETECT_ENTRY_CFG row;
    const bool good = mco_trans_start_(connection, DB_READ_WRITE, 0, &t, __FILE__, __LINE__, __func__) == 0 &&
                      LOOP_DETECT_ENTRY_CFG_objTree_find(t, fields.objId, &row) == 0 &&
                      LOOP_DETECT_ENTRY_CFG_fixed_put(&row, &fields) == 0;
    if (mco_trans_commit(t) != 0 || !good) state.SkipWithError("the database refused");
    dbCommon_freeConnectRes(connection);
  }
  perPort(state, 1);
  populate(0, "adsl64");
}

#define CARDS Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond)
BENCHMARK_CAPTURE(command, loop, loopLine, "per port", kPorts)->Name("loop detection")->CARDS;
BENCHMARK_CAPTURE(command, storm, stormLine, "per card", 1)->Name("storm suppression")->CARDS;
BENCHMARK_CAPTURE(command, isolation, isolationLine, "per card", 1)->Name("isolation")->CARDS;
BENCHMARK(authorise)->Name("cards are given a type, and lose it")->CARDS;
BENCHMARK(showrun)->Name("loop detection, running configuration")->CARDS;
BENCHMARK(storeRow)->Name("row of loop detection, written")->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace
