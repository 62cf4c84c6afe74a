#pragma once
// Numbers on the wire: big-endian, in spans that can't be left.

#include <cstring>
#include <span>

#include "platform/types.h"

using WireIn = std::span<const u8>;
using WireOut = std::span<u8>;

// The number of `width` bytes (1 to 4) at `at`. The caller has checked the length.
constexpr u32 getNumber(const u8* at, u32 width) {
  u32 value = 0;
  for (u32 i = 0; i < width; ++i) value = value << 8 | at[i];
  return value;
}

constexpr void putNumber(u8* at, u32 width, u32 value) {
  for (u32 i = width; i-- > 0; value >>= 8) at[i] = static_cast<u8>(value);
}

// Writes from the front of a buffer. What does not fit is not written, and the writer has failed from then on.
class Writer {
 public:
  explicit Writer(WireOut buffer) : buffer_(buffer) {}

  void number(u32 width, u32 value) {
    if (u8* at = take(width)) putNumber(at, width, value);
  }
  void bytes(WireIn from) {
    if (u8* at = take(from.size()); at != nullptr && !from.empty()) std::memcpy(at, from.data(), from.size());
  }
  void zeros(std::size_t length) {
    if (u8* at = take(length)) std::memset(at, 0, length);
  }
  // Leaves bytes as they are, for the caller to fill; null without room.
  u8* skip(std::size_t length) { return take(length); }

  bool failed() const { return failed_; }
  u32 length() const { return static_cast<u32>(length_); }

 private:
  u8* take(std::size_t length) {
    if (failed_ || length > buffer_.size() - length_) {
      failed_ = true;
      return nullptr;
    }
    u8* at = buffer_.data() + length_;
    length_ += length;
    return at;
  }
  WireOut buffer_;
  std::size_t length_ = 0;
  bool failed_ = false;
};

// Reads from the front of a buffer. What it does not hold is not read, and the reader has failed from then on.
class Reader {
 public:
  explicit Reader(WireIn buffer) : buffer_(buffer) {}

  // 0 once it has failed.
  u32 number(u32 width) {
    const u8* at = take(width);
    return at != nullptr ? getNumber(at, width) : 0;
  }
  void bytes(void* to, std::size_t length) {
    if (const u8* at = take(length); at != nullptr) std::memcpy(to, at, length);
  }
  void skip(std::size_t length) { take(length); }

  bool failed() const { return failed_; }
  u32 length() const { return static_cast<u32>(length_); }
  WireIn rest() const { return buffer_.subspan(length_); }

 private:
  const u8* take(std::size_t length) {
    if (failed_ || length > buffer_.size() - length_) {
      failed_ = true;
      return nullptr;
    }
    const u8* at = buffer_.data() + length_;
    length_ += length;
    return at;
  }
  WireIn buffer_;
  std::size_t length_ = 0;
  bool failed_ = false;
};
