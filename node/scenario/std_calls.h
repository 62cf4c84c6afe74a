#pragma once
// Calls of the functions that the module exports for an agent of standard MIBs.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "arguments.h"
#include "player.h"

namespace scenario {

// NAME ARG...: numbers, a text in quotes, a view as the bytes of its layout. The outs of a call that succeeds are told
// by name.
Action readStd(Arguments& arguments);

// A call that somebody else made, told as one of a directive. An argument is a number, or where a pointer points to.
struct StdArgument {
  i64 number = 0;
  const void* at = nullptr;
};
struct ToldStd {
  std::string directive;
  std::vector<std::string> lines;
};
// `result` is what the function gave. Throws std::invalid_argument for a function that `std` does not have.
ToldStd tellStd(std::string_view name, std::span<const StdArgument> arguments, int result);

}  // namespace scenario
