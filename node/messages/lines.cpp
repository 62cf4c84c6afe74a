#include "lines.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <utility>

namespace messages {

namespace {

bool isBlank(char letter) { return letter == ' '; }
bool isOfName(char letter) { return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_'; }

// A line's words; "; " between parts and ":" at the end of a head are words of their own.
std::vector<Token> tokensOf(const Line& at, std::string_view text) {
  std::vector<Token> tokens;
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    if (text.empty() || text.front() == '#') return tokens;
    if (text.front() == '"') {
      const auto end = text.find('"', 1);
      if (end == text.npos) at.bad("the quote is not closed");
      tokens.push_back({std::string(text.substr(1, end - 1)), true});
      text.remove_prefix(end + 1);
      continue;
    }
    const auto end = static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isBlank) - text.begin());
    std::string word(text.substr(0, end));
    text.remove_prefix(end);
    const char last = word.back();
    const bool parts = word.size() > 1 && (last == ':' || last == ';' || last == ',');
    if (parts) word.pop_back();
    tokens.push_back({std::move(word), false});
    if (parts) tokens.push_back({std::string(1, last), false});
  }
}

// Cuts a line in its head and what stands behind the ":" of it.
Line parted(Line line) {
  const auto colon = std::ranges::find_if(line.tokens, [](const Token& token) { return token.is(":"); });
  if (colon == line.tokens.end()) return line;
  Line part{line.file, line.number, line.indent, {}, {}};
  for (auto token = colon + 1; token != line.tokens.end(); ++token) {
    if (token->is(":")) line.bad("the line has a second \":\"");
    if (token->is(";"))
      line.under.push_back(std::exchange(part, {line.file, line.number, line.indent, {}, {}}));
    else
      part.tokens.push_back(*token);
  }
  if (!part.tokens.empty()) line.under.push_back(std::move(part));
  line.tokens.erase(colon, line.tokens.end());
  const bool empty = std::ranges::any_of(line.under, [](const Line& one) { return one.tokens.empty(); });
  if (line.tokens.empty() || empty) line.bad("a part of the line is empty");
  return line;
}

// Takes the lines from `next` on that are indented further than `indent`.
std::vector<Line> takeUnder(std::vector<Line>& lines, std::size_t& next, i64 indent) {
  std::vector<Line> taken;
  while (next < lines.size() && lines[next].indent > indent) {
    Line line = parted(std::move(lines[next++]));
    if (!taken.empty() && line.indent != taken.front().indent) line.bad("the indent fits nothing above");
    auto under = takeUnder(lines, next, line.indent);
    if (!under.empty() && !line.under.empty()) line.bad("what belongs to the line stands both on it and below");
    if (!under.empty()) line.under = std::move(under);
    taken.push_back(std::move(line));
  }
  return taken;
}

void substituteWord(std::string& text, const std::vector<std::string>& from, const std::vector<std::string>& to) {
  std::string done;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    while (end < text.size() && isOfName(text[end])) ++end;
    const std::string word = text.substr(at, end - at);
    const auto found = std::ranges::find(from, word);
    done += found == from.end() ? word : to[static_cast<std::size_t>(found - from.begin())];
    if (end < text.size()) done += text[end++];
    at = end;
  }
  text = std::move(done);
}

}  // namespace

void Line::bad(std::string_view why) const { throw BadDescription(fmt::format("{}:{}: {}", file, number, why)); }

std::vector<Line> readLines(std::string_view file, std::string_view text) {
  std::vector<Line> lines;
  for (u32 number = 1; !text.empty(); ++number) {
    const auto end = std::min(text.find('\n'), text.size());
    const std::string_view one = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    Line line{file, number, static_cast<u32>(std::min(one.find_first_not_of(' '), one.size())), {}, {}};
    line.tokens = tokensOf(line, one);
    if (!line.tokens.empty()) lines.push_back(std::move(line));
  }
  std::size_t next = 0;
  return takeUnder(lines, next, -1);
}

void substitute(Line& line, const std::vector<std::string>& from, const std::vector<std::string>& to) {
  for (Token& token : line.tokens)
    if (!token.quoted) substituteWord(token.text, from, to);
  for (Line& under : line.under) substitute(under, from, to);
}

}  // namespace messages
