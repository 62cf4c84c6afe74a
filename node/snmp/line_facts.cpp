#include "line_facts.h"

#include <algorithm>

#include "module_frames.h"
#include "profile_kinds.h"

namespace msand {

namespace {

constexpr std::chrono::seconds kCardGood{5}, kModuleGood{1};
constexpr std::size_t kPortHead = 20;  // slot, port and 16 bytes that tell nothing
constexpr std::size_t kModemBuffer = 256;

std::optional<Facts::Bytes> askUp(const StandardFunctions& functions, u16 slot, u16 port) {
  const int told = functions.dataPortStatus(slot, port);
  if (told < 0) return std::nullopt;
  return Facts::Bytes{static_cast<u8>(told == 1 ? 1 : 0)};
}

std::optional<Facts::Bytes> askStatus(u16 slot, u16 port) {
  constexpr u16 kStatus = 2825;
  std::vector<u8> item;
  addNumber(item, 4, 1);
  addNumber(item, 2, slot);
  addNumber(item, 2, port);
  item.resize(4 + kPortHead);
  auto answer = askModule(kStatus, item);
  // A card that tells of another port has told nothing of this one.
  if (!answer || answer->size() < 4 + kStatusBytes || getNumber(answer->data(), 4) == 0 ||
      !std::equal(item.begin() + 4, item.begin() + 8, answer->begin() + 4))
    return std::nullopt;
  return Facts::Bytes(answer->begin() + 4, answer->begin() + 4 + kStatusBytes);
}

std::optional<Facts::Bytes> askModem(const StandardFunctions& functions, u16 slot, u16 port) {
  u8 vendor[kModemBuffer], firmware[kModemBuffer];
  if (functions.modemVendor(slot, port, vendor) != 0 || functions.modemFirmware(slot, port, firmware) != 0)
    return std::nullopt;
  Facts::Bytes bytes(vendor, vendor + kVendorBytes);
  bytes.insert(bytes.end(), firmware, firmware + kFirmwareBytes);
  return bytes;
}

std::optional<Facts::Bytes> askRateModes() {
  constexpr u16 kUp = 24, kDown = 26;  // where an item has them
  const auto profiles = readProfiles(kLineProfiles);
  if (!profiles) return std::nullopt;
  Facts::Bytes modes(2 * (kLineProfiles.mostId + 1u));
  for (const auto& [name, profile] : *profiles) {
    if (profile.id > kLineProfiles.mostId) continue;
    modes[rateModeAt(profile.id, false)] = static_cast<u8>(numberIn(kLineProfiles, profile.item, kUp, 2));
    modes[rateModeAt(profile.id, true)] = static_cast<u8>(numberIn(kLineProfiles, profile.item, kDown, 2));
  }
  return modes;
}

}  // namespace

void learnLines(Facts& facts, const StandardFunctions& functions) {
  facts.learn(Fact::lineUp, kCardGood, [&functions](u16 slot, u16 port) { return askUp(functions, slot, port); });
  facts.learn(Fact::lineStatus, kCardGood, askStatus);
  facts.learn(Fact::modem, kCardGood, [&functions](u16 slot, u16 port) { return askModem(functions, slot, port); });
  facts.learn(Fact::rateModes, kModuleGood, [](u16, u16) { return askRateModes(); });
}

Facts::Key rateModesKey() { return {Fact::rateModes, 0, 0}; }
std::size_t rateModeAt(u16 id, bool down) { return 2u * id + (down ? 1 : 0); }

}  // namespace msand
