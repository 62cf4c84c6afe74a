#pragma once
// What the functions for standard MIBs share of profiles and the ports that use them.

#include "combo/profile/profile_kind.h"
#include "standard_mib/ports.h"

// Attaches one port by the road of lists.
int attachOne(const ProfileKind& kind, u16 slot, u16 port, u16 id);

// The first port of the types that has an id, and the one behind a port on the walk of data ports. `idOf` gives -1 for
// a port without one; at a next port without one the walk ends.
using AttachedId = int(u16 slot, u16 port);
int firstAttached(std::span<const u16> types, AttachedId* idOf, u16* slot, u16* port, u16* id);
int nextAttached(AttachedId* idOf, u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id);

void copyName(char* to, const char* from);  // 20 bytes
