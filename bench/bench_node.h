#pragma once
// The node that is measured: with the module as the programs load it, an empty chassis, and nobody watching.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "node.h"

inline constexpr u16 kServiceSlots[] = {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18};
inline constexpr u32 kPorts = 64;  // of the cards that are measured

node::Node& benchNode();

// Authorises so many cards of the type in the first service slots, and nothing else.
void populate(u32 cards, const char* type);

// Runs an operator's line. False when it did not do well.
bool run(const std::string& line);

// All ports of so many cards, as an interface string.
std::string allPorts(u32 cards);

// Writes a big-endian number.
void put(std::vector<u8>& frame, std::size_t at, u32 width, u32 value);

// Reports the time of one of so many equal things.
void perPart(benchmark::State& state, const char* part, u32 count);
inline void perPort(benchmark::State& state, u32 ports) { perPart(state, "per port", ports); }
