#pragma once
// The other ends of the messages: what they answer is queued here, used once and in order. With nothing queued a
// send succeeds with 0 and an exchange fails with -1, unless an answerer knows better. A send passes over queued
// answers.

#include <functional>
#include <optional>
#include <vector>

#include "host/observer.h"

namespace host {

// The next exchange of the id on the link (with the card in the slot; 0 for ngn) is answered so.
void queueAnswer(Link link, u16 slot, u16 id, std::vector<u8> answer);

// The next send or exchange of the id on the link gives `result`. Link ngn, the slot and id 0:
// the next send_ngn_voice_rtp_ip_by_slot of the slot gives it.
void queueFailure(Link link, u16 slot, u16 id, int result);

// Who answers exchanges for which nothing is queued; nothing is no answer. Called on the thread that asks, on several
// at once; set before any of them runs.
using Answerer = std::function<std::optional<std::vector<u8>>(Link link, u16 slot, u16 id, Bytes question)>;
void answerBy(Answerer answerer);

// Who hears the messages that reach a card. Called on the thread that sends; set before any of
// them runs.
using Listener = std::function<void(Link link, u16 slot, u16 id, Bytes payload)>;
void deliverTo(Listener listener);

// The card in the slot, or the voice side (slot 0), takes so long over each message that reaches it. `clearLinks` ends
// it.
void delayAnswers(u16 slot, u32 milliseconds);

// While they are held no message leaves the module, and nobody is told of one, of a change or of another voice mode:
// what is sent or asked for succeeds, exchanges fail.
void holdLinks(bool hold);
bool linksHeld();

void clearLinks();

}  // namespace host
