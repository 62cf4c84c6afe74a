#pragma once
// The page of metrics as a file, written anew while it lives.

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace msand {

class MetricsFile {
 public:
  // Writes what `page` gives at once and then every 15 s, on a thread of its own. Throws FileError where the first one
  // can't be written; a later one that can't is told in the log, once.
  MetricsFile(std::string path, std::function<std::string()> page);
  ~MetricsFile();
  MetricsFile(const MetricsFile&) = delete;
  MetricsFile& operator=(const MetricsFile&) = delete;

 private:
  void serve();

  const std::string path_;
  const std::function<std::string()> page_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool stopped_ = false;
  std::thread thread_;
};

}  // namespace msand
