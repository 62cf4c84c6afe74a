#include "frame_table.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace msand {

namespace {

constexpr std::size_t kTableLength = std::size(kFrameTable);
constexpr std::size_t kInstanceLength = kTableLength + 3;  // entry, column, id
constexpr oid kMaxId = 65535;
constexpr std::size_t kMostKept = 65448;                       // of a frame, for reading it back
constexpr std::size_t kMostQueries = 16u << 20;                // bytes that wait as queries of all messages
constexpr std::array kWalked = {kFrame, kReply, kAnswerLast};  // no walk fetches a piece

// A datagram holds 65,507 bytes; this is for the rest of a message of version 2c, its community aside, or of version 3
// with the longest names; and for each further value with its name.
constexpr std::size_t kDatagram = 65507;
constexpr std::size_t kRestOfCommunityMessage = 55;
constexpr std::size_t kRestOfUserMessage = 320;
constexpr std::size_t kRestOfValue = 40;

struct Instance {
  Column column = kFrame;
  u16 id = 0;
};

bool isInTable(const netsnmp_variable_list& variable) {
  return variable.name_length >= kTableLength &&
         std::equal(std::begin(kFrameTable), std::end(kFrameTable), variable.name);
}

std::optional<Instance> instanceOf(const netsnmp_variable_list& variable) {
  if (!isInTable(variable) || variable.name_length != kInstanceLength) return std::nullopt;
  const oid* behind = variable.name + kTableLength;
  if (behind[0] != 1 || behind[1] < kFrame || behind[1] > kAnswerLast || behind[2] > kMaxId) return std::nullopt;
  return Instance{static_cast<Column>(behind[1]), static_cast<u16>(behind[2])};
}

// The instance by which a request concerns the module: the only variable of a SET, the only answer of a GET.
std::optional<Instance> moduleInstance(const netsnmp_pdu& pdu) {
  if (pdu.variables == nullptr) return std::nullopt;
  if (pdu.command == SNMP_MSG_SET) {
    const auto instance = instanceOf(*pdu.variables);
    const bool frame = instance && (instance->column == kFrame || instance->column == kFrameMore);
    return frame && pdu.variables->next_variable == nullptr && pdu.variables->type == ASN_OCTET_STR ? instance
                                                                                                    : std::nullopt;
  }
  std::optional<Instance> found;
  if (pdu.command != SNMP_MSG_GET) return found;
  for (const auto* variable = pdu.variables; variable != nullptr; variable = variable->next_variable) {
    const auto instance = instanceOf(*variable);
    if (!instance || instance->column != kAnswer) continue;
    if (found) return std::nullopt;
    found = instance;
  }
  return found;
}

std::size_t roomFor(const netsnmp_agent_request_info& info) {
  const netsnmp_transport* transport = snmp_sess_transport(snmp_sess_pointer(info.asp->session));
  if (transport != nullptr && (transport->flags & NETSNMP_TRANSPORT_FLAG_STREAM) != 0) return 8u << 20;
  const netsnmp_pdu& pdu = *info.asp->pdu;
  std::size_t taken = pdu.version == SNMP_VERSION_3 ? kRestOfUserMessage : kRestOfCommunityMessage + pdu.community_len;
  for (const auto* variable = pdu.variables; variable != nullptr && variable->next_variable != nullptr;
       variable = variable->next_variable)
    taken += kRestOfValue;
  return taken < kDatagram ? kDatagram - taken : 0;
}

}  // namespace

// The requests of one PDU that the library hands over together.
struct FrameTable::Batch {
  const netsnmp_agent_request_info& info;
  std::size_t room;
  int error = SNMP_ERR_NOERROR;  // of a read: for the whole request
};

FrameTable::FrameTable() {
  for (const host::Announced& one : host::announcedMessages()) ids_.push_back(one.id);
  std::ranges::sort(ids_);
  ids_.erase(std::ranges::unique(ids_).begin(), ids_.end());

  registration_ =
      netsnmp_create_handler_registration("msanFrame", handle, kFrameTable, kTableLength, HANDLER_CAN_RWRITE);
  registration_->handler->myvoid = this;
  if (netsnmp_register_handler(registration_) != MIB_REGISTERED_OK)
    throw std::runtime_error("snmp: the table of frames can't be registered");
}

FrameTable::~FrameTable() { netsnmp_unregister_handler(registration_); }

bool FrameTable::isKnown(u16 id) const { return std::ranges::binary_search(ids_, id) || rows_.contains(id); }

// --- what the module does ahead of the library

bool FrameTable::concernsModule(const netsnmp_pdu& pdu) { return moduleInstance(pdu).has_value(); }

bool FrameTable::holdsPiece(const netsnmp_pdu& pdu) const {
  const auto instance = moduleInstance(pdu);
  if (!instance || instance->column != kAnswer) return false;
  const auto row = rows_.find(instance->id);
  return row != rows_.end() && row->second.piece && row->second.query.empty();
}

u16 FrameTable::messageOf(const netsnmp_pdu& pdu) {
  const auto instance = moduleInstance(pdu);
  return instance ? instance->id : u16{0};
}

bool FrameTable::isRefusal(const host::Answer& answer) {
  constexpr std::array<u8, 4> kRefused = {0, 0, 0, 0x41};
  return answer.reply && answer.reply->size() >= kRefused.size() &&
         std::equal(kRefused.begin(), kRefused.end(), answer.reply->begin());
}

std::optional<ModuleRequest> FrameTable::take(const netsnmp_pdu& pdu) {
  const auto instance = moduleInstance(pdu);
  if (!instance) return std::nullopt;
  ModuleRequest request{instance->column, instance->id, {}};
  if (instance->column != kAnswer) {
    const netsnmp_variable_list& variable = *pdu.variables;
    if (variable.val_len != 0) request.bytes.assign(variable.val.string, variable.val.string + variable.val_len);
  } else if (const auto row = rows_.find(instance->id); row != rows_.end()) {
    request.bytes.swap(row->second.query);
    row->second.query.clear();
    queried_ -= request.bytes.size();
  }
  return request;
}

void FrameTable::prepare(const ModuleRequest& request, host::Answer answer, bool noMemory) {
  prepared_ = {request.column, request.id, SNMP_ERR_NOERROR, std::nullopt};
  const bool known = answer.result != 0;
  if (request.column == kAnswer) {
    if (!known) return;
    rows_[request.id].last = answer.last;
    prepared_->answer = std::move(answer);
    return;
  }
  if (!known) {
    prepared_->error = SNMP_ERR_NOCREATION;
    return;
  }
  Row& row = rows_[request.id];
  row.piece.reset();
  if (isRefusal(answer)) prepared_->error = noMemory ? SNMP_ERR_RESOURCEUNAVAILABLE : SNMP_ERR_INCONSISTENTVALUE;
  row.reply = answer.reply ? std::move(*answer.reply) : std::vector<u8>();
}

void FrameTable::prepareRefusal(const netsnmp_pdu& pdu) {
  const auto instance = moduleInstance(pdu);
  if (instance) prepared_ = {instance->column, instance->id, SNMP_ERR_RESOURCEUNAVAILABLE, std::nullopt};
}

void FrameTable::forget() { prepared_.reset(); }

void FrameTable::keepPiece(const ModuleRequest& request, host::Answer answer) {
  if (request.column != kAnswer || answer.result == 0) return;
  Row& row = rows_[request.id];
  row.last = answer.last;
  row.piece = std::move(answer);
}

// --- the library's requests

int FrameTable::handle(netsnmp_mib_handler* handler, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
                       netsnmp_request_info* requests) {
  auto& table = *static_cast<FrameTable*>(handler->myvoid);
  Batch batch{*info, 0};
  if (info->mode == MODE_GET || info->mode == MODE_GETNEXT) batch.room = roomFor(*info);
  for (netsnmp_request_info* request = requests; request != nullptr; request = request->next) {
    if (request->processed != 0) continue;
    if (info->mode == MODE_GET) table.get(batch, request);
    if (info->mode == MODE_GETNEXT) table.getNext(batch, request);
    if (info->mode == MODE_SET_RESERVE1)
      if (const int error = table.reserve(*info, *request); error != SNMP_ERR_NOERROR)
        netsnmp_set_request_error(info, request, error);
    if (info->mode == MODE_SET_COMMIT) table.store(*request);
  }
  return batch.error;
}

int FrameTable::reserve(const netsnmp_agent_request_info& info, const netsnmp_request_info& request) const {
  const netsnmp_variable_list& variable = *request.requestvb;
  const auto instance = instanceOf(variable);
  if (!instance) return SNMP_ERR_NOCREATION;
  if (instance->column == kReply || instance->column == kAnswer || instance->column == kAnswerLast)
    return SNMP_ERR_NOTWRITABLE;
  if (variable.type != ASN_OCTET_STR) return SNMP_ERR_WRONGTYPE;
  if (instance->column == kQuery) {
    if (!isKnown(instance->id)) return SNMP_ERR_NOCREATION;
    if (variable.val_len > host::kReplyCapacity) return SNMP_ERR_WRONGLENGTH;
    // Of several queries in one request each is counted.
    std::size_t asked = 0;
    for (const auto* other = info.asp->pdu->variables; other != nullptr; other = other->next_variable)
      asked += other->val_len;
    return queried_ + asked > kMostQueries ? SNMP_ERR_RESOURCEUNAVAILABLE : SNMP_ERR_NOERROR;
  }
  // A frame has its request for itself: only then the module was asked.
  const bool ours = prepared_ && prepared_->column == instance->column && prepared_->id == instance->id;
  return ours ? prepared_->error : SNMP_ERR_RESOURCEUNAVAILABLE;
}

void FrameTable::store(const netsnmp_request_info& request) {
  const netsnmp_variable_list& variable = *request.requestvb;
  const auto instance = instanceOf(variable);
  if (!instance) return;
  const std::span<const u8> bytes(variable.val.string, variable.val_len);
  Row& row = rows_[instance->id];
  if (instance->column == kQuery) {
    queried_ -= row.query.size();
    row.query.assign(bytes.begin(), bytes.end());
    queried_ += row.query.size();
  } else if (instance->column == kFrame) {
    row.frame.assign(bytes.begin(), bytes.size() <= kMostKept ? bytes.end() : bytes.begin());
  }
}

static void giveBytes(netsnmp_request_info* request, std::span<const u8> bytes) {
  static constexpr u8 kNone = 0;
  snmp_set_var_typed_value(request->requestvb, ASN_OCTET_STR, bytes.empty() ? &kNone : bytes.data(), bytes.size());
}

void FrameTable::get(Batch& batch, netsnmp_request_info* request) {
  const auto instance = instanceOf(*request->requestvb);
  if (!instance)
    netsnmp_set_request_error(nullptr, request, SNMP_NOSUCHINSTANCE);
  else if (instance->column == kAnswer)
    giveAnswer(batch, request, instance->id);
  else if (!isKnown(instance->id))
    netsnmp_set_request_error(nullptr, request, SNMP_NOSUCHINSTANCE);
  else
    give(batch, request, instance->column, instance->id);
}

void FrameTable::give(Batch& batch, netsnmp_request_info* request, Column column, u16 id) {
  static const Row kEmpty;
  const auto found = rows_.find(id);
  const Row& row = found != rows_.end() ? found->second : kEmpty;
  if (column == kAnswerLast) {
    snmp_set_var_typed_integer(request->requestvb, ASN_INTEGER, row.last);
    return;
  }
  std::span<const u8> bytes;
  if (column == kFrame) bytes = row.frame;
  if (column == kReply) bytes = row.reply;
  if (column == kQuery) bytes = row.query;
  if (bytes.size() > batch.room) {
    batch.error = SNMP_ERR_TOOBIG;
    return;
  }
  batch.room -= bytes.size();
  giveBytes(request, bytes);
}

void FrameTable::giveAnswer(Batch& batch, netsnmp_request_info* request, u16 id) {
  Row* row = nullptr;
  if (const auto found = rows_.find(id); found != rows_.end()) row = &found->second;
  const bool ours = prepared_ && prepared_->column == kAnswer && prepared_->id == id;
  std::optional<host::Answer> answer;
  if (ours && prepared_->error == SNMP_ERR_NOERROR)
    answer = std::move(prepared_->answer);
  else if (!ours && row != nullptr && row->piece)
    answer.swap(row->piece);
  else if (ours || isKnown(id)) {
    // Two answers in one request, or the module can't be asked now.
    batch.error = SNMP_ERR_GENERR;
    return;
  }
  if (!answer) {
    netsnmp_set_request_error(nullptr, request, SNMP_NOSUCHINSTANCE);
    return;
  }
  std::span<const u8> bytes;
  if (answer->reply) bytes = *answer->reply;
  if (bytes.size() > batch.room) {
    batch.error = SNMP_ERR_TOOBIG;
    rows_[id].piece = std::move(answer);
    return;
  }
  batch.room -= bytes.size();
  giveBytes(request, bytes);
}

void FrameTable::getNext(Batch& batch, netsnmp_request_info* request) {
  const netsnmp_variable_list& from = *request->requestvb;
  for (const Column column : kWalked) {
    std::array<oid, kInstanceLength> name;
    std::ranges::copy(kFrameTable, name.begin());
    name[kTableLength] = 1;
    name[kTableLength + 1] = column;
    // The first id whose name comes behind the one that is asked from.
    const auto isBehind = [&](u16 id) {
      name[kInstanceLength - 1] = id;
      const int order = snmp_oid_compare(name.data(), name.size(), from.name, from.name_length);
      return order > 0 || (order == 0 && request->inclusive != 0);
    };
    const auto next = std::ranges::partition_point(ids_, [&](u16 id) { return !isBehind(id); });
    if (next == ids_.end()) continue;
    name[kInstanceLength - 1] = *next;
    snmp_set_var_objid(request->requestvb, name.data(), name.size());
    return give(batch, request, column, *next);
  }
}

}  // namespace msand
