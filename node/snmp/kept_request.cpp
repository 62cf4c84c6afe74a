#include "kept_request.h"

#include <cstring>

#include "platform/types.h"

namespace msand {

bool KeptRequest::keep(netsnmp_session* of, int number, netsnmp_pdu* asked) {
  pdu = snmp_clone_pdu(asked);
  session = of;
  id = number;
  return pdu != nullptr;
}

static bool isSame(const netsnmp_pdu& one, const netsnmp_pdu& other) {
  if (one.reqid != other.reqid || one.command != other.command || one.version != other.version ||
      one.transport_data_length != other.transport_data_length)
    return false;
  if (one.transport_data_length != 0 &&
      std::memcmp(one.transport_data, other.transport_data, static_cast<u32>(one.transport_data_length)) != 0)
    return false;
  return one.variables != nullptr && other.variables != nullptr &&
         snmp_oid_compare(one.variables->name, one.variables->name_length, other.variables->name,
                          other.variables->name_length) == 0;
}

bool KeptRequest::takeRepeated(netsnmp_session* of, netsnmp_pdu* asked) {
  if (pdu == nullptr || session != of || !isSame(*pdu, *asked)) return false;
  if (netsnmp_pdu* again = snmp_clone_pdu(asked); again != nullptr) {
    snmp_free_pdu(pdu);
    pdu = again;
  }
  return true;
}

bool isAllowed(netsnmp_pdu* pdu) {
  if (check_access(pdu) != 0) return false;
  for (netsnmp_variable_list* variable = pdu->variables; variable != nullptr; variable = variable->next_variable) {
    std::size_t length = variable->name_length;
    if (in_a_view(variable->name, &length, pdu, 0) != 0) return false;
  }
  return true;
}

}  // namespace msand
