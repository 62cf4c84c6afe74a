#pragma once
// Writes down what leaves the module, one marked line for each event.

#include <string>
#include <string_view>
#include <vector>

#include "host/observer.h"

namespace scenario {

// The marks that a line of a record can begin with.
std::span<const std::string_view> recordMarks();

class Recorder final : public host::Observer {
 public:
  // All severities of the log, or only errors and failures of a start-up step.
  void logAll(bool all) { logAll_ = all; }

  // The lines since the last call.
  std::vector<std::string> take();

  void send(host::Link link, u16 slot, u16 id, host::Bytes payload) override;
  void ask(host::Link link, u16 slot, u16 id, host::Bytes request) override;
  void crc(u16 slot, u16 id, int origin) override;
  void rtpIp(u16 slot) override;
  void job(std::string_view text) override;
  void voiceMode(u32 oldMode, u32 newMode, u32 flag) override;
  void log(i32 severity, std::string_view text) override;
  void out(std::string_view text) override { out_ += text; }

 private:
  void add(std::string line);
  void addMessage(std::string_view mark, host::Link link, u16 slot, u16 id, host::Bytes bytes);
  void flushOut();

  std::vector<std::string> lines_;
  std::string out_;  // printed, and not yet parted from what comes by an event
  bool logAll_ = false;
};

}  // namespace scenario
