#include "flow_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <shared_mutex>
#include <string>
#include <string_view>

#include "host/chassis.h"
#include "host/flow_store.h"
#include "platform_words.h"

namespace msand {

namespace {

constexpr std::size_t kPackHead = 24;  // bytes of a packed policy ahead of its content: the name, padded

template <class Number>
Number numberOf(std::string_view digits) {
  Number number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

// Bytes from hexadecimal digits, as many as there are, to the front of `bytes`. False for another text, or a longer
// one.
bool readHex(std::string_view text, std::span<u8> bytes) {
  if (text.size() % 2 != 0 || text.size() / 2 > bytes.size()) return false;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const char* const end = text.data() + i + 2;
    if (std::from_chars(text.data() + i, end, bytes[i / 2], 16).ptr != end) return false;
  }
  return true;
}

// Four numbers of 16 bits with commas between them.
bool readWords(std::string_view text, std::span<u16, 4> words) {
  for (u16& word : words) {
    const std::string_view digits = text.substr(0, text.find(','));
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), word);
    if (read.ec != std::errc{} || read.ptr != digits.data() + digits.size()) return false;
    text.remove_prefix(digits.size());
    const bool last = &word == &words.back();
    if (text.starts_with(',') == last) return false;
    if (!last) text.remove_prefix(1);
  }
  return text.empty();
}

int refuse(const PlatformCall& call, std::string_view why) {
  call.text.append(why) += "\r\n";
  return -1;
}

int show(const PlatformCall& call) {
  call.text += fmt::format("{:<7} {:>5} {:<20} {:>7}\r\n", "flow", "id", "name", "entries");
  for (const host::FlowEntry& rule : host::flowRules())
    call.text += fmt::format("{:<7} {:>5} {:<20} {:>7}\r\n", "rule", rule.id, rule.name, rule.entries);
  for (const host::FlowEntry& policy : host::flowPolicies())
    call.text += fmt::format("{:<7} {:>5} {}\r\n", "policy", policy.id, policy.name);
  return 0;
}

int tell(const PlatformCall& call, host::FlowRemoval removal) {
  switch (removal) {
    case host::FlowRemoval::removed:
      return 0;
    case host::FlowRemoval::unknown:
      return refuse(call, "there is none of this id");
    default:
      return refuse(call, "it is bound");
  }
}

int showCommand(const CommandElement*, Vty* vty, int, char**) { return leave(vty, show); }

int nameTooLong(Vty* vty) {
  return leave(vty, [](const PlatformCall& call) {
    return refuse(call, fmt::format("a name has {} characters at most", kFlowName));
  });
}

int ruleCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  const std::string name = argv[1];
  if (name.size() > kFlowName) return nameTooLong(vty);
  FlowRule rule = host::plainFlowRule(name);
  for (int i = 2; i + 2 < argc; i += 3) {
    FlowRuleEntry& entry = rule.entries[rule.count++];
    if (readWords(argv[i], entry.words) && readHex(argv[i + 1], entry.blocks[0]) &&
        readHex(argv[i + 2], entry.blocks[1]))
      continue;
    return leave(vty, [number = rule.count](const PlatformCall& call) {
      return refuse(call,
                    fmt::format("entry {}: four numbers as 1,2,3,4 and twice up to 32 hexadecimal digits", number));
    });
  }
  return leave(vty, [=, id = numberOf<i16>(argv[0])](const PlatformCall&) {
    host::setFlowRule(id, name, rule);
    return 0;
  });
}

int policyCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  const std::string name = argv[1];
  if (name.size() > kFlowName) return nameTooLong(vty);
  host::FlowPolicyPack pack = host::plainFlowPolicy(name);
  if (argc > 2 && !readHex(argv[2], std::span(pack).subspan(kPackHead)))
    return leave(vty, [](const PlatformCall& call) { return refuse(call, "up to 146 hexadecimal digits"); });
  return leave(vty, [=, id = numberOf<i16>(argv[0])](const PlatformCall&) {
    host::setFlowPolicy(id, name, pack);
    return 0;
  });
}

// The module is asked whether it cites the rule or policy, so this is a request like others.
template <host::FlowRemoval (*Remove)(i16)>
int removeCommand(const CommandElement*, Vty* vty, int, char** argv) {
  return leave(vty, [id = numberOf<i16>(argv[0])](const PlatformCall& call) {
    const std::shared_lock request(host::requestGate());
    return tell(call, Remove(id));
  });
}

const CommandElement kElements[] = {
    {"flow show", showCommand, "flow rules and policies"},
    {"flow rule <1-32767> name <name> {entry <words> <block> <block>}*8", ruleCommand, "make or replace a flow rule"},
    {"flow rule <1-32767> none", removeCommand<host::removeFlowRule>, "remove a flow rule"},
    {"flow policy <1-32767> name <name> {content <hex>}*1", policyCommand, "make or replace a flow policy"},
    {"flow policy <1-32767> none", removeCommand<host::removeFlowPolicy>, "remove a flow policy"},
};

}  // namespace

std::span<const CommandElement> flowWords() { return kElements; }

}  // namespace msand
