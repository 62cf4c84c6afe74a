#pragma once
// Frames of managers, put together from pieces.

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "host/agent.h"
#include "platform/types.h"

using Bytes = std::vector<u8>;

inline Bytes hex(std::string_view text) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    if (text[i] == ' ') ++i;
    bytes.push_back(static_cast<u8>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
  }
  return bytes;
}

inline Bytes join(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

inline Bytes zeros(std::size_t count) { return Bytes(count); }
inline Bytes number(u32 width, u32 value) {
  Bytes bytes(width);
  for (u32 i = width; i-- > 0; value >>= 8) bytes[i] = static_cast<u8>(value);
  return bytes;
}
inline Bytes name(std::string text) {
  text.resize(20);
  return {text.begin(), text.end()};
}

inline Bytes item(u32 id, const std::string& label, const Bytes& body) {
  return join({number(2, id), name(label), body});
}
inline Bytes frame(u32 count, const Bytes& items) { return join({zeros(32), number(2, count), items}); }

// The code in an error packet, 0 for a success, 1 for a failure without a code.
inline int codeOf(const Bytes& reply) {
  if (reply == hex("00000001")) return 0;
  return reply.size() >= 12 ? static_cast<i16>(reply[10] << 8 | reply[11]) : 1;
}
inline int set(u16 id, Bytes request) { return codeOf(*host::agentSet(id, true, &request).reply); }
