#include "command_line_misunderstanding.h"

#include <algorithm>

namespace command_line {
namespace {

using host::Misunderstanding;

constexpr std::string_view kEnd = "the end of the line";

void addOnce(std::vector<std::string>& words, std::string_view word) {
  if (std::ranges::find(words, word) == words.end()) words.emplace_back(word);
}

// Adds what may stand at a position of a syntax, as it is written.
void addNext(const Syntax& syntax, std::size_t position, std::vector<std::string>& words) {
  const bool mayEnd = syntax.eachNext(position, [&](std::size_t next) {
    const Element& element = syntax.elements[next];
    for (std::size_t i = 0; i < element.alternatives; ++i)
      addOnce(words, syntax.textOf(syntax.alternatives[element.first + i]));
  });
  if (mayEnd) addOnce(words, kEnd);
}

std::size_t alike(std::string_view a, std::string_view b) {
  const auto same = [](char x, char y) { return fold(x) == fold(y); };
  return static_cast<std::size_t>(std::ranges::mismatch(a, b, same).in1 - a.begin());
}

class Explanation {
 public:
  Explanation(const Node& node, Reading& reading, std::string_view line)
      : node_(node), reading_(reading), line_(line) {}

  // The first word that no command takes, or the line's end.
  Misunderstanding ofUnknown() {
    std::size_t taken = 0;
    const std::size_t count = reading_.words().size();
    while (taken < count && takes(taken + 1)) ++taken;
    reading_.take(node_, taken);
    Misunderstanding told{.at = taken < count ? begin(taken) : behindLast()};
    if (taken < count) told.typed = reading_.words()[taken].text;
    if (taken == 0) {
      for (u32 command = 0; command < node_.size(); ++command) addNext(node_.command(command).syntax, 0, told.expected);
    }
    for (const Step& step : reading_.open())
      addNext(node_.command(step.command).syntax, step.element + std::size_t{1}, told.expected);
    return told;
  }

  // The first word that is the beginning of several.
  Misunderstanding ofAmbiguous() {
    const std::size_t count = reading_.words().size();
    for (std::size_t word = 0; word < count; ++word) {
      Misunderstanding told{.at = begin(word)};
      for (const Step& last : reading_.open()) {
        const Syntax& syntax = node_.command(last.command).syntax;
        if (syntax.mayEnd(last.element + std::size_t{1}))
          addMeanings(syntax, stepOf(last, count - 1 - word), word, told);
      }
      if (told.expected.size() > 1) return told;
    }
    return {.at = begin(count - 1)};
  }

 private:
  bool takes(std::size_t count) {
    reading_.take(node_, count);
    return !reading_.open().empty();
  }

  const Step& stepOf(const Step& last, std::size_t back) const {
    const Step* step = &last;
    while (back-- != 0) step = reading_.before(*step);
    return *step;
  }

  // The words that the typed one begins where the step takes it.
  void addMeanings(const Syntax& syntax, const Step& step, std::size_t word, Misunderstanding& told) const {
    const Element& element = syntax.elements[step.element];
    for (std::size_t i = 0; i < element.alternatives; ++i) {
      const Alternative& alternative = syntax.alternatives[element.first + i];
      const std::string_view text = syntax.textOf(alternative);
      if (alternative.kind == Alternative::word && begins(reading_.words()[word].text, text))
        addOnce(told.expected, text);
    }
  }

  // Where a word begins in the line, with its quote.
  std::size_t begin(std::size_t word) const {
    const auto at = static_cast<std::size_t>(reading_.words()[word].text.data() - line_.data());
    const bool quoted = at != 0 && line_[at - 1] == '"';
    return at - (quoted ? 1 : 0);
  }

  // Behind the words that were read: what is left of a line of too many words, or its end.
  std::size_t behindLast() const {
    if (reading_.words().empty()) return 0;
    const std::string_view last = reading_.words().back().text;
    std::size_t at = static_cast<std::size_t>(last.data() - line_.data()) + last.size();
    if (at < line_.size() && line_[at] == '"') ++at;
    const std::size_t end = at;
    while (at < line_.size() && isBlank(line_[at])) ++at;
    return at < line_.size() ? at : end + (end == line_.size() ? 0 : 1);
  }

  const Node& node_;
  Reading& reading_;
  std::string_view line_;
};

}  // namespace

Misunderstanding explain(const Node& node, Reading& reading, std::string_view line) {
  if (line.size() > kMaxLine) return {.at = kMaxLine};
  if (const std::size_t nul = line.find('\0'); nul != line.npos) return {.at = nul};
  const bool allWords = reading.split(line, node.longestLine());
  Explanation explanation(node, reading, line);
  if (allWords) {
    reading.take(node, reading.words().size());
    const Step* chosen = nullptr;
    if (reading.decide(node, chosen) == host::LineResult::ambiguous) return explanation.ofAmbiguous();
  }
  return explanation.ofUnknown();
}

}  // namespace command_line

namespace host {

std::string wordsOf(const Misunderstanding& told) {
  constexpr std::size_t kShown = 8;
  // What is typed wrongly mostly begins rightly.
  std::vector<std::string_view> expected(told.expected.begin(), told.expected.end());
  const auto likely = [&](std::string_view word) { return command_line::alike(word, told.typed); };
  std::ranges::stable_sort(expected, std::greater(), likely);
  const std::size_t count = expected.size();
  const std::size_t shown = count <= kShown ? count : kShown - 1;
  std::string words;
  for (std::size_t i = 0; i < shown; ++i) {
    if (i != 0) words += i + 1 == count ? " or " : ", ";
    words += expected[i];
  }
  if (shown != count) words += " or " + std::to_string(count - shown) + " others";
  return words;
}

}  // namespace host
