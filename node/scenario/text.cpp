#include "text.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace scenario {

namespace {

void appendEscaped(std::string& shown, std::string_view text) {
  for (const char c : text) {
    if (c == '\r')
      shown += "\\r";
    else if (c == '\n')
      shown += "\\n";
    else
      shown += c;
  }
}

std::string terminalLine(std::string_view line) {
  std::string_view ending = "\\c";
  if (line.ends_with("\r\n")) {
    line.remove_suffix(2);
    ending = "";
  } else if (line.ends_with('\n')) {
    line.remove_suffix(1);
    ending = "\\n";
  }
  std::string shown;
  appendEscaped(shown, line);
  return shown.append(ending);
}

// Letters to insert, to delete, to exchange, or to swap with their neighbour between two words.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> earlier, above, row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    earlier = std::exchange(above, row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1), above[j] + 1, row[j - 1] + 1});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) row[j] = std::min(row[j], earlier[j - 2] + 1);
    }
  }
  return row.back();
}

}  // namespace

std::vector<std::string> terminalLines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1);
    lines.push_back(terminalLine(line));
    text.remove_prefix(line.size());
  }
  return lines;
}

std::string logText(std::string_view text) {
  const auto first = text.find_first_not_of("\r\n");
  if (first == text.npos) return {};
  std::string shown;
  appendEscaped(shown, text.substr(first, text.find_last_not_of("\r\n") - first + 1));
  return shown;
}

std::string marked(std::string_view mark, std::string_view text) {
  std::string line(mark);
  if (!text.empty()) line.append(" ").append(text);
  return line;
}

std::string_view nearest(std::string_view word, std::span<const std::string_view> words) {
  const auto found = std::min_element(words.begin(), words.end(), [word](std::string_view a, std::string_view b) {
    return distance(word, a) < distance(word, b);
  });
  return found != words.end() ? *found : std::string_view();
}

std::string_view firstWord(std::string_view line) { return line.substr(0, line.find(' ')); }

}  // namespace scenario
