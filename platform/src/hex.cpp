#include "host/hex.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::size_t kShortestRun = 16;
constexpr char kDigits[] = "0123456789abcdef";

void appendByte(std::string& text, u8 byte) {
  text += kDigits[byte >> 4];
  text += kDigits[byte & 15];
}

}  // namespace

std::string hexText(Bytes bytes) {
  if (bytes.empty()) return "-";
  std::string text;
  text.reserve(std::min(bytes.size() * 2, std::size_t{4096}));
  bool behindRun = false;
  for (auto at = bytes.begin(); at != bytes.end();) {
    const auto end = std::find_if(at, bytes.end(), [first = *at](u8 byte) { return byte != first; });
    const auto length = static_cast<std::size_t>(end - at);
    const bool run = length >= kShortestRun;
    if (!text.empty() && (run || behindRun)) text += ' ';
    if (run) {
      appendByte(text, *at);
      text += '*' + std::to_string(length);
    } else {
      for (std::size_t i = 0; i < length; ++i) appendByte(text, *at);
    }
    behindRun = run;
    at = end;
  }
  return text;
}

}  // namespace host
