#pragma once
// The groups that every agent has: system and snmp.

#include "settings.h"

namespace msand {

// `settings` outlives the library's use.
void registerSystemGroups(const SnmpSettings& settings);

}  // namespace msand
