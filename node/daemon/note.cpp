#include "note.h"

#include <fmt/format.h>

#include "host/log.h"
#include "platform/log.h"

namespace msand {

constexpr i32 kPlatform = 0;  // no module's id
constexpr i32 kProgress = 12;
constexpr i32 kError = 13;

void note(std::string_view text) {
  ulogPrintf(kPlatform, kProgress, "%.*s", static_cast<int>(text.size()), text.data());
}

void warn(std::string_view text) { host::platformWarning("%.*s", static_cast<int>(text.size()), text.data()); }

void complain(std::string_view text) {
  ulogPrintf(kPlatform, kError, "%.*s", static_cast<int>(text.size()), text.data());
}

std::string printable(std::string_view text) {
  while (!text.empty() && (text.front() == '\r' || text.front() == '\n')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) text.remove_suffix(1);
  std::string result;
  result.reserve(text.size());
  for (const char letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if (byte < ' ' || byte == 127)
      result += fmt::format("\\x{:02x}", byte);
    else
      result += letter;
  }
  return result;
}

}  // namespace msand
