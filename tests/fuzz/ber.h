#pragma once
// Messages of managers, put together byte by byte.

#include <span>
#include <string>

#include "platform/types.h"

namespace ber {

inline std::string tagged(u8 tag, const std::string& content) {
  std::string length;
  for (std::size_t left = content.size(); left != 0; left >>= 8) length.insert(0, 1, static_cast<char>(left));
  std::string text(1, static_cast<char>(tag));
  if (content.size() >= 0x80) text += static_cast<char>(0x80 + length.size());
  return text + (content.empty() ? std::string(1, '\0') : length) + content;
}

inline std::string number(i64 value) {
  std::string bytes;
  do {
    bytes.insert(0, 1, static_cast<char>(value));
    value >>= 8;
  } while (value != (static_cast<signed char>(bytes[0]) < 0 ? -1 : 0));
  return tagged(2, bytes);
}

inline std::string name(std::span<const u32> parts) {
  std::string bytes(1, static_cast<char>(40 * parts[0] + parts[1]));
  for (const u32 part : parts.subspan(2)) {
    std::string groups(1, static_cast<char>(part & 0x7f));
    for (u32 left = part >> 7; left != 0; left >>= 7) groups.insert(0, 1, static_cast<char>(0x80 | (left & 0x7f)));
    bytes += groups;
  }
  return tagged(6, bytes);
}

// Of version 2c; the two numbers of a bulk request, else of an error.
inline std::string message(const std::string& community, u8 pdu, u32 id, u32 first, u32 second,
                           const std::string& variables) {
  const std::string request = number(id) + number(first) + number(second) + tagged(0x30, variables);
  return tagged(0x30, number(1) + tagged(4, community) + tagged(pdu, request));
}

// Whether the bytes are one value of this tag, whole.
inline bool isWhole(u8 tag, std::string_view bytes) {
  if (bytes.size() < 2 || static_cast<u8>(bytes[0]) != tag) return false;
  std::size_t length = static_cast<u8>(bytes[1]), at = 2;
  if (length >= 0x80) {
    const std::size_t digits = length - 0x80;
    length = 0;
    for (; at < 2 + digits && at < bytes.size(); ++at) length = length << 8 | static_cast<u8>(bytes[at]);
  }
  return bytes.size() - at == length;
}

}  // namespace ber
