#include "operator.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

#include "change_words.h"
#include "platform_words.h"
#include "session_record.h"
#include "shadow.h"

namespace msand {

Operator::Operator(node::Node& node, Startup& startup, cards::DslCards& cards)
    : node_(node),
      startup_(startup),
      cards_(cards),
      changes_(node, cards, startup.pending(), [&startup] { installPlatformWords(startup.history()); }) {
  installPlatformWords(startup_.history());
}

std::string Operator::prompt(const Terminal& terminal) const {
  if (terminal.shadow != nullptr) return "check: " + terminal.shadow->prompt();
  if (terminal.yes != nullptr) return terminal.question;
  return terminal.level == Level::debug ? "msan(debug)# " : "msan# ";
}

static wire::Result resultOf(host::LineOutcome outcome) {
  return {.outcome = static_cast<u8>(outcome.result), .returned = outcome.returned};
}
static wire::Result ran(int returned) { return resultOf({host::LineResult::ran, returned}); }

// A backslash at its end would join the next line.
static std::string recordedLine(Level level, std::string_view line) {
  std::string directive =
      level == Level::debug ? fmt::format("cli@{} {}", DEBUG_NODE, line) : fmt::format("cli {}", line);
  if (directive.ends_with('\\')) directive += ' ';
  return directive;
}

// Where another line came between the question and its answer, a player has to be asked once more.
static std::string recordedAnswer(std::string_view asking, bool yes) {
  const std::string answer = yes ? "confirm yes" : "confirm no";
  return sessionRecord().lastLine() == asking ? answer : fmt::format("{}\n{}", asking, answer);
}

wire::Result Operator::runModuleLine(Terminal& terminal, std::string_view line, std::string& text) {
  Vty vty;
  wire::Result result;
  {
    const Turn turn;
    Doing doing([&] { return recordedLine(terminal.level, line); });
    const host::LineOutcome outcome = host::runLine(vty, moduleNode(terminal.level), line);
    doing.outcome([&](scenario::Outcome& told) { told.ran(vty, outcome); });
    result = resultOf(outcome);
  }
  text += vty.text;
  if (vty.yes == nullptr) return result;
  terminal.question = vty.question;
  terminal.yes = vty.yes;
  terminal.askedBy = node_.loads();
  if (sessionRecord().wanted()) terminal.asking = recordedLine(terminal.level, line);
  if (terminal.answers != Answers::asked) return answer(terminal, terminal.answers == Answers::yes, text);
  return {.outcome = wire::kAsks};
}

wire::Result Operator::answer(Terminal& terminal, bool yes, std::string& text) {
  Vty vty;
  vty.yes = std::exchange(terminal.yes, nullptr);
  text += std::exchange(terminal.question, {}) + (yes ? "yes\r\n" : "no\r\n");
  int returned = 0;
  if (terminal.askedBy != node_.loads()) {
    text += "the node has taken on another configuration meanwhile: nothing is done\r\n";
    return ran(-1);
  }
  {
    const Turn turn;
    Doing doing([&] { return recordedAnswer(terminal.asking, yes); });
    returned = host::answerQuestion(vty, yes);
    doing.outcome([&](scenario::Outcome& told) {
      told.terminal = vty.text;
      told.result(returned);
    });
  }
  text += vty.text;
  return ran(returned);
}

// Anything else than an answer takes the question back.
wire::Result Operator::answerLine(Terminal& terminal, std::string_view line, std::string& text) {
  while (!line.empty() && (line.back() == ' ' || line.back() == '\r')) line.remove_suffix(1);
  for (const std::string_view yes : {"y", "Y", "yes"})
    if (line == yes) return answer(terminal, true, text);
  for (const std::string_view no : {"n", "N", "no"})
    if (line == no) return answer(terminal, false, text);
  terminal.yes = nullptr;
  terminal.question.clear();
  text += "neither y nor n: nothing is done\r\n";
  return ran(-1);
}

wire::Result Operator::runPlatformLine(Terminal& terminal, std::string_view line, std::string& text) {
  PlatformVty vty;
  wire::Result result = resultOf(host::runLine(vty, platformNode(terminal.level), line));
  if (vty.action != nullptr) result.returned = vty.action({*this, terminal, text});
  return result;
}

// Where a line is not understood. The platform's words are expected beside the module's ahead of the first word, and
// behind a first one that begins lines of both.
static host::Misunderstanding misunderstanding(Level level, std::string_view line, bool ours) {
  if (ours) return host::misunderstanding(platformNode(level), line);
  host::Misunderstanding told = host::misunderstanding(moduleNode(level), line);
  std::string ahead(line.substr(0, told.at));
  ahead.erase(0, ahead.find_first_not_of(" \t"));
  while (ahead.ends_with(' ') || ahead.ends_with('\t')) ahead.pop_back();
  if (ahead.find_first_of(" \t") != ahead.npos) return told;
  if (!ahead.empty()) ahead += ' ';
  const host::Misunderstanding more = host::misunderstanding(platformNode(level), ahead + '\1');  // no word's beginning
  if (more.at >= ahead.size())
    for (const std::string& word : more.expected)
      if (std::ranges::find(told.expected, word) == told.expected.end()) told.expected.push_back(word);
  return told;
}

wire::Result Operator::run(Terminal& terminal, std::string_view line, std::string& text) try {
  if (terminal.shadow != nullptr && !leavesShadow(line)) return terminal.shadow->run(line, text);
  if (terminal.yes != nullptr) return answerLine(terminal, line, text);
  const bool ours = isPlatformLine(line);
  const Level level = terminal.level;
  wire::Result result = ours ? runPlatformLine(terminal, line, text) : runModuleLine(terminal, line, text);
  if (result.outcome == static_cast<u8>(host::LineResult::ran) || result.outcome == wire::kAsks) return result;
  const host::Misunderstanding told = misunderstanding(level, line, ours);
  result.at = static_cast<u32>(told.at);
  result.expected = host::wordsOf(told);
  return result;
} catch (const std::exception& error) {
  text += std::string(error.what()) + "\r\n";
  return ran(-1);
}

std::string Operator::suggest(const Terminal& terminal, std::string_view line) {
  const std::size_t begin = std::min(line.find_first_not_of(" \t"), line.size());
  const std::size_t end = line.find_first_of(" \t", begin);
  const bool firstIsWhole = end != line.npos;
  const std::string_view first = line.substr(begin, end == line.npos ? end : end - begin);

  std::vector<host::Suggestion> all;
  const Turn turn;  // the module may be asked what exists
  if (!firstIsWhole || !isPlatformWord(first)) all = host::suggestions(moduleNode(terminal.level), line);
  for (host::Suggestion& one : host::suggestions(platformNode(terminal.level), line)) {
    const auto same = [&](const host::Suggestion& other) {
      return other.word == one.word && (one.word.front() != '<' || other.help == one.help);
    };
    if (std::ranges::none_of(all, same)) all.push_back(std::move(one));
  }
  // What exists stays in its own order.
  std::ranges::stable_sort(all, {}, [](const host::Suggestion& one) {
    return std::pair(one.kind, one.kind == host::Suggested::word ? std::string_view(one.word) : std::string_view());
  });

  std::string rows;
  for (const host::Suggestion& one : all) rows += one.word + "\t" + one.help + "\n";
  return rows;
}

}  // namespace msand
