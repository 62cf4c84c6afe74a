#include "voice/common/ngn_exchange.h"

#include <algorithm>

#include "platform/ngn.h"

std::optional<u32> askNgn(u16 id, WireIn request, WireOut answer) {
  const u32 room = static_cast<u32>(answer.size());
  u32 length = room;
  if (readNgnCmd(id, 0, request.data(), static_cast<u32>(request.size()), answer.data(), &length, 0, 0) != 0) return {};
  return std::min(length, room);
}

std::optional<WireIn> unitsOf(WireIn answer, u32 unit, u32 most, ByteOrder order) {
  if (answer.size() < 4) return {};
  const u64 count = numberIn(answer, 0, 4, order);
  if (count > most || count * unit > answer.size() - 4) return {};
  return answer.subspan(4, static_cast<std::size_t>(count) * unit);
}

void putFloat10(Writer& out, WireIn counter) {
  out.number(2, 0x0300);
  out.bytes(counter);
}
