#pragma once
// A person at a terminal: line editing, history, Tab and ?.

#include "connection.h"

namespace ctl {

// Reads and runs lines until the session ends. Throws ConnectionError. Returns false if the node ended it.
bool runInteractive(Connection& connection);

}  // namespace ctl
