#include "steps.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "host/hex.h"
#include "scenario/arguments.h"
#include "scenario/reader.h"

namespace fuzz {

std::string directiveOf(const Step& step) {
  constexpr std::string_view kVerbs[] = {"set", "set-more", "get"};
  const std::string& text = step.text;
  switch (step.kind) {
    case Step::frame: {
      const std::string hex = host::hexText({reinterpret_cast<const u8*>(text.data()), text.size()});
      return fmt::format("snmp {} {} {}", kVerbs[static_cast<int>(step.verb)], step.id, text.empty() ? "-" : hex);
    }
    case Step::line:
      return "cli " + text;
    case Step::debugLine:
      return "cli@10 " + text;
    case Step::directive:
      return text;
    case Step::restart:
      break;
  }
  return "save\nrestart";
}

// --- from scenarios

namespace {

constexpr std::size_t kMostFrame = 8192;  // bytes; larger ones would hold all others up

Step frameOf(const std::string& text) {
  scenario::Arguments arguments(text);
  arguments.word("directive");
  Step step;
  step.verb = static_cast<Verb>(arguments.choice({"set", "set-more", "get"}));
  step.id = arguments.id();
  const std::string_view rest = arguments.rest();
  if (rest == "null") return step;
  const std::vector<u8> bytes = scenario::parseBytes(rest);
  step.text.assign(bytes.begin(), bytes.end());
  return step;
}

void add(Pool& pool, const std::string& text) {
  constexpr std::string_view kTaken[] = {"card", "std", "answer", "flow-rule", "flow-policy"};
  const std::string_view word = std::string_view(text).substr(0, text.find(' '));
  if (word == "cli") {
    pool.lines.push_back({.kind = Step::line, .text = text.substr(std::min<std::size_t>(4, text.size()))});
  } else if (word == "cli@10") {
    pool.lines.push_back({.kind = Step::debugLine, .text = text.substr(std::min<std::size_t>(7, text.size()))});
  } else if (word == "snmp") {
    Step step = frameOf(text);
    if (step.text.size() > kMostFrame) return;
    pool.byId[step.id].push_back(pool.frames.size());
    pool.frames.push_back(std::move(step));
  } else if (std::ranges::find(kTaken, word) != std::end(kTaken) && text != "card types") {
    pool.directives.push_back({.kind = Step::directive, .text = text});
  }
}

}  // namespace

bool addScenario(Pool& pool, const std::string& file) {
  std::ifstream in(file);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  std::vector<scenario::Problem> problems;
  const auto read = scenario::readScenario(std::filesystem::path(file).stem(), text, problems);
  if (text.empty() || !problems.empty()) return false;
  for (const scenario::Directive& directive : read.directives) add(pool, directive.text);
  return true;
}

// --- changed at random

namespace {

class Drawer {
 public:
  Drawer(const Pool& pool, u64 seed) : pool_(pool), random_(seed) {}

  void draw(std::vector<Step>& to) {
    const std::size_t dice = below(1000);
    if (dice < 640)
      drawFrame(to);
    else if (dice < 960)
      drawLine(to);
    else if (dice < 999)
      to.push_back(any(pool_.directives));
    else
      to.push_back({.kind = Step::restart});
  }

 private:
  std::size_t below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }
  bool oneIn(std::size_t chances) { return below(chances) == 0; }
  template <class T>
  const T& any(const std::vector<T>& all) {
    return all[below(all.size())];
  }

  // Whole, or in pieces.
  void drawFrame(std::vector<Step>& to) {
    Step step = any(pool_.frames);
    if (oneIn(3))
      step = pool_.frames[any(std::next(pool_.byId.begin(), static_cast<int>(below(pool_.byId.size())))->second)];
    for (std::size_t changes = below(4); changes != 0; --changes) changeFrame(step);
    if (step.verb == Verb::setMore) step.verb = Verb::set;
    while (step.verb == Verb::set && oneIn(30)) {
      const std::size_t cut = below(step.text.size() + 1);
      to.push_back({Step::frame, Verb::setMore, step.id, step.text.substr(0, cut)});
      step.text.erase(0, cut);
    }
    to.push_back(std::move(step));
  }

  // Behind the envelope, for the most part: there is what is read.
  std::size_t place(const std::string& bytes) {
    constexpr std::size_t kEnvelope = 32;
    return bytes.size() > kEnvelope && !oneIn(20) ? kEnvelope + below(bytes.size() - kEnvelope) : below(bytes.size());
  }

  void changeFrame(Step& step) {
    constexpr u8 kBytes[] = {0, 1, 2, 3, 4, 8, 11, 18, 0x20, 0x40, 0x7f, 0x80, 0xfe, 0xff};
    std::string& bytes = step.text;
    const std::size_t at = place(bytes);
    switch (below(8)) {
      case 0:
      case 1:
      case 2:
        if (!bytes.empty()) bytes[at] = static_cast<char>(kBytes[below(std::size(kBytes))]);
        break;
      case 3:
        if (!bytes.empty()) bytes[at] = static_cast<char>(random_());
        break;
      case 4:
        for (std::size_t i = at & ~std::size_t{1}, end = std::min(bytes.size(), i + 2), fill = below(2); i < end; ++i)
          bytes[i] = static_cast<char>(fill == 0 ? 0 : 0xff);
        break;
      case 5: {
        const Step& other = pool_.frames[any(pool_.byId.at(step.id))];
        bytes = bytes.substr(0, at) + other.text.substr(std::min(at, other.text.size()));
        break;
      }
      case 6:
        if (oneIn(4)) bytes.resize(oneIn(2) ? at : bytes.size() + below(64));
        break;
      default:
        if (oneIn(4)) step.id = any(pool_.frames).id;
    }
  }

  void drawLine(std::vector<Step>& to) {
    Step step = any(pool_.lines);
    for (std::size_t changes = below(3); changes != 0; --changes) changeLine(step.text);
    to.push_back(std::move(step));
  }

  // A word goes, comes twice, or another one, or a number, takes its place.
  void changeLine(std::string& line) {
    constexpr std::string_view kWords[] = {"0",   "1",    "2",    "3",     "7",       "8",      "15",         "16",
                                           "64",  "255",  "4094", "65535", "-1",      "65536",  "4294967296", "1/1",
                                           "2/3", "18/1", "1",    "all",   "disable", "enable", "default"};
    const std::size_t from = line.find(' ', below(line.size() + 1));
    if (from == line.npos) return;
    const std::size_t end = std::min(line.find(' ', from + 1), line.size());
    const std::string word = line.substr(from, end - from);
    const std::string& other = any(pool_.lines).text;
    const std::size_t begin = std::min(other.find(' ', below(other.size() + 1)), other.size());
    switch (below(5)) {
      case 0:
        line.erase(from, end - from);
        break;
      case 1:
        line.insert(end, word);
        break;
      case 2:
        line.replace(from, end - from, other.substr(begin, other.find(' ', begin + 1) - begin));
        break;
      default:
        line.replace(from + 1, end - from - 1, kWords[below(std::size(kWords))]);
    }
  }

  const Pool& pool_;
  std::mt19937_64 random_;
};

}  // namespace

std::vector<Step> drawSteps(const Pool& pool, u64 seed, std::size_t count) {
  Drawer drawer(pool, seed);
  std::vector<Step> steps;
  while (steps.size() < count) drawer.draw(steps);
  return steps;
}

}  // namespace fuzz
