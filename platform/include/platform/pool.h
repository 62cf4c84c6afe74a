#pragma once
// Memory pools of a fixed size.

#include "platform/types.h"

// Creates a pool of `size` bytes. Returns its id, negative on failure. The last two arguments are 1, 1.
i32 mpuCreate(const char* name, u32 size, i32, i32);

// Takes `size` bytes, not zeroed; null when the pool has no room. `file` and `line` name the owner in the
// pool's list of live blocks.
void* mpuAlloc_(i32 pool, u32 size, const char* file, i32 line);

// Gives a block back; null does nothing.
void mpuFree(void* block);
