#pragma once
// Two texts, line by line.

#include <string>
#include <string_view>

namespace msand {

struct Difference {
  std::string unified;  // as "diff -u" tells it, lines end with CR LF; empty: they are the same
};

// Throws std::runtime_error if the system's diff can't be run.
Difference differenceOf(const std::string& nameA, std::string_view a, const std::string& nameB, std::string_view b);

// {"same":false,"removed":[...],"added":[...]}, lines of the first text alone and of the second alone, in order.
std::string jsonOf(const Difference& difference);

}  // namespace msand
