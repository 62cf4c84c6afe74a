#pragma once
// What a simulated other end says to a question.

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "layout.h"

namespace messages {

// What a field of an answer holds: a number, with its decimals where it is scaled, or the bytes of a text or of bytes.
struct Value {
  i64 number = 0;
  u8 decimals = 0;
  std::string bytes;
};

// What the other end knows. `place`: the items, from 0, of the lists that the field stands in, the outermost first.
class Knowledge {
 public:
  virtual ~Knowledge() = default;
  virtual std::optional<Value> find(const Field& field, std::span<const i64> place) const = 0;
};

// An answer by its description: what is known; else what stands in the question under the same name is given back, the
// items of a list with it; all else has its first word, its lowest value or zero. Nothing for what is not described,
// and for a question that does not decode.
std::optional<std::vector<u8>> answer(const Book& book, Road ask, u16 id, Bytes question, const Knowledge& knowledge);

// By somebody who knows nothing.
std::optional<std::vector<u8>> plainAnswer(const Book& book, Road ask, u16 id, Bytes question);

// A message, read by its description, whatever its values are; none as above.
struct Decoded;
std::optional<Decoded> readMessage(const Book& book, Road ask, u16 id, Bytes question);

}  // namespace messages
