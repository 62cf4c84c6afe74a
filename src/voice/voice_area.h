#pragma once
// Entries of the voice area that its commands call as well.

struct Vty;

// The running configuration of the node's global voice items.
void msan_ngn_showrun(Vty* vty);
