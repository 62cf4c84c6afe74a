#include "voice/common/voice_public.h"

#include <cstring>

#include "common/memory.h"
#include "common/msan_init.h"
#include "common/trace.h"

int nIsValidString(const char* text, u16 length, const char* table, u16 tableLength) {
  if (text == nullptr || table == nullptr || length == 0 || tableLength == 0) {
    trace("invalid check para");
    return -1;
  }
  // The distinct characters found good so far: a text holds few of them.
  const PoolBytes good(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, tableLength, __FILE__, __LINE__)));
  if (good == nullptr) {
    trace("malloc memory failed");
    return -1;
  }
  u16 found = 0;
  for (u16 i = 0; i < length; ++i) {
    if (std::memchr(good.get(), text[i], found) != nullptr) continue;
    if (std::memchr(table, text[i], tableLength) == nullptr) return 0;
    good[found++] = static_cast<u8>(text[i]);
  }
  return 1;
}
