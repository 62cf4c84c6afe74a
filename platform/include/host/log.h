#pragma once
// Where the node's log goes.

#include <string>

#include "platform/types.h"

namespace host {

// Lines go to standard error, or to a file; an empty path: nowhere (the observer still sees them).
enum class LogTo { nowhere, standardError, file };
void openLog(LogTo where, const std::string& path = {});

// True if the module's severity is switched on; severities 12 to 14 are at start, 10 is not.
bool severityOn(i32 severity);
void resetSeverities();

}  // namespace host
