// The walk of the standard MIB agent over data ports.

#include <span>

#include "data/common/cards.h"
#include "msan/standard_mib.h"
#include "platform/objects.h"

enum WalkError : int { kEnd = -2, kNoSuchPort = -3, kNullValue = -24, kNoDataCard = -102 };

int std_snmp_next_dsl_port_get(u16* slot, u16* port) {
  if (slot == nullptr || port == nullptr) return kNullValue;
  const int card = get_valid_servicecard_type(*slot);
  if (card < 0) return card;
  u16 ports = 0;
  if (caCheckCardTypeIsMsanDataCard(static_cast<u16>(card)) != 0 ||
      ddGetBoardServePortAmountByType(static_cast<u16>(card), &ports) != 0 || ports == 0) {
    return kNoDataCard;
  }
  if (*port > ports) return kNoSuchPort;
  if (*port < ports) {
    ++*port;
    return 0;
  }
  u32 slots[100];
  u32 count = 0;
  if (ddGetServeSlotList(slots, 100, &count) != 0) return kEnd;
  for (const u32 next : std::span(slots, count)) {
    if (next <= *slot || !isDataCard(static_cast<u16>(next))) continue;
    *slot = static_cast<u16>(next);
    *port = 1;
    return 0;
  }
  return kEnd;
}
