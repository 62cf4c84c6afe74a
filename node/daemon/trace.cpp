#include "trace.h"

#include <fmt/format.h>

#include <utility>

#include "host/agent.h"
#include "host/hex.h"
#include "note.h"

namespace msand {

constexpr std::size_t kLongestLine = 4096;  // of what is printed without a line end
constexpr i32 kError = 13;

void Trace::show(std::string_view line) {
  showPrinted();
  sink_->show(line);
}

void Trace::message(host::Link link, const char* mark, u16 slot, u16 id, host::Bytes bytes) {
  if (!wanted()) return;
  static constexpr const char* kLinks[] = {"gpon", "gepon", "epon", "ngn"};
  const std::string place = link == host::Link::ngn ? "" : fmt::format(" {}", slot);
  show(fmt::format("{}{}{} {} \"{}\" {}", kLinks[static_cast<int>(link)], mark, place, id, host::messageName(id),
                   host::hexText(bytes)));
}

void Trace::send(host::Link link, u16 slot, u16 id, host::Bytes payload) { message(link, "", slot, id, payload); }
void Trace::ask(host::Link link, u16 slot, u16 id, host::Bytes request) { message(link, "?", slot, id, request); }

void Trace::crc(u16 slot, u16 id, int origin) {
  if (wanted()) show(fmt::format("crc {} {} {}", slot, id, origin));
}

void Trace::rtpIp(u16 slot) {
  if (wanted()) show(fmt::format("rtp-ip {}", slot));
}

void Trace::job(std::string_view text) {
  if (wanted()) show(fmt::format("job {}", text));
}

void Trace::voiceMode(u32 old, u32 wantedMode, u32 flag) {
  if (wanted()) show(fmt::format("voice-mode {} {} {}", old, wantedMode, flag));
}

void Trace::log(i32 severity, std::string_view text) {
  if (wanted() && severity >= kError) show(fmt::format("log {} {}", severity, printable(text)));
}

void Trace::out(std::string_view text) {
  for (const char letter : text) {
    if (letter == '\n' || printed_.size() == kLongestLine) showPrinted();
    if (letter != '\n' && letter != '\r') printed_ += letter;
  }
}

void Trace::showPrinted() {
  if (printed_.empty()) return;
  const std::string line = printable(std::exchange(printed_, {}));
  if (wanted())
    sink_->show("out " + line);
  else
    note("module: " + line);
}

}  // namespace msand
