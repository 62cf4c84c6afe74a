#pragma once
// Reports of changes, by which the platform learns that its copy of a slot's configuration is old.

#include "platform/database.h"

inline constexpr u16 kNode = 9;  // the slot in whose name a change of the whole node is reported

// Origin: 0 the module itself, 1 a manager, 3 an operator.
inline void reportChange(u16 slot, u16 id, int origin) { trigger_obj_crc(slot, 0, 0, id, origin); }
