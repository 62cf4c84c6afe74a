#include "combo/port/modem_read.h"

#include <cstring>

#include "platform/cards.h"

static constexpr u32 kModemAnswer = 108, kRatesAnswer = 208;

int readModemField(u16 slot, u16 port, const ModemField& field, void* out) {
  struct {
    u32 count;
    u16 slot, port;
    u8 reserved[16];
  } const request{1, slot, port, {}};
  static_assert(sizeof request == 24);
  u8 answer[kRatesAnswer] = {};
  u32 length = field.message == kReachedRates.message ? kRatesAnswer : kModemAnswer;
  std::memset(out, 0, field.size);
  if (gepon_send_and_wait_for_response_copy(slot, field.message, 0, 0, &request, sizeof request, answer, &length, 0) <
      0)
    return -1;
  if (length < u32{field.offset} + field.size) return -1;
  std::memcpy(out, answer + field.offset, field.size);
  return 0;
}
