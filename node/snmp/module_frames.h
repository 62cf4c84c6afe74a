#pragma once
// Requests of the agent itself to the module: frames as managers send them. On any thread, under the request gate.

#include <optional>
#include <span>
#include <vector>

#include "platform/types.h"

namespace msand {

// The number of `width` bytes that stand at a place, most significant first.
constexpr u32 getNumber(const u8* at, u32 width) {
  u32 value = 0;
  for (u32 i = 0; i < width; ++i) value = value << 8 | at[i];
  return value;
}

constexpr void putNumber(u8* at, u32 width, u32 value) {
  for (u32 i = width; i-- > 0; value >>= 8) at[i] = static_cast<u8>(value);
}

constexpr void addNumber(std::vector<u8>& to, u32 width, u32 value) {
  to.resize(to.size() + width);
  putNumber(to.data() + to.size() - width, width, value);
}

// A GET, and a SET, of what stands behind the envelope. The answer is what stands behind its envelope; none, false: the
// module refuses.
std::optional<std::vector<u8>> askModule(u16 id, const std::vector<u8>& area);
bool tellModule(u16 id, const std::vector<u8>& area);

}  // namespace msand
