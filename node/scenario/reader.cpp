#include "reader.h"

#include <fmt/format.h>

#include <algorithm>

#include "arguments.h"
#include "directives.h"
#include "text.h"

namespace scenario {

namespace {

bool isComment(std::string_view line) { return line.starts_with('#') || line.find_first_not_of(" \t") == line.npos; }

template <class Words>
bool contains(const Words& words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

// Directives that begin with a mark.
bool isMarkedDirective(std::string_view line) {
  line = line.substr(0, line.find_last_not_of(' ') + 1);
  return line == "pool" || line == "pool mark" || line == "pool change" || line == "log all" || line == "log failures";
}

bool isExpectation(std::string_view line) {
  if (line.starts_with('|') || line == kNothing || line.starts_with(kAnyLines)) return true;
  return contains(recordMarks(), firstWord(line)) && !isMarkedDirective(line);
}

void checkExpectation(std::string_view line) {
  if (!line.starts_with(kAnyLines) || line == kAnyLines) return;
  if (!line.starts_with(kAnyLinesBut)) throw BadLine("only \"no\" and marks can stand behind ...");
  Arguments marks(line.substr(kAnyLinesBut.size()));
  do {
    const std::string_view mark = marks.word("mark");
    if (!contains(recordMarks(), mark)) throw unknownWord("mark", mark, recordMarks());
  } while (!marks.empty());
}

std::vector<std::string> splitLines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.emplace_back(line);
  }
  return lines;
}

std::string shortened(std::string_view line) {
  constexpr std::size_t kMost = 80;
  return line.size() <= kMost ? std::string(line) : std::string(line.substr(0, kMost)) + "...";
}

class Reader {
 public:
  Reader(Scenario& scenario, std::vector<Problem>& problems) : scenario_(scenario), problems_(problems) {}

  void read() {
    while (at_ < scenario_.lines.size()) {
      const std::string& line = scenario_.lines[at_];
      const auto number = static_cast<u32>(++at_);
      if (isComment(line)) continue;
      try {
        isExpectation(line) ? readExpectation(number, line) : readDirectiveAt(number, line);
      } catch (const BadLine& bad) {
        problems_.push_back({number, fmt::format("{}: {}", shortened(line), bad.what())});
      }
    }
  }

 private:
  void readExpectation(u32 number, const std::string& line) {
    checkExpectation(line);
    if (scenario_.directives.empty()) throw BadLine("an expectation ahead of the first directive");
    auto& expectations = scenario_.directives.back().expectations;
    const bool alone = line == kNothing || (!expectations.empty() && expectations.back().text == kNothing);
    if (alone && !expectations.empty()) throw BadLine(fmt::format("{} stands alone", kNothing));
    expectations.push_back({number, line});
  }

  void readDirectiveAt(u32 number, std::string text) {
    while (text.ends_with('\\') && at_ < scenario_.lines.size()) {
      text.pop_back();
      text += scenario_.lines[at_++];
    }
    text.erase(0, text.find_first_not_of(' '));
    // A bad one, too, is there: what follows is expected of it and not of the one ahead.
    scenario_.directives.push_back({number, static_cast<u32>(at_), std::move(text), {}, {}});
    scenario_.directives.back().action = readAction(scenario_.directives.back().text);
  }

  // The nearest word of a line that is nothing may be a mark, too.
  static Action readAction(std::string_view line) {
    const std::string_view word = firstWord(line);
    if (!contains(directiveWords(), word) && !word.starts_with("cli@")) {
      std::vector<std::string_view> words(directiveWords().begin(), directiveWords().end());
      words.insert(words.end(), recordMarks().begin(), recordMarks().end());
      throw unknownWord("directive", word, words);
    }
    return readDirective(line);
  }

  Scenario& scenario_;
  std::vector<Problem>& problems_;
  std::size_t at_ = 0;
};

}  // namespace

Scenario readScenario(std::string name, std::string_view text, std::vector<Problem>& problems) {
  Scenario scenario;
  scenario.name = std::move(name);
  scenario.lines = splitLines(text);
  Reader(scenario, problems).read();
  return scenario;
}

}  // namespace scenario
