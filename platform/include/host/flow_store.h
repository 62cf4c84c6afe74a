#pragma once
// The flow store from the side of those that fill it. Rules and policies have ids from 1 to 32767. They belong to
// another module: a restart of the node leaves them as they are.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "platform/flow_store.h"

namespace host {

// A rule or policy of the id is there from now on; another one of the id is replaced. The name is cut to kFlowName.
void setFlowRule(i16 id, std::string_view name, const FlowRule& rule);
FlowRule plainFlowRule(std::string_view name);           // no entries
using FlowPolicyPack = std::array<u8, kFlowPolicyPack>;  // its first 65 bytes are the policy's information
void setFlowPolicy(i16 id, std::string_view name, const FlowPolicyPack& pack);
FlowPolicyPack plainFlowPolicy(std::string_view name);  // the name, then zeros

// Removes one unless the module says that it is bound.
enum class FlowRemoval { removed, unknown, bound };
FlowRemoval removeFlowRule(i16 id);
FlowRemoval removeFlowPolicy(i16 id);

struct FlowEntry {
  i16 id = 0;
  std::string name;
  u16 entries = 0;  // of a rule
};
std::vector<FlowEntry> flowRules();  // by id, without rule 0
std::vector<FlowEntry> flowPolicies();

void clearFlowStore();
void forgetFlowChecks();  // for the unloading of a module

}  // namespace host
