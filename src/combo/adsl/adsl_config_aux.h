#pragma once
// What the DSL items share beside their frame.

#include "platform/types.h"

extern u32 maxAdPortNum;  // ports of the node, were all slots full; limits the items of a message

int get_sys_max_adsl_port_num();  // sets it; 0

// Port types of DSL lines.
inline constexpr u16 kAdslPort = 116, kAdslPotsPort = 817, kVdslPort = 56, kVdslPotsPort = 818, kDslPort = 621;

// 0 if a data card runs in the slot and has the port, else -1.
int msan_data_obj_validation(u16 slot, u16 port);

// The least rate that the port's ADSL line profile asks for, in kbit/s; 0 with the default profile. 0 or -1.
enum RateDirection : int { kUpstream = 1, kDownstream = 2 };
int adsl_min_rate_get(u16 slot, u16 port, int direction, u32* rate);
