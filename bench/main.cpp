// Runs the benchmarks in turns, several rounds each, and holds the medians against each other: what counts is not a
// figure of this machine but what a request costs beyond the work that it cannot do without.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>

#include "bench_node.h"
#include "host/chassis.h"
#include "host/log.h"
#include "host/terminal.h"

node::Node& benchNode() {
  static node::Node node = [] {
    host::openLog(host::LogTo::nowhere);
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    return node::Node(program.parent_path().parent_path() / "lib" / "libmsan.so");
  }();
  return node;
}

void populate(u32 cards, const char* type) {
  node::Node& node = benchNode();
  const host::CardType* wanted = host::findCardType(type);
  for (u32 i = 0; i < std::size(kServiceSlots); ++i) {
    const u16 slot = kServiceSlots[i];
    const host::CardType* there = host::authorisedType(slot);
    if (there != nullptr && (i >= cards || there != wanted)) {
      node.unauthorise(slot);
      there = nullptr;
    }
    if (i < cards && there == nullptr) node.authorise(slot, *wanted);
  }
}

bool run(const std::string& line) {
  Vty vty;
  const host::LineOutcome outcome = host::runLine(vty, CONFIG_NODE, line);
  return outcome.result == host::LineResult::ran && outcome.returned == 0;
}

std::string allPorts(u32 cards) {
  std::string slots;
  for (u32 i = 0; i < cards; ++i) slots += fmt::format("{}{}", i == 0 ? "" : ",", kServiceSlots[i]);
  return slots + "/1-64";
}

void put(std::vector<u8>& frame, std::size_t at, u32 width, u32 value) {
  for (u32 i = width; i-- > 0; value >>= 8) frame[at + i] = static_cast<u8>(value);
}

void perPart(benchmark::State& state, const char* part, u32 count) {
  using Counter = benchmark::Counter;
  state.counters[part] = Counter(static_cast<double>(count), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

namespace {

// The most that a SET may cost, in write transactions of its own kind.
constexpr double kMostForSet = 1.5;
// The most nanoseconds for an answer to "?", however much exists: nobody should notice it.
constexpr double kMostForHelp = 5e6;
// The most nanoseconds for the training of all lines at start, and for the state of one: no one should wait.
constexpr double kMostForTraining = 200e6;
constexpr double kMostForState = 1e6;

class Medians : public benchmark::ConsoleReporter {
 public:
  Medians() : ConsoleReporter(OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred) failed_ = true;
      if (run.aggregate_name == "median")
        nanoseconds_[run.run_name.function_name] =
            run.GetAdjustedCPUTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
    }
  }

  // Prints how often `part` goes into `whole`; the ratio.
  double ratio(const std::string& whole, const std::string& part) const {
    const auto numerator = nanoseconds_.find(whole);
    const auto denominator = nanoseconds_.find(part);
    if (numerator == nanoseconds_.end() || denominator == nanoseconds_.end()) return 0;
    const double result = numerator->second / denominator->second;
    std::printf("%-20s / %-20s %10.2f\n", whole.c_str(), part.c_str(), result);
    return result;
  }

  // True if one of the benchmarks of this beginning took longer.
  bool above(const std::string& beginning, double most) const {
    return std::any_of(nanoseconds_.begin(), nanoseconds_.end(), [&](const auto& median) {
      return median.first.compare(0, beginning.size(), beginning) == 0 && median.second > most;
    });
  }

  bool failed() const { return failed_; }

 private:
  std::map<std::string, double> nanoseconds_;
  bool failed_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> arguments(argv, argv + argc);
  std::string defaults[] = {"--benchmark_min_time=0.1", "--benchmark_repetitions=9",
                            "--benchmark_enable_random_interleaving=true", "--benchmark_report_aggregates_only=true"};
  for (std::string& option : defaults) arguments.insert(arguments.begin() + 1, option.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

  Medians medians;
  benchmark::RunSpecifiedBenchmarks(&medians);
  std::printf("\n");
  const double set = medians.ratio("SET", "write transaction");
  medians.ratio("command", "write transaction");
  medians.ratio("GET", "read transaction");
  medians.ratio("write transaction", "bare put");
  medians.ratio("SET", "copy");
  if (set > kMostForSet) std::printf("a SET costs more than %.1f of its transactions\n", kMostForSet);
  const bool slowHelp = medians.above("? ", kMostForHelp);
  if (slowHelp) std::printf("an answer to ? takes more than %.0f ms\n", kMostForHelp / 1e6);
  const bool slowLines =
      medians.above("DSL lines: 1024", kMostForTraining) || medians.above("DSL lines: state of a port", kMostForState);
  if (slowLines) std::printf("lines are slow: training may take 200 ms, the state of a port 1 ms\n");
  return medians.failed() || set > kMostForSet || slowHelp || slowLines ? 1 : 0;
}
