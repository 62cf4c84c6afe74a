#include "module_road.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <shared_mutex>
#include <system_error>

#include "host/chassis.h"
#include "host/jobs.h"

namespace msand {

constexpr std::size_t kMostWaiting = 64;
constexpr std::size_t kMostBytes = 16u << 20;

struct ModuleRoad::Waiting {
  // the agent's thread only
  netsnmp_session* session = nullptr;  // null: it has ended
  int id = 0;
  netsnmp_pdu* pdu = nullptr;
  std::size_t size = 0;

  // the door's thread until it is ready
  ModuleRequest request;
  host::Answer answer;

  ~Waiting() { snmp_free_pdu(pdu); }
};

ModuleRoad::ModuleRoad(FrameTable& table) : table_(table), done_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!done_) throw std::system_error(errno, std::generic_category(), "snmp: no descriptor");
}

ModuleRoad::~ModuleRoad() { door_.stop(); }

// The library's own road, with the outcome prepared.
static int goOn(FrameTable& table, netsnmp_session* session, int id, netsnmp_pdu* pdu) {
  const int result = handle_snmp_packet(NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE, session, id, pdu, nullptr);
  table.forget();
  return result;
}

// Access is judged ahead of anything that the module does. What is not allowed is refused by the library.
static bool isAllowed(netsnmp_pdu* pdu) {
  if (check_access(pdu) != 0) return false;
  for (netsnmp_variable_list* variable = pdu->variables; variable != nullptr; variable = variable->next_variable) {
    std::size_t length = variable->name_length;
    if (in_a_view(variable->name, &length, pdu, 0) != 0) return false;
  }
  return true;
}

int ModuleRoad::receive(netsnmp_session* session, int id, netsnmp_pdu* pdu) {
  if (!FrameTable::concernsModule(*pdu) || !isAllowed(pdu) || table_.holdsPiece(*pdu))
    return goOn(table_, session, id, pdu);
  if (isRepeated(session, pdu)) return 1;
  const std::size_t size = pdu->command == SNMP_MSG_SET ? pdu->variables->val_len : 0;
  if (waiting_.size() >= kMostWaiting || bytes_ + size > kMostBytes) {
    table_.prepareRefusal(*pdu);
    return goOn(table_, session, id, pdu);
  }
  const auto waiting = std::make_shared<Waiting>();
  waiting->session = session;
  waiting->id = id;
  waiting->size = size;
  waiting->pdu = snmp_clone_pdu(pdu);
  if (waiting->pdu == nullptr) return 1;
  waiting->request = *table_.take(*pdu);
  waiting_.push_back(waiting);
  bytes_ += size;
  door_.post([this, waiting] { work(waiting); });
  return 1;
}

// A manager that has lost patience asks again: it is answered once, as what it asked last.
bool ModuleRoad::isRepeated(netsnmp_session* session, netsnmp_pdu* pdu) {
  for (const WaitingPtr& one : waiting_) {
    const netsnmp_pdu& other = *one->pdu;
    if (one->session != session || other.reqid != pdu->reqid || other.command != pdu->command ||
        other.version != pdu->version || other.transport_data_length != pdu->transport_data_length ||
        (pdu->transport_data_length != 0 &&
         std::memcmp(other.transport_data, pdu->transport_data, static_cast<u32>(pdu->transport_data_length)) != 0) ||
        snmp_oid_compare(other.variables->name, other.variables->name_length, pdu->variables->name,
                         pdu->variables->name_length) != 0)
      continue;
    if (netsnmp_pdu* again = snmp_clone_pdu(pdu); again != nullptr) {
      snmp_free_pdu(one->pdu);
      one->pdu = again;
    }
    return true;
  }
  return false;
}

void ModuleRoad::work(const WaitingPtr& waiting) {
  ModuleRequest& request = waiting->request;
  {
    const std::shared_lock gate(host::requestGate());
    waiting->answer = request.column == kAnswer ? host::agentGet(request.id, &request.bytes)
                                                : host::agentSet(request.id, request.column == kFrame, &request.bytes);
  }
  {
    const std::lock_guard lock(mutex_);
    ready_.push_back(waiting);
  }
  wake();
  host::runJobs();
}

void ModuleRoad::wake() { eventfd_write(done_.get(), 1); }

void ModuleRoad::finish() {
  eventfd_t count = 0;
  eventfd_read(done_.get(), &count);
  std::vector<WaitingPtr> ready;
  {
    const std::lock_guard lock(mutex_);
    ready.swap(ready_);
  }
  for (const WaitingPtr& one : ready) {
    waiting_.remove(one);
    bytes_ -= one->size;
    if (one->session == nullptr) {
      table_.keepPiece(one->request, std::move(one->answer));
      continue;
    }
    table_.prepare(one->request, std::move(one->answer));
    goOn(table_, one->session, one->id, one->pdu);
  }
}

void ModuleRoad::leave(const netsnmp_session* session) {
  for (const WaitingPtr& one : waiting_)
    if (one->session == session) one->session = nullptr;
}

}  // namespace msand
