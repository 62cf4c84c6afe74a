#pragma once
// A manager's request that is kept until it can be answered.

#include "library.h"

namespace msand {

struct KeptRequest {
  netsnmp_session* session = nullptr;  // null: it has ended
  int id = 0;
  netsnmp_pdu* pdu = nullptr;

  KeptRequest() = default;
  ~KeptRequest() { snmp_free_pdu(pdu); }
  KeptRequest(const KeptRequest&) = delete;
  KeptRequest& operator=(const KeptRequest&) = delete;

  // Keeps a copy. False: there is no memory.
  bool keep(netsnmp_session* of, int number, netsnmp_pdu* asked);
  // A manager that has lost patience asks again: it is answered once, as what it asked last. True if this is that.
  bool takeRepeated(netsnmp_session* of, netsnmp_pdu* asked);
};

// Access is judged ahead of anything that is done. What is not allowed is refused by the library.
bool isAllowed(netsnmp_pdu* pdu);

}  // namespace msand
