#include "capture.h"

#include <algorithm>
#include <stdexcept>

namespace messages {

namespace {

constexpr u32 kSection = 0x0A0D0D0A, kInterface = 1, kPacket = 6;  // blocks
constexpr u32 kByteOrder = 0x1A2B3C4D;
constexpr u16 kUser0 = 147;
constexpr u8 kHeadVersion = 1;
constexpr std::size_t kHead = 12;      // ahead of a message
constexpr std::size_t kPacketAt = 28;  // a packet's bytes in its block

// The file is little-endian.
template <class Number>
void put(std::string& to, Number number) {
  for (unsigned i = 0; i < sizeof number; ++i) to += static_cast<char>(static_cast<u64>(number) >> 8 * i);
}

template <class Number>
void putBig(std::string& to, Number number) {
  for (unsigned i = sizeof number; i-- > 0;) to += static_cast<char>(number >> 8 * i);
}

void fill(std::string& to) { to.append(to.size() % 4 == 0 ? 0 : 4 - to.size() % 4, '\0'); }

void putOption(std::string& to, u16 code, std::string_view value) {
  put(to, code);
  put(to, static_cast<u16>(value.size()));
  to += value;
  fill(to);
}

// A block of a file that ends with a whole one.
template <class Content>
void putBlock(std::string& to, u32 type, Content content) {
  const std::size_t begin = to.size();
  put(to, type);
  put(to, u32{0});
  content();
  put(to, u32{0});  // the end of the options
  const auto length = static_cast<u32>(to.size() + 4 - begin);
  put(to, length);
  std::copy(to.end() - 4, to.end(), to.begin() + static_cast<std::ptrdiff_t>(begin) + 4);
}

bool comesToNode(Road road) {
  return road == Road::set || road == Road::get || road == Road::gponAnswer || road == Road::geponAnswer ||
         road == Road::ngnAnswer;
}

u32 readLittle(std::string_view bytes, std::size_t at) {
  u32 number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8 | static_cast<u8>(bytes[at + i]);
  return number;
}

u16 readBig(std::string_view bytes, std::size_t at) {
  return static_cast<u16>(static_cast<u8>(bytes[at]) << 8 | static_cast<u8>(bytes[at + 1]));
}

Captured readPacket(std::string_view packet) {
  if (packet.size() < kHead || packet[0] != kHeadVersion || static_cast<u8>(packet[1]) >= kRoads)
    throw std::runtime_error("a packet of the capture is none of ours");
  return {static_cast<Road>(packet[1]), readBig(packet, 2), readBig(packet, 4), std::string(packet.substr(kHead))};
}

}  // namespace

std::string captureHead() {
  std::string head;
  putBlock(head, kSection, [&] {
    put(head, kByteOrder);
    put(head, u16{1});  // version 1.0
    put(head, u16{0});
    put(head, ~u64{0});  // its length is not told
  });
  putBlock(head, kInterface, [&] {
    put(head, u32{kUser0});
    put(head, u32{0});           // packets of any length
    putOption(head, 2, "msan");  // its name
    putOption(head, 9, "\x09");  // times are in nanoseconds
  });
  return head;
}

void appendPacket(std::string& capture, std::chrono::nanoseconds sinceEpoch, Road road, u16 slot, u16 id, Bytes bytes) {
  const Bytes taken = bytes.first(std::min(bytes.size(), kMostCaptured));
  putBlock(capture, kPacket, [&] {
    const auto time = static_cast<u64>(sinceEpoch.count());
    put(capture, u32{0});  // the interface
    put(capture, static_cast<u32>(time >> 32));
    put(capture, static_cast<u32>(time));
    put(capture, static_cast<u32>(kHead + taken.size()));
    put(capture, static_cast<u32>(kHead + bytes.size()));
    capture += static_cast<char>(kHeadVersion);
    capture += static_cast<char>(road);
    putBig(capture, slot);
    putBig(capture, id);
    putBig(capture, u16{0});
    putBig(capture, static_cast<u32>(bytes.size()));
    capture.append(reinterpret_cast<const char*>(taken.data()), taken.size());
    fill(capture);
    const char flags[4] = {comesToNode(road) ? '\1' : '\2', 0, 0, 0};
    putOption(capture, 2, {flags, sizeof flags});
  });
}

std::vector<Captured> readCapture(std::string_view capture) {
  const std::string head = captureHead();
  if (!capture.starts_with(head)) throw std::runtime_error("the capture is none of ours");
  capture.remove_prefix(head.size());
  std::vector<Captured> all;
  while (!capture.empty()) {
    if (capture.size() < kPacketAt + 4 || readLittle(capture, 0) != kPacket)
      throw std::runtime_error("the capture ends within a packet");
    const u32 block = readLittle(capture, 4), taken = readLittle(capture, 20);
    if (block > capture.size() || block < kPacketAt + 4 || taken > block - kPacketAt - 4)
      throw std::runtime_error("the capture ends within a packet");
    all.push_back(readPacket(capture.substr(kPacketAt, taken)));
    capture.remove_prefix(block);
  }
  return all;
}

}  // namespace messages
