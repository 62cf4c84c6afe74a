// What the VLAN table of a port costs, with eight services on each of 64 to 1024 ports, so that a cost that grows with
// their number shows; and the database work that storing and reading one table cannot do without.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "bench_node.h"
#include "host/agent.h"
#include "host/flow_store.h"
#include "platform/tables.h"

namespace {

constexpr u16 kVlan = 2846;
constexpr u32 kServices = 8;
constexpr u32 kRows = 8;  // of an ADSL port

std::string attachAll(u32 cards, const char* type) {
  const bool pvcs = std::string_view(type).starts_with("adsl");
  return "attach vlan profile bench interface " + allPorts(cards) + (pvcs ? " pvc 0" : "");
}

// Cards of the type whose ports have eight services each, of which one cites a rule.
bool prepare(u32 cards, const char* type) {
  populate(0, type);
  populate(cards, type);
  host::setFlowRule(1, "bench", host::plainFlowRule("bench"));
  run("destroy vlan profile bench");
  bool good = run("create vlan profile bench") && run("add unicast tag cvlan tpid 33024 vid 1 cos 0 rule bench");
  for (u32 i = 1; i < kServices; ++i)
    good = good && run(fmt::format("add unicast transparent cvlan tpid 33024 vid {} cos 1 rule null", 100 + i));
  return good && run(attachAll(cards, type));
}

void attach(benchmark::State& state, const char* type) {
  const auto cards = static_cast<u32>(state.range(0));
  if (!prepare(cards, type)) state.SkipWithError("the ports were not prepared");
  const std::string line = attachAll(cards, type);
  for (auto _ : state)
    if (!run(line)) state.SkipWithError("attach failed");
  perPort(state, cards * kPorts);
  populate(0, type);
}

void showrun(benchmark::State& state, const char* type) {
  const auto cards = static_cast<u32>(state.range(0));
  if (!prepare(cards, type)) state.SkipWithError("the ports were not prepared");
  for (auto _ : state) benchmark::DoNotOptimize(benchNode().runningConfiguration());
  perPort(state, cards * kPorts);
  populate(0, type);
}

void hotplug(benchmark::State& state, const char* type) {
  const auto cards = static_cast<u32>(state.range(0));
  if (!prepare(cards, type)) state.SkipWithError("the ports were not prepared");
  for (auto _ : state)
    for (u32 i = 0; i < cards; ++i) benchNode().cardUp(kServiceSlots[i]);
  perPort(state, cards * kPorts);
  populate(0, type);
}

// The running configuration as a startup configuration: eight lines and an attach for each port, and what else there
// is.
void replay(benchmark::State& state, const char* type) {
  const auto cards = static_cast<u32>(state.range(0));
  if (!prepare(cards, type)) state.SkipWithError("the ports were not prepared");
  const std::string text = benchNode().runningConfiguration();
  u32 failed = 0;
  for (auto _ : state) benchNode().executeStartup(text, [&](const node::FailedLine&) { ++failed; });
  if (failed != 0) state.SkipWithError("a line failed");
  perPort(state, cards * kPorts);
  populate(0, type);
}

// A GET of all ports of one card.
void get(benchmark::State& state) {
  if (!prepare(1, "adsl64")) state.SkipWithError("the ports were not prepared");
  std::vector<u8> frame(56), reply(host::kReplyCapacity);
  put(frame, 32, 4, 1);
  put(frame, 36, 2, kServiceSlots[0]);
  put(frame, 38, 2, 65535);
  u32 length = 0;
  u8 last = 0;
  for (auto _ : state)
    host::agentHooks().read(kVlan, &last, frame.data(), static_cast<i32>(frame.size()), reply.data(), &length, nullptr,
                            nullptr);
  if (length != 40 + kPorts * (22 + 20 * kRows + 34 * kServices)) state.SkipWithError("the GET was refused");
  perPort(state, kPorts);
  populate(0, "adsl64");
}

// The same rows by the calls of the database alone.
void storePort(benchmark::State& state) {
  if (!prepare(1, "adsl64")) state.SkipWithError("the ports were not prepared");
  const u32 object = u32{kServiceSlots[0]} << 16 | 1;
  for (auto _ : state) {
    const DbConnection connection = dbCommon_getConnectRes();
    mco_trans_h t = nullptr;
    bool good = mco_trans_start_(connection, DB_READ_WRITE, 0, &t, __FILE__, __LINE__, __func__) == 0;
    PortService row;
    ServiceCfg service;
    for (u16 i = 0; good && i < kRows; ++i) {
      const PortService_fixed tls{object, i, 0, 33024, 0, 0, 1};
      good = PortService_treeIdx_find(t, object, i, &row) == 0 && PortService_fixed_put(&row, &tls) == 0;
    }
    for (u16 i = 0; good && i < kServices; ++i)
      good = ServiceCfg_treeIdx_find(t, object, 0, i, &service) == 0 && ServiceCfg_delete(&service) == 0;
    for (u16 i = 0; good && i < kServices; ++i) {
      const ServiceCfg_fixed fields{object, 0,     i,     0, 3, 0,     33024, u16(100 + i), 1,
                                    33024,  65535, 65535, 0, 0, 33024, 65535, 65535};
      good = ServiceCfg_new(t, &service) == 0 && ServiceCfg_fixed_put(&service, &fields) == 0;
    }
    if (mco_trans_commit(t) != 0 || !good) state.SkipWithError("the database refused");
    dbCommon_freeConnectRes(connection);
  }
  populate(0, "adsl64");
}

void readPort(benchmark::State& state) {
  if (!prepare(1, "adsl64")) state.SkipWithError("the ports were not prepared");
  const u32 object = u32{kServiceSlots[0]} << 16 | 1;
  for (auto _ : state) {
    const DbConnection connection = dbCommon_getConnectRes();
    mco_trans_h t = nullptr;
    bool good = mco_trans_start_(connection, DB_READ_ONLY, 0, &t, __FILE__, __LINE__, __func__) == 0;
    PortService row;
    PortService_fixed tls;
    ServiceCfg service;
    ServiceCfg_fixed fields;
    for (u16 i = 0; good && i < kRows; ++i)
      good = PortService_treeIdx_find(t, object, i, &row) == 0 && PortService_fixed_get(&row, &tls) == 0;
    for (u16 i = 0; good && i < kServices; ++i)
      good = ServiceCfg_treeIdx_find(t, object, 0, i, &service) == 0 && ServiceCfg_fixed_get(&service, &fields) == 0;
    mco_trans_rollback(t);
    if (!good) state.SkipWithError("the database refused");
    dbCommon_freeConnectRes(connection);
  }
  populate(0, "adsl64");
}

#define CARDS Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond)
BENCHMARK_CAPTURE(attach, adsl, "adsl64")->Name("VLAN attach, ADSL")->CARDS;
BENCHMARK_CAPTURE(attach, vdsl, "vdsl64")->Name("VLAN attach, VDSL")->CARDS;
BENCHMARK_CAPTURE(showrun, adsl, "adsl64")->Name("VLAN running configuration, ADSL")->CARDS;
BENCHMARK_CAPTURE(showrun, vdsl, "vdsl64")->Name("VLAN running configuration, VDSL")->CARDS;
BENCHMARK_CAPTURE(replay, adsl, "adsl64")->Name("VLAN replay, ADSL")->CARDS;
BENCHMARK_CAPTURE(hotplug, adsl, "adsl64")->Name("VLAN cards return, ADSL")->CARDS;
BENCHMARK_CAPTURE(hotplug, vdsl, "vdsl64")->Name("VLAN cards return, VDSL")->CARDS;
BENCHMARK(get)->Name("VLAN GET of a card")->Unit(benchmark::kMicrosecond);
BENCHMARK(storePort)->Name("rows of a VLAN table, written")->Unit(benchmark::kMicrosecond);
BENCHMARK(readPort)->Name("rows of a VLAN table, read")->Unit(benchmark::kMicrosecond);

}  // namespace
