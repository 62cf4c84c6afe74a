// Reading messages by name: a VLAN table of 1024 ports as a manager gets it, with eight rows each and eight services in
// the first; and what a message costs whose trace nobody watches.

#include <benchmark/benchmark.h>

#include "messages/show.h"
#include "trace.h"

namespace {

constexpr u16 kVlan = 2846;
constexpr u32 kPorts = 1024;
constexpr u32 kRows = 8;
constexpr u32 kServices = 8;

void append(std::vector<u8>& to, u32 width, u32 value) {
  for (u32 i = width; i-- > 0;) to.push_back(static_cast<u8>(value >> 8 * i));
}

std::vector<u8> vlanReply() {
  std::vector<u8> bytes = {0, 0, 0, 1};
  bytes.resize(36);
  append(bytes, 4, kPorts);
  for (u32 port = 0; port < kPorts; ++port) {
    append(bytes, 2, 1 + port / 64);
    append(bytes, 2, 1 + port % 64);
    bytes.resize(bytes.size() + 16);
    append(bytes, 2, kRows);
    for (u32 row = 0; row < kRows; ++row) {
      append(bytes, 2, row);
      bytes.resize(bytes.size() + 16);
      append(bytes, 2, row == 0 ? kServices : 0);
      for (u32 i = 0; row == 0 && i < kServices; ++i) {
        append(bytes, 1, 0);
        append(bytes, 2, 1);
        bytes.resize(bytes.size() + 31);
      }
    }
  }
  return bytes;
}

template <class Work>
void overReply(benchmark::State& state, Work work) {
  const std::vector<u8> bytes = vlanReply();
  const messages::Message& message = *messages::book().find(kVlan);
  const messages::Layout& layout = *message.find(messages::Road::getReply);
  const messages::Decoded decoded = decode(message, layout, bytes);
  if (!decoded.problems.empty()) state.SkipWithError("the message is not as described");
  for (auto _ : state) benchmark::DoNotOptimize(work(message, layout, bytes, decoded));
  state.SetBytesProcessed(static_cast<i64>(state.iterations() * bytes.size()));
}

void decodeReply(benchmark::State& state) {
  overReply(state, [](const auto& message, const auto& layout, const auto& bytes, const auto&) {
    return decode(message, layout, bytes).nodes.size();
  });
}
BENCHMARK(decodeReply)->Name("decode VLAN");

void encodeReply(benchmark::State& state) {
  overReply(state, [](const auto&, const auto&, const auto&, const auto& decoded) { return encode(decoded).size(); });
}
BENCHMARK(encodeReply)->Name("encode VLAN");

void briefReply(benchmark::State& state) {
  overReply(state,
            [](const auto&, const auto&, const auto&, const auto& decoded) { return briefLines(decoded).size(); });
}
BENCHMARK(briefReply)->Name("brief VLAN");

class Nobody : public msand::TraceSink {
  bool wanted() const override { return false; }
  bool wanted(msand::TraceForm) const override { return false; }
  void show(std::string_view) override {}
  void show(std::string_view, msand::TraceForm) override {}
};

void unwatched(benchmark::State& state) {
  Nobody nobody;
  msand::Trace trace;
  trace.setSink(&nobody);
  const std::vector<u8> bytes(38);
  for (auto _ : state) trace.send(host::Link::ngn, 0, 3087, bytes);
}
BENCHMARK(unwatched)->Name("unwatched trace");

}  // namespace
