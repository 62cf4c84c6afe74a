#include "command_line_suggestions.h"

#include <algorithm>
#include <map>
#include <string>

namespace command_line {
namespace {

constexpr std::string_view kEnd = "<cr>";
constexpr std::size_t kShownNextWords = 4;

struct LessFolded {
  bool operator()(std::string_view a, std::string_view b) const {
    return std::ranges::lexicographical_compare(a, b, {}, fold, fold);
  }
};

// A place in a command at which the suggested word stands.
struct Place {
  u32 command = 0;
  std::size_t position = 0;
};

using Words = std::map<std::string_view, std::vector<Place>, LessFolded>;

bool mayBecome(std::string_view typed, const Syntax& syntax, const Alternative& alternative) {
  switch (alternative.kind) {
    case Alternative::word:
      return begins(typed, syntax.textOf(alternative));
    case Alternative::range:
      return std::ranges::all_of(typed, isDigit);
    case Alternative::parameter:
      return true;
  }
  return false;
}

// Collects what may stand at a position of a command and begins with `typed`.
void collect(const Node& node, Place place, std::string_view typed, Words& words) {
  const Syntax& syntax = node.command(place.command).syntax;
  const bool mayEnd = syntax.eachNext(place.position, [&](std::size_t next) {
    const Element& element = syntax.elements[next];
    for (std::size_t i = 0; i < element.alternatives; ++i) {
      const Alternative& alternative = syntax.alternatives[element.first + i];
      if (mayBecome(typed, syntax, alternative)) words[syntax.textOf(alternative)].push_back({place.command, next});
    }
  });
  if (mayEnd && typed.empty()) words[kEnd].push_back(place);
}

// The help of the command that a word leads to; of several, the words that may follow.
std::string helpOf(const Node& node, const std::vector<Place>& places) {
  const std::string& help = node.command(places.front().command).help;
  const auto sameHelp = [&](const Place& place) { return node.command(place.command).help == help; };
  if (std::ranges::all_of(places, sameHelp)) return help;
  Words next;
  for (const Place& place : places) collect(node, {place.command, place.position + 1}, {}, next);
  std::string list;
  std::size_t shown = 0;
  for (const auto& [word, unused] : next) {
    if (!list.empty()) list += ", ";
    if (shown++ == kShownNextWords) return list + "...";
    list += word;
  }
  return list;
}

}  // namespace

std::vector<host::Suggestion> suggest(const Node& node, Reading& reading, std::string_view line) {
  if (!reading.split(line, node.longestLine())) return {};
  const bool newWord = line.empty() || isBlank(line.back());
  const std::size_t taken = reading.words().size() - (newWord ? 0 : 1);
  const std::string_view typed = newWord ? std::string_view() : reading.words().back().text;
  Words words;
  if (taken == 0) {
    for (u32 command = 0; command < node.size(); ++command) collect(node, {command, 0}, typed, words);
  } else {
    reading.take(node, taken);
    for (const Step& step : reading.open()) {
      collect(node, {step.command, step.element + std::size_t{1}}, typed, words);
    }
  }
  std::vector<host::Suggestion> list;
  list.reserve(words.size());
  for (const auto& [word, places] : words) {
    list.push_back({std::string(word), helpOf(node, places), word == kEnd});
  }
  return list;
}

}  // namespace command_line
