#pragma once
// The state of DSL lines, which their card knows alone: a question goes through to the card, and its answer as it came
// to a manager, or field by field to an operator. A question is a row.
//
// An answer is a u32 count and blocks. A block begins with slot, port and 16 bytes that nobody reads; behind its fixed
// part stand as many entries as it counts.

#include "common/answer.h"
#include "common/msan_snmp.h"

inline constexpr u32 kMostAskedPorts = 64;  // of a manager's question

using PortExchange = int(u8 moduleId, u16 slot, u16 id, const u8* request, u32 requestLength, u8* answer,
                         u32* answerLength);

// How an answer is shown.
struct PortBlock {
  u32 fixed;                                // bytes of a block without its entries
  u16 countAt = 0;                          // where their number stands; 0: a block has none
  u32 entry = 0;                            // bytes of one
  const char* opening = "";                 // of each block
  std::span<const ShownField> place;        // when slot or port is another than that of the block before
  std::span<const ShownField> fields = {};  // of each block
  const char* heading = "";                 // of its entries
  const char* closing = "";                 // of each block
  void (*show)(Vty* vty, u32 number, WireIn entry) = nullptr;  // entries count from 1
};

struct PortRead {
  u16 id;
  const char* name;
  u32 mostReply;
  PortExchange* exchange;  // of a manager's question; an operator's goes to the card as a whole
  const PortBlock& block;
};

extern const PortRead dslStatus, bitAlloc, gainMap, dropReason;
extern const PortRead deltStatus, deltHlog, deltHlin, deltQln, deltSnrUp, deltSnrDown;
extern const PortRead seltResult;

// Shows the blocks of an answer, up to one that it does not hold.
void showPortBlocks(Vty* vty, const PortBlock& block, WireIn answer);

// The name of a reason; empty, and a line in the log, if there is none.
const char* get_dropreason_str_byindex(u32 index);

// Registration and commands.
void register_portstate_msg_snmp();
void register_portdelt_test_msg_snmp();
void register_portselt_test_msg_snmp();
void install_gepon_msan_port_get_state_element();
