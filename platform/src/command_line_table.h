#pragma once
// The commands of a node, and how a line is read by them.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command_line_syntax.h"
#include "host/terminal.h"

namespace command_line {

inline constexpr std::size_t kMaxLine = 65536;

struct Command {
  const CommandElement* element = nullptr;
  std::string help;
  Syntax syntax;
};

class Node {
 public:
  // False if a command takes the same lines already.
  bool add(Command command);

  // Puts a text behind the help of the command of this syntax. False if there is none.
  bool addToHelp(std::string_view syntax, std::string_view text);

  const Command& command(u32 index) const { return commands_[index]; }
  std::size_t size() const { return commands_.size(); }
  std::size_t longestLine() const { return longestLine_; }  // in words

  // The commands that a line with these first words may be; others and repeats may be among them.
  void candidates(std::span<const TypedWord> words, std::vector<u32>& list) const;

 private:
  struct Entry {
    u64 second = 0;  // head of the second word; 0: any word may be the second
    u32 command = 0;
  };
  struct FirstWord {
    std::string text;
    std::vector<Entry> commands;
  };
  void index(u32 command);
  void index(std::string_view firstWord, u32 command);

  std::vector<Command> commands_;
  std::vector<FirstWord> firstWords_;
  std::vector<u32> anyFirstWord_;  // commands that begin with a parameter
  std::size_t longestLine_ = 0;
};

// One way to take the line's words up to one of them, as the last link of a chain.
struct Step {
  u32 command = 0;
  u32 before = 0;   // the step of the word ahead; of the first word: none
  u16 element = 0;  // that the word stands for
  u16 alternative = 0;
  Rank rank = Rank::none;
  bool several = false;  // so far it could as well be taken otherwise
};

// A line as it is read. Its memory is used again for the next line.
class Reading {
 public:
  // Cuts a line into at most `most` words. The line must stay. False for a line that no command takes: too long, of
  // too many words, or with a NUL in it.
  bool split(std::string_view line, std::size_t most);

  // Takes the first `count` words by all commands of the node at once.
  void take(const Node& node, std::size_t count);

  std::span<const TypedWord> words() const { return words_; }
  // The ways to take them that are left.
  std::span<const Step> open() const { return std::span(steps_).subspan(open_); }
  // The step of the word ahead; null: this is that of the first word.
  const Step* before(const Step& step) const { return step.before == kNone ? nullptr : &steps_[step.before]; }

  // What the words mean, all of them taken; `chosen` is the last step of the command that is to run.
  host::LineResult decide(const Node& node, const Step*& chosen) const;

  // The arguments of a chosen reading, followed by a null; they are the handler's until the next line is read.
  std::span<char*> arguments(const Node& node, const Step& chosen);

 private:
  static constexpr u32 kNone = ~u32{0};

  struct Difference {
    int order = 0;  // above 0: the first is the better one
    bool inArguments = false;
  };
  struct Argument {
    enum Kind : u8 { none, typed /* the word itself */, chosen /* a choice's word */ } kind = none;
    std::string_view text;
  };

  void takeWord(const Node& node, const TypedWord& word, std::span<const u32> firstCommands);
  void takeNext(const Node& node, const TypedWord& word, Step step, std::size_t position, bool& whole);
  bool joinKnown(const Node& node, const Step& step);
  Difference compare(const Node& node, const Step& a, const Step& b) const;
  bool sameArgument(const Node& node, const Step& a, const Step& b) const;
  Argument argumentOf(const Node& node, const Step& step) const;

  std::vector<TypedWord> words_;
  std::vector<u32> candidates_;
  std::vector<Step> steps_;
  std::size_t open_ = 0;
  std::vector<char> text_;
  std::vector<char*> arguments_;
};

}  // namespace command_line
