#pragma once
// What a simulated other end says to a question.

#include <optional>
#include <vector>

#include "layout.h"

namespace messages {

// An answer by its description: what stands in the question under the same name is given back, the items of a list with
// it; all else has its first word, its lowest value or zero. Nothing for what is not described, and for a question that
// does not decode.
std::optional<std::vector<u8>> plainAnswer(const Book& book, Road ask, u16 id, Bytes question);

}  // namespace messages
