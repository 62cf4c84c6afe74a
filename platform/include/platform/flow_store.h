#pragma once
// Flow rules and flow policies: what a service or a port cites, kept by another module. Rule 0 always exists, without
// entries. What a rule's words and blocks mean is that module's matter.

#include "platform/types.h"

inline constexpr u16 kFlowEntries = 8;      // of a rule at most
inline constexpr u8 kFlowName = 20;         // characters of a name that count
inline constexpr u32 kFlowPolicyInfo = 65;  // bytes
inline constexpr u32 kFlowPolicyPack = 97;  // bytes

struct FlowRuleEntry {
  u16 words[4] = {};  // host order
  u8 blocks[2][16] = {};
};

struct FlowRule {
  char name[22] = {};  // may be without a terminator
  u16 count = 0;       // of entries, as the other module gives it
  FlowRuleEntry entries[kFlowEntries];
};
static_assert(sizeof(FlowRule) == 344);

// 1: the rule or policy exists.
int flowRuleIsPrfExist(i16 id);
int flowPolicyIsPrfExist(i16 id);

// The lowest id of the name, of which the first 20 characters count; negative when there is none.
int flowRuleGetIdByName(const char* name);

// The name, padded with zeros to `length`, which goes in as the room and comes back as the name's; a name that fills
// the room is without a terminator. Negative when there is none of the id.
int flowRuleGetNameById(char* name, u8* length, i16 id);
int flowPolicyGetNameById(char* name, u8* length, i16 id);

int flowRuleGetPrfInfo(i16 id, FlowRule* rule);      // negative on failure
int flowPolicyGetPrfInfo(i16 id, u8* info);          // kFlowPolicyInfo bytes; non-zero on failure
int fpGetSpcPrfPack(u8* pack, u32* length, i16 id);  // kFlowPolicyPack bytes; negative on failure

// A module's answer to whether a rule or policy is bound: 1 yes, 0 no, negative when it can't tell, as without a port
// that could bind one. The store asks ahead of removing one, which 1 alone forbids.
using FlowBindCheck = int(i16 type, u16 id);
int flowRuleRegBindCheck(FlowBindCheck* check);
int flowPolicyRegBindCheck(FlowBindCheck* check);
// Negative: the type of a question is not the store's.
int flowRulePrfTypeCheck(i16 type);
int flowPolicyPrfTypeCheck(i16 type);
