#include "module_road.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <set>
#include <system_error>
#include <utility>

#include "captured_pieces.h"
#include "hold.h"
#include "host/pool.h"
#include "kept_request.h"
#include "recorded_frames.h"
#include "session_record.h"
#include "standard_set.h"
#include "standard_table.h"

namespace msand {

constexpr std::size_t kMostWaiting = 64;
constexpr std::size_t kMostBytes = 16u << 20;

struct ModuleRoad::Waiting : KeptRequest {
  std::size_t size = 0;

  // of the thread that has the module do it
  ModuleRequest request;
  std::unique_ptr<StandardSet> set;  // instead of it
  bool ends = false;                 // nobody's request: the collection of this message has to be ended
  host::Answer answer;
  bool noMemory = false;
};

ModuleRoad::ModuleRoad(FrameTable& table) : table_(table), event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!event_) throw std::system_error(errno, std::generic_category(), "snmp: no descriptor");
}

ModuleRoad::~ModuleRoad() {
  if (alarm_ != 0) snmp_alarm_unregister(alarm_);
}

static Collections::Owner ownerOf(const netsnmp_session* session, const netsnmp_pdu& pdu) {
  Collections::Owner owner{session, {}};
  const auto* address = static_cast<const u8*>(pdu.transport_data);
  if (address != nullptr && pdu.transport_data_length > 0)
    owner.address.assign(address, address + pdu.transport_data_length);
  return owner;
}

// The library's own road, with the outcome prepared.
static int goOn(FrameTable& table, netsnmp_session* session, int id, netsnmp_pdu* pdu) {
  const int result = handle_snmp_packet(NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE, session, id, pdu, nullptr);
  table.forget();
  return result;
}

int ModuleRoad::receive(netsnmp_session* session, int id, netsnmp_pdu* pdu) {
  if (functions_ != nullptr && StandardSet::concerns(*pdu)) return keepSet(session, id, pdu);
  if (!FrameTable::concernsModule(*pdu) || !isAllowed(pdu) || table_.holdsPiece(*pdu))
    return goOn(table_, session, id, pdu);
  if (isRepeated(session, pdu)) return 1;
  const std::size_t size = pdu->command == SNMP_MSG_SET ? pdu->variables->val_len : 0;
  const bool rest =
      pdu->command == SNMP_MSG_SET && collections_.isRest(FrameTable::messageOf(*pdu), ownerOf(session, *pdu));
  if (rest || waiting_.size() >= kMostWaiting || bytes_ + size > kMostBytes) {
    table_.prepareRefusal(*pdu);
    return goOn(table_, session, id, pdu);
  }
  if (Waiting* const waiting = keep(session, id, pdu); waiting != nullptr) {
    waiting->size = size;
    waiting->request = *table_.take(*pdu);
    bytes_ += size;
  }
  return 1;
}

// What has not been done is refused by its table.
int ModuleRoad::keepSet(netsnmp_session* session, int id, netsnmp_pdu* pdu) {
  if (!isAllowed(pdu)) return goOn(table_, session, id, pdu);
  if (isRepeated(session, pdu)) return 1;
  if (waiting_.size() >= kMostWaiting) return goOn(table_, session, id, pdu);
  if (Waiting* const waiting = keep(session, id, pdu); waiting != nullptr)
    waiting->set = std::make_unique<StandardSet>(*functions_, *pdu);
  return 1;
}

// Null: there is no memory.
ModuleRoad::Waiting* ModuleRoad::keep(netsnmp_session* session, int id, netsnmp_pdu* pdu) {
  if (waiting_.emplace_back().keep(session, id, pdu)) return &waiting_.back();
  waiting_.pop_back();
  return nullptr;
}

bool ModuleRoad::isRepeated(netsnmp_session* session, netsnmp_pdu* pdu) {
  return std::ranges::any_of(waiting_, [&](Waiting& one) { return one.takeRepeated(session, pdu); });
}

// Pieces are left out: none of them is a message.
static void holdAnswer(const ModuleRequest& request, const host::Answer& answer) {
  static std::set<u16> inPieces;
  if (!answer.reply || answer.reply->empty() || request.column == kFrameMore) return;
  const bool isGet = request.column == kAnswer;
  if (isGet && answer.last == 0) inPieces.insert(request.id);
  if (isGet && (answer.last == 0 || inPieces.erase(request.id) != 0)) return;
  holdMessage(isGet ? messages::Road::getReply : messages::Road::setReply, request.id, *answer.reply);
}

// One piece more than there may be, and the module drops what it has collected. Pieces without a byte add nothing.
static void endCollection(u16 id) {
  constexpr int kMostPieces = 16;
  std::vector<u8> none;
  for (int i = 0; i <= kMostPieces; ++i) {
    const host::Answer answer = recordedSet(id, false, none);
    if (answer.result == 0 || FrameTable::isRefusal(answer)) return;
  }
}

void ModuleRoad::askModule(Waiting& one) {
  static CapturedPieces captured;
  ModuleRequest& request = one.request;
  const u32 refusals = host::poolRefusals();
  {
    const Turn turn;
    if (one.ends) {
      endCollection(request.id);
      captured.forget(request.id);
    } else if (one.set != nullptr) {
      one.set->perform();
    } else {
      captured.addRequest(request);
      one.answer = request.column == kAnswer ? recordedGet(request.id, request.bytes)
                                             : recordedSet(request.id, request.column == kFrame, request.bytes);
      captured.addAnswer(request, one.answer);
      if (holdsMessages()) holdAnswer(request, one.answer);
    }
  }
  one.noMemory = host::poolRefusals() != refusals;
}

bool ModuleRoad::work(Turns& turns, int thread) {
  if (!hasWork()) return true;
  if (!underWay_ && waiting_.front().ends && !collections_.ends(waiting_.front().request.id)) {
    waiting_.pop_front();
    return true;
  }
  if (!underWay_) {
    underWay_ = true;
    Waiting& first = waiting_.front();
    const bool refused = first.set != nullptr &&
                         std::ranges::any_of(StandardSet::kMessages, [this](u16 id) { return collections_.has(id); });
    turns.begin();
    // The pieces of somebody's frame would become a part of what it sends.
    if (refused)
      first.set->refuse();
    else
      askModule(first);
    if (!turns.end(thread)) {
      done_ = true;
      wake();
      return false;
    }
  }
  underWay_ = false;
  done_ = false;
  answerFirst();
  return true;
}

void ModuleRoad::answerFirst() {
  Waiting& first = waiting_.front();
  bytes_ -= first.size;
  noteCollection(first);
  if (first.session == nullptr) {
    if (first.set == nullptr) table_.keepPiece(first.request, std::move(first.answer));
  } else if (first.set != nullptr) {
    StandardTable::prepare(first.set.get());
    goOn(table_, first.session, first.id, first.pdu);
    StandardTable::prepare(nullptr);
  } else {
    table_.prepare(first.request, std::move(first.answer), first.noMemory);
    goOn(table_, first.session, first.id, first.pdu);
  }
  waiting_.pop_front();
  endCollections();
  host::zeroReply();
}

void ModuleRoad::noteCollection(const Waiting& done) {
  if (done.set != nullptr) return;
  const u16 id = done.request.id;
  if (done.ends)
    collections_.lapsed(id);
  else if (done.request.column == kFrameMore && done.answer.result != 0 && !FrameTable::isRefusal(done.answer))
    collections_.took(id, done.session == nullptr ? Collections::Owner{} : ownerOf(done.session, *done.pdu),
                      Collections::Clock::now());
  else if (done.request.column != kAnswer)
    collections_.ended(id);
}

// What is due is ended behind the requests that wait. If one of them is a further
// piece, it goes on.
void ModuleRoad::endCollections() {
  for (const u16 id : collections_.due(Collections::Clock::now())) {
    Waiting& one = waiting_.emplace_back();
    one.request.column = kFrameMore;
    one.request.id = id;
    one.ends = true;
  }
  if (collections_.empty() == (alarm_ == 0)) return;
  if (alarm_ != 0) {
    snmp_alarm_unregister(std::exchange(alarm_, 0));
    return;
  }
  alarm_ = snmp_alarm_register(
      1, SA_REPEAT, [](unsigned, void* road) { static_cast<ModuleRoad*>(road)->endCollections(); }, this);
}

void ModuleRoad::wake() { eventfd_write(event_.get(), 1); }

void ModuleRoad::awake() {
  eventfd_t count = 0;
  eventfd_read(event_.get(), &count);
}

void ModuleRoad::leave(const netsnmp_session* session) {
  for (Waiting& one : waiting_)
    if (one.session == session) one.session = nullptr;
  collections_.leave(session);
  endCollections();
}

}  // namespace msand
