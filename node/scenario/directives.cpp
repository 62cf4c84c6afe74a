#include "directives.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <optional>

#include "arguments.h"
#include "host/agent.h"
#include "host/chassis.h"
#include "host/database.h"
#include "host/faults.h"
#include "host/flow_store.h"
#include "host/hex.h"
#include "host/jobs.h"
#include "host/links.h"
#include "host/pool.h"
#include "host/profile_store.h"
#include "host/registry.h"
#include "host/terminal.h"
#include "std_calls.h"
#include "text.h"

namespace scenario {

namespace {

constexpr i64 kMostNumber = 0xffffffff;
constexpr i64 kLeastResult = -0x80000000ll;
constexpr i64 kMostResult = 0x7fffffff;

// An action that prepares something: nothing of it is recorded.
template <class Prepare>
Action preparing(Prepare prepare) {
  return [prepare](Stage& stage, Outcome&) { prepare(stage); };
}

// An action that calls one of the module's entries and records what it gives.
template <class Call>
Action calling(Call call) {
  return [call](Stage& stage, Outcome& outcome) { outcome.result(call(stage)); };
}

// Chassis and cards.

std::string familyNames(u8 families) {
  constexpr std::pair<host::Family, std::string_view> kNames[] = {
      {host::ADSL, "ADSL"}, {host::VDSL, "VDSL"}, {host::DATA, "data"}, {host::POTS, "POTS"}};
  std::string text;
  for (const auto& [family, name] : kNames)
    if ((families & family) != 0) text.append(text.empty() ? "" : ", ").append(name);
  return text.empty() ? "none" : text;
}

void listCardTypes(Stage&, Outcome& outcome) {
  for (const host::CardType& type : host::cardTypes())
    outcome.lines.push_back(fmt::format("row name=\"{}\" number={} family=\"{}\" porttype={} ports={}", type.name,
                                        type.number, familyNames(type.families), type.portType, type.ports));
}

const host::CardType& cardType(std::string_view word) {
  if (const host::CardType* type = host::findCardType(word)) return *type;
  std::vector<std::string_view> names;
  for (const host::CardType& type : host::cardTypes()) names.push_back(type.name);
  throw unknownWord("card type", word, names);
}

Action puttingCard(u16 slot, host::CardState state) {
  return preparing([=](Stage&) { host::setCardState(slot, state); });
}

Action readCard(Arguments& arguments) {
  const std::string_view first = arguments.word("slot, or the word types,");
  if (first == "types") return listCardTypes;
  Arguments place(first);
  const u16 slot = place.slot();
  switch (arguments.choice({"auth", "unauth", "up", "present", "down"})) {
    case 0: {
      const host::CardType& type = cardType(arguments.word("card type"));
      if (!host::holdsServiceCard(slot)) throw BadLine(fmt::format("slot {} holds no service card", slot));
      return calling([slot, &type](Stage& stage) { return stage.node.authorise(slot, type); });
    }
    case 1:
      return calling([slot](Stage& stage) { return stage.node.unauthorise(slot); });
    case 2:
      return calling([slot](Stage& stage) { return stage.node.cardUp(slot); });
    case 3:
      return puttingCard(slot, host::CardState::present);
    default:
      return puttingCard(slot, host::CardState::absent);
  }
}

// Operator.

void runLine(Stage& stage, int node, const std::string& line, Outcome& outcome) {
  Vty& vty = stage.terminal = {};
  outcome.ran(vty, host::runLine(vty, node, line));
}

Action readLine(Arguments& arguments, int node) {
  return [node, line = std::string(arguments.rest())](Stage& stage, Outcome& outcome) {
    runLine(stage, node, line, outcome);
  };
}

Action readCli(Arguments& arguments) { return readLine(arguments, CONFIG_NODE); }

Action readConfirm(Arguments& arguments) {
  const bool yes = arguments.choice({"yes", "no"}) == 0;
  return [yes](Stage& stage, Outcome& outcome) {
    if (stage.terminal.yes == nullptr) return outcome.notAvailable("no command has asked");
    stage.terminal.text.clear();
    const int result = host::answerQuestion(stage.terminal, yes);
    outcome.terminal = stage.terminal.text;
    outcome.result(result);
  };
}

Action readRunningConfiguration(Arguments&) {
  return [](Stage& stage, Outcome& outcome) {
    int result = 0;
    outcome.terminal = stage.node.runningConfiguration(&result);
    outcome.result(result);
  };
}

Action readSave(Arguments&) {
  return preparing([](Stage& stage) { stage.startup = stage.node.runningConfiguration(); });
}

// A line that matches no command has printed nothing: the kind of its failure stands for it.
void recordFailedLine(const node::FailedLine& failed, Outcome& outcome) {
  const std::string mark = fmt::format("| {}:", failed.line);
  for (const std::string& line : terminalLines(failed.printed)) outcome.lines.push_back(marked(mark, line));
  if (failed.outcome.result != host::LineResult::ran)
    outcome.lines.push_back(marked(mark, host::wordsOf(failed.outcome.result)));
}

Action readRestart(Arguments&) {
  return [](Stage& stage, Outcome& outcome) {
    stage.terminal = {};  // what would be done on yes is unloaded
    stage.node.restart(stage.startup, [&](const node::FailedLine& failed) { recordFailedLine(failed, outcome); });
  };
}

Action readRecover(Arguments& arguments) {
  const bool on = arguments.choice({"on", "off"}) == 0;
  return preparing([on](Stage&) { host::setFastMode(on); });
}

// Network manager.

using Frame = std::optional<std::vector<u8>>;  // none: no frame at all

Frame readFrame(Arguments& arguments) {
  Arguments null = arguments;
  if (!null.empty() && null.word("frame") == "null") {
    arguments = null;
    return std::nullopt;
  }
  return arguments.bytes();
}

Action readSet(u16 id, bool last, Frame frame) {
  return [id, last, frame = std::move(frame)](Stage& stage, Outcome& outcome) {
    Frame written = frame;
    if (!last) stage.setIds.insert(id);
    outcome.setAnswered(host::agentSet(id, last, written ? &*written : nullptr));
  };
}

Action readGet(u16 id, Frame frame) {
  return [id, frame = std::move(frame)](Stage& stage, Outcome& outcome) {
    Frame written = frame;
    stage.getIds.insert(id);
    outcome.getAnswered(host::agentGet(id, written ? &*written : nullptr));
  };
}

Action readSnmp(Arguments& arguments) {
  const std::size_t verb = arguments.choice({"set", "set-more", "get"});
  const u16 id = arguments.id();
  Frame frame = readFrame(arguments);
  return verb == 2 ? readGet(id, std::move(frame)) : readSet(id, verb == 0, std::move(frame));
}

// The other ends.

Action readAnswer(Arguments& arguments) {
  constexpr host::Link kLinks[] = {host::Link::gpon, host::Link::gepon, host::Link::ngn};
  const host::Link link = kLinks[arguments.choice({"gpon", "gepon", "ngn"})];
  const u16 slot = link == host::Link::ngn ? u16{0} : arguments.slot();
  const u16 id = arguments.id();
  return preparing([=, bytes = arguments.bytes()](Stage&) { host::queueAnswer(link, slot, id, bytes); });
}

Action readFail(Arguments& arguments) {
  constexpr host::Link kLinks[] = {host::Link::gpon, host::Link::gepon, host::Link::epon, host::Link::ngn};
  const host::Link link = kLinks[arguments.choice({"gpon", "gepon", "epon", "ngn"})];
  const u16 slot = link == host::Link::ngn ? u16{0} : arguments.slot();
  const u16 id = arguments.id();
  const auto result = static_cast<int>(arguments.number("result", kLeastResult, kMostResult));
  return preparing([=](Stage&) { host::queueFailure(link, slot, id, result); });
}

// Stores that other modules fill, the role of the control card, database events.

constexpr i64 kMostFlowId = 0x7fff;

// The whole content of a rule or policy, of which the form without bytes gives the rest.
template <class Content>
Content readContent(Arguments& arguments, const Content& plain) {
  if (arguments.empty()) return plain;
  const std::vector<u8> bytes = arguments.bytes();
  if (bytes.size() != sizeof(Content))
    throw BadLine(fmt::format("{} bytes are given, it has {}", bytes.size(), sizeof(Content)));
  Content content;
  std::memcpy(&content, bytes.data(), sizeof content);
  return content;
}

std::string flowName(Arguments& arguments) {
  std::string name(arguments.word("name"));
  if (name.size() > kFlowName) throw BadLine(fmt::format("\"{}\" is longer than {} characters", name, kFlowName));
  return name;
}

Action removing(host::FlowRemoval (*remove)(i16), i16 id) {
  return calling([=](Stage&) { return remove(id) == host::FlowRemoval::removed ? 0 : -1; });
}

// A rule or policy with bytes of its own may be called "delete".
bool asksRemoval(std::string_view name, const Arguments& arguments) { return name == "delete" && arguments.empty(); }

Action readFlowRule(Arguments& arguments) {
  const auto id = static_cast<i16>(arguments.number("id", 1, kMostFlowId));
  const std::string name = flowName(arguments);
  if (asksRemoval(name, arguments)) return removing(host::removeFlowRule, id);
  const FlowRule rule = readContent(arguments, host::plainFlowRule(name));
  return preparing([=](Stage&) { host::setFlowRule(id, name, rule); });
}

Action readFlowPolicy(Arguments& arguments) {
  const auto id = static_cast<i16>(arguments.number("id", 1, kMostFlowId));
  const std::string name = flowName(arguments);
  if (asksRemoval(name, arguments)) return removing(host::removeFlowPolicy, id);
  const host::FlowPolicyPack pack = readContent(arguments, host::plainFlowPolicy(name));
  return preparing([=](Stage&) { host::setFlowPolicy(id, name, pack); });
}

Action readMaster(Arguments& arguments) {
  const bool master = arguments.choice({"yes", "no"}) == 0;
  return preparing([master](Stage&) { host::setMaster(master); });
}

Action readSlaveFlush(Arguments&) {
  return calling([](Stage& stage) { return stage.node.module().slave_flush(); });
}

Action readEvents(Arguments& arguments) {
  const bool attach = arguments.choice({"register", "unregister"}) == 0;
  return calling([attach](Stage& stage) {
    const node::Module& module = stage.node.module();
    return (attach ? module.register_events : module.unregister_events)(host::eventConnection());
  });
}

// Faults.

u32 readNth(Arguments& arguments) { return static_cast<u32>(arguments.number("count", 1, kMostNumber)); }

Action failing(host::Fault kind, u32 n) {
  return preparing([=](Stage&) { host::failNth(kind, n); });
}

Action readDatabaseFault(Arguments& arguments) {
  constexpr host::Fault kKinds[] = {host::Fault::connect, host::Fault::start, host::Fault::commit, host::Fault::find,
                                    host::Fault::create};
  const host::Fault kind = kKinds[arguments.choice({"connect", "start", "commit", "find", "new"})];
  return failing(kind, readNth(arguments));
}

Action readFault(Arguments& arguments) {
  switch (arguments.choice({"alloc", "db", "voice-mode"})) {
    case 0:
      return failing(host::Fault::alloc, readNth(arguments));
    case 1:
      return readDatabaseFault(arguments);
    default:
      break;
  }
  const auto result = static_cast<int>(arguments.number("result", kLeastResult, kMostResult));
  return preparing([result](Stage&) { host::queueVoiceModeResult(result); });
}

// A look inside.

Action readRows(Arguments& arguments) {
  return [table = std::string(arguments.word("table"))](Stage&, Outcome& outcome) {
    std::vector<std::string> rows;
    if (!host::listRows(table, rows)) return outcome.notAvailable(fmt::format("the database has no table {}", table));
    for (const std::string& row : rows) outcome.lines.push_back(marked("row", row));
  };
}

constexpr i64 kMostAttributeBytes = 65536;

Action readAttribute(Arguments& arguments) {
  const u16 slot = arguments.slot();
  const auto port = static_cast<u16>(arguments.number("port", 0, 65535));
  const auto number = static_cast<u32>(arguments.number("number", 0, kMostNumber));
  const auto length = static_cast<std::size_t>(arguments.number("length", 0, kMostAttributeBytes));
  return [=](Stage& stage, Outcome& outcome) {
    std::vector<u8> bytes(std::max<std::size_t>(length, 1));
    const int result = stage.node.module().get_attribute(slot, port, number, bytes.data(), static_cast<u32>(length));
    bytes.resize(length);
    if (result == 0) outcome.lines.push_back(marked("attr", host::hexText(bytes)));
    outcome.result(result);
  };
}

constexpr i64 kMostKind = 0x7fff;

Action readProfiles(Arguments& arguments) {
  const auto type = static_cast<i16>(arguments.number("store kind", 0, kMostKind));
  return [type](Stage&, Outcome& outcome) {
    std::vector<host::StoredProfile> profiles;
    if (!host::listProfiles(type, profiles)) return outcome.notAvailable(fmt::format("no store kind {}", type));
    for (const host::StoredProfile& profile : profiles)
      outcome.lines.push_back(
          fmt::format("profile {} \"{}\" {}", profile.id, profile.name, host::hexText(profile.item)));
  };
}

void lookIntoPool(Stage&, Outcome& outcome) { outcome.lines.push_back(fmt::format("pool {}", host::poolInUse())); }

Action readPool(Arguments& arguments) {
  if (arguments.empty()) return lookIntoPool;
  if (arguments.choice({"mark", "change"}) == 0)
    return preparing([](Stage& stage) { stage.poolMark = host::poolInUse(); });
  return [](Stage& stage, Outcome& outcome) {
    const auto change = static_cast<i64>(host::poolInUse()) - static_cast<i64>(stage.poolMark);
    outcome.lines.push_back(fmt::format("pool change {}", change));
  };
}

Action readLog(Arguments& arguments) {
  const bool all = arguments.choice({"all", "failures"}) == 0;
  return preparing([all](Stage& stage) { stage.recorder.logAll(all); });
}

struct Row {
  std::string_view word;
  Action (*read)(Arguments&);
};

// clang-format off
constexpr Row kTable[] = {
    {"card",           readCard},
    {"cli",            readCli},
    {"confirm",        readConfirm},
    {"running-config", readRunningConfiguration},
    {"save",           readSave},
    {"restart",        readRestart},
    {"recover",        readRecover},
    {"snmp",           readSnmp},
    {"std",            readStd},
    {"answer",         readAnswer},
    {"fail",           readFail},
    {"flow-rule",      readFlowRule},
    {"flow-policy",    readFlowPolicy},
    {"master",         readMaster},
    {"slave-flush",    readSlaveFlush},
    {"events",         readEvents},
    {"fault",          readFault},
    {"rows",           readRows},
    {"attribute",      readAttribute},
    {"profiles",       readProfiles},
    {"pool",           readPool},
    {"log",            readLog},
};
// clang-format on

}  // namespace

std::span<const std::string_view> directiveWords() {
  static const std::vector<std::string_view> words = [] {
    std::vector<std::string_view> all;
    for (const Row& row : kTable) all.push_back(row.word);
    return all;
  }();
  return words;
}

Action readDirective(std::string_view line) {
  Arguments arguments(line);
  const std::string_view word = arguments.word("directive");
  Action action;
  if (word.starts_with("cli@")) {
    action = readLine(arguments, static_cast<int>(parseNumber("node", word.substr(4), 0, 65535)));
  } else {
    const auto* const row =
        std::find_if(std::begin(kTable), std::end(kTable), [word](const Row& one) { return one.word == word; });
    if (row == std::end(kTable)) throw unknownWord("directive", word, directiveWords());
    action = row->read(arguments);
  }
  arguments.end();
  return action;
}

}  // namespace scenario
