#pragma once
// Command syntaxes, read once when a command is installed.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/types.h"

namespace command_line {

inline constexpr std::size_t kMaxElements = 1024;  // of a syntax, with its groups written out

// A word as it was typed, without its quotes.
struct TypedWord {
  std::string_view text;
  u64 head = 0;  // see headOf
};

// The first eight letters in lower case, zeros behind shorter texts: most words differ there.
u64 headOf(std::string_view text);
// The bits of a head that a text of a length has.
inline u64 headMask(std::size_t length) { return length >= 8 ? ~u64{0} : (u64{1} << (8 * length)) - 1; }

// Something that may stand at one place of a line.
struct Alternative {
  enum Kind : u8 { word, parameter, range };

  u64 head = 0;        // of a word
  u32 low = 0;         // of a range
  u32 high = 0;        // of a range
  u16 begin = 0;       // of its text in the syntax, brackets of parameters and ranges included
  u16 length = 0;      // of its text
  u16 leastTyped = 0;  // a word fits from this many letters on
  Kind kind = word;
};

// A place of a line.
struct Element {
  u16 first = 0;  // of its alternatives
  u16 alternatives = 0;
  u16 skip = 0;         // where an optional group begins: elements up to the one behind it, else 0
  bool choice = false;  // written in [ ], so that a word of it is an argument
};

// How well a typed word fits, best last.
enum class Rank : u8 { none, parameter, range, beginning, whole };

struct Fit {
  Rank rank = Rank::none;
  u16 alternative = 0;
  bool several = false;  // it begins several words of the choice
};

// A syntax. Groups are written out as often as they may come; each copy begins with a skip.
struct Syntax {
  std::string text;
  std::vector<Element> elements;
  std::vector<Alternative> alternatives;

  std::string_view textOf(const Alternative& alternative) const {
    return std::string_view(text).substr(alternative.begin, alternative.length);
  }
  Fit fit(const Element& element, const TypedWord& typed) const;

  // Calls `visit` with each element that may follow at `position`, in written order. True if the line may end there.
  template <class Visit>
  bool eachNext(std::size_t position, Visit visit) const {
    while (position < elements.size()) {
      visit(position);
      if (elements[position].skip == 0) return false;
      position += elements[position].skip;
    }
    return true;
  }
  bool mayEnd(std::size_t position) const {
    return eachNext(position, [](std::size_t) {});
  }
};

// None for a text that is no syntax.
std::optional<Syntax> readSyntax(std::string_view text);

// True if both take the same lines.
bool sameLines(const Syntax& a, const Syntax& b);

// True if `typed` is `text` or its beginning, without regard to case.
bool begins(std::string_view typed, std::string_view text);
bool equal(std::string_view a, std::string_view b);

inline char fold(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}
inline bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }
inline bool isBlank(char letter) { return letter == ' ' || (letter >= '\t' && letter <= '\r'); }

}  // namespace command_line
