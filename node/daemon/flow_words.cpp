#include "flow_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

#include "host/chassis.h"
#include "host/flow_store.h"
#include "host/hex.h"
#include "platform/tables.h"
#include "platform_words.h"
#include "session_record.h"
#include "snapshot.h"

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

// A rule or a policy: how it is removed, and where in a binding its number stands.
struct Flow {
  const char* word;
  host::FlowRemoval (*remove)(i16 id);
  std::size_t up, down;
};
constexpr Flow kPolicy{"policy", host::removeFlowPolicy, 0, 1};
constexpr Flow kRule{"rule", host::removeFlowRule, 2, 3};

// Whether what is stored of a PVC names the flow in one of its bindings: the PVC, their count, four numbers of each.
bool names(std::span<const u16> stored, const Flow& flow, u16 id) {
  for (std::size_t at = 2; at < 2 + std::size_t{4} * stored[1] && at + 4 <= stored.size(); at += 4)
    if (stored[at + flow.up] == id || stored[at + flow.down] == id) return true;
  return false;
}

// The first PVC that binds the flow.
std::string bindingOf(const Flow& flow, u16 id) {
  std::string place = "it is bound";
  const DbConnection connection = dbCommon_getConnectRes();
  mco_trans_h transaction = nullptr;
  if (connection == nullptr) return place;
  if (mco_trans_start_(connection, DB_READ_ONLY, 0, &transaction, __FILE__, __LINE__, __func__) == DB_OK) {
    mco_cursor_t cursor;
    int code = M_QOS_PRF_ATT_RELATION_reTree_index_cursor(transaction, &cursor);
    for (; code == DB_OK; code = mco_cursor_next(transaction, &cursor)) {
      M_QOS_PRF_ATT_RELATION row;
      u32 object = 0;
      u16 stored[34] = {};
      if (M_QOS_PRF_ATT_RELATION_from_cursor(transaction, &cursor, &row) != DB_OK ||
          M_QOS_PRF_ATT_RELATION_ulObjId_get(&row, &object) != DB_OK ||
          M_QOS_PRF_ATT_RELATION_atInfo_get_range(&row, 0, sizeof stored, stored) != DB_OK)
        break;
      if (!names(stored, flow, id)) continue;
      place = fmt::format("it is bound to PVC {} of port {}/{}", stored[0], object >> 16, object & 0xFFFF);
      break;
    }
    mco_trans_rollback(transaction);
  }
  dbCommon_freeConnectRes(connection);
  return place;
}

int tell(const PlatformCall& call, const Flow& flow, i16 id, host::FlowRemoval removal) {
  switch (removal) {
    case host::FlowRemoval::removed:
      return 0;
    case host::FlowRemoval::unknown:
      return refuse(call, "there is none of this id");
    default:
      return refuse(call, bindingOf(flow, static_cast<u16>(id)));
  }
}

int showCommand(const CommandElement*, Vty* vty, int, char**) { return leave(vty, show); }

int nameTooLong(Vty* vty) {
  return leave(vty, [](const PlatformCall& call) {
    return refuse(call, fmt::format("a name has {} characters at most", kFlowName));
  });
}

std::string recordedFlow(bool isRule, i16 id, const std::string& name, host::Bytes bytes) {
  return flowDirective({isRule, id, name, {bytes.begin(), bytes.end()}});
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
    const Turn turn;
    const Doing doing([&] { return recordedFlow(true, id, name, {reinterpret_cast<const u8*>(&rule), sizeof rule}); });
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
    const Turn turn;
    const Doing doing([&] { return recordedFlow(false, id, name, pack); });
    host::setFlowPolicy(id, name, pack);
    return 0;
  });
}

// The module is asked whether it cites the rule or policy, so this is a request like others.
template <const Flow& flow>
int removeCommand(const CommandElement*, Vty* vty, int, char** argv) {
  return leave(vty, [id = numberOf<i16>(argv[0])](const PlatformCall& call) {
    const Turn turn;
    Doing doing([&] { return fmt::format("flow-{} {} delete", flow.word, id); });
    const host::FlowRemoval removal = flow.remove(id);
    doing.outcome([&](scenario::Outcome& told) { told.result(removal == host::FlowRemoval::removed ? 0 : -1); });
    return tell(call, flow, id, removal);
  });
}

const CommandElement kElements[] = {
    {"flow show", showCommand, "flow rules and policies"},
    {"flow rule <1-32767> name <name> {entry <words> <block> <block>}*8", ruleCommand, "make or replace a flow rule"},
    {"flow rule <1-32767> none", removeCommand<kRule>, "remove a flow rule"},
    {"flow policy <1-32767> name <name> {content <hex>}*1", policyCommand, "make or replace a flow policy"},
    {"flow policy <1-32767> none", removeCommand<kPolicy>, "remove a flow policy"},
};

}  // namespace

std::span<const CommandElement> flowWords() { return kElements; }

}  // namespace msand
