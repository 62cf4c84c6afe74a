#pragma once
// Words of the ADSL line commands. The last word of a list stands for what no other one is.

#include "common/words.h"

inline constexpr Word transmodeWords[] = {{"adpt", 0}, {"gdmt", 1}, {"adsl_2", 2}, {"adsl2+", 3}, {"t1413", 4}};
inline constexpr Word rateModeWords[] = {{"StartAdpt", 2}, {"fixed", 1}, {"RunAdpt", 3}};
inline constexpr Word lineTypeWords[] = {
    {"none", 1}, {"fastOnly", 2}, {"interleave", 3}, {"FastOrInter", 4}, {"FastAndInter", 5}};
inline constexpr Word enableWords[] = {{"enable", 1}, {"disable", 0}};
inline constexpr Word powerModeWords[] = {{"L0Mode", 0}, {"L3Mode", 1}, {"L2Mode", 2}, {"L2AndL3", 3}};
