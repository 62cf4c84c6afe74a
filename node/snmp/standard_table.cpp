#include "standard_table.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "facts.h"
#include "host/chassis.h"
#include "session_record.h"
#include "standard_set.h"

namespace msand {

const StandardSet* StandardTable::done_ = nullptr;
Facts* StandardTable::noting_ = nullptr;

StandardTable::StandardTable(const char* name, const Oid& entry, Oid columns, Access access)
    : entry_(entry), columns_(std::move(columns)) {
  registration_ = netsnmp_create_handler_registration(name, handle, entry_.data(), entry_.size(),
                                                      access == Access::write ? HANDLER_CAN_RWRITE : HANDLER_CAN_RONLY);
  registration_->handler->myvoid = this;
  if (netsnmp_register_handler(registration_) != MIB_REGISTERED_OK)
    throw std::runtime_error(std::string("snmp: ") + name + ": can't be registered");
}

StandardTable::~StandardTable() { netsnmp_unregister_handler(registration_); }

bool StandardTable::giveNumber(netsnmp_variable_list& to, u32 number, u8 type) {
  const long value = type == ASN_INTEGER ? long{static_cast<i32>(number)} : static_cast<long>(number);
  return snmp_set_var_typed_integer(&to, type, value) == 0;
}

bool StandardTable::giveText(netsnmp_variable_list& to, std::string_view text) {
  return snmp_set_var_typed_value(&to, ASN_OCTET_STR, text.data(), text.size()) == 0;
}

int StandardTable::handle(netsnmp_mib_handler* handler, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
                          netsnmp_request_info* requests) {
  auto& table = *static_cast<StandardTable*>(handler->myvoid);
  // The module does not change, nor do the cards' types.
  const Turn turn;
  for (netsnmp_request_info* request = requests; request != nullptr; request = request->next) {
    if (request->processed != 0) continue;
    if (info->mode == MODE_GET) table.get(request);
    if (info->mode == MODE_GETNEXT) table.getNext(request);
    if (info->mode == MODE_SET_RESERVE1) {
      const int error =
          done_ != nullptr ? done_->errorOf(static_cast<u32>(request->index)) : SNMP_ERR_RESOURCEUNAVAILABLE;
      if (error != SNMP_ERR_NOERROR) netsnmp_set_request_error(info, request, error);
    }
  }
  if (info->mode == MODE_SET_COMMIT) table.changed();
  return SNMP_ERR_NOERROR;
}

void StandardTable::get(netsnmp_request_info* request) {
  const netsnmp_variable_list& from = *request->requestvb;
  if (from.name_length > entry_.size() + 1) {
    const oid column = from.name[entry_.size()];
    const Oid index(from.name + entry_.size() + 1, from.name + from.name_length);
    if (std::ranges::binary_search(columns_, column) && give(column, index, *request->requestvb)) return;
  }
  netsnmp_set_request_error(nullptr, request, SNMP_NOSUCHINSTANCE);
}

// What is being noted is there until it is known.
bool StandardTable::giveAs(oid column, const Oid& index, netsnmp_variable_list& to) {
  if (noting_ == nullptr || isLearned(column)) {
    const bool given = give(column, index, to);
    const bool noted = noting_ != nullptr && noting_->takeNoted();
    if (!given && !noted) return false;
  }
  Oid name = entry_;
  name.push_back(column);
  name.insert(name.end(), index.begin(), index.end());
  snmp_set_var_objid(&to, name.data(), name.size());
  return true;
}

// Cells that tell nothing are passed over.
bool StandardTable::giveNext(const Oid& from, bool inclusive, netsnmp_variable_list& to) {
  Oid rest;
  if (from.size() > entry_.size() && std::equal(entry_.begin(), entry_.end(), from.begin()))
    rest.assign(from.begin() + static_cast<i64>(entry_.size()), from.end());
  else if (from > entry_)
    return false;
  const oid first = rest.empty() ? 0 : rest.front();
  for (const oid column : columns_) {
    if (column < first) continue;
    Oid index;
    if (column == first) index.assign(rest.begin() + 1, rest.end());
    if (inclusive && !index.empty() && giveAs(column, index, to)) return true;
    for (auto row = behind(index); row; row = behind(*row))
      if (giveAs(column, *row, to)) return true;
  }
  return false;
}

void StandardTable::getNext(netsnmp_request_info* request) {
  netsnmp_variable_list& to = *request->requestvb;
  giveNext(Oid(to.name, to.name + to.name_length), request->inclusive != 0, to);
}

// --- what is needed

namespace {

// A value that nobody gets.
struct Scratch {
  netsnmp_variable_list variable{};
  ~Scratch() { snmp_free_var_internals(&variable); }
};

}  // namespace

void StandardTable::note(const netsnmp_variable_list& variable, Facts& facts) {
  const std::size_t head = entry_.size() + 1;
  if (variable.name_length <= head || !std::equal(entry_.begin(), entry_.end(), variable.name) ||
      !isLearned(variable.name[head - 1]))
    return;
  Scratch scratch;
  noting_ = &facts;
  give(variable.name[head - 1], Oid(variable.name + head, variable.name + variable.name_length), scratch.variable);
  noting_ = nullptr;
}

bool StandardTable::noteNext(Oid& name, Facts& facts) {
  Scratch scratch;
  noting_ = &facts;
  const bool found = giveNext(name, false, scratch.variable);
  noting_ = nullptr;
  if (found) name.assign(scratch.variable.name, scratch.variable.name + scratch.variable.name_length);
  return found;
}

}  // namespace msand
