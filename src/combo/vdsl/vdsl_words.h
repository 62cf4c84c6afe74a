#pragma once
// Words of the VDSL line commands.

#include "common/words.h"

inline constexpr Word portModeWords[] = {{"atm", 1}, {"ptm", 2}, {"self-adaption", 3}};
inline constexpr Word stPrfWords[] = {{"8a", 1},   {"8b", 2},   {"8c", 4},    {"8d", 8},   {"12a", 16},
                                      {"12b", 32}, {"17a", 64}, {"30a", 128}, {"all", 255}};
