#pragma once
// Questions to the voice side, and its answers on their way to a manager.

#include <optional>

#include "common/answer.h"
#include "common/wire.h"

// Asks and waits. The answer's length, cut to the room for it; none if the voice side did not answer.
std::optional<u32> askNgn(u16 id, WireIn request, WireOut answer);

// The units of an answer that begins with their u32 count: at most `most` of them, and all there. None if not.
std::optional<WireIn> unitsOf(WireIn answer, u32 unit, u32 most, ByteOrder order = ByteOrder::big);

// A u64 counter as managers read it: the tag 03 00, then its bytes as they came.
void putFloat10(Writer& out, WireIn counter);
