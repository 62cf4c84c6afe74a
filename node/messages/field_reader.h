#pragma once
// The lines of a layout, read into fields.

#include <map>
#include <string>
#include <vector>

#include "layout.h"
#include "lines.h"

namespace messages {

inline constexpr int kDeepest = 20;  // records within records, frames within frames

// Records, frames and groups of error codes by name, which stand with words in the place of their parameters where a
// line uses them: "use NAME WORD...".
class Templates {
 public:
  void add(const std::string& kind, Line line);
  // What belongs to the one that the line names behind its first word.
  std::vector<Line> expand(const std::string& kind, const Line& use) const;

 private:
  std::map<std::string, Line> all_;  // by kind and name
};

// Throws BadDescription.
Layout readLayout(const std::vector<Line>& lines, const Templates& templates);

i64 numberOf(const Line& line, const std::string& text);

}  // namespace messages
