#include "command_line_table.h"

#include <algorithm>

namespace command_line {
namespace {

// The head of the second word where that is a keyword in every line, else 0.
u64 secondHead(const Syntax& syntax) {
  if (syntax.elements.size() < 2 || syntax.elements[0].skip != 0 || syntax.elements[1].skip != 0) return 0;
  const Element& second = syntax.elements[1];
  return second.alternatives == 1 ? syntax.alternatives[second.first].head : 0;
}

}  // namespace

bool Node::add(Command command) {
  const auto takesSame = [&](const Command& other) { return sameLines(other.syntax, command.syntax); };
  if (std::ranges::any_of(commands_, takesSame)) return false;
  longestLine_ = std::max(longestLine_, command.syntax.elements.size());
  commands_.push_back(std::move(command));
  index(static_cast<u32>(commands_.size() - 1));
  return true;
}

bool Node::addToHelp(std::string_view syntax, std::string_view text) {
  const auto found = std::ranges::find_if(commands_, [&](const Command& one) { return one.syntax.text == syntax; });
  if (found == commands_.end()) return false;
  found->help += text;
  return true;
}

void Node::index(u32 command) {
  const Syntax& syntax = commands_[command].syntax;
  bool anyWord = false;
  syntax.eachNext(0, [&](std::size_t position) {
    const Element& element = syntax.elements[position];
    for (std::size_t i = 0; i < element.alternatives; ++i) {
      const Alternative& alternative = syntax.alternatives[element.first + i];
      anyWord = anyWord || alternative.kind != Alternative::word;
      if (alternative.kind == Alternative::word) index(syntax.textOf(alternative), command);
    }
  });
  if (anyWord) anyFirstWord_.push_back(command);
}

void Node::index(std::string_view firstWord, u32 command) {
  const auto same = [&](const FirstWord& word) { return equal(word.text, firstWord); };
  auto word = std::ranges::find_if(firstWords_, same);
  if (word == firstWords_.end()) word = firstWords_.insert(word, {std::string(firstWord), {}});
  if (word->commands.empty() || word->commands.back().command != command) {
    word->commands.push_back({secondHead(commands_[command].syntax), command});
  }
}

void Node::candidates(std::span<const TypedWord> words, std::vector<u32>& list) const {
  list = anyFirstWord_;
  const u64 second = words.size() > 1 ? words[1].head : 0;
  const u64 mask = words.size() > 1 ? headMask(words[1].text.size()) : 0;
  const auto addCommands = [&](const FirstWord& word) {
    for (const Entry& entry : word.commands) {
      if (entry.second == 0 || ((entry.second ^ second) & mask) == 0) list.push_back(entry.command);
    }
  };
  const auto isWhole = [&](const FirstWord& word) { return equal(word.text, words[0].text); };
  const auto whole = std::ranges::find_if(firstWords_, isWhole);
  if (whole != firstWords_.end()) return addCommands(*whole);
  for (const FirstWord& word : firstWords_) {
    if (begins(words[0].text, word.text)) addCommands(word);
  }
}

}  // namespace command_line
