#include "replay.h"

#include <fmt/format.h>

#include <algorithm>
#include <regex>
#include <set>
#include <string_view>
#include <vector>

#include "fuzz_node.h"
#include "host/terminal.h"

namespace fuzz {

u64 comparedReplays = 0;

namespace {

// Lines that do not come back, and why that is as it should be (docs/limits.md).
enum class Then : u8 {
  refused,           // and so there is none afterwards
  changed,           // it may be executed, and there is another one afterwards, or none
  spoiledIfRefused,  // lines behind it concern something else
  spoiled,           // in any case
};
struct Loss {
  const char* line;  // a regular expression
  const char* why;
  Then then = Then::refused;
};
constexpr Loss kLosses[] = {
    {R"(^(add|set) (adslLine|pvc|alarm|vdsl\w+) profile (?!id \d+ *$|[!-~]+ id \d+ *$))",
     "a profile's name is none that a line can have", Then::spoiled},
    {R"(^set rate-limit id \d+ name (?![!-~]+ us-status ))", "the same", Then::spoiled},
    {"^attach rate-limit profile ", "the port's profile has gone, while the slot had no card"},
    {"^add alarm profile ", "two alarm profiles have one name", Then::spoiledIfRefused},
    {"^set dsp profile (0|id 0) ", "DSP profile 0 is printed, and can't be configured"},
    {"^set dsp profile \\d+ name", "a DSP profile has a name that another one had at first", Then::changed},
    {"^set sip user call profile (0|id 0) ", "call profile 0 is printed, and can't be configured"},
    {"^set sip user call profile \\d+ name Default", "a call profile has the name of profile 0", Then::changed},
    {"^set sip user call profile id \\d+ call-forward telephone-number $", "a call profile has no forward number"},
    {"^set voice (signalling|rtpstream|rtp|media|vlan|ip|dns|pppoe|dhcp|gateway) ", "the protocol is none, or was",
     Then::changed},
    {"^attach \\w+ profile id \\d+ interface", "a port is given a profile that there is not"},
    {"^add (unicast|multicast) ", "the cos of a service, or its rule, is none that a command takes",
     Then::spoiledIfRefused},
    {"^attach vlan profile defVlanPrf ", "services of a mode that there is not print nothing", Then::changed},
    {"^set vdslvn para ", "a level of virtual noise above -40"},
    {"^set vdslpbo para ", "numbers of power back-off are cut when they are read", Then::changed},
    {"^set adsl pvcNo ", "a circuit that any may be, repeats, or is where circuit 0 is at first", Then::changed},
    {"^set adsl SnrmMargin ", "margins are typed in whole dB", Then::changed},
    {"^attach policy interface ", "a policy or rule that the port, or a PVC of no DSL line, has may have gone"},
    {"^set (voice_self_port_cfg|sip server|sip user call profile|voice (md5|domain|port (user|sip))) ",
     "a manager's text has a blank, or there is none, or two profiles have one name", Then::changed},
    {"^set isolation ", "the slot has another card now"},
    {"^set dsl mpair ", "the slot has another card now"},
    {"^(set|add) sip digital map ", "a map has a blank at its ends or two in a row", Then::changed},
    {"^set rtp resource profile (?![!-~]+ begin )", "the same", Then::spoiled},
    {"^(?!set |add |attach |create |!)", "the rest of a name with a line end", Then::spoiledIfRefused},
    {"^set mgc ", "there is no primary address", Then::changed},
    {"^set queue schedule ", "queues in another order, or strict ones with a weight", Then::changed},
    {"^set fax event notify ", "VBD stands behind an event that is off", Then::changed},
};

std::string withoutIndent(const std::string& line) {
  return line.substr(std::min(line.find_first_not_of(' '), line.size()));
}

const Loss* lossOf(const std::string& line) {
  static const std::vector<std::regex> all = [] {
    std::vector<std::regex> made;
    for (const Loss& loss : kLosses) made.emplace_back(loss.line, std::regex::optimize);
    return made;
  }();
  for (std::size_t i = 0; i < all.size(); ++i)
    if (std::regex_search(line, all[i])) return &kLosses[i];
  return nullptr;
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string line(text.substr(0, end));
    while (line.ends_with('\r')) line.pop_back();
    text.remove_prefix(std::min(end + 1, text.size()));
    line = withoutIndent(line);
    if (!line.empty()) lines.push_back(std::move(line));
  }
  return lines;
}

bool is(const std::string& line, Then then) {
  const Loss* const loss = lossOf(line);
  return loss != nullptr && loss->then == then;
}

}  // namespace

std::string replay() {
  const std::string before = theNode().runningConfiguration();
  std::vector<std::string> had = linesOf(before);
  bool spoiled = std::ranges::any_of(had, [](const std::string& line) { return is(line, Then::spoiled); });
  std::set<std::string> refused;
  std::string why;
  const std::string after = restartNode(before, [&](const node::FailedLine& failed) {
    const std::string line = withoutIndent(failed.command);
    refused.insert(line);
    spoiled = spoiled || is(line, Then::spoiledIfRefused);
    if (spoiled || lossOf(line) != nullptr || !why.empty()) return;
    const bool unknown = failed.outcome.result != host::LineResult::ran;
    why = fmt::format("replay: {}: {}: {}", unknown ? host::wordsOf(failed.outcome.result) : "refused", line,
                      failed.printed);
  });
  if (!why.empty() || spoiled) return why;
  ++comparedReplays;
  std::vector<std::string> has = linesOf(after);
  const auto differs = [&](const std::string& line) { return refused.contains(line) || is(line, Then::changed); };
  std::erase_if(had, differs);
  std::erase_if(has, differs);
  const auto [one, other] = std::ranges::mismatch(had, has);
  if (one == had.end() && other == has.end()) return "";
  return fmt::format("replay: differs: {} | {}", one == had.end() ? "nothing" : *one,
                     other == has.end() ? "nothing" : *other);
}

}  // namespace fuzz
