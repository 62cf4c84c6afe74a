#pragma once
// The agent's two hooks and its announced messages.

#include "platform/types.h"

// SET: `lastFlag` 1 for the last (or only) fragment. `data` is writable. GET: the second argument is an out byte, 1
// when the reply is complete. `reply` holds 400,000 bytes, zeroed; `replyLen` is set by the handler. The last two are
// handed through. A hook returns 1 for a message that it has handled, 0 for one that is not its own.
using SnmpWrite = int(u16 id, u8 lastFlag, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*);
using SnmpRead = int(u16 id, u8* lastFlagOut, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*);

// Announces a message id under its full name; the agent copies the text. The constants are 1, 1.
int installSnmpCommand(u16 id, const char* text, i32, i32, i32 module);

// Gives the agent a module's hooks. 1 is success.
int RegisterHookFunc(SnmpWrite* write, SnmpRead* read, i32 module);
