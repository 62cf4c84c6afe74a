// The messages of a record by name: printed below their lines, and held against their descriptions.

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "messages/json.h"
#include "messages/show.h"
#include "modes.h"
#include "told.h"

namespace scenario {

namespace {

void printBelow(const std::vector<Told>& all, std::size_t line) {
  for (const Told& told : all)
    if (told.line == line)
      for (const std::string& text : describe(messages::book(), told.road, told.id, told.bytes, true))
        fmt::print("    {}\n", text);
}

bool holdDirective(const Scenario& scenario, const Directive& directive, const std::vector<Told>& tellings,
                   bool recovering) {
  bool good = true;
  for (const Told& told : tellings) {
    const bool request = told.road == messages::Road::set;
    const auto worst = !request ? messages::Fault::word : recovering ? messages::Fault::form : messages::Fault::range;
    auto all = check(messages::book(), told.road, told.id, told.bytes, worst);
    if (std::string lost = lostInJson(messages::book(), told.road, told.id, told.bytes); !lost.empty())
      all.push_back(std::move(lost));
    for (const std::string& wrong : all) {
      if (std::exchange(good, false)) fmt::print("{}:{}: {}\n", scenario.name, directive.line, directive.text);
      fmt::print("  {} {}: {}\n", roadName(told.road), told.id, wrong);
    }
  }
  return good;
}

// The file with what its gateway says of handlers, whatever the file itself makes of its log. A restart forgets it.
Scenario watched(const Scenario& scenario) {
  std::vector<Problem> none;
  const Scenario words = readScenario(scenario.name, "cli@10 set msan debug on module common\nlog all\n", none);
  Scenario all{scenario.name, {}, {words.directives.front()}};
  for (const Directive& directive : scenario.directives) {
    all.directives.push_back(words.directives.back());
    all.directives.push_back(directive);
    if (directive.text == "restart" || directive.text.find("msan debug") != directive.text.npos)
      all.directives.push_back(words.directives.front());
  }
  return all;
}

// Their results say whether something was stored, their answers what was not.
constexpr u16 kSetRateProfiles = 34609, kDeleteRateProfiles = 34610;

// A handler says by its result, too, whether it refuses. An error of four bytes is the gateway's own.
bool handlerAgrees(const Scenario& scenario, const Directive& directive, const std::vector<Told>& tellings,
                   const std::vector<std::string>& record) {
  const auto tells = [](const std::string& line) { return line.find("process failed!") != line.npos; };
  const bool failed = std::ranges::any_of(record, tells);
  for (const Told& told : tellings) {
    if (told.road != messages::Road::setReply && told.road != messages::Road::getReply) continue;
    const bool good = isSuccess(told.bytes);
    if (good != failed || told.id == kSetRateProfiles || told.id == kDeleteRateProfiles ||
        (!good && told.bytes.size() == 4))
      continue;
    fmt::print("{}:{}: {}\n  the handler's result is that of a {}\n", scenario.name, directive.line, directive.text,
               failed ? "failure" : "success");
    return false;
  }
  return true;
}

}  // namespace

int explainFile(const std::string& module, const Scenario& scenario) {
  const std::vector<Played> played = playAll(module, scenario);
  TellingReader reader;
  for (std::size_t i = 0; i < played.size(); ++i) {
    const Directive& directive = scenario.directives[i];
    const std::vector<Told> all = reader.read(directive.text, played[i].record);
    fmt::print("> {}\n", directive.text);
    printBelow(all, Told::kDirective);
    if (Told answer; readAnswer(directive.text, answer)) printBelow({answer}, Told::kDirective);
    for (std::size_t line = 0; line < played[i].record.size(); ++line) {
      fmt::print("{}\n", played[i].record[line]);
      printBelow(all, line);
    }
  }
  return kGood;
}

int holdFiles(const std::string& module, const std::vector<Scenario>& scenarios) {
  std::size_t good = 0;
  std::size_t count = 0;
  for (const Scenario& scenario : scenarios) {
    TellingReader reader;
    const Scenario all = watched(scenario);
    const std::vector<Played> played = playAll(module, all);
    bool whole = true;
    for (std::size_t i = 0; i < played.size(); ++i) {
      const Directive& directive = all.directives[i];
      const std::vector<Told> tellings = reader.read(directive.text, played[i].record);
      whole = holdDirective(scenario, directive, tellings, reader.recovering()) && whole;
      whole = handlerAgrees(scenario, directive, tellings, played[i].record) && whole;
      count += tellings.size();
    }
    good += whole ? 1 : 0;
  }
  fmt::print("{} messages\n", count);
  printCount(good, scenarios.size() - good);
  return good == scenarios.size() ? kGood : kDiffers;
}

}  // namespace scenario
