// What a DSL line's state costs: the largest answers, as the card gives them, read by a manager.

#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_node.h"
#include "host/agent.h"
#include "host/links.h"

namespace {

constexpr u32 kTones = 4096;

// What a card answers: so many ports with as many entries each, which no one looks into here.
std::vector<u8> tables(u32 ports, u32 entries, u32 entry) {
  std::vector<u8> answer(4 + ports * (22 + entries * entry), 0x5a);
  put(answer, 0, 4, ports);
  for (u32 port = 1; port <= ports; ++port) {
    const std::size_t at = 4 + (port - 1) * (22 + entries * entry);
    put(answer, at, 2, kServiceSlots[0]);
    put(answer, at + 2, 2, port);
    put(answer, at + 20, 2, entries);
  }
  return answer;
}

// Reads a message of all ports of a card, to the last piece; the bytes of the replies.
std::size_t readAll(u16 id) {
  static std::vector<u8> reply(host::kReplyCapacity);
  std::vector<u8> frame(56);
  put(frame, 32, 4, 1);
  put(frame, 36, 2, kServiceSlots[0]);
  put(frame, 38, 2, 0xFFFF);
  const host::Hooks hooks = host::agentHooks();
  std::size_t bytes = 0;
  u8 last = 0;
  while (last == 0) {
    u32 length = 0;
    hooks.read(id, &last, frame.data(), static_cast<i32>(frame.size()), reply.data(), &length, nullptr, nullptr);
    bytes += length;
    if (length < 36) break;
  }
  return bytes;
}

// The answers are queued anew for each round, outside the measured time.
void read(benchmark::State& state, u16 id, u32 exchanges, const std::vector<u8>& answer) {
  populate(1, "adsl64");
  benchNode().cardUp(kServiceSlots[0]);
  std::size_t bytes = 0;
  for (auto _ : state) {
    state.PauseTiming();
    for (u32 i = 0; i < exchanges; ++i) host::queueAnswer(host::Link::gpon, kServiceSlots[0], id, answer);
    state.ResumeTiming();
    const std::size_t got = readAll(id);
    if (got < exchanges * (answer.size() - 4)) state.SkipWithError("an answer is missing");
    bytes += got;
  }
  state.SetBytesProcessed(static_cast<i64>(bytes));
}

// The gain map of 64 ports with all tones: one exchange for each port.
void gainMap(benchmark::State& state) { read(state, 2827, kPorts, tables(1, kTones, 22)); }
void bitAllocation(benchmark::State& state) { read(state, 2826, kPorts, tables(1, kTones, 4)); }
// Attenuation of 512 groups at 64 ports: one exchange.
void hlog(benchmark::State& state) { read(state, 2831, 1, tables(kPorts, 512, 14)); }

// The same bytes as the gain map, copied once.
void plainCopy(benchmark::State& state) {
  const std::vector<u8> from = tables(kPorts, kTones, 22);
  std::vector<u8> to(from.size());
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), from.size());
    benchmark::DoNotOptimize(to.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<i64>(state.iterations()) * static_cast<i64>(from.size()));
}

BENCHMARK(gainMap)->Name("gain map of a card")->Unit(benchmark::kMillisecond);
BENCHMARK(bitAllocation)->Name("bit allocation of a card")->Unit(benchmark::kMillisecond);
BENCHMARK(hlog)->Name("DELT Hlog of a card")->Unit(benchmark::kMillisecond);
BENCHMARK(plainCopy)->Name("gain map, plain copy")->Unit(benchmark::kMillisecond);

}  // namespace
