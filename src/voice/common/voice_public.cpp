#include "voice/common/voice_public.h"

#include <arpa/inet.h>

#include <algorithm>
#include <bitset>
#include <cstring>

#include "common/memory.h"
#include "common/msan_init.h"
#include "common/trace.h"
#include "voice/common/voice_msc.h"

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

int nIsValidString(const char* text, u16 length, std::string_view table) {
  return nIsValidString(text, length, table.data(), static_cast<u16>(table.size()));
}

int nIsNoSpaceString(const char* text, u16 length) {
  if (text == nullptr || length == 0) {
    trace("invalid check para");
    return -1;
  }
  return std::memchr(text, ' ', length) == nullptr ? 1 : 0;
}

int nIsProfileIDDuplicate(const LIST* list, u16* id) {
  if (list == nullptr || id == nullptr) {
    trace("profile list para is NULL");
    return -1;
  }
  std::bitset<65536> seen;
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<DataNode*>(at);
    u16 value = 0;
    if (node->dataLen < sizeof value) return -1;
    std::memcpy(&value, node->data, sizeof value);
    if (seen[value]) {
      *id = value;
      return 1;
    }
    seen[value] = true;
  }
  return 0;
}

int nStringIP2ULongIP(const char* text, u32* address) {
  if (text == nullptr || address == nullptr) {
    trace("IP address para is NULL");
    return -1;
  }
  const in_addr_t parsed = inet_addr(text);
  if (parsed == INADDR_NONE) return -1;
  *address = ntohl(parsed);
  return 0;
}

int nULongIP2StringIP(u32 address, char* text) {
  if (text == nullptr) {
    trace("IP address para is NULL");
    return -1;
  }
  std::memset(text, 0, 16);
  const in_addr wire{htonl(address)};
  return inet_ntop(AF_INET, &wire, text, 16) != nullptr ? 0 : -1;
}

// Bytes of an address of the type, as they are written.
static u32 addressBytes(u32 type) { return type == 1 ? 4 : 16; }

// Writes the general form. 0, or -1 if it does not fit.
static int writeGeneral(u32 type, const u8* address, u32 mask, WireOut general, u32* length) {
  const u32 bytes = addressBytes(type);
  Writer writer(general);
  writer.number(4, type);
  writer.number(4, bytes);
  writer.bytes({address, bytes});
  writer.number(4, mask);
  if (writer.failed()) return -1;
  *length = writer.length();
  return 0;
}

static int isNull(Where where = Where::here()) {
  printTrace(where, "IP address para is NULL");
  return -1;
}

int nParseGeneralIP2LocalIP(WireIn general, LocalIP* local, u32* length) {
  if (general.data() == nullptr || local == nullptr || length == nullptr) return isNull();
  if (general.size() < kGeneralIPHead) return -1;
  const u32 bytes = getNumber(general.data() + 4, 4);
  if (bytes > sizeof local->ipAddr || general.size() < kGeneralIPHead + bytes) {
    trace("invalid IP address length: %d", bytes);
    return -1;
  }
  *local = {};
  local->ipType = getNumber(general.data(), 4);
  std::memcpy(local->ipAddr, general.data() + 8, bytes);
  local->ipMask = getNumber(general.data() + 8 + bytes, 4);
  *length = kGeneralIPHead + bytes;
  return 0;
}

int nParseLocalIP2GeneralIP(WireIn local, WireOut general, u32* length) {
  if (local.data() == nullptr || general.data() == nullptr || length == nullptr) return isNull();
  if (local.size() < kLocalIP) return -1;
  const u8* at = local.data();
  return writeGeneral(getNumber(at, 4), at + 4, getNumber(at + 20, 4), general, length);
}

int nEncodeLocalIP(const LocalIP* local, WireOut wire, u32* length) {
  if (local == nullptr || wire.data() == nullptr || length == nullptr) return isNull();
  Writer writer(wire);
  writer.number(4, local->ipType);
  writer.bytes(local->ipAddr);
  writer.number(4, local->ipMask);
  if (writer.failed()) return -1;
  *length = writer.length();
  return 0;
}

int nEncodeLocalIP2GeneralIP(const LocalIP* local, WireOut general, u32* length) {
  if (local == nullptr || general.data() == nullptr || length == nullptr) return isNull();
  return writeGeneral(local->ipType, local->ipAddr, local->ipMask, general, length);
}

int nIsValidIPType(u32 type) { return type >= 1 && type <= 4 ? 1 : 0; }

int nIsValidIPMask(u32 type, u32 mask) {
  switch (type) {
    case 1:
      return mask <= 32 ? 1 : 0;
    case 2:
      return mask <= 128 ? 1 : 0;
    default:
      return 1;
  }
}

int nIsIPGatewayMatched(u32 address, u32 gateway, u32 mask) {
  const u64 behind = u64{0xFFFFFFFF} >> std::min(mask, 32u);  // the bits that may differ
  return (address | behind) == (gateway | behind) ? 1 : 0;
}

int nULongLong2Float10(u64 value, u8* out) {
  if (out == nullptr) return isNull();
  out[0] = 3;
  out[1] = 0;
  std::memcpy(out + 2, &value, sizeof value);
  return 0;
}
