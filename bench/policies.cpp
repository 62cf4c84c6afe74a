// What flow policies and rules of PVCs cost on 64 to 1024 ports with eight bound PVCs each, so that a cost that grows
// with their number shows; and the database work that they cannot do without.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <vector>

#include "bench_node.h"
#include "host/agent.h"
#include "host/flow_store.h"
#include "platform/tables.h"

namespace {

constexpr u32 kPvcs = 8;
constexpr u16 kPvcPolicy = 2847;

std::string bindLine(u32 cards, u32 pvc) {
  return fmt::format("attach policy interface {} pvc {} up 1 1 down 1 1", allPorts(cards), pvc);
}

// Cards that are up, with a policy and a rule of two entries for both directions on all PVCs.
u32 prepare(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  populate(0, "adsl64");
  populate(cards, "adsl64");
  FlowRule rule;  // behind the node's beginning, which empties the flow store
  rule.count = 2;
  host::setFlowRule(1, "bound", rule);
  host::setFlowPolicy(1, "bound", {});
  bool good = true;
  for (u32 pvc = 0; pvc < kPvcs; ++pvc) good = good && run(bindLine(cards, pvc));
  if (!good) state.SkipWithError("the ports were not prepared");
  return cards;
}

void finish(benchmark::State& state, u32 cards) {
  perPort(state, cards * kPorts);
  populate(0, "adsl64");
  host::clearFlowStore();
}

// One PVC of each port. All eight are stored again, read back and told.
void bind(benchmark::State& state) {
  const u32 cards = prepare(state);
  for (auto _ : state)
    if (!run(bindLine(cards, 3))) state.SkipWithError("refused");
  finish(state, cards);
}

// A SET of all PVCs.
void set(benchmark::State& state) {
  const u32 cards = prepare(state);
  constexpr u32 kItem = 22 + kPvcs * (4 + 12);
  std::vector<u8> frame(36 + cards * kPorts * kItem), reply(host::kReplyCapacity);
  put(frame, 32, 4, cards * kPorts);
  for (u32 i = 0; i < cards * kPorts; ++i) {
    const std::size_t item = 36 + i * kItem;
    put(frame, item, 2, kServiceSlots[i / kPorts]);
    put(frame, item + 2, 2, i % kPorts + 1);
    for (u32 pvc = 0; pvc < kPvcs; ++pvc) {
      const std::size_t at = item + 22 + pvc * 16;
      put(frame, at, 2, pvc);
      for (std::size_t number = 2; number < 12; number += 2) put(frame, at + number, 2, 1);
    }
  }
  u32 length = 0;
  for (auto _ : state)
    host::agentHooks().write(kPvcPolicy, 1, frame.data(), static_cast<i32>(frame.size()), reply.data(), &length,
                             nullptr, nullptr);
  if (length != 4 || reply[3] != 1) state.SkipWithError("the SET was refused");
  finish(state, cards);
}

// Of a policy that no PVC binds, so that all are looked at.
void question(benchmark::State& state) {
  const u32 cards = prepare(state);
  for (auto _ : state) {
    host::setFlowPolicy(2, "unbound", {});
    if (host::removeFlowPolicy(2) != host::FlowRemoval::removed) state.SkipWithError("it is bound");
  }
  finish(state, cards);
}

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

// One of a port's rows found, removed and made again in a transaction: a PVC that is bound takes no less.
void storeRow(benchmark::State& state) {
  const u32 cards = prepare(state);
  const u32 object = u32{kServiceSlots[0]} << 16 | 1;
  const u8 value[68] = {};
  for (auto _ : state) {
    const DbConnection connection = dbCommon_getConnectRes();
    mco_trans_h t = nullptr;
    mco_cursor_t cursor;
    M_QOS_PRF_ATT_RELATION row;
    const bool good = mco_trans_start_(connection, DB_READ_WRITE, 0, &t, __FILE__, __LINE__, __func__) == 0 &&
                      M_QOS_PRF_ATT_RELATION_reTree_index_cursor(t, &cursor) == 0 &&
                      M_QOS_PRF_ATT_RELATION_reTree_search(t, &cursor, DB_EQUAL, object) == 0 &&
                      M_QOS_PRF_ATT_RELATION_from_cursor(t, &cursor, &row) == 0 &&
                      M_QOS_PRF_ATT_RELATION_delete(&row) == 0 && M_QOS_PRF_ATT_RELATION_new(t, &row) == 0 &&
                      M_QOS_PRF_ATT_RELATION_ulObjId_put(&row, object) == 0 &&
                      M_QOS_PRF_ATT_RELATION_atInfo_put_range(&row, 0, sizeof value, value) == 0;
    if (mco_trans_commit(t) != 0 || !good) state.SkipWithError("the database refused");
    dbCommon_freeConnectRes(connection);
  }
  finish(state, cards);
}

#define CARDS Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond)
BENCHMARK(bind)->Name("policies, binding of a PVC")->CARDS;
BENCHMARK(set)->Name("policies, SET of eight PVCs")->CARDS;
BENCHMARK(question)->Name("policies, bind question")->CARDS;
BENCHMARK(hotplug)->Name("policies, cards return")->CARDS;
BENCHMARK(showrun)->Name("policies, running configuration")->CARDS;
BENCHMARK(storeRow)->Name("row of a PVC's policies, written")->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace
