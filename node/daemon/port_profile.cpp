#include "port_profile.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "host/chassis.h"
#include "module_read.h"

namespace msand {

namespace {

// The message that attaches, and the one that tells the profiles.
struct Kind {
  u16 attachment, profiles;
  const char* name;
};
constexpr Kind kAdsl{2837, 34661, "adslLine"}, kVdsl{2862, 34801, "vdslLine"};

}  // namespace

std::string profileName(u16 message, i64 id) {
  const ModuleReply reply(message, 0, 0);
  if (!reply.good()) return {};
  for (const messages::View& profile : reply.whole().items("profile"))
    if (profile.numberOr("id", -1) == id) return profile.text("name");
  return {};
}

std::string lineProfile(u16 slot, u16 port) {
  const host::CardType* const type = host::authorisedType(slot);
  if (type == nullptr || (type->families & (host::ADSL | host::VDSL)) == 0) return {};
  const Kind& kind = (type->families & host::VDSL) != 0 ? kVdsl : kAdsl;
  const ModuleReply reply(kind.attachment, slot, port);
  const auto id = reply.first("port").number("prfId");
  if (!id) return {};
  return fmt::format("{} profile {} {}", kind.name, *id, profileName(kind.profiles, *id));
}

bool isDslPort(u16 slot, u16 port) {
  constexpr u16 kTypes[] = {116, 56, 621, 817, 818};
  const host::CardType* const type = host::authorisedType(slot);
  return type != nullptr && port <= type->ports && std::ranges::find(kTypes, type->portType) != std::end(kTypes);
}

bool readPort(std::string_view text, u16& slot, u16& port) {
  const char* const end = text.data() + text.size();
  const auto [slash, error] = std::from_chars(text.data(), end, slot);
  if (error != std::errc{} || slash == end || *slash != '/') return false;
  const auto [rest, second] = std::from_chars(slash + 1, end, port);
  return second == std::errc{} && rest == end && host::holdsServiceCard(slot) && port >= 1 && port <= host::kPorts;
}

}  // namespace msand
