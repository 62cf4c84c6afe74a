// What simulated lines cost: their training at start, and what their cards are asked.

#include <benchmark/benchmark.h>

#include "bench_node.h"
#include "cards/dsl_cards.h"
#include "host/chassis.h"

namespace {

using cards::DslCards, cards::Site;

// All ports of 16 cards in service, as a start of the node tells them; `lengths` different lines.
class Lines {
 public:
  explicit Lines(u32 lengths) : dsl_([this] { return now_; }) {
    for (const u16 slot : kServiceSlots) {
      host::setCardState(slot, host::CardState::up);
      for (u16 port = 1; port <= kPorts; ++port) dsl_.setSite(slot, port, site(slot, port, lengths));
    }
  }

  ~Lines() {
    for (const u16 slot : kServiceSlots) host::setCardState(slot, host::CardState::absent);
  }

  void enable() {
    for (const u16 slot : kServiceSlots) {
      std::vector<u8> message(4);
      put(message, 0, 4, kPorts);
      for (u32 port = 1; port <= kPorts; ++port) {
        const std::size_t at = message.size();
        message.resize(at + 37);
        put(message, at, 2, slot);
        put(message, at + 2, 2, port);
        message[at + 20] = 1;
      }
      dsl_.hear(host::Link::gpon, slot, 2840, message);
    }
    now_ += std::chrono::seconds(5);
  }

  std::vector<u8> ask(u16 id, u16 slot, u16 port) {
    std::vector<u8> question(24);
    put(question, 0, 4, 1);
    put(question, 4, 2, slot);
    put(question, 6, 2, port);
    return dsl_.answer(host::Link::gpon, slot, id, question).value_or(std::vector<u8>());
  }

  // The net rates of all ports.
  bool allAreUp() {
    for (const u16 slot : kServiceSlots) {
      const std::vector<u8> answer = ask(2825, slot, 65535);
      for (std::size_t port = 0; port < kPorts; ++port)
        if (answer.size() != 4 + kPorts * 102 || answer[4 + port * 102 + 23] != 4) return false;
    }
    return true;
  }

 private:
  static Site site(u16 slot, u16 port, u32 lengths) {
    Site site;
    site.plant.loop.metres = 500 + (slot * kPorts + port) % lengths;
    return site;
  }

  cards::Time now_{};
  DslCards dsl_;
};

// From the messages of a start to the state of all ports.
void training(benchmark::State& state, const char* card, u32 lengths) {
  populate(std::size(kServiceSlots), card);
  for (auto _ : state) {
    state.PauseTiming();
    Lines lines(lengths);
    state.ResumeTiming();
    lines.enable();
    if (!lines.allAreUp()) state.SkipWithError("a line is down");
  }
}

void answer(benchmark::State& state, u16 id, u16 port) {
  populate(std::size(kServiceSlots), "vdsl64");
  Lines lines(10);
  lines.enable();
  if (!lines.allAreUp()) state.SkipWithError("a line is down");
  for (auto _ : state) benchmark::DoNotOptimize(lines.ask(id, 1, port));
}

void oneLine(benchmark::State& state) {
  u32 metres = 100;
  line::Order order;
  order.mode = line::Mode::p17a;
  for (auto _ : state) benchmark::DoNotOptimize(line::train({{line::Gauge::mm04, ++metres, 30}}, order));
}

// clang-format off
BENCHMARK_CAPTURE(training, adsl, "adsl64", 10)->Name("DSL lines: 1024 ADSL ports, 10 kinds")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(training, vdsl, "vdsl64", 10)->Name("DSL lines: 1024 VDSL ports, 10 kinds")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(training, each, "adsl64", 1500)->Name("DSL lines: 1024 ADSL ports, all different")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(answer, status, 2825, 1)->Name("DSL lines: state of a port")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(answer, card, 2825, 65535)->Name("DSL lines: state of a card")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(answer, bits, 2826, 1)->Name("DSL lines: bits of a VDSL port")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(answer, hlog, 2831, 1)->Name("DSL lines: Hlog of a VDSL port")->Unit(benchmark::kMicrosecond);
BENCHMARK(oneLine)->Name("DSL lines: training of a VDSL line")->Unit(benchmark::kMicrosecond);
// clang-format on

}  // namespace
