#pragma once
// Simulated calls on POTS ports: one that comes in, and one that each port makes to a number of its own.

#include "voice/status/simulation.h"

struct CallInStart {
  u16 timeout = 0;  // s, 60 to 300
};
struct CallOutStart {
  char number[32] = {};
  u32 timeout = 0;  // s, 60 to 300
};

extern const Simulation callInStart, callInStatus, callInStop, callOutStart, callOutStatus, callOutStop;

int check_call_out_start(const CallOutStart* record, SnmpErrInfo* err);
// 1 if two nodes have the same number: slot, port and number of the first that has it again; 0 if none; -1 for null.
int is_call_out_number_duplicate(LIST* list, u16* slot, u16* port, char* number);
// Node i, from 0, gets the number start + step * i as text, and the timeout. 0, or -1 for null or a number that does
// not fit.
int set_call_out_start_datalist(u16 timeout, i64 start, i64 step, LIST* list);

void registerCallSimulation();
void installCallSimulation();
