#pragma once
// What cards tell of ADSL lines, and what the module tells of their profiles by a message alone.

#include "facts.h"
#include "port_tables.h"
#include "standard_functions.h"

namespace msand {

inline constexpr std::size_t kStatusBytes = 102;                     // of Fact::lineStatus: a card's block
inline constexpr std::size_t kVendorBytes = 4, kFirmwareBytes = 32;  // of Fact::modem

void learnLines(Facts& facts, const StandardFunctions& functions);

// Fact::rateModes has a number for each id and direction.
Facts::Key rateModesKey();
std::size_t rateModeAt(u16 id, bool down);

}  // namespace msand
