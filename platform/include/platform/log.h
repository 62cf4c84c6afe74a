#pragma once
// The node's log. kLogStart: a start-up step has failed.

#include "platform/types.h"

enum LogSeverity : i32 { kLogDebug = 10, kLogProgress = 12, kLogError = 13, kLogStart = 14 };

void ulogPrintf(i32 module, i32 severity, const char* format, ...) __attribute__((format(printf, 3, 4)));

// A packet as a hexadecimal dump.
void ulogTypePkt(i32 module, i32 severity, const void* packet, u32 length);

// Switch a severity of a module on (1) and off (0). Both are called for a change, with the same flag.
void ulogSetModIgnore(i32 module, i32 severity, i32 flag);
void ulogSetModOutput(i32 module, i32 severity, i32 flag);
