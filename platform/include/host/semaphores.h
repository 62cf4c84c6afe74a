#pragma once
// A look at the semaphores.

#include "platform/types.h"

namespace host {

// Ticks of a semaphore's timeout in a second.
inline constexpr u32 kTicksPerSecond = 100;

// Semaphores that were taken and not given back. 0 when no request is under way.
u32 semaphoresHeld();

// Forgets all semaphores, for the unloading of a module. Nothing may wait for one.
void clearSemaphores();

}  // namespace host
