#include "operator.h"

#include <algorithm>
#include <exception>
#include <shared_mutex>
#include <vector>

#include "host/jobs.h"
#include "platform_words.h"

namespace msand {

Operator::Operator(node::Node& node, Startup& startup) : node_(node), startup_(startup) { installPlatformWords(); }

std::string Operator::prompt(const Terminal& terminal) const {
  return terminal.level == Level::debug ? "msan(debug)# " : "msan# ";
}

static wire::Result resultOf(host::LineOutcome outcome) { return {static_cast<u8>(outcome.result), outcome.returned}; }

wire::Result Operator::runModuleLine(const Terminal& terminal, std::string_view line, std::string& text) {
  Vty vty;
  wire::Result result;
  {
    const std::shared_lock request(host::requestGate());
    result = resultOf(host::runLine(vty, moduleNode(terminal.level), line));
  }
  text += vty.text;
  host::runJobs();
  return result;
}

wire::Result Operator::runPlatformLine(Terminal& terminal, std::string_view line, std::string& text) {
  PlatformVty vty;
  wire::Result result = resultOf(host::runLine(vty, platformNode(terminal.level), line));
  if (vty.action != nullptr) result.returned = vty.action({*this, terminal, text});
  host::runJobs();
  return result;
}

wire::Result Operator::run(Terminal& terminal, std::string_view line, std::string& text) try {
  return isPlatformLine(line) ? runPlatformLine(terminal, line, text) : runModuleLine(terminal, line, text);
} catch (const std::exception& error) {
  text += std::string(error.what()) + "\r\n";
  return {static_cast<u8>(host::LineResult::ran), -1};
}

std::string Operator::suggest(const Terminal& terminal, std::string_view line) {
  const std::size_t begin = std::min(line.find_first_not_of(" \t"), line.size());
  const std::size_t end = line.find_first_of(" \t", begin);
  const bool firstIsWhole = end != line.npos;
  const std::string_view first = line.substr(begin, end == line.npos ? end : end - begin);

  std::vector<host::Suggestion> all;
  if (!firstIsWhole || !isPlatformWord(first)) all = host::suggestions(moduleNode(terminal.level), line);
  for (host::Suggestion& one : host::suggestions(platformNode(terminal.level), line)) {
    const auto same = [&](const host::Suggestion& other) { return other.word == one.word; };
    if (std::ranges::none_of(all, same)) all.push_back(std::move(one));
  }
  std::ranges::stable_sort(all, {}, [](const host::Suggestion& one) { return std::pair(one.complete, one.word); });

  std::string rows;
  for (const host::Suggestion& one : all) rows += (one.complete ? "<cr>" : one.word) + "\t" + one.help + "\n";
  return rows;
}

}  // namespace msand
