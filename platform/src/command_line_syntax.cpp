#include "command_line_syntax.h"

#include <algorithm>
#include <limits>

namespace command_line {
namespace {

constexpr std::string_view kMarks = "[]<>{}|";

constexpr u64 kMaxNumber = std::numeric_limits<u32>::max();

// The value of a text of digits, held right above the largest number; none for any other text.
std::optional<u64> numberOf(std::string_view text) {
  if (text.empty() || !std::ranges::all_of(text, isDigit)) return std::nullopt;
  u64 value = 0;
  for (const char digit : text) value = std::min(value * 10 + static_cast<u64>(digit - '0'), kMaxNumber + 1);
  return value;
}

// Reads a syntax from left to right. Each step is false at a text that is no syntax.
class Reader {
 public:
  explicit Reader(Syntax& syntax) : syntax_(syntax), text_(syntax.text) {}

  bool readAll() {
    while (skipBlanks()) {
      if (!(peek() == '{' ? readGroup() : readElement())) return false;
    }
    return !syntax_.elements.empty();
  }

 private:
  bool atEnd() const { return at_ == text_.size(); }
  char peek() const { return atEnd() ? '\0' : text_[at_]; }
  bool take(char letter) {
    if (peek() != letter) return false;
    ++at_;
    return true;
  }
  bool skipBlanks() {
    while (!atEnd() && isBlank(text_[at_])) ++at_;
    return !atEnd();
  }

  bool readElement() {
    Element element{.first = static_cast<u16>(syntax_.alternatives.size())};
    element.choice = take('[');
    do {
      skipBlanks();
      if (!(peek() == '<' ? readParameter() : readWord())) return false;
      ++element.alternatives;
      if (element.choice) skipBlanks();
    } while (element.choice && take('|'));
    if (element.choice) {
      if (!take(']')) return false;
      requireWholeWordsBesideParameters(element);
    }
    syntax_.elements.push_back(element);
    return syntax_.elements.size() <= kMaxElements;
  }

  // A parameter takes any word: a short form of a word beside it would hide the values that begin like it.
  void requireWholeWordsBesideParameters(const Element& element) {
    const auto alternatives = syntax_.alternatives.begin() + element.first;
    const auto isParameter = [](const Alternative& alternative) { return alternative.kind == Alternative::parameter; };
    if (std::none_of(alternatives, syntax_.alternatives.end(), isParameter)) return;
    std::for_each(alternatives, syntax_.alternatives.end(),
                  [](Alternative& alternative) { alternative.leastTyped = alternative.length; });
  }

  bool readWord() {
    const std::size_t begin = at_;
    while (!atEnd() && !isBlank(peek()) && kMarks.find(peek()) == kMarks.npos) ++at_;
    const std::string_view word = text_.substr(begin, at_ - begin);
    if (word.empty()) return false;
    // A number is a value, which no shorter one may stand for.
    const auto digits = std::ranges::find_if_not(word, isDigit) - word.begin();
    add(Alternative::word, begin).leastTyped = static_cast<u16>(std::max<std::ptrdiff_t>(digits, 1));
    syntax_.alternatives.back().head = headOf(word);
    return true;
  }

  bool readParameter() {
    const std::size_t begin = at_++;
    while (!atEnd() && !isBlank(peek()) && kMarks.find(peek()) == kMarks.npos) ++at_;
    const std::string_view name = text_.substr(begin + 1, at_ - begin - 1);
    if (name.empty() || !take('>')) return false;
    const std::size_t dash = name.find('-');
    const std::optional<u64> low = numberOf(name.substr(0, dash));
    const std::optional<u64> high = dash == name.npos ? std::nullopt : numberOf(name.substr(dash + 1));
    if (!low || !high) {
      add(Alternative::parameter, begin);
      return true;
    }
    Alternative& range = add(Alternative::range, begin);
    range.low = static_cast<u32>(*low);
    range.high = static_cast<u32>(*high);
    return *low <= *high && *high <= kMaxNumber;
  }

  Alternative& add(Alternative::Kind kind, std::size_t begin) {
    return syntax_.alternatives.emplace_back(
        Alternative{.begin = static_cast<u16>(begin), .length = static_cast<u16>(at_ - begin), .kind = kind});
  }

  bool readGroup() {
    ++at_;
    const std::size_t first = syntax_.elements.size();
    while (skipBlanks() && peek() != '}') {
      if (!readElement()) return false;
    }
    const std::size_t size = syntax_.elements.size() - first;
    if (!take('}') || size == 0) return false;
    std::optional<u64> count = 1;
    if (take('*')) {
      const std::size_t begin = at_;
      while (isDigit(peek())) ++at_;
      count = numberOf(text_.substr(begin, at_ - begin));
    }
    if (!count || *count == 0 || *count > kMaxElements / size) return false;
    return writeOut(first, size, static_cast<std::size_t>(*count));
  }

  bool writeOut(std::size_t first, std::size_t size, std::size_t count) {
    if (first + size * count > kMaxElements) return false;
    auto& elements = syntax_.elements;
    elements.resize(first + size * count);
    for (std::size_t copy = 1; copy < count; ++copy) {
      std::copy_n(elements.begin() + static_cast<std::ptrdiff_t>(first), size,
                  elements.begin() + static_cast<std::ptrdiff_t>(first + copy * size));
    }
    for (std::size_t copy = 0; copy < count; ++copy) {
      elements[first + copy * size].skip = static_cast<u16>(size * (count - copy));
    }
    return true;
  }

  Syntax& syntax_;
  std::string_view text_;
  std::size_t at_ = 0;
};

bool fitsWord(const Alternative& word, std::string_view text, const TypedWord& typed) {
  const std::size_t length = typed.text.size();
  if (length > word.length || length < word.leastTyped) return false;
  if (((word.head ^ typed.head) & headMask(length)) != 0) return false;
  return length <= 8 || begins(typed.text.substr(8), text.substr(8));
}

Rank rankOf(const Syntax& syntax, const Alternative& alternative, const TypedWord& typed) {
  switch (alternative.kind) {
    case Alternative::word:
      if (!fitsWord(alternative, syntax.textOf(alternative), typed)) return Rank::none;
      return typed.text.size() == alternative.length ? Rank::whole : Rank::beginning;
    case Alternative::range: {
      const std::optional<u64> value = numberOf(typed.text);
      return value && *value >= alternative.low && *value <= alternative.high ? Rank::range : Rank::none;
    }
    case Alternative::parameter:
      return Rank::parameter;
  }
  return Rank::none;
}

bool sameAlternative(const Syntax& a, const Alternative& left, const Syntax& b, const Alternative& right) {
  if (left.kind != right.kind || left.low != right.low || left.high != right.high) return false;
  return left.kind != Alternative::word || equal(a.textOf(left), b.textOf(right));
}

}  // namespace

u64 headOf(std::string_view text) {
  u64 head = 0;
  for (std::size_t i = 0; i < std::min<std::size_t>(text.size(), 8); ++i) {
    head |= u64{static_cast<u8>(fold(text[i]))} << (8 * i);
  }
  return head;
}

bool begins(std::string_view typed, std::string_view text) {
  return typed.size() <= text.size() &&
         std::equal(typed.begin(), typed.end(), text.begin(), [](char x, char y) { return fold(x) == fold(y); });
}

bool equal(std::string_view a, std::string_view b) { return a.size() == b.size() && begins(a, b); }

Fit Syntax::fit(const Element& element, const TypedWord& typed) const {
  Fit best;
  for (u16 i = 0; i < element.alternatives; ++i) {
    const u16 index = static_cast<u16>(element.first + i);
    const Rank rank = rankOf(*this, alternatives[index], typed);
    if (rank > best.rank) {
      best = {.rank = rank, .alternative = index};
    } else if (rank == Rank::beginning && best.rank == rank) {
      best.several = true;
    }
  }
  return best;
}

std::optional<Syntax> readSyntax(std::string_view text) {
  if (text.size() > std::numeric_limits<u16>::max()) return std::nullopt;
  Syntax syntax;
  syntax.text = text;
  if (!Reader(syntax).readAll()) return std::nullopt;
  return syntax;
}

bool sameLines(const Syntax& a, const Syntax& b) {
  return std::ranges::equal(a.elements, b.elements, [&](const Element& left, const Element& right) {
    if (left.skip != right.skip || left.alternatives != right.alternatives || left.choice != right.choice) return false;
    for (std::size_t i = 0; i < left.alternatives; ++i) {
      if (!sameAlternative(a, a.alternatives[left.first + i], b, b.alternatives[right.first + i])) return false;
    }
    return true;
  });
}

}  // namespace command_line
