#include "platform/cards.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <thread>
#include <tuple>

#include "constants.h"
#include "host/links.h"
#include "link_queue.h"

namespace host {

namespace {

struct Outcome {
  bool isAnswer = false;  // else a failure
  int result = 0;
  std::vector<u8> answer;
};

using Key = std::tuple<Link, u16 /*slot*/, u16 /*id*/>;

std::mutex mutex;
std::map<Key, std::deque<Outcome>>& queues() {
  static std::map<Key, std::deque<Outcome>> all;
  return all;
}
std::array<std::atomic<u32>, 21> delays{};  // milliseconds by slot, 0: the voice side
std::atomic<bool> held{false};
std::atomic<std::size_t> queued{0};  // over all keys: most messages find nothing and take no lock

Answerer& answerer() {
  static Answerer one;
  return one;
}

Listener& listener() {
  static Listener one;
  return one;
}

void enqueue(const Key& key, Outcome outcome) {
  const std::lock_guard lock(mutex);
  queues()[key].push_back(std::move(outcome));
  ++queued;
}

// Takes the first outcome of the key that `fits`; false if there is none.
template <class Fits>
bool take(const Key& key, Fits fits, Outcome& outcome) {
  if (queued == 0) return false;
  const std::lock_guard lock(mutex);
  const auto queue = queues().find(key);
  if (queue == queues().end()) return false;
  const auto first = std::find_if(queue->second.begin(), queue->second.end(), fits);
  if (first == queue->second.end()) return false;
  outcome = std::move(*first);
  queue->second.erase(first);
  if (queue->second.empty()) queues().erase(queue);
  --queued;
  return true;
}

}  // namespace

void queueAnswer(Link link, u16 slot, u16 id, std::vector<u8> answer) {
  enqueue({link, slot, id}, {true, 0, std::move(answer)});
}

void queueFailure(Link link, u16 slot, u16 id, int result) { enqueue({link, slot, id}, {false, result, {}}); }

void takeTime(u16 slot) {
  const u32 delay = slot < delays.size() ? delays[slot].load() : 0;
  if (delay != 0) std::this_thread::sleep_for(std::chrono::milliseconds(delay));
}

void answerBy(Answerer one) { answerer() = std::move(one); }

void deliverTo(Listener one) { listener() = std::move(one); }

void delayAnswers(u16 slot, u32 milliseconds) {
  if (slot < delays.size()) delays[slot] = milliseconds;
}

void holdLinks(bool hold) { held = hold; }
bool linksHeld() { return held; }

void clearLinks() {
  const std::lock_guard lock(mutex);
  queues().clear();
  queued = 0;
  for (auto& delay : delays) delay = 0;
}

int sendResult(Fault fault, Link link, u16 slot, u16 id) {
  takeTime(slot);
  Outcome outcome;
  take(
      {link, slot, id}, [](const Outcome& next) { return !next.isAnswer; }, outcome);
  return faultDue(fault) ? -1 : outcome.result;
}

int exchangeResult(Fault fault, Link link, u16 slot, u16 id, Bytes question, void* response, u32* responseLen) {
  takeTime(slot);
  const u32 capacity = responseLen != nullptr && response != nullptr ? *responseLen : 0;
  if (responseLen != nullptr) *responseLen = 0;
  Outcome outcome;
  bool taken = take(
      {link, slot, id}, [](const Outcome&) { return true; }, outcome);
  if (faultDue(fault)) return -1;
  if (!taken && answerer()) {
    if (auto answer = answerer()(link, slot, id, question)) outcome.answer = std::move(*answer), taken = true;
  }
  if (!taken) return -1;
  const auto length = static_cast<u32>(std::min<std::size_t>(outcome.answer.size(), capacity));
  if (length != 0) std::memcpy(response, outcome.answer.data(), length);
  if (responseLen != nullptr) *responseLen = length;
  return outcome.result;
}

namespace {

int sendToCard(Link link, u16 slot, u16 id, const void* payload, u32 length) {
  if (held) return 0;
  told([=](Observer& observer) { observer.send(link, slot, id, bytesOf(payload, length)); });
  const int result = sendResult(Fault::cardSend, link, slot, id);
  if (result >= 0 && listener()) listener()(link, slot, id, bytesOf(payload, length));
  passed({link, slot, id, false, length, result, {}});
  return result;
}

int askCard(Link link, u16 slot, u16 id, Bytes request, void* response, u32* responseLen) {
  if (held) return -1;
  told([=](Observer& observer) { observer.ask(link, slot, id, request); });
  const int result = exchangeResult(Fault::cardExchange, link, slot, id, request, response, responseLen);
  passed({link, slot, id, true, static_cast<u32>(request.size()), result,
          responseLen != nullptr ? bytesOf(response, *responseLen) : Bytes()});
  return result;
}

}  // namespace

}  // namespace host

int dm_MakeCmdPkt_GPON(u16 slot, u16 id, const void* payload, u32 length) {
  return host::sendToCard(host::Link::gpon, slot, id, payload, length);
}

int dm_MakeCmdPkt_GEPON(u16 slot, u16 id, const void* payload, u32 length) {
  return host::sendToCard(host::Link::gepon, slot, id, payload, length);
}

int dm_MakeCmdPkt_EPON(u16 slot, u16 id, const void* payload, u32 length) {
  return host::sendToCard(host::Link::epon, slot, id, payload, length);
}

int gpon_send_and_wait_for_response_copy(u16 slot, u16 id, i32 c0, const void* request, u32 requestLen, void* response,
                                         u32* responseLen, i32 c1) {
  if (host::constantsDiffer(__func__, 0, {c0, c1})) return -1;
  return host::askCard(host::Link::gpon, slot, id, host::bytesOf(request, requestLen), response, responseLen);
}

int gepon_send_and_wait_for_response_copy(u16 slot, u16 id, i32 c0, i32 c1, const void* request, u32 requestLen,
                                          void* response, u32* responseLen, i32 c2) {
  if (host::constantsDiffer(__func__, 0, {c0, c1, c2})) return -1;
  return host::askCard(host::Link::gepon, slot, id, host::bytesOf(request, requestLen), response, responseLen);
}
