#pragma once
// The arguments of a directive, taken off its line one by one.

#include <initializer_list>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/types.h"

namespace scenario {

// A line that can't be read; what() says why, with the nearest word where there is one.
struct BadLine : std::runtime_error {
  using std::runtime_error::runtime_error;
};

BadLine unknownWord(std::string_view what, std::string_view word, std::span<const std::string_view> known);

// Decimal or 0x. Throws BadLine outside low..high.
i64 parseNumber(std::string_view what, std::string_view text, i64 low, i64 high);

// Bytes from words parted by blanks: hex digits, bb*N, u8:N u16:N u32:N i32:N, le16:N le32:N, "text", "text":N,
// mac:aa-bb-cc-dd-ee-ff, ip:10.0.0.1; "-" alone is no bytes. Throws BadLine.
std::vector<u8> parseBytes(std::string_view text);

class Arguments {
 public:
  explicit Arguments(std::string_view text) : left_(text) {}

  bool empty() const { return left_.find_first_not_of(' ') == left_.npos; }

  // Each takes what comes next and throws BadLine if it is not there, or is something else. `what` names it.
  std::string_view word(std::string_view what);
  std::size_t choice(std::initializer_list<std::string_view> words);  // the index of the word
  i64 number(std::string_view what, i64 low, i64 high);
  u16 id() { return static_cast<u16>(number("message id", 0, 65535)); }
  u16 slot();  // one that is there

  // All that is left: as it stands behind one blank, as bytes.
  std::string_view rest();
  std::vector<u8> bytes();

  void end() const;  // throws BadLine if something is left

 private:
  std::string_view left_;
};

}  // namespace scenario
