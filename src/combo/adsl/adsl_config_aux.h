#pragma once
// What the DSL items share beside their frame.

#include "msan/standard_mib.h"
#include "platform/types.h"

extern u32 maxAdPortNum;  // ports of the node, were all slots full; limits the items of a message

int get_sys_max_adsl_port_num();  // sets it; 0

// Port types of DSL lines.
inline constexpr u16 kAdslPort = 116, kAdslPotsPort = 817, kVdslPort = 56, kVdslPotsPort = 818, kDslPort = 621;

// Of adsl_min_rate_get.
enum MinRateDirection : int { kUpstream = 1, kDownstream = 2 };
