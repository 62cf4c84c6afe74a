// msand's configuration file, as an administrator may have left it.

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "configuration.h"

// A complaint says where: "FILE:LINE: ..." with a line that the text has.
static bool tellsWhere(std::string_view complaint, std::string_view path, std::string_view text) {
  if (!complaint.starts_with(path) || complaint.substr(path.size()).find(':') != 0) return false;
  const unsigned long line = std::strtoul(complaint.data() + path.size() + 1, nullptr, 10);
  return line >= 1 && line <= static_cast<unsigned long>(std::ranges::count(text, '\n')) + 1;
}

// What the daemon takes for granted.
static bool isUsable(const msand::Configuration& read) {
  u16 last = 0;
  for (const msand::SlotConfiguration& slot : read.slots) {
    if (slot.slot <= last || !host::holdsServiceCard(slot.slot) || slot.card == nullptr) return false;
    last = slot.slot;
  }
  for (const msand::Community& one : read.snmp.communities)
    if (!msand::isPlainText(one.name) || (!one.source.empty() && !msand::isSource(one.source))) return false;
  for (const msand::User& one : read.snmp.users)
    if (!msand::isPlainText(one.name) || one.authenticationSecret.size() < msand::kShortestSecret ||
        one.privacySecret.size() < msand::kShortestSecret)
      return false;
  return !read.socket.value.empty() && !read.startup.empty();
}

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  static const std::string kPath = "/etc/msan/msand.toml";
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    if (!isUsable(msand::parseConfiguration(text, kPath))) std::abort();
  } catch (const msand::ConfigurationError& error) {
    if (!tellsWhere(error.what(), kPath, text)) std::abort();
  }
  return 0;
}
