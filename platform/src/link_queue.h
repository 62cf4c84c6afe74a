#pragma once
// What is queued for the other end of a link, as the links' own sources take it.

#include "host/faults.h"
#include "host/observer.h"
#include "host/watcher.h"

namespace host {

// The result of a send: a fault's, a queued failure, or 0.
int sendResult(Fault fault, Link link, u16 slot, u16 id);

// The end of an exchange: what is queued first, what the answerer says, or -1. Fills `response` and `responseLen` (its
// size, then the length of what it holds: 0 without an answer).
int exchangeResult(Fault fault, Link link, u16 slot, u16 id, Bytes question, void* response, u32* responseLen);

// As long as the card in the slot, or the voice side (0), is told to take over a message.
void takeTime(u16 slot);

// What became of a message, for the watcher.
inline void passed(const WatchedMessage& message) {
  if (Watcher* const to = watcher(); to != nullptr) to->message(message);
}

inline Bytes bytesOf(const void* data, u32 length) {
  return data != nullptr ? Bytes(static_cast<const u8*>(data), length) : Bytes();
}

}  // namespace host
