// Captures, byte by byte.

#include "messages/capture.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace messages {
namespace {

TEST(Capture, PacketsStandAsWiresharkReadsThem) {
  const u8 bytes[] = {0xAA, 0xBB, 0xCC};
  std::string packet;
  // 2^32 + 5 nanoseconds; a GET's road is 2, what comes in has flag 1; 15 bytes are filled up to 16.
  appendPacket(packet, std::chrono::nanoseconds(4294967301), Road::get, 0x0102, 0x0C0E, bytes);
  const std::string wanted(
      "\x06\0\0\0\x3C\0\0\0\0\0\0\0\x01\0\0\0\x05\0\0\0\x0F\0\0\0\x0F\0\0\0"
      "\x01\x02\x01\x02\x0C\x0E\0\0\0\0\0\x03\xAA\xBB\xCC\0"
      "\x02\0\x04\0\x01\0\0\0\0\0\0\0\x3C\0\0\0",
      60);
  EXPECT_EQ(packet, wanted);
  EXPECT_EQ(captureHead(),
            std::string("\x0A\x0D\x0D\x0A\x20\0\0\0\x4D\x3C\x2B\x1A\x01\0\0\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"
                        "\0\0\0\0\x20\0\0\0\x01\0\0\0\x28\0\0\0\x93\0\0\0\0\0\0\0"
                        "\x02\0\x04\0msan\x09\0\x01\0\x09\0\0\0\0\0\0\0\x28\0\0\0",
                        72));
}

// A longer one would make the whole file unreadable; its length is told all the same.
TEST(Capture, LongMessagesAreCut) {
  std::string packet;
  appendPacket(packet, {}, Road::getReply, 0, 1, std::vector<u8>(256004));
  EXPECT_EQ(packet.size(), 28 + 12 + 256000 + 16u);
  EXPECT_EQ(packet.substr(20, 8), std::string("\x0C\xE8\x03\0\x10\xE8\x03\0", 8));
  EXPECT_EQ(packet.substr(36, 4), std::string("\0\x03\xE8\x04", 4));
  EXPECT_THROW(readCapture(captureHead() + packet.substr(0, packet.size() - 1)), std::runtime_error);
}

}  // namespace
}  // namespace messages
