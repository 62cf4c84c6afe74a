#pragma once
// A manager's requests, and what is held of each.

#include "messages/layout.h"
#include "platform/types.h"

namespace fuzz {

enum class Verb : u8 { set, setMore, get };

// What costs more than the request itself. The rest is held always: answers, and what was accepted, are as they are
// described; a refusal with which nothing was written has changed nothing.
struct Looks {
  bool stores = false;    // a refusal leaves what is stored as it was, whatever was written
  bool readBack = false;  // what was set can be asked for
};

// Calls the hook with a frame that ends where its memory ends; true when the message has told all it has to tell.
bool request(Verb verb, u16 id, messages::Bytes frame, Looks looks = {});

// Whatever pieces of requests or replies a message still holds are asked for, so that nothing of it has to be left.
void finish(u16 id);

// Pieces are waited for, or wait to be asked for.
bool holdsPieces();
void forgetPieces();  // with the module that held them

// Refusals with something written whose stores were not looked at.
extern u64 unseenRefusals;

}  // namespace fuzz
