#pragma once
// A look into the pools.

#include <string>
#include <vector>

#include "platform/types.h"

namespace host {

struct LiveBlock {
  std::string file;
  i32 line = 0;
  u32 size = 0;
};

// Bytes that were asked for and not given back, over all pools.
u64 poolInUse();

// Blocks that this thread was refused so far.
u32 poolRefusals();

// The live blocks in the order in which they were taken.
std::vector<LiveBlock> liveBlocks();

// Drops all blocks and pools, for the unloading of a module. Returns the number of blocks that were still live.
u32 dropPools();

}  // namespace host
