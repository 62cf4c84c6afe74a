#pragma once
// Messages as a file that Wireshark reads (pcapng, link type USER0). A packet is a head of 12 bytes and the message:
//
//   u8 version    of the head: 1
//   u8 road       the way of the message, as Road counts them
//   u16 slot      the card's, 0 with a manager or the voice side
//   u16 id
//   u16           zero
//   u32 length    of the message; if it is cut, there are fewer bytes
//
// All big-endian. Whether it came to the node or left it stands in the packet's flags.

#include <chrono>
#include <string>

#include "layout.h"

namespace messages {

inline constexpr std::size_t kMostCaptured = 256000;  // bytes of a message, the rest is cut: Wireshark's limit is near

// What a capture begins with.
std::string captureHead();

void appendPacket(std::string& capture, std::chrono::nanoseconds sinceEpoch, Road road, u16 slot, u16 id, Bytes bytes);

// A packet of a capture that was read back, without its time.
struct Captured {
  Road road = Road::set;
  u16 slot = 0;
  u16 id = 0;
  std::string bytes;
};

// The packets of a capture that these functions made. Throws std::runtime_error for another file.
std::vector<Captured> readCapture(std::string_view capture);

}  // namespace messages
