#include <algorithm>

#include "command_line_table.h"

namespace command_line {
namespace {

// The end of the word at `begin`. A word in quotes ends with the quote that a blank or the line's end follows; without
// one the first quote is a letter like others.
std::size_t wordEnd(std::string_view line, std::size_t begin) {
  const auto blankAt = [&](std::size_t at) { return at == line.size() || isBlank(line[at]); };
  if (line[begin] == '"') {
    for (std::size_t at = line.find('"', begin + 1); at != line.npos; at = line.find('"', at + 1)) {
      if (blankAt(at + 1)) return at + 1;
    }
  }
  std::size_t end = begin;
  while (!blankAt(end)) ++end;
  return end;
}

std::string_view withoutQuotes(std::string_view word) {
  const bool quoted = word.size() > 1 && word.front() == '"' && word.back() == '"';
  return quoted ? word.substr(1, word.size() - 2) : word;
}

}  // namespace

bool Reading::split(std::string_view line, std::size_t most) {
  words_.clear();
  if (line.size() > kMaxLine || line.find('\0') != line.npos) return false;
  std::size_t at = 0;
  while (true) {
    while (at < line.size() && isBlank(line[at])) ++at;
    if (at == line.size()) return true;
    if (words_.size() == most) return false;
    const std::size_t end = wordEnd(line, at);
    const std::string_view word = withoutQuotes(line.substr(at, end - at));
    words_.push_back({word, headOf(word)});
    at = end;
  }
}

void Reading::take(const Node& node, std::size_t count) {
  steps_.clear();
  open_ = 0;
  if (count == 0) return;
  node.candidates(std::span(words_).first(count), candidates_);
  takeWord(node, words_[0], candidates_);
  for (std::size_t i = 1; i < count; ++i) takeWord(node, words_[i], {});
}

void Reading::takeWord(const Node& node, const TypedWord& word, std::span<const u32> firstCommands) {
  const std::size_t begin = open_;
  const std::size_t end = steps_.size();
  open_ = end;
  bool whole = false;
  for (const u32 command : firstCommands) {
    takeNext(node, word, {.command = command, .before = kNone}, 0, whole);
  }
  for (std::size_t i = begin; i < end; ++i) {
    const Step before = steps_[i];
    const Step step{.command = before.command, .before = static_cast<u32>(i), .several = before.several};
    takeNext(node, word, step, before.element + std::size_t{1}, whole);
  }
  if (!whole) return;
  // What is a whole keyword here is not the beginning of another one.
  const auto first = steps_.begin() + static_cast<std::ptrdiff_t>(open_);
  const auto isBeginning = [](const Step& step) { return step.rank == Rank::beginning; };
  steps_.erase(std::remove_if(first, steps_.end(), isBeginning), steps_.end());
}

// Takes a word by each element of `step`'s command that may stand at `position`.
void Reading::takeNext(const Node& node, const TypedWord& word, Step step, std::size_t position, bool& whole) {
  const Syntax& syntax = node.command(step.command).syntax;
  syntax.eachNext(position, [&](std::size_t next) {
    const Fit fit = syntax.fit(syntax.elements[next], word);
    if (fit.rank == Rank::none || (whole && fit.rank == Rank::beginning)) return;
    whole = whole || fit.rank == Rank::whole;
    step.element = static_cast<u16>(next);
    step.alternative = fit.alternative;
    step.rank = fit.rank;
    const bool several = step.several;
    step.several = several || fit.several;
    if (!joinKnown(node, step)) steps_.push_back(step);
    step.several = several;
  });
}

// A command that can come to the same element in two ways goes on in one: the better.
bool Reading::joinKnown(const Node& node, const Step& step) {
  for (std::size_t i = steps_.size(); i > open_ && steps_[i - 1].command == step.command; --i) {
    Step& known = steps_[i - 1];
    if (known.element != step.element) continue;
    const Difference difference = compare(node, step, known);
    if (difference.order > 0) known = step;
    if (difference.order == 0) known.several = known.several || difference.inArguments;
    return true;
  }
  return false;
}

// The first word that they take with different ranks decides.
Reading::Difference Reading::compare(const Node& node, const Step& a, const Step& b) const {
  Difference difference{.inArguments = a.command != b.command};
  const Step* left = &a;
  const Step* right = &b;
  while (left != right) {
    if (left->rank != right->rank) difference.order = left->rank > right->rank ? 1 : -1;
    difference.inArguments = difference.inArguments || !sameArgument(node, *left, *right);
    if (left->before == kNone || left->before == right->before) break;
    left = &steps_[left->before];
    right = &steps_[right->before];
  }
  return difference;
}

bool Reading::sameArgument(const Node& node, const Step& a, const Step& b) const {
  const Argument left = argumentOf(node, a);
  const Argument right = argumentOf(node, b);
  return left.kind == right.kind && left.text == right.text;
}

Reading::Argument Reading::argumentOf(const Node& node, const Step& step) const {
  const Syntax& syntax = node.command(step.command).syntax;
  const Alternative& alternative = syntax.alternatives[step.alternative];
  if (alternative.kind != Alternative::word) return {Argument::typed, {}};
  if (!syntax.elements[step.element].choice) return {Argument::none, {}};
  return {Argument::chosen, syntax.textOf(alternative)};
}

host::LineResult Reading::decide(const Node& node, const Step*& chosen) const {
  using host::LineResult;
  chosen = nullptr;
  bool ambiguous = false;
  for (const Step& step : open()) {
    if (!node.command(step.command).syntax.mayEnd(step.element + std::size_t{1})) continue;
    const Difference difference = chosen ? compare(node, step, *chosen) : Difference{.order = 1};
    if (difference.order > 0) {
      chosen = &step;
      ambiguous = step.several;
    } else if (difference.order == 0) {
      ambiguous = ambiguous || difference.inArguments;
    }
  }
  if (!chosen) return open().empty() ? LineResult::unknown : LineResult::incomplete;
  return ambiguous ? LineResult::ambiguous : LineResult::ran;
}

std::span<char*> Reading::arguments(const Node& node, const Step& chosen) {
  // Walked twice from the end: for the sizes, then for the texts.
  const auto eachArgument = [&](auto visit) {
    const Step* step = &chosen;
    for (std::size_t word = words_.size(); word-- > 0; step = &steps_[step->before]) {
      const Argument argument = argumentOf(node, *step);
      if (argument.kind != Argument::none) visit(argument.kind == Argument::typed ? words_[word].text : argument.text);
      if (step->before == kNone) break;
    }
  };
  std::size_t count = 0;
  std::size_t size = 0;
  eachArgument([&](std::string_view text) {
    ++count;
    size += text.size() + 1;
  });
  text_.resize(size);
  arguments_.assign(count + 1, nullptr);
  char* end = text_.data() + size;
  char** argument = arguments_.data() + count;
  eachArgument([&](std::string_view text) {
    *--end = '\0';
    end -= text.size();
    std::ranges::copy(text, end);
    *--argument = end;
  });
  return std::span(arguments_).first(count);
}

}  // namespace command_line
