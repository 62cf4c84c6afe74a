#pragma once
// Questions to a card about its ports: a u32 count, and for each port u16 slot, u16 port, 16 bytes. Port 65535 is every
// port of the slot.

#include "common/wire.h"
#include "platform/types.h"

inline constexpr u32 kAskedPort = 20;
inline constexpr u32 kOnePort = 4 + kAskedPort;

// Asks the card in the slot and waits. `answerLength` goes in as the room for the answer and comes back as its length,
// 0 on failure. The exchange's result, 0 or above if the card answered; -1 for null, -102 without a card of this
// module, -100 when none runs, -5 for a port that the card does not have, or a count that the request does not hold.
int get_gepon_slot_msan_state_base(u8 moduleId, u16 slot, u16 id, const u8* request, u32 requestLength, u8* answer,
                                   u32* answerLength);

// The same port by port, for answers of which one exchange does not hold many: 65535 is each port of the slot in turn.
// What the ports answer, without the counts, stands in one answer behind the count of those that did; a port that does
// not, or whose answer there is no room for, is left out, and behind the latter none is asked. 0, a code from above, or
// -22 without memory.
int get_gepon_slot_msan_state_base_ex(u8 moduleId, u16 slot, u16 id, const u8* request, u32 requestLength, u8* answer,
                                      u32* answerLength);

// The question for one port.
struct OnePortRequest {
  OnePortRequest(u16 slot, u16 port) {
    putNumber(bytes, 4, 1);
    putNumber(bytes + 4, 2, slot);
    putNumber(bytes + 6, 2, port);
  }
  u8 bytes[kOnePort] = {};
};
