#pragma once
// Where the node's log goes.

#include <string>

#include "platform/types.h"

namespace host {

// Lines go to standard error, or to a file; an empty path: nowhere (the observer still sees them).
enum class LogTo { nowhere, standardError, file };
// Throws std::runtime_error when the file can't be opened; the log then stays as it was. Who logs never waits for long:
// lines that can't be written are lost, and their number stands ahead of the next one that can.
void openLog(LogTo where, const std::string& path = {});

// True if the severity is switched on; 11 and above are at start, 10 is not.
bool severityOn(i32 severity);
void resetSeverities();

// Something that the stand-in itself has to complain about. Goes to the log, or to standard error when none is open;
// the observer does not see it.
void platformWarning(const char* format, ...) __attribute__((format(printf, 1, 2)));
void platformError(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace host
