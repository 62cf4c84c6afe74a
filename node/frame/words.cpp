#include <fmt/format.h>

#include <algorithm>
#include <span>

#include "client.h"
#include "host/hex.h"

namespace frame {

namespace {

constexpr std::size_t kHead = 8;   // 00 00 00 41, u16 number of errors, u16 size of what follows
constexpr std::size_t kError = 8;  // u16 message, u16 code, 4 bytes
constexpr i32 kFirstField = -120;  // a field's code; those of the next fields go down from it
constexpr i32 kLastField = -499;

struct Code {
  i32 code;
  const char* words;
};
// clang-format off
constexpr Code kCodes[] = {
    {-1,   "the number of items is outside its limits"},
    {-18,  "the frame is shorter than its items"},
    {-100, "the message could not be encoded"},
    {-103, "the message could not be built"},
    {-104, "the message could not be sent"},
    {-106, "the answer could not be read"},
    {-107, "the configuration could not be stored"},
    {-108, "the configuration could not be read"},
    {-110, "a step failed"},
};
// clang-format on

std::string wordsOf(i32 code) {
  const auto* found = std::ranges::find(kCodes, code, &Code::code);
  if (found != std::end(kCodes)) return found->words;
  return code <= kFirstField && code >= kLastField ? "a value is outside its range" : "no further words";
}

u32 number(std::span<const u8> bytes, std::size_t at) { return static_cast<u32>(bytes[at] << 8 | bytes[at + 1]); }

}  // namespace

std::string errorWords(const std::vector<u8>& reply) {
  if (reply.size() < 4 || reply[0] != 0 || reply[1] != 0 || reply[2] != 0 || reply[3] != 0x41) return {};
  if (reply.size() < kHead + kError) return "refused: the node gives no reason";
  const auto code = static_cast<i32>(static_cast<i16>(number(reply, kHead + 2)));
  std::string words = fmt::format("refused: message {}, code {}: {}", number(reply, kHead), code, wordsOf(code));
  const std::span<const u8> detail(reply.begin() + kHead + kError, reply.end());
  if (!detail.empty()) words += fmt::format(" ({})", host::hexText(detail));
  return words;
}

}  // namespace frame
