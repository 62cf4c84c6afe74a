#include "snapshot.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/chassis.h"
#include "host/flow_store.h"
#include "host/hex.h"
#include "line_words.h"
#include "note.h"

namespace msand {

std::vector<std::string_view> linesOf(std::string_view configuration) {
  std::vector<std::string_view> lines;
  while (!configuration.empty()) {
    const std::size_t end = std::min(configuration.find('\n'), configuration.size());
    std::string_view line = configuration.substr(0, end);
    configuration.remove_prefix(std::min(end + 1, configuration.size()));
    while (line.ends_with('\r') || line.ends_with(' ')) line.remove_suffix(1);
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

static Snapshot::Flow ruleOf(const host::FlowEntry& entry) {
  FlowRule rule;
  flowRuleGetPrfInfo(entry.id, &rule);
  const auto* const bytes = reinterpret_cast<const u8*>(&rule);
  return {true, entry.id, entry.name, {bytes, bytes + sizeof rule}};
}
static Snapshot::Flow policyOf(const host::FlowEntry& entry) {
  std::vector<u8> pack(kFlowPolicyPack);
  u32 length = kFlowPolicyPack;
  fpGetSpcPrfPack(pack.data(), &length, entry.id);
  return {false, entry.id, entry.name, std::move(pack)};
}

std::string flowDirective(const Snapshot::Flow& flow) {
  const bool word =
      !flow.name.empty() && std::ranges::none_of(flow.name, [](char letter) { return static_cast<u8>(letter) <= ' '; });
  return fmt::format("{}flow-{} {} {} {}",
                     word ? "" : "# What can't be told in a scenario: ", flow.isRule ? "rule" : "policy", flow.id,
                     printable(flow.name), host::hexText(flow.bytes));
}

static std::string_view stateWord(host::CardState state) {
  return state == host::CardState::up ? "up" : state == host::CardState::present ? "present" : "down";
}

static void addLines(std::vector<std::string>& lines, const cards::DslCards& dsl, u16 slot, u16 ports) {
  const cards::Site whole = dsl.site(slot, 0);
  if (!(whole == cards::Site{})) lines.push_back(fmt::format("slot {} line {}", slot, wordsOf(whole)));
  for (u16 port = 1; port <= ports; ++port)
    if (const cards::Site site = dsl.site(slot, port); !(site == whole))
      lines.push_back(fmt::format("slot {} port {} {}", slot, port, wordsOf(site)));
}

Snapshot snapshotOf(node::Node& node, const cards::DslCards* dsl) {
  Snapshot snapshot;
  for (u16 slot = 1; slot <= host::kSlots; ++slot) {
    const host::CardType* const type = host::authorisedType(slot);
    if (type == nullptr) continue;
    snapshot.chassis.push_back(fmt::format("card {} auth {}", slot, type->name));
    snapshot.cards.push_back(fmt::format("card {} {}", slot, stateWord(host::cardState(slot))));
    if (dsl != nullptr && (type->families & (host::ADSL | host::VDSL)) != 0)
      addLines(snapshot.lines, *dsl, slot, type->ports);
  }
  for (const host::FlowEntry& rule : host::flowRules()) snapshot.flows.push_back(ruleOf(rule));
  for (const host::FlowEntry& policy : host::flowPolicies()) snapshot.flows.push_back(policyOf(policy));
  snapshot.configuration = node.runningConfiguration();
  return snapshot;
}

}  // namespace msand
