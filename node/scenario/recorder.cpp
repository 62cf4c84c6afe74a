#include "recorder.h"

#include <fmt/format.h>

#include <utility>

#include "host/hex.h"
#include "text.h"

namespace scenario {

namespace {

constexpr i32 kError = 13;
constexpr i32 kStartupFailure = 14;

std::string_view nameOf(host::Link link) {
  switch (link) {
    case host::Link::gpon:
      return "gpon";
    case host::Link::gepon:
      return "gepon";
    case host::Link::epon:
      return "epon";
    case host::Link::ngn:
      return "ngn";
  }
  return "?";
}

}  // namespace

std::span<const std::string_view> recordMarks() {
  static constexpr std::string_view kMarks[] = {
      "gpon", "gepon", "epon", "gpon?", "gepon?", "ngn",  "ngn?",    "crc",  "rtp-ip", "job",  "voice-mode",
      "log",  "out",   "|",    "?",     "row",    "attr", "profile", "pool", "reply",  "last", "=",
  };
  return kMarks;
}

std::vector<std::string> Recorder::take() {
  flushOut();
  return std::exchange(lines_, {});
}

void Recorder::send(host::Link link, u16 slot, u16 id, host::Bytes payload) { addMessage("", link, slot, id, payload); }

void Recorder::ask(host::Link link, u16 slot, u16 id, host::Bytes request) { addMessage("?", link, slot, id, request); }

void Recorder::crc(u16 slot, u16 id, int origin) { add(fmt::format("crc {} {} {}", slot, id, origin)); }

void Recorder::rtpIp(u16 slot) { add(fmt::format("rtp-ip {}", slot)); }

void Recorder::job(std::string_view text) { add(fmt::format("job {}", text)); }

void Recorder::voiceMode(u32 oldMode, u32 newMode, u32 flag) {
  add(fmt::format("voice-mode {} {} {}", oldMode, newMode, flag));
}

void Recorder::log(i32 severity, std::string_view text) {
  if (logAll_ || severity == kError || severity == kStartupFailure)
    add(marked(fmt::format("log {}", severity), logText(text)));
}

void Recorder::add(std::string line) {
  flushOut();
  lines_.push_back(std::move(line));
}

void Recorder::addMessage(std::string_view mark, host::Link link, u16 slot, u16 id, host::Bytes bytes) {
  const std::string place = link == host::Link::ngn ? std::string() : fmt::format(" {}", slot);
  add(fmt::format("{}{}{} {} {}", nameOf(link), mark, place, id, host::hexText(bytes)));
}

void Recorder::flushOut() {
  for (const std::string& line : terminalLines(std::exchange(out_, {}))) lines_.push_back(marked("out", line));
}

}  // namespace scenario
