#pragma once
// Where the lines that were typed are kept.

#include <string>

namespace ctl {

// $XDG_STATE_HOME/msan/history, or ~/.local/state/msan/history; its folders are made, for the user alone. Empty: there
// is no such place.
std::string historyFile();

}  // namespace ctl
