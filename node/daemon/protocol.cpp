#include "protocol.h"

namespace wire {

constexpr std::size_t kHead = 4;

static void appendU32(std::string& to, u32 value) {
  for (int shift = 24; shift >= 0; shift -= 8) to += static_cast<char>(value >> shift & 0xff);
}

static u32 readU32(std::string_view from) {
  u32 value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<u8>(from[i]);
  return value;
}

void appendFrame(std::string& to, Kind kind, std::string_view payload) {
  appendU32(to, static_cast<u32>(payload.size() + 1));
  to += static_cast<char>(kind);
  to += payload;
}

void appendFrames(std::string& to, Kind kind, std::string_view payload) {
  while (!payload.empty()) {
    const std::string_view piece = payload.substr(0, kMaxFrame - 1);
    appendFrame(to, kind, piece);
    payload.remove_prefix(piece.size());
  }
}

void appendResult(std::string& to, const Result& result) {
  std::string payload(1, static_cast<char>(result.outcome));
  appendU32(payload, static_cast<u32>(result.returned));
  appendU32(payload, result.at);
  payload += result.expected;
  appendFrame(to, Kind::result, payload);
}

std::optional<Result> readResult(std::string_view payload) {
  if (payload.size() < 9) return std::nullopt;
  return Result{.outcome = static_cast<u8>(payload[0]),
                .returned = static_cast<i32>(readU32(payload.substr(1))),
                .at = readU32(payload.substr(5)),
                .expected = std::string(payload.substr(9))};
}

std::string screenPayload(const Screen& screen) {
  const int shows = (screen.utf8 ? 1 : 0) | (screen.colour ? 2 : 0);
  return {static_cast<char>(screen.columns >> 8), static_cast<char>(screen.columns), static_cast<char>(shows)};
}

std::optional<Screen> readScreen(std::string_view payload) {
  if (payload.size() != 3) return std::nullopt;
  const auto byte = [&](std::size_t at) { return static_cast<u8>(payload[at]); };
  return Screen{static_cast<u16>(byte(0) << 8 | byte(1)), (byte(2) & 1) != 0, (byte(2) & 2) != 0};
}

void FrameReader::feed(std::string_view bytes) {
  bytes_.erase(0, taken_);
  taken_ = 0;
  bytes_ += bytes;
}

std::optional<Frame> FrameReader::next() {
  const std::string_view rest = std::string_view(bytes_).substr(taken_);
  if (broken_ || rest.size() < kHead) return std::nullopt;
  const u32 length = readU32(rest);
  if (length == 0 || length > longest_) {
    broken_ = true;
    return std::nullopt;
  }
  if (rest.size() - kHead < length) return std::nullopt;
  taken_ += kHead + length;
  return Frame{static_cast<Kind>(rest[kHead]), rest.substr(kHead + 1, length - 1)};
}

}  // namespace wire
