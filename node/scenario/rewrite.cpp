#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "compare.h"
#include "modes.h"

namespace scenario {

namespace {

void appendRecord(std::vector<std::string>& lines, const std::vector<std::string>& record) {
  if (record.empty())
    lines.emplace_back(kNothing);
  else
    lines.insert(lines.end(), record.begin(), record.end());
}

// Copies the file's lines `from` up to (not including) `to`, numbered from 1.
void copyLines(std::vector<std::string>& lines, const Scenario& scenario, u32 from, u32 to) {
  for (u32 line = from; line < to; ++line) lines.push_back(scenario.lines[line - 1]);
}

// The record in place of the expectations. What stands between them, comments, stays beside what it stood beside.
void replaceExpectations(std::vector<std::string>& lines, const Scenario& scenario, const Directive& directive,
                         const std::vector<std::string>& record) {
  const auto& expectations = directive.expectations;
  u32 next = expectations.front().line;
  std::size_t passed = 0;
  const auto pass = [&](std::size_t count) {
    for (; passed < count; ++passed) {
      copyLines(lines, scenario, next, expectations[passed].line);
      next = expectations[passed].line + 1;
    }
  };
  for (const Pair& pair : align(expectations, record)) {
    if (pair.side != Side::surplus) pass(pair.expectation + (pair.side == Side::covered ? 0 : 1));
    if (pair.side != Side::missing) lines.push_back(record[pair.line]);
  }
  pass(expectations.size());
  if (record.empty()) lines.emplace_back(kNothing);
}

bool isRewritten(const Directive& directive, const std::vector<Pair>& pairs, bool all) {
  return directive.expectations.empty() ? all : !matches(pairs);
}

void printDifference(std::FILE* to, const Scenario& scenario, const std::vector<Played>& played, bool all) {
  for (std::size_t i = 0; i < played.size(); ++i) {
    const Directive& directive = scenario.directives[i];
    const std::vector<std::string>& record = played[i].record;
    const auto pairs = align(directive.expectations, record);
    if (!isRewritten(directive, pairs, all)) continue;
    fmt::print(to, "{}:{}: {}\n", scenario.name, directive.line, directive.text);
    // Line by line as it stands: what a gap or ".." of an expectation stood for is written in its place.
    std::vector<std::string> before, after;
    for (const Expectation& expectation : directive.expectations) before.push_back(expectation.text);
    appendRecord(after, record);
    for (const std::string& line : diffLines(before, after)) fmt::print(to, "{}\n", line);
  }
}

// In place of the old file at once, with its rights.
void writeFile(const std::string& file, const std::vector<std::string>& lines) {
  const std::string path = std::filesystem::canonical(file);
  const std::string fresh = fmt::format("{}.{}.new", path, getpid());
  {
    std::ofstream stream(fresh, std::ios::binary);
    for (const std::string& line : lines) stream << line << '\n';
    stream.close();
    if (!stream) throw std::system_error(errno, std::generic_category(), fresh);
  }
  std::filesystem::permissions(fresh, std::filesystem::status(path).permissions());
  std::filesystem::rename(fresh, path);
}

}  // namespace

std::vector<std::string> rewriteLines(const Scenario& scenario, const std::vector<Played>& played, bool all) {
  std::vector<std::string> lines;
  u32 next = 1;
  for (std::size_t i = 0; i < scenario.directives.size(); ++i) {
    const Directive& directive = scenario.directives[i];
    const auto& expectations = directive.expectations;
    if (!isRewritten(directive, align(expectations, played[i].record), all)) continue;
    const u32 begin = expectations.empty() ? directive.end + 1 : expectations.front().line;
    copyLines(lines, scenario, next, begin);
    next = expectations.empty() ? begin : expectations.back().line + 1;
    if (expectations.empty())
      appendRecord(lines, played[i].record);
    else
      replaceExpectations(lines, scenario, directive, played[i].record);
  }
  copyLines(lines, scenario, next, static_cast<u32>(scenario.lines.size()) + 1);
  return lines;
}

int rewriteFiles(const std::string& module, const std::vector<Scenario>& scenarios, bool all) {
  for (const Scenario& scenario : scenarios) {
    const std::vector<Played> played = playAll(module, scenario);
    const auto lines = rewriteLines(scenario, played, all);
    const bool standardInput = scenario.name == "-";
    printDifference(standardInput ? stderr : stdout, scenario, played, all);
    if (standardInput)
      for (const std::string& line : lines) fmt::print("{}\n", line);
    else if (lines != scenario.lines)
      writeFile(scenario.name, lines);
  }
  return kGood;
}

}  // namespace scenario
