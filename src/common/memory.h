#pragma once
// Memory of the module's pool that goes back by itself.

#include <memory>

#include "platform/pool.h"
#include "platform/types.h"

struct PoolFree {
  void operator()(void* memory) const { mpuFree(memory); }
};
using PoolBytes = std::unique_ptr<u8[], PoolFree>;
