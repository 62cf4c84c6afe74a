#include "trace.h"

#include <fmt/format.h>

#include <utility>

#include "capture_file.h"
#include "hold.h"
#include "host/agent.h"
#include "host/hex.h"
#include "messages/show.h"
#include "note.h"

namespace msand {

constexpr std::size_t kLongestLine = 4096;  // of what is printed without a line end
constexpr i32 kError = 13;

void Trace::show(std::string_view line) {
  showPrinted();
  sink_->show(line);
}

void Trace::message(host::Link link, bool asks, u16 slot, u16 id, host::Bytes bytes) {
  if (!wanted() && !holdsMessages() && !captureFile().wanted()) return;
  using messages::Road;
  static constexpr struct {
    const char* name;
    Road sent, asked;
  } kLinks[] = {{"gpon", Road::gpon, Road::gponAsk},
                {"gepon", Road::gepon, Road::geponAsk},
                {"epon", Road::epon, Road::epon},
                {"ngn", Road::ngn, Road::ngnAsk}};
  const auto& way = kLinks[static_cast<int>(link)];
  captureFile().add(asks ? way.asked : way.sent, slot, id, bytes);
  holdMessage(asks ? way.asked : way.sent, id, bytes);
  if (!wanted()) return;
  const std::string place = link == host::Link::ngn ? "" : fmt::format(" {}", slot);
  const std::string head = fmt::format("{}{}{} {}", way.name, asks ? "?" : "", place, id);
  showPrinted();
  if (sink_->wanted(TraceForm::hex))
    sink_->show(fmt::format("{} \"{}\" {}", head, host::messageName(id), host::hexText(bytes)), TraceForm::hex);
  named(head, asks ? way.asked : way.sent, id, bytes);
}

// For those who see messages by name.
void Trace::named(const std::string& head, messages::Road road, u16 id, host::Bytes bytes) {
  for (const TraceForm form : {TraceForm::brief, TraceForm::full}) {
    if (!sink_->wanted(form)) continue;
    const auto lines = messages::describe(messages::book(), road, id, bytes, form == TraceForm::full);
    sink_->show(head + " " + lines.front(), form);
    for (std::size_t i = 1; i < lines.size(); ++i) sink_->show("  " + lines[i], form);
  }
}

void Trace::send(host::Link link, u16 slot, u16 id, host::Bytes payload) { message(link, false, slot, id, payload); }
void Trace::ask(host::Link link, u16 slot, u16 id, host::Bytes request) { message(link, true, slot, id, request); }

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
