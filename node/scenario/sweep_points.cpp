#include "sweep_points.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <optional>
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
  Order first;                             // not passed yet
  std::unordered_map<void*, u64> offsets;  // within the module by return address, 0 outside
  FoundPoints found;
};
std::optional<Watch> watch;

u64 offsetInModule(void* address) {
  const auto [known, fresh] = watch->offsets.try_emplace(address, 0);
  if (!fresh) return known->second;
  Dl_info info{};
  if (dladdr(address, &info) != 0 && info.dli_fname != nullptr && watch->module == info.dli_fname)
    known->second = static_cast<u64>(static_cast<char*>(address) - static_cast<char*>(info.dli_fbase));
  return known->second;
}

void note(host::Fault kind, u32 number) {
  const u32 n = number - watch->begin[static_cast<int>(kind)];
  if (watch->first.n != 0) {
    if (kind == watch->first.kind && n == watch->first.n) watch->first.n = 0;
    return;
  }
  std::array<void*, kDeepest> frames;
  const int depth = backtrace(frames.data(), kDeepest);
  u64 site = static_cast<u64>(kind) + 1;
  for (int i = 0; i < depth; ++i) {
    const u64 offset = offsetInModule(frames[static_cast<std::size_t>(i)]);
    if (offset == 0) continue;
    site = (site ^ offset) * 0x9e3779b97f4a7c15u + (site >> 29);
    watch->found.calls.insert(offset);
  }
  watch->found.points.push_back({{kind, n}, {}, site});
}

FoundPoints play(const std::string& module, const Scenario& scenario) {
  Player player(module);
  u32 begin[host::kFaults];
  for (int kind = 0; kind < host::kFaults; ++kind)
    begin[kind] = host::operationsCounted(static_cast<host::Fault>(kind));
  watchPoints(module, begin, {});
  for (const Directive& directive : scenario.directives) player.play(directive.action);
  return watchedPoints();
}

[[noreturn]] void playInChild(const std::string& module, const Scenario& scenario, u32 number, PointFile& to) {
  alarm(kMostSeconds);
  try {
    to.write(number, play(module, scenario));
  } catch (const std::exception&) {
  }
  std::_Exit(0);
}

// What goes through a file: a point of a scenario, or a call (`order.n` 0) as its site.
struct Item {
  u32 scenario;
  FailurePoint point;
};

[[noreturn]] void failed() { throw std::system_error(errno, std::generic_category(), "a file for a sweep's points"); }

}  // namespace

void findPoints(const std::string& module, const Scenario& scenario, u32 number, PointFile& to) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (child == 0) playInChild(module, scenario, number, to);
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
}

void watchPoints(const std::string& module, const u32 (&begin)[host::kFaults], Order first) {
  watch.emplace();
  watch->module = module;
  watch->first = first;
  std::ranges::copy(begin, watch->begin);
  host::watchFaults(note);
}

FoundPoints watchedPoints() {
  host::watchFaults(nullptr);
  FoundPoints found;
  if (watch) found = std::move(watch->found);
  watch.reset();
  return found;
}

PointFile::PointFile() : file_(memfd_create("points", MFD_CLOEXEC)) {
  if (file_ < 0 || fcntl(file_, F_SETFL, O_APPEND) != 0) failed();
}

PointFile::~PointFile() { close(file_); }

void PointFile::write(u32 scenario, const FoundPoints& found) {
  std::vector<Item> items;
  for (const FailurePoint& point : found.points) items.push_back({scenario, point});
  for (const u64 call : found.calls) items.push_back({scenario, {{}, {}, call}});
  const auto size = static_cast<ssize_t>(items.size() * sizeof(Item));
  if (::write(file_, items.data(), static_cast<std::size_t>(size)) != size) failed();
}

std::vector<FoundPoints> PointFile::read(std::size_t scenarios) {
  std::vector<FoundPoints> found(scenarios);
  std::vector<Item> items(static_cast<std::size_t>(lseek(file_, 0, SEEK_END)) / sizeof(Item));
  const auto size = static_cast<ssize_t>(items.size() * sizeof(Item));
  if (pread(file_, items.data(), static_cast<std::size_t>(size), 0) != size) failed();
  for (const Item& item : items) {
    FoundPoints& mine = found.at(item.scenario);
    if (item.point.order.n != 0)
      mine.points.push_back(item.point);
    else
      mine.calls.insert(item.point.site);
  }
  return found;
}

}  // namespace scenario
