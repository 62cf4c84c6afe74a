#pragma once
// The live trace: what leaves the module, in a form that each terminal chooses.
//
//   gpon 3 2841 potsGeneral: pulseWidth 40 ms, ...  a message to the card in slot 3; gepon, epon
//     port 3/1: feedVoltage 42 V, ...               its items, or in full each of its fields
//   gpon 3 2841 "Set POTS general ..." 00000001 ... the same in hex: id, the module's name for it, bytes
//   gpon? 3 2839 ...                                a message that is answered; gepon?
//   ngn 3087 ...                                    a message to the voice side; ngn? one that is answered
//   crc 9 3087 3, rtp-ip 3, job ..., voice-mode 0 1 0   the platform is told of a change, or asked for something
//   out ..., log 13 ...                             what the module prints, and its errors

#include <string>
#include <string_view>

#include "host/observer.h"
#include "messages/layout.h"
#include "service.h"

namespace msand {

class Trace : public host::Observer {
 public:
  // Null: nobody sees the trace. What nobody sees of the module's prints goes to the log.
  void setSink(TraceSink* sink) { sink_ = sink; }

  void send(host::Link link, u16 slot, u16 id, host::Bytes payload) override;
  void ask(host::Link link, u16 slot, u16 id, host::Bytes request) override;
  void crc(u16 slot, u16 id, int origin) override;
  void rtpIp(u16 slot) override;
  void job(std::string_view text) override;
  void voiceMode(u32 old, u32 wanted, u32 flag) override;
  void log(i32 severity, std::string_view text) override;
  void out(std::string_view text) override;

 private:
  bool wanted() const { return sink_ != nullptr && sink_->wanted(); }
  void message(host::Link link, bool asks, u16 slot, u16 id, host::Bytes bytes);
  void named(const std::string& head, messages::Road road, u16 id, host::Bytes bytes);
  void show(std::string_view line);
  void showPrinted();

  TraceSink* sink_ = nullptr;
  std::string printed_;  // the line that is being printed
};

}  // namespace msand
