#pragma once
// Faults on demand: the N-th operation of a kind fails, once.

#include "platform/types.h"

namespace host {

enum class Fault { alloc, connect, start, find, create, commit, cardSend, cardExchange, ngnSend, ngnExchange };
inline constexpr int kFaults = 10;

// The N-th operation of the kind from now on fails, once. Orders add up: each fails an operation of its own, counted
// from when it was given. 0 takes all orders of the kind back.
void failNth(Fault kind, u32 n);

// True while an order of the kind waits.
bool faultPending(Fault kind);

// Operations of the kind so far, counted modulo 2^32 from the start of the process.
u32 operationsCounted(Fault kind);

// For the platform's own sources: counts one operation of the kind; true if this one has to fail.
bool faultDue(Fault kind);

void clearFaults();

// Called at each operation, with its number, on the thread that does it. Null: nobody watches.
using FaultWatcher = void (*)(Fault kind, u32 number);
void watchFaults(FaultWatcher watcher);

}  // namespace host
