#include "sweep_points.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <unordered_map>

#include "player.h"

namespace scenario {

namespace {

constexpr int kDeepest = 64;  // frames of a stack that are looked at
constexpr unsigned kMostSeconds = 120;

// What the watcher knows; it has no argument of its own.
struct Watch {
  std::string module;
  u32 begin[host::kFaults] = {};
  std::unordered_map<void*, u64> offsets;  // within the module by return address, 0 outside
  std::vector<FailurePoint> points;
};
Watch* watch = nullptr;

u64 offsetInModule(void* address) {
  const auto [known, fresh] = watch->offsets.try_emplace(address, 0);
  if (!fresh) return known->second;
  Dl_info info{};
  if (dladdr(address, &info) != 0 && info.dli_fname != nullptr && watch->module == info.dli_fname)
    known->second = static_cast<u64>(static_cast<char*>(address) - static_cast<char*>(info.dli_fbase));
  return known->second;
}

void note(host::Fault kind, u32 number) {
  std::array<void*, kDeepest> frames;
  const int depth = backtrace(frames.data(), kDeepest);
  u64 site = static_cast<u64>(kind) + 1;
  for (int i = 0; i < depth; ++i)
    if (const u64 offset = offsetInModule(frames[static_cast<std::size_t>(i)]); offset != 0)
      site = (site ^ offset) * 0x9e3779b97f4a7c15u + (site >> 29);
  watch->points.push_back({kind, number - watch->begin[static_cast<int>(kind)], site});
}

std::vector<FailurePoint> play(const std::string& module, const Scenario& scenario) {
  Watch mine{module, {}, {}, {}};
  watch = &mine;
  Player player(module);
  for (int kind = 0; kind < host::kFaults; ++kind)
    mine.begin[kind] = host::operationsCounted(static_cast<host::Fault>(kind));
  host::watchFaults(note);
  for (const Directive& directive : scenario.directives) player.play(directive.action);
  host::watchFaults(nullptr);
  return std::move(mine.points);
}

[[noreturn]] void playInChild(const std::string& module, const Scenario& scenario, std::FILE* to) {
  alarm(kMostSeconds);
  try {
    const std::vector<FailurePoint> points = play(module, scenario);
    std::fwrite(points.data(), sizeof(FailurePoint), points.size(), to);
    std::fflush(to);
  } catch (const std::exception&) {
  }
  std::_Exit(0);
}

}  // namespace

std::vector<FailurePoint> findPoints(const std::string& module, const Scenario& scenario) {
  std::FILE* file = std::tmpfile();
  if (file == nullptr) throw std::system_error(errno, std::generic_category(), "no file for the points of a sweep");
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (child == 0) playInChild(module, scenario, file);
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
  std::rewind(file);
  std::vector<FailurePoint> points;
  for (FailurePoint point; std::fread(&point, sizeof point, 1, file) == 1;) points.push_back(point);
  std::fclose(file);
  return points;
}

void keepNewSites(std::vector<FailurePoint>& points, std::set<u64>& sites) {
  std::erase_if(points, [&](const FailurePoint& point) { return !sites.insert(point.site).second; });
}

}  // namespace scenario
