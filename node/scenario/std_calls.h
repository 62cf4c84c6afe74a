#pragma once
// Calls of the functions that the module exports for an agent of standard MIBs.

#include "arguments.h"
#include "player.h"

namespace scenario {

// NAME ARG...: numbers, a text in quotes, a view as the bytes of its layout. The outs of a call that succeeds are told
// by name.
Action readStd(Arguments& arguments);

}  // namespace scenario
