#pragma once
// The one place through which everything that leaves the module can be seen. A program sets one observer;
// without one nothing is told. Calls come on the thread that caused them, one at a time.

#include <span>
#include <string_view>

#include "platform/types.h"

namespace host {

enum class Link { gpon, gepon, epon, ngn };

using Bytes = std::span<const u8>;

class Observer {
 public:
  virtual ~Observer();
  virtual void send(Link, u16 /*slot, 0 for ngn*/, u16 /*id*/, Bytes /*payload*/) {}
  virtual void ask(Link, u16 /*slot*/, u16 /*id*/, Bytes /*request*/) {}
  virtual void crc(u16 /*slot*/, u16 /*id*/, int /*origin*/) {}
  virtual void rtpIp(u16 /*slot*/) {}
  virtual void job(std::string_view /*name and arguments*/) {}
  virtual void voiceMode(u32 /*old*/, u32 /*new*/, u32 /*flag*/) {}
  virtual void log(i32 /*severity*/, std::string_view /*text as formatted*/) {}
  virtual void out(std::string_view /*text written to standard output or standard error*/) {}
};

// Null takes the observer away.
void observe(Observer* observer);

// For the platform's own sources: calls `tell` with the observer, if there is one, under the observer's lock.
template <class Tell>
void told(Tell tell);
Observer* lockObserver();
void unlockObserver();
template <class Tell>
void told(Tell tell) {
  if (Observer* observer = lockObserver()) tell(*observer);
  unlockObserver();
}

// While it lives, what this process prints on stdout and stderr goes to the observer's `out`, one call per print.
class CaptureOutput {
 public:
  CaptureOutput();
  ~CaptureOutput();
  CaptureOutput(const CaptureOutput&) = delete;
  CaptureOutput& operator=(const CaptureOutput&) = delete;
};

}  // namespace host
