#include "port_tables.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "host/chassis.h"
#include "session_record.h"

namespace msand {

namespace {

const Oid kInterfaceNumber = {1, 3, 6, 1, 2, 1, 2, 1};
const Oid kInterfaceEntry = {1, 3, 6, 1, 2, 1, 2, 2, 1};
const Oid kInterfaceNamesEntry = {1, 3, 6, 1, 2, 1, 31, 1, 1, 1};

enum InterfaceNamesColumn : oid { kName = 1, kAlias = 18 };

// What the types of ports are to managers. What a line of dsl16 is depends on its card: "other".
struct InterfaceKind {
  u16 type;
  u32 number;  // IANAifType
  std::string_view words;
};
constexpr InterfaceKind kKinds[] = {
    {116, 94, "ADSL"},    {817, 94, "ADSL"},    {56, 97, "VDSL"},     {818, 97, "VDSL"},  {621, 1, "DSL"},
    {264, 6, "Ethernet"}, {622, 6, "Ethernet"}, {699, 6, "Ethernet"}, {600, 102, "POTS"},
};

const InterfaceKind* kindOf(u16 type) {
  const auto* const kind = std::ranges::find(kKinds, type, &InterfaceKind::type);
  return kind != std::end(kKinds) ? kind : nullptr;
}

std::optional<Port> portAt(u16 slot, u16 port, PortFilter filter) {
  const host::CardType* card = host::authorisedType(slot);
  if (card == nullptr || port == 0 || port > card->ports || !filter(card->portType)) return std::nullopt;
  return Port{slot, port, card->portType};
}

}  // namespace

const Oid& interfaceEntry() { return kInterfaceEntry; }

bool isInterface(u16 type) { return kindOf(type) != nullptr; }
bool isAdslLine(u16 type) { return type == 116 || type == 817; }

std::optional<Port> portOf(const Oid& index, PortFilter filter) {
  if (index.size() != 1 || index[0] > host::objectId(host::kSlots, host::kPorts)) return std::nullopt;
  return portAt(static_cast<u16>(index[0] >> 16), static_cast<u16>(index[0] & 0xFFFF), filter);
}

std::optional<Oid> portBehind(const Oid& index, PortFilter filter) {
  const oid last = host::objectId(host::kSlots, host::kPorts);
  const u32 from = index.empty() ? 0 : static_cast<u32>(std::min(index[0], last));
  u32 port = (from & 0xFFFF) + 1;
  for (u32 slot = from >> 16; slot <= host::kSlots; ++slot, port = 1)
    if (port <= host::kPorts && portAt(static_cast<u16>(slot), static_cast<u16>(port), filter))
      return Oid{host::objectId(static_cast<u16>(slot), static_cast<u16>(port))};
  return std::nullopt;
}

InterfaceTable::InterfaceTable(const StandardFunctions& functions, Facts& facts)
    : StandardTable("ifTable", kInterfaceEntry, {kIndex, kDescription, kType, kAdministration, kOperation},
                    Access::write),
      functions_(functions),
      facts_(facts) {
  count_ = netsnmp_create_handler_registration("ifNumber", giveCount, kInterfaceNumber.data(), kInterfaceNumber.size(),
                                               HANDLER_CAN_RONLY);
  if (netsnmp_register_read_only_scalar(count_) != MIB_REGISTERED_OK)
    throw std::runtime_error("snmp: ifNumber: can't be registered");
}

InterfaceTable::~InterfaceTable() { netsnmp_unregister_handler(count_); }

int InterfaceTable::giveCount(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
                              netsnmp_request_info* requests) {
  if (info->mode != MODE_GET) return SNMP_ERR_NOERROR;
  const Turn turn;
  u32 count = 0;
  for (u16 slot = 1; slot <= host::kSlots; ++slot) {
    const host::CardType* card = host::authorisedType(slot);
    if (card != nullptr && isInterface(card->portType)) count += card->ports;
  }
  giveNumber(*requests->requestvb, count);
  return SNMP_ERR_NOERROR;
}

bool InterfaceTable::give(oid column, const Oid& index, netsnmp_variable_list& to) {
  const auto port = portOf(index, isInterface);
  if (!port) return false;
  const InterfaceKind& kind = *kindOf(port->type);
  switch (column) {
    case kIndex:
      return giveNumber(to, static_cast<u32>(index[0]));
    case kDescription:
      return giveText(to, fmt::format("{} port {}/{}", kind.words, port->slot, port->port));
    case kType:
      return giveNumber(to, kind.number);
    case kAdministration:
      return giveAdministration(*port, to);
    default:
      return giveOperation(*port, to);
  }
}

bool InterfaceTable::giveAdministration(const Port& port, netsnmp_variable_list& to) const {
  const auto get = port.type == kPotsPort ? functions_.potsPortEnable : functions_.dataPortEnable;
  u8 enable = 0;
  return get(port.slot, port.port, &enable) == 0 && giveNumber(to, enable == 1 ? kUp : kDown);
}

// What a POTS port's state is to a manager of interfaces nobody tells.
bool InterfaceTable::giveOperation(const Port& port, netsnmp_variable_list& to) {
  if (port.type == kPotsPort) return false;
  if (host::cardState(port.slot) == host::CardState::absent) return giveNumber(to, kNotPresent);
  const auto told = facts_.told({Fact::lineUp, port.slot, port.port});
  if (told == nullptr) return giveNumber(to, kUnknown);
  return giveNumber(to, told->front() == 1 ? kUp : kDown);
}

InterfaceNames::InterfaceNames() : StandardTable("ifXTable", kInterfaceNamesEntry, {kName, kAlias}) {}

bool InterfaceNames::give(oid column, const Oid& index, netsnmp_variable_list& to) {
  const auto port = portOf(index, isInterface);
  if (!port) return false;
  return giveText(to, column == kName ? fmt::format("{}/{}", port->slot, port->port) : "");
}

}  // namespace msand
