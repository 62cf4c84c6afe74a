#pragma once
// The capture of this process: every message of the node, in a file for Wireshark, while "trace file" asks for it.

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "descriptor.h"
#include "files.h"
#include "messages/capture.h"

namespace msand {

class CaptureFile {
 public:
  CaptureFile() = default;
  ~CaptureFile() { end(); }
  CaptureFile(const CaptureFile&) = delete;
  CaptureFile& operator=(const CaptureFile&) = delete;

  void configure(FileSettings settings) { settings_ = std::move(settings); }

  // Begins with a file of this name, which replaces an older one; ends the one before. What to tell the operator.
  // Throws FileError, and std::invalid_argument for a name that is none.
  std::string begin(const std::string& name);
  std::string end();
  std::string state();

  // From any thread:
  bool wanted() const { return wanted_; }
  void add(messages::Road road, u16 slot, u16 id, messages::Bytes bytes);

 private:
  void close(const std::string& why);
  void flush();
  void flushNowAndThen(const std::stop_token& stop);
  std::string told() const;

  FileSettings settings_;
  std::atomic<bool> wanted_{false};
  std::mutex mutex_;  // what follows
  std::string path_;
  Descriptor file_;
  std::string pending_;  // packets that are not written yet
  std::condition_variable_any changed_;
  std::size_t bytes_ = 0, messages_ = 0;
  std::string ended_;  // why, if it was not the operator
  std::jthread writer_;
};

CaptureFile& captureFile();

}  // namespace msand
