#pragma once
// What a card tells of the modem at the far end of a DSL line. Numbers of this exchange stand as the processor keeps
// them.

#include "platform/types.h"

// A field of an answer.
struct ModemField {
  u16 message;
  u16 offset;
  u16 size;
};
inline constexpr ModemField kModemVendor{2854, 24, 4}, kModemFirmware{2854, 28, 32}, kModemStatus{2854, 60, 2},
    kModemOnlineTime{2854, 62, 7}, kModemOfflineTime{2854, 69, 7}, kReachedRates{2853, 24, 104};

// Asks the card in the slot, whatever it is, and takes the field out of its answer. 0, or -1 if there is no answer that
// holds it; then `out` is zeroed.
int readModemField(u16 slot, u16 port, const ModemField& field, void* out);
