#include "answering.h"

#include "capture_file.h"
#include "host/chassis.h"
#include "host/links.h"
#include "messages/answer.h"
#include "session_record.h"

namespace msand {

// The simulated cards and the voice side answer what they are asked, by the descriptions: a node to try has something
// to show behind every command. A card that is not up says nothing.
static std::optional<std::vector<u8>> answerPlainly(host::Link link, u16 slot, u16 id, host::Bytes question) {
  using messages::Road;
  if (link != host::Link::ngn && host::cardState(slot) != host::CardState::up) return {};
  const Road road = link == host::Link::gpon    ? Road::gponAsk
                    : link == host::Link::gepon ? Road::geponAsk
                                                : Road::ngnAsk;
  return messages::plainAnswer(messages::book(), road, id, question);
}

static void captureAnswer(host::Link link, u16 slot, u16 id, host::Bytes bytes) {
  using messages::Road;
  captureFile().add(link == host::Link::gpon    ? Road::gponAnswer
                    : link == host::Link::gepon ? Road::geponAnswer
                                                : Road::ngnAnswer,
                    slot, id, bytes);
}

Answering::Answering(cards::DslCards& dsl) {
  host::deliverTo(
      [&dsl](host::Link link, u16 slot, u16 id, host::Bytes payload) { dsl.hear(link, slot, id, payload); });
  host::answerBy([&dsl](host::Link link, u16 slot, u16 id, host::Bytes question) {
    auto told = dsl.answer(link, slot, id, question);
    if (!told) told = answerPlainly(link, slot, id, question);
    if (told) captureAnswer(link, slot, id, *told);
    if (told) sessionRecord().answered(link, slot, id, *told);
    return told;
  });
}

Answering::~Answering() {
  host::answerBy(nullptr);
  host::deliverTo(nullptr);
}

}  // namespace msand
