// The frames between msand and its terminals, byte for byte.

#include <gtest/gtest.h>

#include "protocol.h"

using namespace std::string_literals;
using wire::Frame, wire::FrameReader, wire::Kind;

static std::string shown(const std::optional<Frame>& frame) {
  return frame ? static_cast<char>(frame->kind) + ("(" + std::string(frame->payload) + ")") : "none";
}

TEST(Protocol, FramesHaveTheirBytes) {
  std::string bytes;
  wire::appendFrame(bytes, Kind::line, "show cid mode");
  wire::appendResult(bytes, {.outcome = 2, .returned = -1, .at = 258, .expected = "id"});
  EXPECT_EQ(bytes, "\0\0\0\x0eLshow cid mode\0\0\0\x0cR\x02\xff\xff\xff\xff\0\0\x01\x02id"s);
  const auto result = wire::readResult("\x02\xff\xff\xff\x9c\0\0\0\x05"s);
  ASSERT_TRUE(result);
  EXPECT_EQ(result->outcome, 2);
  EXPECT_EQ(result->returned, -100);
  EXPECT_EQ(result->at, 5);
  EXPECT_FALSE(wire::readResult("\0\0\0\0\0\0\0\0"s)) << "eight bytes are no result";
}

TEST(Protocol, ScreensAreTold) {
  EXPECT_EQ(wire::screenPayload({.columns = 300, .colour = true}), "\x01\x2c\x02"s);
  EXPECT_EQ(wire::readScreen("\x01\x2c\x01"s), (wire::Screen{300, true, false}));
  EXPECT_FALSE(wire::readScreen("\x01\x2c"s));
}

TEST(Protocol, FramesAreFoundWhereverTheStreamIsCut) {
  const std::string stream = "\0\0\0\x03Lab\0\0\0\x01?\0\0\0\x02Lc"s;
  for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
    FrameReader reader(wire::kMaxRequest);
    std::string found;
    for (std::size_t at = 0; at < stream.size(); at += piece) {
      reader.feed(std::string_view(stream).substr(at, piece));
      while (const auto frame = reader.next()) found += shown(frame);
    }
    EXPECT_EQ(found, "L(ab)?()L(c)") << "pieces of " << piece;
  }
}

TEST(Protocol, ALengthOutOfBoundsBreaksTheStream) {
  for (const std::string& head : {"\0\0\0\0"s, "\0\0\x40\x01"s, "\xff\xff\xff\xff"s}) {
    FrameReader reader(16384);
    reader.feed("\0\0\0\x01?"s + head + "L");
    EXPECT_EQ(shown(reader.next()), "?()") << "what came ahead is good";
    EXPECT_EQ(shown(reader.next()), "none");
    EXPECT_TRUE(reader.broken());
    reader.feed("\0\0\0\x01?"s);
    EXPECT_EQ(shown(reader.next()), "none") << "nothing more comes out";
  }
  FrameReader reader(16384);
  reader.feed("\0\0\x40\0L"s + std::string(16383, 'x'));
  EXPECT_EQ(shown(reader.next()).size(), 16383u + 3) << "the longest one is whole";
}

TEST(Protocol, LongTextGoesInSeveralFrames) {
  std::string bytes;
  wire::appendFrames(bytes, Kind::text, std::string(65535, 'a') + "bc");
  EXPECT_EQ(bytes.size(), 4u + 65536 + 4 + 3);
  EXPECT_EQ(bytes.substr(0, 5), "\0\x01\0\0T"s);
  EXPECT_EQ(bytes.substr(4 + 65536), "\0\0\0\x03Tbc"s);
}
