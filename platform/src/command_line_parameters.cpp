#include "command_line_parameters.h"

#include <algorithm>

#include "host/terminal.h"

namespace command_line {
namespace {

// Takes the last word off a text of words parted by single blanks.
std::string_view takeLast(std::string_view& words) {
  const std::size_t blank = words.rfind(' ');
  const std::string_view last = blank == words.npos ? words : words.substr(blank + 1);
  words = blank == words.npos ? std::string_view() : words.substr(0, blank);
  return last;
}

// Walks back from an element of a syntax over the keywords ahead of it.
class Ahead {
 public:
  Ahead(const Syntax& syntax, std::size_t element) : syntax_(syntax), at_(element) {}

  // True if the nearest keyword, choices aside, is the word. Any word is a "*".
  bool nearest(std::string_view word) {
    while (at_ != 0 && !isKeyword(at_ - 1)) --at_;
    return at_ != 0 && (has(--at_, word) || word == "*");
  }
  // Goes on to the nearest place with the word, in a choice or not.
  bool anywhere(std::string_view word) {
    while (at_ != 0)
      if (has(--at_, word)) return true;
    return false;
  }

 private:
  bool isKeyword(std::size_t place) const {
    const Element& element = syntax_.elements[place];
    return !element.choice && syntax_.alternatives[element.first].kind == Alternative::word;
  }
  bool has(std::size_t place, std::string_view word) const {
    const Element& element = syntax_.elements[place];
    for (std::size_t i = 0; i < element.alternatives; ++i) {
      const Alternative& alternative = syntax_.alternatives[element.first + i];
      if (alternative.kind == Alternative::word && equal(syntax_.textOf(alternative), word)) return true;
    }
    return false;
  }

  const Syntax& syntax_;
  std::size_t at_;
};

// The number of words by which a row fits, 0 if it does not.
std::size_t fits(std::string_view place, const Syntax& syntax, std::size_t element, std::string_view parameter) {
  if (takeLast(place) != parameter) return 0;
  std::size_t words = 1;
  Ahead ahead(syntax, element);
  for (bool first = true; !place.empty(); first = false, ++words) {
    const std::string_view word = takeLast(place);
    if (!(first ? ahead.nearest(word) : ahead.anywhere(word))) return 0;
  }
  return words;
}

// "startTimer", "slot_no": the words of the name.
std::string wordsOf(std::string_view name) {
  std::string words;
  bool small = false;
  for (const char letter : name) {
    const bool capital = letter >= 'A' && letter <= 'Z';
    if (letter == '_' || letter == '-' || (capital && small)) words += ' ';
    if (letter != '_' && letter != '-') words += capital && small ? fold(letter) : letter;
    small = letter >= 'a' && letter <= 'z';
  }
  return words;
}

}  // namespace

const ParameterRow* parameterRow(const Syntax& syntax, std::size_t element, const Alternative& alternative) {
  const std::string_view parameter = syntax.textOf(alternative);
  const ParameterRow* best = nullptr;
  std::size_t most = 0;
  for (const ParameterRow& row : parameterRows()) {
    const std::size_t words = fits(row.place, syntax, element, parameter);
    if (words > most) {
      best = &row;
      most = words;
    }
  }
  return best;
}

std::string parameterHelp(const Syntax& syntax, std::size_t element, const Alternative& alternative) {
  if (const ParameterRow* row = parameterRow(syntax, element, alternative)) return std::string(row->help);
  if (alternative.kind == Alternative::range)
    return "a number, " + std::to_string(alternative.low) + " to " + std::to_string(alternative.high);
  const std::string_view name = syntax.textOf(alternative);
  return wordsOf(name.substr(1, name.size() - 2));
}

// Calls `visit` for each parameter and range, with its element.
template <class Visit>
static void eachParameter(const Syntax& syntax, Visit visit) {
  for (std::size_t at = 0; at < syntax.elements.size(); ++at) {
    const Element& element = syntax.elements[at];
    for (std::size_t i = 0; i < element.alternatives; ++i) {
      const Alternative& alternative = syntax.alternatives[element.first + i];
      if (alternative.kind != Alternative::word) visit(at, alternative);
    }
  }
}

}  // namespace command_line

namespace host {

using command_line::Alternative;
using command_line::Syntax;

std::vector<ParameterHelp> parameterHelp(std::string_view text) {
  std::vector<ParameterHelp> list;
  const auto syntax = command_line::readSyntax(text);
  if (!syntax) return list;
  command_line::eachParameter(*syntax, [&](std::size_t element, const Alternative& alternative) {
    const bool known =
        alternative.kind == Alternative::range || command_line::parameterRow(*syntax, element, alternative) != nullptr;
    list.push_back(
        {std::string(syntax->textOf(alternative)), command_line::parameterHelp(*syntax, element, alternative), known});
  });
  return list;
}

std::vector<std::string> unusedParameterHelp(const std::vector<std::string>& syntaxes) {
  std::vector<const command_line::ParameterRow*> used;
  for (const std::string& text : syntaxes) {
    const auto syntax = command_line::readSyntax(text);
    if (!syntax) continue;
    command_line::eachParameter(*syntax, [&](std::size_t element, const Alternative& alternative) {
      used.push_back(command_line::parameterRow(*syntax, element, alternative));
    });
  }
  std::vector<std::string> unused;
  for (const command_line::ParameterRow& row : command_line::parameterRows())
    if (std::ranges::find(used, &row) == used.end()) unused.emplace_back(row.place);
  return unused;
}

}  // namespace host
