#pragma once
// A node that serves until it is told to stop.

#include "configuration.h"

namespace msand {

// Runs the node until SIGTERM, SIGINT or SIGHUP. Throws std::runtime_error if it can't be started. Call it ahead of any
// thread: it blocks these signals.
void runDaemon(const Configuration& configuration);

// Goes as far as a start would before it touches anything outside: what the configuration names is there, and can be
// used. Throws as runDaemon does; a configuration that is to blame is a ConfigurationError for both.
void checkDaemon(const Configuration& configuration);

}  // namespace msand
