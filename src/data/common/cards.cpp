#include "data/common/cards.h"

#include "platform/objects.h"

static bool isCard(u16 slot, int (*check)(u16 cardType)) {
  const int card = get_config_card_type(slot);
  return card > 0 && check(static_cast<u16>(card)) == 0;
}

bool isMsanCard(u16 slot) { return isCard(slot, caCheckCardTypeIsMsanCard); }
bool isDataCard(u16 slot) { return isCard(slot, caCheckCardTypeIsMsanDataCard); }
bool isAdslCard(u16 slot) { return isCard(slot, caCheckCardTypeIsADSLCard); }
bool isVdslCard(u16 slot) { return isCard(slot, caCheckCardTypeIsVDSLCard); }

u16 dataPorts(u16 slot) {
  u16 ports = 0;
  if (!isDataCard(slot)) return 0;
  return ddGetBoardServePortAmountByType(static_cast<u16>(get_config_card_type(slot)), &ports) == 0 ? ports : u16{0};
}
