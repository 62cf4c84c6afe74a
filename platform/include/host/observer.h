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
  // Text written to standard output or standard error. One print may come in several pieces (puts: text and line
  // end); pieces that no other call parts belong together.
  virtual void out(std::string_view) {}
};

// Null takes the observer away; when this returns, it is not called any more.
void observe(Observer* observer);

// True while there is an observer.
bool observed();

// For the platform's own sources: calls `tell` with the observer, if there is one, under the observer's lock. What
// an observer causes while it is told comes to it, too, nested.
template <class Tell>
void told(Tell tell);

// The lock's two halves, for told() only. The observer is null without one.
Observer* lockObserver();
void unlockObserver();

template <class Tell>
void told(Tell tell) {
  if (!observed()) return;
  struct Lock {
    Observer* observer = lockObserver();
    ~Lock() { unlockObserver(); }
  } lock;
  if (lock.observer != nullptr) tell(*lock.observer);
}

// While it lives, what this process prints on stdout and stderr goes to the observer's `out`, as it is printed and in
// order. What an observer itself prints while it is told goes to the real streams. The two variables of the C
// library are assigned: no other thread may print when it is made or destroyed, and there is one at a time.
class CaptureOutput {
 public:
  CaptureOutput();
  ~CaptureOutput();
  CaptureOutput(const CaptureOutput&) = delete;
  CaptureOutput& operator=(const CaptureOutput&) = delete;
};

}  // namespace host
