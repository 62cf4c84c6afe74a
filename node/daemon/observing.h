#pragma once
// The observer of a node's process.

#include "host/observer.h"
#include "session_record.h"

namespace msand {

// As long as it lives, the trace sees what leaves the module, and so does a record of the session.
class Observing : public host::Observer {
 public:
  explicit Observing(host::Observer& trace) : trace_(trace) { host::observe(this); }
  ~Observing() override { host::observe(nullptr); }

  void send(host::Link link, u16 slot, u16 id, host::Bytes payload) override {
    tell([&](host::Observer& one) { one.send(link, slot, id, payload); });
  }
  void ask(host::Link link, u16 slot, u16 id, host::Bytes request) override {
    tell([&](host::Observer& one) { one.ask(link, slot, id, request); });
  }
  void crc(u16 slot, u16 id, int origin) override {
    tell([&](host::Observer& one) { one.crc(slot, id, origin); });
  }
  void rtpIp(u16 slot) override {
    tell([&](host::Observer& one) { one.rtpIp(slot); });
  }
  void job(std::string_view text) override {
    tell([&](host::Observer& one) { one.job(text); });
  }
  void voiceMode(u32 old, u32 wanted, u32 flag) override {
    tell([&](host::Observer& one) { one.voiceMode(old, wanted, flag); });
  }
  void log(i32 severity, std::string_view text) override {
    tell([&](host::Observer& one) { one.log(severity, text); });
  }
  void out(std::string_view text) override {
    tell([&](host::Observer& one) { one.out(text); });
  }

 private:
  template <class Tell>
  void tell(Tell tell) {
    tell(trace_);
    if (sessionRecord().wanted()) tell(sessionRecord().observer());
  }

  host::Observer& trace_;
};

}  // namespace msand
