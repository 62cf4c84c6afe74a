#pragma once
// Which line profile a DSL port has, as the module tells.

#include <string>

#include "platform/types.h"

namespace msand {

// "adslLine profile 3 gold". Empty for a port without one.
std::string lineProfile(u16 slot, u16 port);

// The name of a profile in a message that tells all of its kind; empty for none.
std::string profileName(u16 message, i64 id);

// A port of a card that has DSL lines, by its configuration.
bool isDslPort(u16 slot, u16 port);

// "1/5". False for another text, and for what can't be a port.
bool readPort(std::string_view text, u16& slot, u16& port);

}  // namespace msand
