#include "platform/voice_mode.h"

#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

#include "host/jobs.h"
#include "host/links.h"
#include "host/observer.h"
#include "link_queue.h"

namespace {

struct QueuedJob {
  Job* function = nullptr;
  std::array<u32, 8> arguments{};
};

std::mutex mutex;
std::condition_variable changed;
bool stopped = false;
bool held = false;      // the thread of jobs takes none
bool underWay = false;  // it runs one
std::deque<QueuedJob>& jobs() {
  static std::deque<QueuedJob> all;
  return all;
}
std::deque<int>& results() {
  static std::deque<int> all;
  return all;
}

template <class Queue>
std::optional<typename Queue::value_type> takeFirst(Queue& queue) {
  const std::lock_guard lock(mutex);
  if (queue.empty()) return std::nullopt;
  const auto first = queue.front();
  queue.pop_front();
  return first;
}

void run(const QueuedJob& job) { job.function(job.arguments[0], job.arguments[1], job.arguments[2]); }

std::string describe(const QueuedJob& job) {
  std::string text = job.function == &set_voice_module_mode ? "set_voice_module_mode" : "unnamed";
  for (const u32 argument : job.arguments) text += ' ' + std::to_string(argument);
  return text;
}

}  // namespace

int set_voice_module_mode(u32 oldType, u32 newType, u32 flag) {
  if (host::linksHeld()) return 0;
  host::told([=](host::Observer& observer) { observer.voiceMode(oldType, newType, flag); });
  host::takeTime(0);
  return takeFirst(results()).value_or(0);
}

int job_add(i32, Job* function, u32 a0, u32 a1, u32 a2, u32 a3, u32 a4, u32 a5, u32 a6, u32 a7) {
  if (function == nullptr) return -1;
  const QueuedJob job{function, {a0, a1, a2, a3, a4, a5, a6, a7}};
  host::told([&](host::Observer& observer) { observer.job(describe(job)); });
  const std::lock_guard lock(mutex);
  jobs().push_back(job);
  changed.notify_all();
  return 0;
}

namespace host {

void runJobs() {
  while (const auto job = takeFirst(jobs())) run(*job);
}

bool runNextJob() {
  QueuedJob job;
  {
    std::unique_lock lock(mutex);
    changed.wait(lock, [] { return stopped || (!held && !jobs().empty()); });
    if (stopped) return false;
    job = jobs().front();
    jobs().pop_front();
    underWay = true;
  }
  run(job);
  const std::lock_guard lock(mutex);
  underWay = false;
  changed.notify_all();
  return true;
}

void holdJobs(bool hold) {
  std::unique_lock lock(mutex);
  held = hold;
  changed.notify_all();
  changed.wait(lock, [] { return !held || !underWay; });
}

void stopJobs() {
  const std::lock_guard lock(mutex);
  stopped = true;
  changed.notify_all();
}

void clearJobs() {
  const std::lock_guard lock(mutex);
  stopped = false;
  jobs().clear();
  results().clear();
}

void queueVoiceModeResult(int result) {
  const std::lock_guard lock(mutex);
  results().push_back(result);
}

}  // namespace host
